#include <ondrel/nodes/nodexmldepth_p.h>

#include <QLatin1String>
#include <QXmlStreamReader>

namespace Ondrel
{
namespace
{

// The position behind the next occurrence of `end`; the end of the text if there is none.
int behind(const QString& xml, const char* end, int from)
{
    const QLatin1String text(end);
    const int found = xml.indexOf(text, from);
    return found < 0 ? xml.size() : found + text.size();
}

// The position of the ">" of the tag that begins at `from`, or the end of the text. One in a quoted value is none.
int endOfTag(const QString& xml, int from)
{
    QChar quote;
    for (int i = from; i < xml.size(); ++i) {
        const QChar c = xml[i];
        if (!quote.isNull()) {
            if (c == quote)
                quote = QChar();
        } else if (c == QLatin1Char('"') || c == QLatin1Char('\'')) {
            quote = c;
        } else if (c == QLatin1Char('>')) {
            return i;
        }
    }
    return xml.size();
}

bool startsAt(const QString& xml, int position, const char* start)
{
    return xml.midRef(position, int(qstrlen(start))) == QLatin1String(start);
}

// For text without a document type: nothing in it but comments, CDATA and instructions hides a tag.
bool tagsNestedDeeperThan(const QString& xml, int limit)
{
    int depth = 0;
    for (int i = xml.indexOf(QLatin1Char('<')); i >= 0; i = xml.indexOf(QLatin1Char('<'), i)) {
        if (startsAt(xml, i, "<!--")) {
            i = behind(xml, "-->", i + 4);
        } else if (startsAt(xml, i, "<![CDATA[")) {
            i = behind(xml, "]]>", i + 9);
        } else if (startsAt(xml, i, "<?")) {
            i = behind(xml, "?>", i + 2);
        } else if (startsAt(xml, i, "<!")) {
            i += 2; // no well-formed text has this
        } else if (startsAt(xml, i, "</")) {
            --depth;
            i += 2;
        } else {
            const int end = endOfTag(xml, i + 1);
            if (++depth > limit)
                return true;
            if (end > i && xml[end - 1] == QLatin1Char('/'))
                --depth;
            i = end;
        }
    }
    return false;
}

// With all entities of the document type replaced. The reader keeps its open elements on the heap.
bool expandedNestedDeeperThan(const QString& xml, int limit)
{
    QXmlStreamReader reader(xml);
    reader.setNamespaceProcessing(false);
    int depth = 0;
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::StartElement && ++depth > limit)
            return true;
        if (token == QXmlStreamReader::EndElement)
            --depth;
    }
    // QDomDocument may go on where this reader has stopped, and its entities open elements without end.
    return reader.hasError();
}

} // namespace

bool nestedDeeperThan(const QString& xml, int limit)
{
    const bool hasEntities = xml.contains(QLatin1String("<!ENTITY"));
    if (!hasEntities && xml.count(QLatin1Char('<')) <= limit)
        return false;
    if (xml.contains(QLatin1String("<!DOCTYPE")))
        return expandedNestedDeeperThan(xml, limit);
    return tagsNestedDeeperThan(xml, limit);
}

} // namespace Ondrel

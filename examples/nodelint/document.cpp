#include "checks.h"
#include "vocabulary.h"

#include <QDomDocument>
#include <QXmlStreamReader>

#include <algorithm>

namespace
{

void addTooDeep(Report& report, Position position)
{
    addError(report, position, "elements are nested deeper than 256", "three levels are enough");
}

void addMalformed(Report& report, Position position, const QString& reason)
{
    addError(report, position, QStringLiteral("not well-formed: %1").arg(reason),
             "every tag is closed, and & and < are written as &amp; and &lt;");
}

// What stands before the root element takes its place.
void checkProlog(Report& report, const SourceNode& document)
{
    const std::vector<SourceNode> children = document.children();
    for (const SourceNode& child : children) {
        if (child.isElement())
            return;
        const bool declaration = child.node().isProcessingInstruction() && child.name() == "xml";
        addError(report, child.position(),
                 QStringLiteral("%1 before the root element")
                     .arg(declaration                ? "an XML declaration"
                          : child.node().isComment() ? "a comment"
                                                     : "an instruction"),
                 declaration ? "leave it out: node files are UTF-8 anyway" : "it may stand behind the root element");
    }
}

void checkChildCount(Report& report, const SourceNode& root, const std::vector<SourceNode>& children)
{
    const auto elements =
        std::count_if(children.begin(), children.end(), [](const SourceNode& child) { return child.isElement(); });
    for (const SourceNode& child : children) {
        if (child.isElement())
            continue;
        const QString text = QStringLiteral("%1 directly in the root element").arg(kindName(child));
        if (children.size() == 2)
            addWarning(report, child.position(), text, "it stands in the place of \"input\" or \"output\"");
        else
            addError(report, child.position(), text,
                     child.node().isComment() ? "comments may stand behind the root element, or inside of an entry"
                                              : "put it into an entry, or leave it out");
    }
    if (children.size() == 2 || elements == 2)
        return;
    addError(report, root.position(),
             elements < 2 ? QStringLiteral("the root element has %1 of its two child elements").arg(elements)
                          : QStringLiteral("the root element has %1 child elements, not two").arg(elements),
             "write one \"input\" and one \"output\", empty if need be");
}

void checkVersion(Report& report, const SourceNode& root)
{
    bool readable = false;
    root.value("version").toUInt(&readable);
    if (root.has("version") && !readable)
        addWarning(report, root.valueOf("version"),
                   QStringLiteral("version \"%1\" is no whole number").arg(root.value("version")),
                   "raise it by 1 when fields are renamed or mean something else");
}

void checkList(Report& report, const SourceNode& list)
{
    checkAttributes(report, list, {}, QStringLiteral("\"%1\"").arg(list.name()));
    Names names;
    for (const SourceNode& entry : list.children()) {
        if (list.name() == "output")
            checkOutput(report, entry, names);
        else
            checkInput(report, entry, names, false);
    }
}

void checkRoot(Report& report, const SourceNode& root)
{
    if (root.name() != "node")
        addWarning(report, root.position(), QStringLiteral("the root element is called \"%1\"").arg(root.name()),
                   "by custom it is \"node\"");
    checkAttributes(report, root, rootAttributes(), "the root element");
    checkVersion(report, root);
    const std::vector<SourceNode> children = root.children();
    checkChildCount(report, root, children);
    QMap<QString, SourceNode> lists;
    for (const SourceNode& child : children) {
        if (!child.isElement())
            continue;
        if (child.name() != "input" && child.name() != "output") {
            addWarning(report, child.position(), QStringLiteral("element \"%1\" is passed over").arg(child.name()),
                       suggestion(child.name(), {"input", "output"}));
            continue;
        }
        if (lists.contains(child.name()))
            addWarning(report, lists.find(child.name())->position(),
                       QStringLiteral("this \"%1\" is passed over").arg(child.name()),
                       QStringLiteral("the one in line %1 replaces it").arg(child.position().line));
        lists.remove(child.name());
        lists.insert(child.name(), child);
    }
    for (const SourceNode& list : lists)
        checkList(report, list);
}

// Entities of a document type can nest elements, too. The library takes a text that has them, or enough tags, only if
// this reader, whose open elements do not stand on the stack, takes it as well.
bool isSound(Report& report, const QString& text)
{
    QXmlStreamReader reader(text);
    reader.setNamespaceProcessing(false);
    int depth = 0;
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        depth += token == QXmlStreamReader::StartElement ? 1 : token == QXmlStreamReader::EndElement ? -1 : 0;
        if (depth > SourceMap::kMaxDepth) {
            addTooDeep(report, {int(reader.lineNumber()), int(reader.columnNumber()) + 1});
            return false;
        }
    }
    if (!reader.hasError())
        return true;
    addMalformed(report, {int(reader.lineNumber()), int(reader.columnNumber()) + 1}, reader.errorString());
    return false;
}

SourceNode rootOf(const SourceNode& document)
{
    const std::vector<SourceNode> children = document.children();
    return *std::find_if(children.begin(), children.end(), [](const SourceNode& child) { return child.isElement(); });
}

} // namespace

Report lintNodeFile(const QString& text)
{
    Report report;
    const SourceMap map(text);
    if (map.tooDeep() >= 0) { // the parser of the document would need the stack for it
        addTooDeep(report, map.positionAt(map.tooDeep()));
        return report;
    }
    const bool mayNestDeeply = text.contains("<!ENTITY") || text.count('<') > SourceMap::kMaxDepth;
    if (text.contains("<!DOCTYPE") && mayNestDeeply && !isSound(report, text))
        return report;
    QDomDocument document;
    QString reason;
    Position position;
    if (!document.setContent(text, &reason, &position.line, &position.column)) {
        addMalformed(report, position, reason);
        return report;
    }
    const SourceNode top(document, map, 0);
    checkProlog(report, top);
    checkRoot(report, rootOf(top));
    std::stable_sort(report.begin(), report.end(), [](const Complaint& a, const Complaint& b) {
        return std::make_pair(a.position.line, a.position.column) < std::make_pair(b.position.line, b.position.column);
    });
    return report;
}

void checkFileName(Report& report, const QString& fileName)
{
    QString found = fileName.toLower();
    found.remove(' ');
    if (!found.endsWith(".xml"))
        found += ".xml";
    if (found != fileName)
        addWarning(report, Position(), "no node has a file of this name",
                   QStringLiteral("a node's file is its name in lower case without blanks: \"%1\"").arg(found));
}

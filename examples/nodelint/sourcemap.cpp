#include "sourcemap.h"

#include <algorithm>

namespace
{

bool isBlank(QChar c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

} // namespace

SourceMap::SourceMap(const QString& text)
    : m_text(text)
    , m_items{{Kind::Element, QString(), 0, {}, {}}}
    , m_open{0}
    , m_lines{0}
{
    for (int i = 0; i < text.size(); ++i) {
        if (text[i] == '\n')
            m_lines.push_back(i + 1);
    }
    while (m_at < m_text.size()) {
        if (m_text[m_at] != '<')
            readText();
        else if (!readMarkup())
            return;
    }
}

Position SourceMap::positionAt(int offset) const
{
    const auto next = std::upper_bound(m_lines.begin(), m_lines.end(), offset);
    Position position;
    position.line = int(next - m_lines.begin());
    for (int i = *(next - 1); i < offset && i < m_text.size(); ++i) {
        if (!m_text[i].isLowSurrogate())
            ++position.column;
    }
    return position;
}

int SourceMap::add(Kind kind, int offset)
{
    const int index = int(m_items.size());
    m_items.push_back({kind, QString(), offset, {}, {}});
    m_items[std::size_t(m_open.back())].children.push_back(index);
    return index;
}

bool SourceMap::at(const char* text) const
{
    return m_text.midRef(m_at).startsWith(QLatin1String(text));
}

bool SourceMap::readUntil(const char* end)
{
    const int found = m_text.indexOf(QLatin1String(end), m_at);
    if (found < 0)
        return false;
    m_at = found + int(qstrlen(end));
    return true;
}

void SourceMap::skipBlanks()
{
    while (m_at < m_text.size() && isBlank(m_text[m_at]))
        ++m_at;
}

QString SourceMap::readName()
{
    const int start = m_at;
    while (m_at < m_text.size() && !isBlank(m_text[m_at]) && !QStringLiteral("=/><\"'").contains(m_text[m_at]))
        ++m_at;
    return m_text.mid(start, m_at - start);
}

// Text of blanks alone is dropped by the parser.
void SourceMap::readText()
{
    const int start = m_at;
    const int next = m_text.indexOf('<', m_at);
    m_at = next < 0 ? m_text.size() : next;
    for (int i = start; i < m_at; ++i) {
        if (!m_text[i].isSpace()) {
            add(Kind::Text, i);
            return;
        }
    }
}

bool SourceMap::readMarkup()
{
    const int start = m_at;
    const auto one = [&](Kind kind, int opening, const char* end) {
        add(kind, start);
        m_at += opening;
        return readUntil(end);
    };
    if (at("<!--"))
        return one(Kind::Comment, 4, "-->");
    if (at("<![CDATA["))
        return one(Kind::CData, 9, "]]>");
    if (at("<?"))
        return one(Kind::Instruction, 2, "?>");
    if (at("<!"))
        return readDoctype();
    return at("</") ? readEndTag() : readStartTag();
}

// Declarations in brackets may hold comments, instructions, and quoted text with any of these signs.
bool SourceMap::readDoctype()
{
    int brackets = 0;
    for (m_at += 2; m_at < m_text.size();) {
        if (at("<!--") || at("<?")) {
            const bool comment = at("<!--");
            m_at += comment ? 4 : 2;
            if (!readUntil(comment ? "-->" : "?>"))
                return false;
            continue;
        }
        const QChar c = m_text[m_at++];
        if (c == '"' || c == '\'') {
            const int end = m_text.indexOf(c, m_at);
            if (end < 0)
                return false;
            m_at = end + 1;
        } else if (c == '[') {
            ++brackets;
        } else if (c == ']') {
            --brackets;
        } else if (c == '>' && brackets <= 0) {
            return true;
        }
    }
    return false;
}

bool SourceMap::readEndTag()
{
    if (m_open.size() == 1)
        return false;
    m_open.pop_back();
    return readUntil(">");
}

bool SourceMap::readStartTag()
{
    if (m_open.size() > kMaxDepth) { // the document is no element
        m_tooDeep = m_at;
        return false;
    }
    const int index = add(Kind::Element, m_at);
    ++m_at;
    m_items[std::size_t(index)].name = readName();
    if (m_items[std::size_t(index)].name.isEmpty())
        return false;
    while (m_at < m_text.size()) {
        skipBlanks();
        if (at("/>")) {
            m_at += 2;
            return true;
        }
        if (at(">")) {
            ++m_at;
            m_open.push_back(index);
            return true;
        }
        if (!readAttribute(m_items[std::size_t(index)]))
            return false;
    }
    return false;
}

bool SourceMap::readAttribute(Item& item)
{
    const int start = m_at;
    const QString name = readName();
    skipBlanks();
    if (name.isEmpty() || !at("="))
        return false;
    ++m_at;
    skipBlanks();
    if (!at("\"") && !at("'"))
        return false;
    const QChar quote = m_text[m_at++];
    item.attributes.push_back({name, start, m_at});
    const int end = m_text.indexOf(quote, m_at);
    m_at = end + 1;
    return end >= 0;
}

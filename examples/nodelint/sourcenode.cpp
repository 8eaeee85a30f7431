#include "sourcenode.h"

#include <ondrel/core/xml.h>

namespace
{

SourceMap::Kind kindOf(const QDomNode& node)
{
    if (node.isElement())
        return SourceMap::Kind::Element;
    if (node.isComment())
        return SourceMap::Kind::Comment;
    if (node.isProcessingInstruction())
        return SourceMap::Kind::Instruction;
    return node.isCDATASection() ? SourceMap::Kind::CData : SourceMap::Kind::Text;
}

bool matches(const SourceMap::Item& item, const QDomNode& node)
{
    return item.kind == kindOf(node) && (!node.isElement() || item.name == node.nodeName());
}

} // namespace

QString SourceNode::value(const QString& attribute, const QString& fallback) const
{
    return Ondrel::AttributeAsString(m_node, attribute, fallback);
}

QString SourceNode::loweredValue(const QString& attribute, const QString& fallback) const
{
    return Ondrel::AttributeAsLowerString(m_node, attribute, fallback);
}

const std::vector<SourceMap::Attribute>& SourceNode::attributes() const
{
    static const std::vector<SourceMap::Attribute> none;
    return m_item < 0 ? none : m_map->item(m_item).attributes;
}

// Of two attributes with one name the parser keeps the later one.
const SourceMap::Attribute* SourceNode::find(const QString& attribute) const
{
    const SourceMap::Attribute* found = nullptr;
    for (const SourceMap::Attribute& candidate : attributes()) {
        if (candidate.name == attribute)
            found = &candidate;
    }
    return found;
}

Position SourceNode::position() const
{
    if (m_item >= 0)
        return m_map->positionAt(m_map->item(m_item).offset);
    Position position;
    position.line = m_node.lineNumber();
    position.column = m_node.columnNumber();
    return position;
}

Position SourceNode::positionOf(const SourceMap::Attribute& attribute) const
{
    return m_map->positionAt(attribute.offset);
}

Position SourceNode::nameOf(const QString& attribute) const
{
    const SourceMap::Attribute* const found = find(attribute);
    return found ? m_map->positionAt(found->offset) : position();
}

Position SourceNode::valueOf(const QString& attribute, int offset) const
{
    const SourceMap::Attribute* const found = find(attribute);
    return found ? m_map->positionAt(found->valueOffset + offset) : position();
}

// Both lists are in document order, but elements from entities are in one, and dropped items in the other alone.
std::vector<SourceNode> SourceNode::children() const
{
    std::vector<SourceNode> nodes;
    std::vector<int> items;
    if (m_item >= 0)
        items = m_map->item(m_item).children;
    std::size_t next = 0;
    for (QDomNode child = m_node.firstChild(); !child.isNull(); child = child.nextSibling()) {
        std::size_t found = next;
        while (found < items.size() && !matches(m_map->item(items[found]), child))
            ++found;
        const bool known = found < items.size();
        nodes.emplace_back(child, *m_map, known ? items[found] : -1);
        if (known)
            next = found + 1;
    }
    return nodes;
}

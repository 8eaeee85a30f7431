#pragma once

#include "sourcemap.h"

#include <QDomNode>
#include <QString>

#include <vector>

// A node of the document together with its place in the text.
class SourceNode
{
public:
    SourceNode(const QDomNode& node, const SourceMap& map, int item)
        : m_node(node)
        , m_map(&map)
        , m_item(item)
    {
    }

    const QDomNode& node() const { return m_node; }
    bool isElement() const { return m_node.isElement(); }
    QString name() const { return m_node.nodeName(); } // of an element

    bool has(const QString& attribute) const { return m_node.attributes().contains(attribute); }

    // As the library reads it.
    QString value(const QString& attribute, const QString& fallback = QString()) const;
    QString loweredValue(const QString& attribute, const QString& fallback = QString()) const;

    // All attributes of the text, in its order.
    const std::vector<SourceMap::Attribute>& attributes() const;

    Position position() const; // of the first character; where the parser stood, if it came out of an entity
    Position positionOf(const SourceMap::Attribute& attribute) const;
    Position nameOf(const QString& attribute) const;
    Position valueOf(const QString& attribute, int offset = 0) const; // of a character of the value

    std::vector<SourceNode> children() const;

private:
    const SourceMap::Attribute* find(const QString& attribute) const;

    QDomNode m_node;
    const SourceMap* m_map;
    int m_item; // -1 without a place
};

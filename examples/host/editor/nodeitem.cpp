#include "nodeitem.h"

#include <ondrel/nodes/xmlnode.h>

namespace Host
{
namespace
{

// What stands in for a node whose plug-in is missing.
QString placeholderFile(const NodeRecord& record, const Graph& graph)
{
    QStringList inputs, outputs;
    for (const Connection& connection : graph.touching(record.id)) {
        QStringList& names = connection.to == record.id ? inputs : outputs;
        const QString name = connection.to == record.id ? connection.input : connection.output;
        if (!names.contains(name))
            names.append(name);
    }
    const auto fields = [](const QStringList& names) {
        QString text;
        for (const QString& name : names)
            text += QString("<field name=\"%1\">%1</field>").arg(name.toHtmlEscaped());
        return text;
    };
    return QString("<node><input>%1</input><output>%2</output></node>").arg(fields(inputs), fields(outputs));
}

// Null for the usual item, also where the plug-in throws.
Node* itemOfPlugin(const NodeType& type)
{
    try {
        return type.entry.behaviour->createItem(type.fileText);
    } catch (...) {
        return nullptr;
    }
}

} // namespace

PreviewNode* makeNodeItem(const NodeRecord& record, const NodeTypes& types, const Graph& graph)
{
    const NodeType* const type = types.find(record.type);
    Node* node = type ? itemOfPlugin(*type) : nullptr;
    if (!node)
        node = Ondrel::XmlNode::create(type ? type->fileText : placeholderFile(record, graph));
    return qobject_cast<PreviewNode*>(node);
}

QPointF centerOf(const Anchor& anchor)
{
    return anchor.sceneBoundingRect().center();
}

} // namespace Host

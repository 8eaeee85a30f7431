#include "clipboardgraph.h"

#include "values.h"

#include <ondrel/resources/resourceid.h>

#include <QApplication>
#include <QClipboard>
#include <QJsonDocument>
#include <QMimeData>
#include <QUuid>

using Json = nlohmann::ordered_json;

namespace Host
{
namespace
{

const char* const kClipboardType = "application/x-ondrel-nodes+json";

QString textIn(const Json& object, const char* key)
{
    const auto found = object.find(key);
    return found != object.end() && found->is_string() ? QString::fromStdString(found->get<std::string>()) : QString();
}

std::optional<NodeRecord> readNode(const Json& json)
{
    NodeRecord record;
    QVariant position, values;
    if (!json.is_object() || !json.contains("values") || !json.contains("position") ||
        !valueFromJson(json["values"], values) || !valueFromJson(json["position"], position))
        return std::nullopt;
    record.id = textIn(json, "id").toULongLong();
    record.type = textIn(json, "type");
    record.name = textIn(json, "name");
    record.position = position.toPointF();
    record.values = values.toMap();
    const auto bypassed = json.find("bypassed");
    record.bypassed = bypassed != json.end() && bypassed->is_boolean() && bypassed->get<bool>();
    record.unread = QJsonDocument::fromJson(QByteArray::fromStdString(textIn(json, "unread").toStdString())).object();
    return record.id != 0 && !record.type.isEmpty() ? std::optional(record) : std::nullopt;
}

const std::string& thisProcess()
{
    static const std::string id = QUuid::createUuid().toString().toStdString();
    return id;
}

// The handles of another process name other pictures here.
NodeRecord withoutResources(NodeRecord record)
{
    for (auto value = record.values.begin(); value != record.values.end();)
        value = value->userType() == qMetaTypeId<Ondrel::ResourceId>() ? record.values.erase(value) : value + 1;
    return record;
}

} // namespace

QByteArray graphToText(const Graph& graph)
{
    Json nodes = Json::array(), connections = Json::array();
    for (const auto& [id, record] : graph.nodes)
        nodes.push_back({{"id", std::to_string(id)},
                         {"type", record.type.toStdString()},
                         {"name", record.name.toStdString()},
                         {"position", valueToJson(record.position)},
                         {"values", valueToJson(record.values)},
                         {"bypassed", record.bypassed},
                         {"unread", QJsonDocument(record.unread).toJson(QJsonDocument::Compact).toStdString()}});
    for (const Connection& c : graph.connections)
        connections.push_back({{"from", std::to_string(c.from)},
                               {"output", c.output.toStdString()},
                               {"to", std::to_string(c.to)},
                               {"input", c.input.toStdString()}});
    Json embedded = Json::array();
    for (const std::uint32_t handle : graph.embedded)
        embedded.push_back(handle);
    return QByteArray::fromStdString(Json{
        {"ondrel nodes", 1},
        {"process", thisProcess()},
        {"nodes", nodes},
        {"connections", connections},
        {"embedded", embedded}}.dump(1));
}

std::optional<Graph> graphFromText(const QByteArray& text)
{
    const Json json = Json::parse(text.begin(), text.end(), nullptr, false);
    if (!json.is_object() || !json.contains("ondrel nodes") || !json.contains("nodes") || !json["nodes"].is_array())
        return std::nullopt;
    const bool isOurs = textIn(json, "process") == QString::fromStdString(thisProcess());
    Graph graph;
    for (const Json& each : json["nodes"]) {
        const std::optional<NodeRecord> record = readNode(each);
        if (!record)
            return std::nullopt;
        graph.nodes[record->id] = isOurs ? *record : withoutResources(*record);
    }
    const auto connections = json.find("connections");
    if (connections == json.end() || !connections->is_array())
        return std::nullopt;
    for (const Json& each : *connections) {
        if (!each.is_object())
            return std::nullopt;
        graph.connections.push_back({textIn(each, "from").toULongLong(), textIn(each, "output"),
                                     textIn(each, "to").toULongLong(), textIn(each, "input")});
    }
    if (const auto embedded = json.find("embedded"); isOurs && embedded != json.end() && embedded->is_array()) {
        for (const Json& each : *embedded) {
            if (each.is_number_unsigned() && each.get<quint64>() <= UINT32_MAX)
                graph.embedded.insert(each.get<std::uint32_t>());
        }
    }
    return graph;
}

void putOnClipboard(const Graph& graph)
{
    auto* const data = new QMimeData; // the clipboard's
    const QByteArray text = graphToText(graph);
    data->setData(kClipboardType, text);
    data->setText(QString::fromUtf8(text));
    QApplication::clipboard()->setMimeData(data);
}

std::optional<Graph> graphOnClipboard()
{
    const QMimeData* const data = QApplication::clipboard()->mimeData();
    if (!data)
        return std::nullopt;
    return graphFromText(data->hasFormat(kClipboardType) ? data->data(kClipboardType) : data->text().toUtf8());
}

} // namespace Host

#include "clipboardgraph.h"

#include "frameitem.h"
#include "jsontext.h"
#include "projectform.h"
#include "values.h"

#include <QApplication>
#include <QClipboard>
#include <QJsonDocument>
#include <QMessageAuthenticationCode>
#include <QMimeData>
#include <QUuid>

#include <cmath>

using Json = nlohmann::ordered_json;

namespace Host
{
namespace
{

constexpr double kFarthest = 1e6; // scene units
constexpr int kLongestTitle = 1000;
constexpr const char* kMark = "ondrel nodes"; // the first member, by which others' texts are told apart
const char* const kClipboardType = "application/x-ondrel-nodes+json";

QString textIn(const Json& object, const char* key)
{
    const auto found = object.find(key);
    return found != object.end() && found->is_string() ? QString::fromStdString(found->get<std::string>()) : QString();
}

// False also for what is no number.
bool isOnCanvas(const QPointF& point)
{
    return std::abs(point.x()) <= kFarthest && std::abs(point.y()) <= kFarthest;
}

std::optional<NodeRecord> readNode(const Json& json)
{
    NodeRecord record;
    QVariant position, values;
    if (!json.is_object() || !json.contains("values") || !json.contains("position") ||
        !valueFromJson(Json{{"map", json["values"]}}, values) || !valueFromJson(json["position"], position))
        return std::nullopt;
    record.id = textIn(json, "id").toULongLong();
    record.type = textIn(json, "type");
    record.name = textIn(json, "name");
    record.position = position.toPointF();
    record.values = values.toMap();
    const auto bypassed = json.find("bypassed");
    record.bypassed = bypassed != json.end() && bypassed->is_boolean() && bypassed->get<bool>();
    record.unread = QJsonDocument::fromJson(QByteArray::fromStdString(textIn(json, "unread").toStdString())).object();
    const bool isUsable =
        record.id != 0 && !record.type.isEmpty() && !record.name.isEmpty() && isOnCanvas(record.position);
    return isUsable ? std::optional(record) : std::nullopt;
}

// Of a size at which the canvas can show it.
std::optional<FrameRecord> readFrame(const Json& json)
{
    FrameRecord record;
    QVariant corner, size;
    if (!json.is_object() || !json.contains("corner") || !json.contains("size") ||
        !valueFromJson(json["corner"], corner) || !valueFromJson(json["size"], size))
        return std::nullopt;
    record.id = textIn(json, "id").toULongLong();
    record.title = textIn(json, "title").simplified().left(kLongestTitle);
    record.area = QRectF(corner.toPointF(), QSizeF(size.toPointF().x(), size.toPointF().y()));
    const QSizeF least = FrameItem::leastSize();
    const bool isLargeEnough = record.area.width() >= least.width() && record.area.height() >= least.height();
    const bool isUsable =
        record.id != 0 && isLargeEnough && isOnCanvas(record.area.topLeft()) && isOnCanvas(record.area.bottomRight());
    return isUsable ? std::optional(record) : std::nullopt;
}

// False if there are damaged ones; none at all is no damage.
bool readFrames(const Json& json, Graph& graph)
{
    const auto frames = json.find("frames");
    if (frames == json.end())
        return true;
    if (!frames->is_array())
        return false;
    for (const Json& each : *frames) {
        const std::optional<FrameRecord> record = readFrame(each);
        if (!record)
            return false;
        graph.frames[record->id] = *record;
    }
    return true;
}

// Only this process can make it, and only for what it wrote itself: handles of pictures, which elsewhere name others,
// and what a project held beyond this program's knowledge are taken from such a text alone.
std::string sealOf(const Json& json)
{
    static const QByteArray secret = QUuid::createUuid().toRfc4122() + QUuid::createUuid().toRfc4122();
    const std::string text = json.dump();
    return QMessageAuthenticationCode::hash(QByteArray::fromStdString(text), secret, QCryptographicHash::Sha256)
        .toHex()
        .toStdString();
}

bool takeSeal(Json& json)
{
    const auto seal = json.find("seal");
    if (seal == json.end() || !seal->is_string())
        return false;
    const auto written = seal->get<std::string>();
    json.erase(seal);
    return written == sealOf(json);
}

// Without reading it: a clipboard may hold many megabytes of what others have copied.
bool beginsLikeOurs(const QByteArray& text)
{
    const auto skipSpace = [&text](int at) {
        while (at < text.size() && QByteArray(" \t\r\n").contains(text[at]))
            ++at;
        return at;
    };
    const int brace = skipSpace(0);
    const QByteArray name = '"' + QByteArray(kMark) + '"';
    return brace < text.size() && text[brace] == '{' && text.mid(skipSpace(brace + 1), name.size()) == name;
}

NodeRecord ofAStranger(NodeRecord record)
{
    record.values = withHandles(record.values, {});
    record.unread = QJsonObject();
    return record;
}

} // namespace

QByteArray graphToText(const Graph& graph)
{
    Json nodes = Json::array(), connections = Json::array(), frames = Json::array();
    for (const auto& [id, record] : graph.nodes)
        nodes.push_back({{"id", std::to_string(id)},
                         {"type", record.type.toStdString()},
                         {"name", record.name.toStdString()},
                         {"position", valueToJson(record.position)},
                         {"values", valueToJson(record.values)["map"]}, // no deeper than in a project
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
    for (const auto& [id, record] : graph.frames)
        frames.push_back({{"id", std::to_string(id)},
                          {"title", record.title.toStdString()},
                          {"corner", valueToJson(record.area.topLeft())},
                          {"size", valueToJson(QPointF(record.area.width(), record.area.height()))}});
    Json json{{kMark, 1}, {"nodes", nodes}, {"connections", connections}, {"frames", frames}, {"embedded", embedded}};
    json["seal"] = sealOf(json);
    return QByteArray::fromStdString(json.dump(1));
}

std::optional<Graph> graphFromText(const QByteArray& text)
{
    Json json;
    if (!beginsLikeOurs(text) || !parseJson(text.toStdString(), json).isEmpty() || !json.contains("nodes") ||
        !json["nodes"].is_array())
        return std::nullopt;
    const bool isOurs = takeSeal(json);
    Graph graph;
    for (const Json& each : json["nodes"]) {
        const std::optional<NodeRecord> record = readNode(each);
        if (!record)
            return std::nullopt;
        graph.nodes[record->id] = isOurs ? *record : ofAStranger(*record);
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
    return readFrames(json, graph) ? std::optional(graph) : std::nullopt;
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
    const std::optional<Graph> graph =
        graphFromText(data->hasFormat(kClipboardType) ? data->data(kClipboardType) : data->text().toUtf8());
    return graph && (!graph->nodes.empty() || !graph->frames.empty()) ? graph : std::nullopt;
}

} // namespace Host

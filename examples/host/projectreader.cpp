#include "blocking.h"
#include "jsontext.h"
#include "project.h"
#include "projectform.h"
#include "projectresources.h"
#include "values.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cmath>
#include <initializer_list>

using Json = nlohmann::ordered_json;

namespace Host
{
namespace
{

// What is wrong with the file, and the value at fault.
struct Fault {
    const Json& value;
    QString sentence;
};

class Reader
{
public:
    Reader(const QString& folder, const NodeTypes& types)
        : m_folder(folder)
        , m_types(types)
    {
    }

    // Throws Fault.
    Project read(const Json& root, QStringList& notes)
    {
        checkVersion(root);
        checkMembers(root, {"format", "version", "nodes", "connections", "frames", "resources", "view"});
        const std::vector<StoredResource> stored = resources(array(root, "resources"));
        for (const Json& json : array(root, "nodes"))
            addNode(json, notes);
        for (const Json& json : array(root, "connections"))
            addConnection(json);
        for (const Json& json : array(root, "frames"))
            addFrame(json);
        m_project.view = object(root, "view");
        const std::vector<std::uint32_t> handles = addToStore(stored, notes); // last, when nothing can fail any more
        for (std::size_t i = 0; i < stored.size(); ++i) {
            m_handles[m_resourceIds[i]] = handles[i];
            if (stored[i].embedded)
                m_project.graph.embedded.insert(handles[i]);
        }
        for (auto& [id, record] : m_project.graph.nodes)
            record.values = withHandles(record.values, m_handles);
        return std::move(m_project);
    }

private:
    static const Json& member(const Json& object, const char* name)
    {
        if (!object.is_object())
            throw Fault{object, "An object in braces belongs here."};
        const auto found = object.find(name);
        if (found == object.end())
            throw Fault{object, QString("There is no \"%1\" here.").arg(name)};
        return *found;
    }

    static const Json& array(const Json& parent, const char* name)
    {
        const Json& json = member(parent, name);
        if (!json.is_array())
            throw Fault{json, QString("\"%1\" is a list in brackets.").arg(name)};
        return json;
    }

    static const Json& object(const Json& parent, const char* name)
    {
        const Json& json = member(parent, name);
        if (!json.is_object())
            throw Fault{json, QString("\"%1\" is an object in braces.").arg(name)};
        return json;
    }

    static QString text(const Json& parent, const char* name)
    {
        const Json& json = member(parent, name);
        if (!json.is_string())
            throw Fault{json, QString("\"%1\" is a text in quotes.").arg(name)};
        return QString::fromStdString(json.get<std::string>());
    }

    static quint64 identity(const Json& parent, const char* name)
    {
        const QString written = text(parent, name);
        const quint64 id = written.toULongLong();
        if (id == 0 || QString::number(id) != written)
            throw Fault{member(parent, name), QString("\"%1\" is a number above 0 in quotes.").arg(name)};
        return id;
    }

    template <std::size_t N>
    static std::array<double, N> numbers(const Json& parent, const char* name)
    {
        const Json& json = array(parent, name);
        if (json.size() != N)
            throw Fault{json, QString("\"%1\" has %2 numbers.").arg(name).arg(N)};
        std::array<double, N> result{};
        for (std::size_t i = 0; i < N; ++i) {
            QVariant value;
            if (!valueFromJson(Json{{"double", json[i]}}, value) || !std::isfinite(value.toDouble()))
                throw Fault{json[i], "This is a number in quotes."};
            result[i] = value.toDouble();
        }
        return result;
    }

    static void checkMembers(const Json& json, std::initializer_list<const char*> known)
    {
        for (const auto& [name, value] : json.items()) {
            const auto same = [&name = name](const char* word) { return name == word; };
            if (std::none_of(known.begin(), known.end(), same))
                throw Fault{value, QString("\"%1\" is unknown.").arg(QString::fromStdString(name))};
        }
    }

    static void checkVersion(const Json& root)
    {
        if (text(root, "format") != kProjectFormat)
            throw Fault{member(root, "format"), "This is no project."};
        const Json& version = member(root, "version");
        if (!version.is_number_unsigned() || version.get<quint64>() == 0)
            throw Fault{version, "The version is a whole number above 0."};
        if (version.get<quint64>() > kProjectVersion)
            throw Fault{version, QString("The project was saved by a newer program, as version %1. This one reads "
                                         "versions up to %2.")
                                     .arg(QString::fromStdString(version.dump()))
                                     .arg(kProjectVersion)};
    }

    std::vector<StoredResource> resources(const Json& list)
    {
        std::vector<StoredResource> result;
        for (const Json& json : list) {
            checkMembers(json, {"id", "kind", "path", "data"});
            const quint64 id = identity(json, "id");
            if (id > UINT32_MAX || !m_handles.emplace(std::uint32_t(id), 0).second)
                throw Fault{member(json, "id"), "The id is too large, or there is another resource with it."};
            m_resourceIds.push_back(std::uint32_t(id));
            StoredResource resource;
            resource.form = formOf(json);
            resource.path = text(json, "path");
            if (resource.path.contains(QChar(0)))
                throw Fault{member(json, "path"), "No path has such a character."};
            resource.embedded = json.contains("data");
            if (resource.embedded)
                resource.data = bytes(json, "data");
            else if (resource.form == StoredResource::Buffer || resource.path.isEmpty())
                throw Fault{json, "There is no \"data\" here."};
            if (!resource.path.isEmpty())
                resource.path = QDir::cleanPath(QDir(m_folder).absoluteFilePath(resource.path));
            result.push_back(std::move(resource));
        }
        return result;
    }

    static StoredResource::Form formOf(const Json& json)
    {
        const QString kind = text(json, "kind");
        for (const auto form : {StoredResource::File, StoredResource::RawFile, StoredResource::Buffer}) {
            if (kind == kResourceKinds[form])
                return form;
        }
        throw Fault{member(json, "kind"), "The kind is \"image\", \"raw\" or \"buffer\"."};
    }

    static std::vector<unsigned char> bytes(const Json& parent, const char* name)
    {
        const QByteArray written = text(parent, name).toLatin1();
        const auto decoded = QByteArray::fromBase64Encoding(written, QByteArray::AbortOnBase64DecodingErrors);
        if (!decoded || (*decoded).toBase64() != written)
            throw Fault{member(parent, name), "These are no bytes in base64."};
        return std::vector<unsigned char>((*decoded).begin(), (*decoded).end());
    }

    void addNode(const Json& json, QStringList& notes)
    {
        NodeRecord record;
        record.id = identity(json, "id");
        record.type = text(json, "type");
        record.name = text(json, "name");
        const auto [x, y] = numbers<2>(json, "position");
        record.position = QPointF(x, y);
        const Json& bypassed = member(json, "bypassed");
        if (!bypassed.is_boolean())
            throw Fault{bypassed, "\"bypassed\" is true or false."};
        record.bypassed = bypassed.get<bool>();
        const bool isKnown = m_types.find(record.type) != nullptr;
        readValues(object(json, "values"), isKnown, record.values);
        if (isKnown)
            checkMembers(json, {"id", "type", "name", "position", "bypassed", "values"});
        else {
            record.unread.insert(kUnreadText, QString::fromStdString(json.dump()));
            notes.append(
                QString("\"%1\": there is no plug-in for nodes of the kind \"%2\".").arg(record.name, record.type));
        }
        if (record.name.isEmpty() || m_project.graph.nodeByName(record.name))
            throw Fault{member(json, "name"), "The name is empty, or there is another node with it."};
        if (!m_project.graph.nodes.emplace(record.id, record).second)
            throw Fault{member(json, "id"), "There is another node with this id."};
    }

    // Of a kind that is not loaded, values may have forms that are unknown here.
    void readValues(const Json& json, bool isKnown, QVariantMap& values)
    {
        for (const auto& [field, form] : json.items()) {
            QVariant value;
            const bool isRead = valueFromJson(form, value);
            if (isRead && resourcesAreThere(value))
                values.insert(QString::fromStdString(field), value);
            else if (isKnown)
                throw Fault{form, isRead ? "There is no resource with this id." : "No value is written like this."};
        }
    }

    bool resourcesAreThere(const QVariant& value) const
    {
        std::vector<std::uint32_t> ids;
        collectResources(value, ids);
        return std::all_of(ids.begin(), ids.end(), [this](std::uint32_t id) { return m_handles.count(id) != 0; });
    }

    void addConnection(const Json& json)
    {
        checkMembers(json, {"from", "output", "to", "input"});
        const Connection connection{identity(json, "from"), text(json, "output"), identity(json, "to"),
                                    text(json, "input")};
        for (const char* const end : {"from", "to"}) {
            if (!m_project.graph.node(identity(json, end)))
                throw Fault{member(json, end), "There is no node with this id."};
        }
        if (m_project.graph.into(connection.to, connection.input))
            throw Fault{member(json, "input"), "There is another connection into this input."};
        if (dependsOn(connection.from, connection.to))
            throw Fault{json, "With this connection a node would depend on itself."};
        m_project.graph.connections.push_back(connection);
    }

    bool dependsOn(NodeId node, NodeId other) const
    {
        const std::vector<NodeId> behind = dependencies(m_project.graph, node);
        return std::find(behind.begin(), behind.end(), other) != behind.end();
    }

    void addFrame(const Json& json)
    {
        checkMembers(json, {"id", "title", "area"});
        const auto [x, y, width, height] = numbers<4>(json, "area");
        const FrameRecord frame{identity(json, "id"), text(json, "title"), QRectF(x, y, width, height)};
        if (!m_project.graph.frames.emplace(frame.id, frame).second)
            throw Fault{member(json, "id"), "There is another frame with this id."};
    }

    QString m_folder;
    const NodeTypes& m_types;
    Project m_project;
    std::vector<std::uint32_t> m_resourceIds;           // of the file, in its order
    std::map<std::uint32_t, std::uint32_t> m_handles{}; // by those ids
};

} // namespace

ProjectReading readProject(const QByteArray& bytes, const QString& folder, const NodeTypes& types)
{
    assertMayBlock("readProject");
    ProjectReading reading;
    const std::string text = bytes.toStdString();
    Json root;
    reading.error = parseJson(text, root);
    if (!reading.error.isEmpty())
        return reading;
    try {
        reading.project = Reader(folder, types).read(root, reading.notes);
    } catch (const Fault& fault) {
        reading.error = withPlace(placeOf(text, root, fault.value), fault.sentence);
        reading.notes.clear();
    }
    return reading;
}

ProjectReading loadProject(const QString& fileName, const NodeTypes& types)
{
    assertMayBlock("loadProject");
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        ProjectReading reading;
        reading.error = QString("\"%1\" cannot be read: %2.").arg(fileName, file.errorString());
        return reading;
    }
    return readProject(file.readAll(), QFileInfo(fileName).absolutePath(), types);
}

} // namespace Host

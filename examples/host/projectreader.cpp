#include "blocking.h"
#include "jsontext.h"
#include "project.h"
#include "projectform.h"
#include "projectresources.h"
#include "text.h"
#include "values.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cmath>
#include <initializer_list>
#include <map>
#include <set>
#include <utility>

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

    // What the file says that the kinds of nodes loaded here do not have. It is kept.
    const std::vector<Fault>& misfits() const { return m_misfits; }

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
        refuseCycles(array(root, "connections"));
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
            throw Fault{object, Text::tr("An object in braces belongs here.")};
        const auto found = object.find(name);
        if (found == object.end())
            throw Fault{object, Text::tr("There is no \"%1\" here.").arg(name)};
        return *found;
    }

    static const Json& array(const Json& parent, const char* name)
    {
        const Json& json = member(parent, name);
        if (!json.is_array())
            throw Fault{json, Text::tr("\"%1\" is a list in brackets.").arg(name)};
        return json;
    }

    static const Json& object(const Json& parent, const char* name)
    {
        const Json& json = member(parent, name);
        if (!json.is_object())
            throw Fault{json, Text::tr("\"%1\" is an object in braces.").arg(name)};
        return json;
    }

    static QString text(const Json& parent, const char* name)
    {
        const Json& json = member(parent, name);
        if (!json.is_string())
            throw Fault{json, Text::tr("\"%1\" is a text in quotes.").arg(name)};
        return QString::fromStdString(json.get<std::string>());
    }

    static quint64 identity(const Json& parent, const char* name)
    {
        const QString written = text(parent, name);
        const quint64 id = written.toULongLong();
        if (id == 0 || QString::number(id) != written)
            throw Fault{member(parent, name), Text::tr("\"%1\" is a number above 0 in quotes.").arg(name)};
        return id;
    }

    template <std::size_t N>
    static std::array<double, N> numbers(const Json& parent, const char* name)
    {
        const Json& json = array(parent, name);
        if (json.size() != N)
            throw Fault{json, Text::tr("\"%1\" has %2 numbers.").arg(name).arg(N)};
        std::array<double, N> result{};
        for (std::size_t i = 0; i < N; ++i) {
            QVariant value;
            if (!valueFromJson(Json{{"double", json[i]}}, value) || !std::isfinite(value.toDouble()))
                throw Fault{json[i], Text::tr("This is a number in quotes.")};
            result[i] = value.toDouble();
        }
        return result;
    }

    static void checkMembers(const Json& json, std::initializer_list<const char*> known)
    {
        for (const auto& [name, value] : json.items()) {
            const auto same = [&name = name](const char* word) { return name == word; };
            if (std::none_of(known.begin(), known.end(), same))
                throw Fault{value, Text::tr("\"%1\" is unknown.").arg(QString::fromStdString(name))};
        }
    }

    static void checkVersion(const Json& root)
    {
        if (text(root, "format") != kProjectFormat)
            throw Fault{member(root, "format"), Text::tr("This is no project.")};
        const Json& version = member(root, "version");
        if (!version.is_number_unsigned() || version.get<quint64>() == 0)
            throw Fault{version, Text::tr("The version is a whole number above 0.")};
        if (version.get<quint64>() > kProjectVersion)
            throw Fault{version, Text::tr("The project was saved by a newer program, as version %1. This one reads "
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
                throw Fault{member(json, "id"), Text::tr("The id is too large, or there is another resource with it.")};
            m_resourceIds.push_back(std::uint32_t(id));
            StoredResource resource;
            resource.form = formOf(json);
            resource.path = text(json, "path");
            if (resource.path.contains(QChar(0)))
                throw Fault{member(json, "path"), Text::tr("No path has such a character.")};
            resource.embedded = json.contains("data");
            if (resource.embedded)
                resource.data = bytes(json, "data");
            else if (resource.form == StoredResource::Buffer || resource.path.isEmpty())
                throw Fault{json, Text::tr("There is no \"data\" here.")};
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
        throw Fault{member(json, "kind"), Text::tr("The kind is \"image\", \"raw\" or \"buffer\".")};
    }

    static std::vector<unsigned char> bytes(const Json& parent, const char* name)
    {
        const QByteArray written = text(parent, name).toLatin1();
        const auto decoded = QByteArray::fromBase64Encoding(written, QByteArray::AbortOnBase64DecodingErrors);
        if (!decoded || (*decoded).toBase64() != written)
            throw Fault{member(parent, name), Text::tr("These are no bytes in base64.")};
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
            throw Fault{bypassed, Text::tr("\"bypassed\" is true or false.")};
        record.bypassed = bypassed.get<bool>();
        const NodeType* const type = m_types.find(record.type);
        readValues(object(json, "values"), type, record);
        if (type)
            checkMembers(json, {"id", "type", "name", "position", "bypassed", "values"});
        else {
            record.unread.insert(kUnreadText, QString::fromStdString(json.dump()));
            notes.append(
                Text::tr("\"%1\": there is no plug-in for nodes of the kind \"%2\".").arg(record.name, record.type));
        }
        if (record.name.isEmpty() || !m_names.insert(record.name).second)
            throw Fault{member(json, "name"), Text::tr("The name is empty, or there is another node with it.")};
        if (!m_project.graph.nodes.emplace(record.id, record).second)
            throw Fault{member(json, "id"), Text::tr("There is another node with this id.")};
    }

    // Of a kind that is not loaded, values may have forms that are unknown here.
    void readValues(const Json& json, const NodeType* type, NodeRecord& record)
    {
        for (const auto& [name, form] : json.items()) {
            const QString field = QString::fromStdString(name);
            QVariant value;
            const bool isRead = valueFromJson(form, value);
            if (isRead && resourcesAreThere(value))
                record.values.insert(field, value);
            else if (type)
                throw Fault{form, isRead ? Text::tr("There is no resource with this id.")
                                         : Text::tr("No value is written like this.")};
            const InputInfo* const input = type ? type->input(field) : nullptr;
            if (input && !fitsKind(value, input->kind))
                m_misfits.push_back(
                    {form, Text::tr("\"%1\" of \"%2\" holds no such value. It is kept, and the default is used.")
                               .arg(field, record.name)});
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
                throw Fault{member(json, end), Text::tr("There is no node with this id.")};
        }
        if (!m_inputs.emplace(connection.to, connection.input).second)
            throw Fault{member(json, "input"), Text::tr("There is another connection into this input.")};
        const Graph& graph = m_project.graph;
        const bool areKnown = m_types.find(graph.node(connection.from)->type) && //
                              m_types.find(graph.node(connection.to)->type);
        if (areKnown && !fits(graph, m_types, connection)) {
            Graph ends; // the reason is not among the other connections
            for (const NodeId id : {connection.from, connection.to})
                ends.nodes[id] = *graph.node(id);
            m_misfits.push_back(
                {json, Text::tr("%1 The connection is kept unused.").arg(whyNotConnect(ends, m_types, connection))});
        }
        m_project.graph.connections.push_back(connection);
    }

    // Names the first connection that closes a cycle. Halving the list is quicker than to ask at each one.
    void refuseCycles(const Json& list)
    {
        const std::vector<Connection>& all = m_project.graph.connections;
        if (!hasCycle(all, all.size()))
            return;
        std::size_t without = 0, with = all.size();
        while (with - without > 1) {
            const std::size_t middle = without + (with - without) / 2;
            (hasCycle(all, middle) ? with : without) = middle;
        }
        throw Fault{list[with - 1], Text::tr("With this connection a node would depend on itself.")};
    }

    // Among the first ones.
    static bool hasCycle(const std::vector<Connection>& connections, std::size_t count)
    {
        std::multimap<NodeId, NodeId> next;
        std::map<NodeId, std::size_t> waits; // for how many others
        for (std::size_t i = 0; i < count; ++i) {
            next.emplace(connections[i].from, connections[i].to);
            waits.emplace(connections[i].from, 0);
            ++waits[connections[i].to];
        }
        std::vector<NodeId> ready;
        for (const auto& [id, others] : waits) {
            if (others == 0)
                ready.push_back(id);
        }
        for (std::size_t i = 0; i < ready.size(); ++i) {
            const auto [first, last] = next.equal_range(ready[i]);
            for (auto wire = first; wire != last; ++wire) {
                if (--waits[wire->second] == 0)
                    ready.push_back(wire->second);
            }
        }
        return ready.size() < waits.size();
    }

    void addFrame(const Json& json)
    {
        checkMembers(json, {"id", "title", "area"});
        const auto [x, y, width, height] = numbers<4>(json, "area");
        const FrameRecord frame{identity(json, "id"), text(json, "title"), QRectF(x, y, width, height)};
        if (!m_project.graph.frames.emplace(frame.id, frame).second)
            throw Fault{member(json, "id"), Text::tr("There is another frame with this id.")};
    }

    QString m_folder;
    const NodeTypes& m_types;
    Project m_project;
    std::vector<Fault> m_misfits;
    std::set<QString> m_names;                          // of the nodes so far
    std::set<std::pair<NodeId, QString>> m_inputs;      // that a connection goes into
    std::vector<std::uint32_t> m_resourceIds;           // of the file, in its order
    std::map<std::uint32_t, std::uint32_t> m_handles{}; // by those ids
};

// A file may have any number of them, and each place is searched for from the start of the text.
void addMisfits(const std::vector<Fault>& misfits, const std::string& text, const Json& root, QStringList& notes)
{
    constexpr std::size_t kMostTold = 10;
    for (std::size_t i = 0; i < std::min(misfits.size(), kMostTold); ++i)
        notes.append(withPlace(placeOf(text, root, misfits[i].value), misfits[i].sentence));
    if (misfits.size() > kMostTold)
        notes.append(Text::tr("There are %1 more of this kind.").arg(misfits.size() - kMostTold));
}

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
    Reader reader(folder, types);
    try {
        reading.project = reader.read(root, reading.notes);
        addMisfits(reader.misfits(), text, root, reading.notes);
    } catch (const Fault& fault) {
        reading.error = withPlace(placeOf(text, root, fault.value), fault.sentence);
        reading.notes.clear();
    }
    return reading;
}

ProjectReading loadProject(const QString& fileName, const NodeTypes& types)
{
    assertMayBlock("loadProject");
    ProjectReading reading;
    QFile file(fileName);
    if (file.size() > qint64(kLargestProject)) {
        reading.error = Text::tr("\"%1\" is too large for a project.").arg(fileName);
        return reading;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        reading.error = Text::tr("\"%1\" cannot be read: %2.").arg(fileName, file.errorString());
        return reading;
    }
    return readProject(file.readAll(), QFileInfo(fileName).absolutePath(), types);
}

} // namespace Host

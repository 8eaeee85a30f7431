#include "blocking.h"
#include "jsontext.h"
#include "project.h"
#include "projectform.h"
#include "projectresources.h"
#include "text.h"
#include "values.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>

using Json = nlohmann::ordered_json;

namespace Host
{
namespace
{

std::string utf8(const QString& text)
{
    return text.toStdString();
}

Json numbers(std::initializer_list<double> list)
{
    Json json = Json::array();
    for (const double number : list)
        json.push_back(valueToJson(number)["double"]);
    return json;
}

class Writer
{
public:
    Writer(const Project& project, const QString& folder, std::size_t largest)
        : m_project(project)
        , m_folder(folder)
        , m_largest(largest)
    {
    }

    // Null if the pictures alone are too large.
    Json write()
    {
        Json resources = Json::array();
        for (const Ondrel::ResourceId id : resourcesOf(m_project.graph)) {
            if (!addResource(id.id, resources))
                return nullptr;
        }
        Json json{{"format", kProjectFormat}, {"version", kProjectVersion}};
        json["nodes"] = Json::array();
        for (const auto& [id, record] : m_project.graph.nodes)
            json["nodes"].push_back(node(record));
        json["connections"] = Json::array();
        for (const Connection& connection : m_project.graph.connections)
            json["connections"].push_back({{"from", std::to_string(connection.from)},
                                           {"output", utf8(connection.output)},
                                           {"to", std::to_string(connection.to)},
                                           {"input", utf8(connection.input)}});
        json["frames"] = Json::array();
        for (const auto& [id, record] : m_project.graph.frames)
            json["frames"].push_back(frame(record));
        json["resources"] = std::move(resources);
        json["view"] = m_project.view.is_object() ? m_project.view : Json::object();
        return json;
    }

private:
    // Handles differ from process to process; in the file, resources count from 1 in the order of use.
    bool addResource(std::uint32_t handle, Json& resources)
    {
        const StoredResource resource = copyFromStore(handle, m_project.graph.embedded.count(handle) != 0);
        if (resource.path.isEmpty() && !resource.embedded)
            return true;
        const auto id = std::uint32_t(resources.size() + 1);
        m_fileIds[handle] = id;
        Json json{{"id", std::to_string(id)}, {"kind", kResourceKinds[resource.form]}};
        json["path"] = utf8(pathInFile(resource.path));
        if (resource.embedded) {
            m_embedded += resource.data.size();
            if (m_embedded > m_largest / 4 * 3) // base64 makes four of three
                return false;
            const auto* const bytes = reinterpret_cast<const char*>(resource.data.data());
            json["data"] = QByteArray::fromRawData(bytes, int(resource.data.size())).toBase64().toStdString();
        }
        resources.push_back(std::move(json));
        return true;
    }

    QString pathInFile(const QString& path) const
    {
        if (path.isEmpty())
            return path;
        const QDir folder(m_folder);
        const QString whole = QDir::cleanPath(folder.absoluteFilePath(path));
        const QString relative = folder.relativeFilePath(whole);
        return relative.startsWith("../") || relative == ".." ? whole : relative;
    }

    Json node(const NodeRecord& record) const
    {
        Json json = Json::object();
        const QString unread = record.unread.value(kUnreadText).toString();
        if (!unread.isEmpty())
            parseJson(utf8(unread), json); // which it came from
        json["id"] = std::to_string(record.id);
        json["type"] = utf8(record.type);
        json["name"] = utf8(record.name);
        json["position"] = numbers({record.position.x(), record.position.y()});
        json["bypassed"] = record.bypassed;
        Json& values = json["values"];
        const QVariantMap inFile = withHandles(record.values, m_fileIds);
        if (values.is_object())
            replaceValues(inFile, values);
        else
            values = valueToJson(inFile)["map"];
        return json;
    }

    // Those that could not be read stay as they are, and all in their places.
    static void replaceValues(QVariantMap by, Json& values)
    {
        for (auto& member : values.items()) {
            const auto value = by.find(QString::fromStdString(member.key()));
            if (value == by.end())
                continue;
            member.value() = valueToJson(*value);
            by.erase(value);
        }
        for (auto added = by.begin(); added != by.end(); ++added)
            values[utf8(added.key())] = valueToJson(*added);
    }

    static Json frame(const FrameRecord& record)
    {
        const QRectF& area = record.area;
        return {{"id", std::to_string(record.id)},
                {"title", utf8(record.title)},
                {"area", numbers({area.x(), area.y(), area.width(), area.height()})}};
    }

    const Project& m_project;
    QString m_folder;
    std::size_t m_largest;
    std::size_t m_embedded = 0;                       // bytes
    std::map<std::uint32_t, std::uint32_t> m_fileIds; // by handle
};

} // namespace

std::vector<Ondrel::ResourceId> resourcesOf(const Graph& graph)
{
    std::vector<std::uint32_t> all;
    for (const auto& [id, record] : graph.nodes)
        collectResources(record.values, all);
    std::vector<Ondrel::ResourceId> once;
    for (const std::uint32_t id : all) {
        if (std::find(once.begin(), once.end(), Ondrel::ResourceId(id)) == once.end())
            once.push_back(id);
    }
    return once;
}

QByteArray writeProject(const Project& project, const QString& folder, std::size_t largest)
{
    assertMayBlock("writeProject");
    const Json json = Writer(project, folder, largest).write();
    if (json.is_null())
        return QByteArray();
    const std::string text = json.dump(2) + '\n';
    return text.size() > largest ? QByteArray() : QByteArray::fromStdString(text);
}

QString saveProject(const Project& project, const QString& fileName, std::size_t largest)
{
    const QByteArray text = writeProject(project, QFileInfo(fileName).absolutePath(), largest);
    if (text.isEmpty())
        return Text::tr(
                   "\"%1\" cannot be saved: the pictures embedded in it are too large. Link some of them to files.")
            .arg(fileName);
    QSaveFile file(fileName);
    if (file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.commit())
        return QString();
    return Text::tr("\"%1\" cannot be saved: %2.").arg(fileName, file.errorString());
}

QString autosaveName(const QString& fileName)
{
    return fileName + ".autosave";
}

QString recoverableAutosave(const QString& fileName)
{
    assertMayBlock("recoverableAutosave");
    const QString name = autosaveName(fileName);
    const QFileInfo autosave(name), saved(fileName);
    if (!autosave.isFile() || (saved.exists() && saved.lastModified() >= autosave.lastModified()))
        return QString();
    QFile file(name);
    Json json;
    const bool isWhole = autosave.size() <= qint64(kLargestProject) && file.open(QIODevice::ReadOnly) &&
                         parseJson(file.readAll().toStdString(), json).isEmpty();
    return isWhole ? name : QString();
}

void discardAutosave(const QString& fileName)
{
    QFile::remove(autosaveName(fileName));
}

} // namespace Host

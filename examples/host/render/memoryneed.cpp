#include "memoryneed.h"

#include "evaluation.h"
#include "picturesize.h"
#include "project.h"
#include "saturated.h"

#include <ondrel/resources/resourceengine.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <set>
#include <thread>

using namespace Host;

namespace
{

using Json = nlohmann::json;

constexpr std::size_t kBytesAPixel = 8;
// What a node works with beside the pictures on the wires, a pixel of the largest one, and what an encoder does.
constexpr std::size_t kNodeBytesAPixel = 24, kEncoderBytesAPixel = 16;
// Of a project's text: as it is, as it is parsed, and as the texts in it are taken out.
constexpr std::size_t kBytesAByteOfText = 8;

std::string member(const Json& json, const char* name)
{
    const auto found = json.find(name);
    return found != json.end() && found->is_string() ? found->get<std::string>() : std::string();
}

// How many nodes may run at once, at most: each is put behind one that it depends on, if none is there yet, and of a
// row that comes about only one runs at a time.
std::size_t rowsOf(const Graph& graph, const NodeTypes& types, const std::vector<NodeId>& nodes)
{
    std::set<NodeId> ends;
    std::size_t rows = 0;
    for (const NodeId id : nodes) { // each behind those it depends on
        const auto leadsHere = [&, id](const Connection& wire) {
            return wire.to == id && ends.count(wire.from) != 0 && carries(graph, types, wire);
        };
        const auto before = std::find_if(graph.connections.begin(), graph.connections.end(), leadsHere);
        if (before == graph.connections.end())
            ++rows;
        else
            ends.erase(before->from);
        ends.insert(id);
    }
    return rows;
}

// Of a regular file: a folder has a size too.
std::size_t sizeOf(const QString& file)
{
    const QFileInfo info(file);
    return info.isFile() ? std::size_t(info.size()) : 0;
}

std::size_t pixelsOf(const QSize& size)
{
    return size.isEmpty() ? 0 : std::size_t(size.width()) * std::size_t(size.height());
}

} // namespace

std::size_t bytesToRead(const QString& projectFile)
{
    QFile file(projectFile);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray text = file.readAll();
    std::size_t sum = std::size_t(text.size()) * kBytesAByteOfText, largest = 0;
    const Json root = Json::parse(text.begin(), text.end(), nullptr, false);
    const auto resources = root.is_object() ? root.find("resources") : root.end();
    if (resources == root.end() || !resources->is_array())
        return sum;
    const QDir folder = QFileInfo(projectFile).absoluteDir();
    for (const Json& resource : *resources) {
        const QByteArray embedded = QByteArray::fromBase64(QByteArray::fromStdString(member(resource, "data")));
        const QString place = folder.absoluteFilePath(QString::fromStdString(member(resource, "path")));
        const auto* const bytes = reinterpret_cast<const unsigned char*>(embedded.constData());
        const std::size_t size = embedded.isEmpty() ? sizeOf(place) : std::size_t(embedded.size());
        sum = saturatedSum(sum, size);
        largest = std::max(largest, embedded.isEmpty() ? bytesToImport(place) : bytesToImport(bytes, size));
    }
    return saturatedSum(sum, largest);
}

std::size_t bytesInStore(const std::vector<Ondrel::ResourceId>& ids)
{
    std::size_t sum = ResourceEngine::Get().SumMemorySizes(ids);
    for (const Ondrel::ResourceId id : ids) {
        Ondrel::ImageInfo info;
        if (ResourceEngine::Get().CopyImageInfo(id, info))
            sum += std::size_t(info.width) * info.height * kBytesAPixel;
    }
    return sum;
}

std::size_t bytesToCompute(const Graph& graph, const NodeTypes& types, NodeId node)
{
    const std::vector<NodeId> nodes = dependencies(graph, node);
    std::size_t sum = 0, largest = 0;
    for (const NodeId id : nodes) {
        const NodeRecord* const record = graph.node(id);
        const NodeType* const type = record ? types.find(record->type) : nullptr;
        for (const OutputInfo& output : type ? type->outputs : std::vector<OutputInfo>()) {
            const std::size_t pixels = pixelsOf(fullSize(graph, types, {id, output.name, 1}));
            sum = saturatedSum(sum, saturatedProduct(pixels, kBytesAPixel));
            largest = std::max(largest, pixels);
        }
    }
    const std::size_t cores = std::max(1u, std::thread::hardware_concurrency());
    const std::size_t work = kEncoderBytesAPixel + kNodeBytesAPixel * std::min(rowsOf(graph, types, nodes), cores);
    return saturatedSum(sum, saturatedProduct(largest, work));
}

QString memoryText(std::size_t bytes)
{
    constexpr std::size_t mebibyte = std::size_t(1) << 20;
    return QString("%1 MiB").arg(bytes / mebibyte + (bytes % mebibyte != 0 ? 1 : 0));
}

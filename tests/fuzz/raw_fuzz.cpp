// Camera RAW bytes through the store, as one of them would come in, and as the source of a preview. LibRaw itself is
// not instrumented: what is looked for here is what we make of its answers, however odd they are.

#include "checks.h"

#include <QDir>
#include <QFile>

namespace
{

void decode(const std::vector<unsigned char>& bytes)
{
    ResourceEngine& store = ResourceEngine::Get();
    Ondrel::ResourceId id;
    if (!store.AddImageByData(ResourceEngine::FormatRAW, bytes, "fuzz", id))
        return;
    std::shared_ptr<const Ondrel::Image> image;
    OndrelFuzz::require(store.CopyImage(id, image, Ondrel::EmbeddedColorProfile, {}), "an accepted file decodes");
    OndrelFuzz::require(image->width == 0 || image->rawHasInfo, "a decoded file has its description");
    store.CopyImage(id, image, Ondrel::DefaultColorProfileHash, {});
    OndrelFuzz::require(store.RemoveResource(id), "an added resource can be removed");
}

void importPreview(const std::uint8_t* data, std::size_t size)
{
    const QString path = QDir::homePath() + "/fuzz.raw";
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return;
    file.write(reinterpret_cast<const char*>(data), qint64(size));
    file.close();
    Ondrel::Image image;
    ResourceEngine::ImportRawThumbnail(path, image);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::size_t profiles = OndrelFuzz::profileCount();
    const std::uint64_t memory = RunTimeStatistics::Get(RunTimeStatistics::ImageMemory);
    decode(std::vector<unsigned char>(data, data + size));
    importPreview(data, size);
    OndrelFuzz::require(OndrelFuzz::profileCount() == profiles, "the registry is as it was");
    OndrelFuzz::require(RunTimeStatistics::Get(RunTimeStatistics::ImageMemory) == memory, "pixel memory is as it was");
    return 0;
}

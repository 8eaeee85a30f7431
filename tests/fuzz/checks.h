#pragma once

#include <ondrel/color/colormanager.h>
#include <ondrel/core/runtimestatistics.h>
#include <ondrel/resources/resourceengine.h>

#include <lcms2.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

// What the fuzz targets demand beside "no crash": a refused file leaves nothing behind.
namespace OndrelFuzz
{

inline void require(bool condition, const char* what)
{
    if (condition)
        return;
    std::fprintf(stderr, "violated: %s\n", what);
    std::abort();
}

inline std::size_t profileCount()
{
    const std::size_t count = Ondrel::ColorManager::beginUsingColorProfileMap()->size();
    Ondrel::ColorManager::endUsingColorProfileMap();
    return count;
}

inline std::shared_ptr<ResourceEngine::ImageInfo> record(const std::uint8_t* data, std::size_t size)
{
    auto info = std::make_shared<ResourceEngine::ImageInfo>();
    info->data.assign(data, data + size);
    return info;
}

// Adds the bytes to the store, copies the image in two profiles, removes it, and demands that pixel memory and the
// registry are as they were.
inline void roundThroughStore(const std::uint8_t* data, std::size_t size)
{
    const std::size_t profiles = profileCount();
    const std::uint64_t memory = RunTimeStatistics::Get(RunTimeStatistics::ImageMemory);
    {
        ResourceEngine& store = ResourceEngine::Get();
        Ondrel::ResourceId id;
        const std::vector<unsigned char> bytes(data, data + size);
        if (store.AddImageByData(ResourceEngine::FormatPNG, bytes, "fuzz", id)) {
            std::shared_ptr<const Ondrel::Image> image;
            require(store.CopyImage(id, image, Ondrel::EmbeddedColorProfile, {}), "an accepted file decodes");
            Ondrel::ImageInfo info;
            require(store.CopyImageInfo(id, info) && info.width == image->width && info.height == image->height,
                    "the size on record is the size decoded");
            store.CopyImage(id, image, Ondrel::DefaultColorProfileHash, {});
            require(store.RemoveResource(id), "an added resource can be removed");
        }
    }
    require(profileCount() == profiles, "the registry is as it was");
    require(RunTimeStatistics::Get(RunTimeStatistics::ImageMemory) == memory, "pixel memory is as it was");
}

} // namespace OndrelFuzz

#include "teststore.h"

#include <ondrel/core/runtimestatistics.h>

#include <lcms2.h>

#include <utility>

namespace OndrelTest
{
namespace
{

ScriptedRawDecoder* script = nullptr;

bool validateByScript(const std::shared_ptr<ResourceEngine::ImageInfo>& info, void** profile)
{
    return script->validate(info, profile);
}

Ondrel::Image processByScript(Ondrel::ResourceId id, const Ondrel::RunStatus& status)
{
    return script->process(id, status);
}

std::uint64_t imageMemory()
{
    return RunTimeStatistics::Get(RunTimeStatistics::ImageMemory);
}

} // namespace

void FreshStore::removeAll()
{
    while (!resources.empty() && RemoveResource(resources.begin()->first)) {
    }
}

std::set<Hash> registeredProfiles()
{
    std::set<Hash> hashes;
    for (const auto& entry : *Ondrel::ColorManager::beginUsingColorProfileMap())
        hashes.insert(entry.first);
    Ondrel::ColorManager::endUsingColorProfileMap();
    return hashes;
}

bool isRegistered(const Hash& hash)
{
    return registeredHandle(hash) != nullptr;
}

const void* registeredHandle(const Hash& hash)
{
    const auto* const map = Ondrel::ColorManager::beginUsingColorProfileMap();
    const auto found = map->find(hash);
    const void* const handle = found == map->end() ? nullptr : found->second.handle;
    Ondrel::ColorManager::endUsingColorProfileMap();
    return handle;
}

Hash hashOf(const Bytes& icc)
{
    const Profile profile(cmsOpenProfileFromMem(icc.data(), cmsUInt32Number(icc.size())));
    return Ondrel::ColorManager::buildColorProfileHash(savedBytes(profile.get()));
}

Ondrel::Image convertedBetween(const Ondrel::Image& image, const Hash& from, const Hash& to)
{
    const Profile source(Ondrel::ColorManager::copyColorProfileByHash(from));
    const Profile target(Ondrel::ColorManager::copyColorProfileByHash(to));
    Ondrel::Image result(image);
    const cmsHTRANSFORM transform =
        cmsCreateTransform(source.get(), TYPE_RGBA_16, target.get(), TYPE_RGBA_16, INTENT_PERCEPTUAL, 0);
    cmsDoTransform(transform, image.data, result.data, image.width * image.height);
    cmsDeleteTransform(transform);
    return result;
}

Bytes pngWith(const Bytes& icc, unsigned int seed)
{
    const PngPicture picture = randomPng(5, 4, PNG_COLOR_TYPE_RGB_ALPHA, 16, seed);
    return pngFile(picture, [&icc](png_struct* png, png_info* info) {
        if (!icc.empty())
            png_set_iCCP(png, info, "Test", 0, icc.data(), png_uint_32(icc.size()));
    });
}

Bytes sRGBPng(unsigned int seed)
{
    return pngFile(randomPng(5, 4, PNG_COLOR_TYPE_RGB_ALPHA, 16, seed),
                   [](png_struct* png, png_info* info) { png_set_sRGB(png, info, PNG_sRGB_INTENT_PERCEPTUAL); });
}

Bytes jpegWith(const Bytes& icc, unsigned int seed)
{
    return jpegFile(randomJpeg(6, 5, JCS_YCbCr, seed), [&icc](jpeg_compress_struct* jpeg) {
        if (!icc.empty())
            writeIcc(jpeg, icc);
    });
}

Bytes tiffWith(const Bytes& icc, unsigned int seed)
{
    return tiffFile(randomTiff(7, 3, PHOTOMETRIC_RGB, 16, 3, seed), [&icc](TIFF* tiff) {
        if (!icc.empty())
            setIccTag(tiff, icc);
    });
}

Bytes iccOfGamma(double gamma)
{
    return savedBytes(rgbProfile(gamma, "Gamma " + std::to_string(gamma)).get());
}

StoreTest::StoreTest()
    : m_registered(registeredProfiles())
    , m_memory(imageMemory())
{
}

StoreTest::~StoreTest()
{
    store.removeAll();
    EXPECT_EQ(registeredProfiles(), m_registered);
    EXPECT_EQ(imageMemory(), m_memory);
}

Ondrel::ResourceId StoreTest::add(const Bytes& file, const std::string& name)
{
    Ondrel::ResourceId id;
    EXPECT_TRUE(store.AddImageByData(ResourceEngine::FormatPNG, file, name, id));
    return id;
}

std::shared_ptr<const Ondrel::Image> StoreTest::copy(Ondrel::ResourceId id, const Hash& profile)
{
    std::shared_ptr<const Ondrel::Image> image;
    return store.CopyImage(id, image, profile, {}) ? image : nullptr;
}

std::shared_ptr<ResourceEngine::ImageInfo> StoreTest::record(const Bytes& file, ResourceEngine::Format format)
{
    auto info = recordOf(file);
    info->format = format;
    info->fileName = "record";
    return info;
}

ScriptedRawDecoder::ScriptedRawDecoder()
    : m_before(Ondrel::rawDecoder())
{
    validate = [](const std::shared_ptr<ResourceEngine::ImageInfo>& info, void**) {
        info->info.width = 3;
        info->info.height = 2;
        return true;
    };
    process = [](Ondrel::ResourceId, const Ondrel::RunStatus&) {
        Ondrel::Image image(3, 2);
        image.FastFill(65535);
        return image;
    };
    script = this;
    Ondrel::rawDecoder() = {validateByScript, processByScript};
}

ScriptedRawDecoder::~ScriptedRawDecoder()
{
    Ondrel::rawDecoder() = m_before;
    script = nullptr;
}

} // namespace OndrelTest

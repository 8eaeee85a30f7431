// Additions: what is recorded, and which embedded profiles are registered for how long.

#include "teststore.h"

#include "tests/support/testimages.h"

#include <ondrel/color/colorprofiles.h>

#include <QDir>

#include <lcms2.h>

namespace
{

using namespace OndrelTest;
using Ondrel::ColorManager;
using Ondrel::ResourceId;
using StoreAdding = StoreTest;
using StoreProfiles = StoreTest;

// A grey PNG that embeds a grey profile.
Bytes greyPngWithGreyProfile()
{
    const Bytes icc = savedBytes(greyProfile().get());
    return pngFile(randomPng(4, 4, PNG_COLOR_TYPE_GRAY, 8), [&icc](png_struct* png, png_info* info) {
        png_set_iCCP(png, info, "Grey", 0, icc.data(), png_uint_32(icc.size()));
    });
}

Bytes greyJpegWithGreyProfile()
{
    const Bytes icc = savedBytes(greyProfile().get());
    return jpegFile(randomJpeg(4, 4, JCS_GRAYSCALE), [&icc](jpeg_compress_struct* jpeg) { writeIcc(jpeg, icc); });
}

TEST_F(StoreAdding, FindsTheFormatOfAFileByItsContent)
{
    const TemporaryFolder folder;
    const struct {
        const char* name;
        Bytes data;
        ResourceEngine::Format format;
        unsigned int width, height;
    } files[] = {{"picture.tif", pngWith({}), ResourceEngine::FormatPNG, 5, 4},
                 {"picture.png", jpegWith({}), ResourceEngine::FormatJPEG, 6, 5},
                 {"without suffix", tiffWith({}), ResourceEngine::FormatTIFF, 7, 3}};
    for (const auto& file : files) {
        const QString path = folder.path(file.name);
        writeFile(path, file.data);
        ResourceId id;
        ASSERT_TRUE(store.AddImage(path.toStdString(), id)) << file.name;
        const ResourceEngine::ImageInfo& info = *store.resources.at(id.id);
        EXPECT_EQ(info.format, file.format);
        EXPECT_EQ(info.fileName, path.toStdString());
        EXPECT_EQ(info.data, file.data);
        EXPECT_EQ(info.image, nullptr);
        EXPECT_EQ(info.info.width, file.width);
        EXPECT_EQ(info.info.height, file.height);
    }
}

TEST_F(StoreAdding, NeverOpensTheFileAgain)
{
    const TemporaryFolder folder;
    const QString path = folder.path("gone.png");
    writeFile(path, pngWith({}));
    ResourceId id;
    ASSERT_TRUE(store.AddImage(path.toStdString(), id));
    ASSERT_TRUE(QFile::remove(path));
    EXPECT_NE(copy(id), nullptr);
}

TEST_F(StoreAdding, DetectsDataAnewWhateverFormatIsPassed)
{
    const Bytes file = jpegWith({});
    for (const unsigned int format : {0u, 1u, 2u, 5u, 0xFFFFFFFFu}) {
        ResourceId id;
        ASSERT_TRUE(store.AddImageByData(ResourceEngine::Format(format), file, "a name", id)) << format;
        EXPECT_EQ(store.resources.at(id.id)->format, ResourceEngine::FormatJPEG);
        EXPECT_EQ(store.resources.at(id.id)->fileName, "a name");
        EXPECT_EQ(store.resources.at(id.id)->data, file);
    }
}

TEST_F(StoreAdding, RefusesFileDataAsABufferWithoutWaitingForTheLock)
{
    ResourceMap* map = nullptr;
    store.BeginManualResources(&map);
    auto call = std::async(std::launch::async, [this] {
        ResourceId id(5);
        const bool added = store.AddImageByData(ResourceEngine::FormatImageBuffer, pngWith({}), "name", id);
        return !added && id.id == 5;
    });
    EXPECT_TRUE(returns(call));
    store.EndManualResources(ResourceEngine::EndManualNoChange);
    EXPECT_TRUE(call.get());
}

TEST_F(StoreAdding, LeavesNoTraceOfARefusedFile)
{
    const TemporaryFolder folder;
    const QString damaged = folder.path("damaged.png");
    Bytes data = pngWith(iccOfGamma(1.31));
    data.resize(data.size() / 2);
    writeFile(damaged, data);
    const std::set<Hash> before = registeredProfiles();
    ResourceId id(9);
    EXPECT_FALSE(store.AddImage(damaged.toStdString(), id));
    EXPECT_FALSE(store.AddImage(QDir::tempPath().toStdString(), id)); // a folder
    EXPECT_FALSE(store.AddImage("", id));
    EXPECT_FALSE(store.AddImageByData(ResourceEngine::FormatPNG, {}, "empty", id));
    EXPECT_EQ(id.id, 9u);
    EXPECT_TRUE(store.resources.empty());
    EXPECT_TRUE(store.sizeCache.empty());
    EXPECT_TRUE(store.usedColorProfiles.empty());
    EXPECT_EQ(store.nextId, 1u);
    EXPECT_EQ(registeredProfiles(), before);
}

TEST_F(StoreAdding, LeavesTheRawDescriptionOfOtherFilesAtZero)
{
    for (const Bytes& file : {pngWith({}), jpegWith({}), tiffWith({})}) {
        Ondrel::ImageInfo info;
        ASSERT_TRUE(store.CopyImageInfo(add(file), info));
        EXPECT_FALSE(info.rawIsMosaic || info.rawHasInfo || info.rawIdentityMatrix);
        EXPECT_EQ(info.rawFilters, 0u);
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(info.rawPreMultipliers[i], 0.0f);
            EXPECT_EQ(info.rawCameraMultipliers[i], 0.0f);
        }
        EXPECT_EQ(info.rawToneCurve, nullptr);
    }
}

TEST_F(StoreProfiles, OfAFileAreRegisteredAsEmbedded)
{
    const double gammas[] = {1.41, 1.42, 1.43};
    const Bytes files[] = {pngWith(iccOfGamma(gammas[0])), jpegWith(iccOfGamma(gammas[1])),
                           tiffWith(iccOfGamma(gammas[2]))};
    for (std::size_t i = 0; i < 3; ++i) {
        const Bytes icc = iccOfGamma(gammas[i]);
        const ResourceId id = add(files[i]);
        const ResourceEngine::ImageInfo& info = *store.resources.at(id.id);
        ASSERT_NE(info.colorProfileHash, nullptr);
        EXPECT_EQ(*info.colorProfileHash, hashOf(icc));
        EXPECT_EQ(ColorManager::copyColorProfileDataByHash(hashOf(icc)), info.iccProfile);
        const auto* const map = ColorManager::beginUsingColorProfileMap();
        const auto entry = map->find(hashOf(icc));
        EXPECT_TRUE(entry != map->end() && entry->second.type == ColorManager::ColorProfile::Embedded);
        ColorManager::endUsingColorProfileMap();
        ASSERT_EQ(store.usedColorProfiles.size(), i + 1); // in order of appearance
        EXPECT_EQ(store.usedColorProfiles.back(), hashOf(icc));
    }
}

TEST_F(StoreProfiles, AreRecordedAsAFreshHandleSavesThem)
{
    Bytes icc = iccOfGamma(1.44);
    icc[4] = 'x'; // the colour module and the creator, which Little CMS writes anew
    icc[80] = 'x';
    const Profile fresh(cmsOpenProfileFromMem(icc.data(), cmsUInt32Number(icc.size())));
    const Bytes saved = savedBytes(fresh.get());
    ASSERT_NE(saved, icc);
    for (const Bytes& file : {pngWith(icc), jpegWith(icc), tiffWith(icc)}) {
        const ResourceEngine::ImageInfo& info = *store.resources.at(add(file).id);
        EXPECT_EQ(info.iccProfile, saved);
        ASSERT_NE(info.colorProfileHash, nullptr);
        EXPECT_EQ(*info.colorProfileHash, ColorManager::buildColorProfileHash(saved));
    }
    EXPECT_EQ(store.usedColorProfiles.size(), 1u);
}

TEST_F(StoreProfiles, StayRegisteredUntilTheLastResourceWithThemGoes)
{
    const Bytes icc = iccOfGamma(1.45);
    const Bytes file = pngWith(icc);
    const ResourceId first = add(file);
    std::string output = captureStandardOutput([&] { add(jpegWith(icc)); });
    EXPECT_EQ(output, "Warning: Found duplicate color profile. Ignoring.\n");
    EXPECT_EQ(store.usedColorProfiles, std::vector<Hash>{hashOf(icc)});
    EXPECT_TRUE(store.RemoveResource(first));
    EXPECT_TRUE(isRegistered(hashOf(icc)));
    EXPECT_EQ(store.usedColorProfiles, std::vector<Hash>{hashOf(icc)});
    EXPECT_TRUE(store.RemoveResource(2));
    EXPECT_FALSE(isRegistered(hashOf(icc)));
    EXPECT_TRUE(store.usedColorProfiles.empty());
}

TEST_F(StoreProfiles, OfOtherResourcesAreUntouchedByARemoval)
{
    const Bytes a = iccOfGamma(1.46), b = iccOfGamma(1.47), c = iccOfGamma(1.48);
    add(pngWith(a));
    const ResourceId second = add(pngWith(b));
    add(pngWith(c));
    EXPECT_TRUE(store.RemoveResource(second));
    EXPECT_EQ(store.usedColorProfiles, (std::vector<Hash>{hashOf(a), hashOf(c)}));
    EXPECT_TRUE(isRegistered(hashOf(a)));
    EXPECT_FALSE(isRegistered(hashOf(b)));
    EXPECT_TRUE(isRegistered(hashOf(c)));
}

TEST_F(StoreProfiles, ThatAreBuiltInSurviveTheResource)
{
    ResourceId id;
    const std::string output = captureStandardOutput([&] { id = add(sRGBPng()); });
    EXPECT_EQ(output, "Warning: Found duplicate color profile. Ignoring.\n");
    EXPECT_EQ(store.usedColorProfiles, std::vector<Hash>{Ondrel::DefaultColorProfileHash});
    ASSERT_NE(store.resources.at(id.id)->colorProfileHash, nullptr);
    EXPECT_EQ(*store.resources.at(id.id)->colorProfileHash, Ondrel::DefaultColorProfileHash);
    EXPECT_TRUE(store.RemoveResource(id));
    EXPECT_TRUE(store.usedColorProfiles.empty());
    EXPECT_TRUE(isRegistered(Ondrel::DefaultColorProfileHash));
}

TEST_F(StoreProfiles, OfGreyFilesAreNone)
{
    for (const Bytes& file : {greyPngWithGreyProfile(), greyJpegWithGreyProfile()}) {
        ResourceId id;
        const std::string output = captureStandardOutput([&] { id = add(file); });
        EXPECT_EQ(output, ""); // not even looked at by the registry
        EXPECT_EQ(store.resources.at(id.id)->colorProfileHash, nullptr);
        EXPECT_TRUE(store.resources.at(id.id)->iccProfile.empty());
    }
    EXPECT_TRUE(store.usedColorProfiles.empty());
}

TEST_F(StoreProfiles, OfBuffersAreNeitherRecordedNorRegistered)
{
    Ondrel::Image image = randomImage(3, 3, 1);
    image.colorProfile = wordHash("a profile that no one knows");
    ResourceId id;
    ASSERT_TRUE(store.AddImageBuffer(image, id));
    EXPECT_EQ(store.resources.at(id.id)->colorProfileHash, nullptr);
    EXPECT_TRUE(store.usedColorProfiles.empty());
    EXPECT_EQ(copy(id)->colorProfile, image.colorProfile);
}

TEST_F(StoreAdding, RemovalIsTrueOnceForEachResource)
{
    EXPECT_FALSE(store.RemoveResource(0));
    EXPECT_FALSE(store.RemoveResource(1));
    const ResourceId id = add(pngWith({}));
    EXPECT_TRUE(store.RemoveResource(id));
    EXPECT_FALSE(store.RemoveResource(id));
    EXPECT_EQ(copy(id), nullptr);
}

TEST_F(StoreAdding, RemovalLeavesImagesInTheHandsOfTheirHolders)
{
    const Bytes file = pngWith({});
    const ResourceId id = add(file);
    const auto held = copy(id);
    ASSERT_NE(held, nullptr);
    const Ondrel::Image pixels = *held;
    EXPECT_TRUE(store.RemoveResource(id));
    EXPECT_TRUE(store.cachedImages.empty());
    EXPECT_TRUE(samePixels(*held, pixels));
}

} // namespace

// What the store tells about its resources.

#include "teststore.h"

#include "tests/support/testimages.h"

namespace
{

using namespace OndrelTest;
using Ondrel::Image;
using Ondrel::ResourceId;
using StoreSizes = StoreTest;
using StoreData = StoreTest;
using StoreInfo = StoreTest;

TEST_F(StoreSizes, OfNothingAreZero)
{
    EXPECT_EQ(store.SumMemorySizes({}), 0u);
    EXPECT_EQ(store.SumMemorySizes({0, 1, 99}), 0u);
}

TEST_F(StoreSizes, AddFileBytesPixelsAndTheDecodedCopy)
{
    const Bytes file = pngWith(iccOfGamma(1.71));
    const ResourceId id = add(file);
    EXPECT_EQ(size(id), file.size()); // not the profile's bytes beside the file
    copy(id);
    EXPECT_EQ(size(id), file.size() + 5 * 4 * 8);
    store.ClearCache();
    EXPECT_EQ(size(id), file.size());

    ResourceId buffer;
    ASSERT_TRUE(store.AddImageBuffer(Image(3, 3), buffer));
    copy(buffer);
    EXPECT_EQ(size(buffer), 72u);
    EXPECT_EQ(store.SumMemorySizes({id, buffer, 99}), file.size() + 72);
}

TEST_F(StoreSizes, CountARepeatedIdEachTime)
{
    const ResourceId id = add(pngWith({}));
    copy(id);
    EXPECT_EQ(store.SumMemorySizes({id, id}), 2 * size(id));
    EXPECT_EQ(store.SumMemorySizes({id, 99, id, id}), 3 * size(id));
}

TEST_F(StoreSizes, TakeTheBlockNotThePixelsInUse)
{
    const Image image = shrunkImage(4, 4, 1);
    ASSERT_GT(image.sizeBytes, 128u);
    ResourceId id;
    ASSERT_TRUE(store.AddImageBuffer(image, id));
    EXPECT_EQ(size(id), image.sizeBytes);
}

TEST_F(StoreData, IsTheFileAsItWasRead)
{
    const Bytes file = tiffWith(iccOfGamma(1.72));
    const ResourceId id = add(file, "a/name with \xC3\xA4.tif");
    ResourceEngine::Format format = ResourceEngine::FormatRAW;
    Bytes data(3, 1);
    std::string name = "before";
    EXPECT_TRUE(store.CopyData(id, format, data, name));
    EXPECT_EQ(format, ResourceEngine::FormatTIFF);
    EXPECT_EQ(data, file);
    EXPECT_EQ(name, "a/name with \xC3\xA4.tif");
}

TEST_F(StoreData, OfABufferIsEmpty)
{
    ResourceId id;
    ASSERT_TRUE(store.AddImageBuffer(Image(3, 3), id));
    ResourceEngine::Format format = ResourceEngine::FormatRAW;
    Bytes data(3, 1);
    std::string name = "before";
    EXPECT_TRUE(store.CopyData(id, format, data, name));
    EXPECT_EQ(format, ResourceEngine::FormatImageBuffer);
    EXPECT_TRUE(data.empty());
    EXPECT_EQ(name, "");
}

TEST_F(StoreData, OfAnUnknownIdIsRefused)
{
    ResourceEngine::Format format = ResourceEngine::FormatRAW;
    Bytes data(3, 1);
    std::string name = "before";
    EXPECT_FALSE(store.CopyData(1, format, data, name));
    EXPECT_FALSE(store.CopyData(0, format, data, name));
}

TEST_F(StoreInfo, FollowsAdditionsAndRemovalsAtOnce)
{
    Ondrel::ImageInfo info;
    EXPECT_FALSE(store.CopyImageInfo(1, info));
    EXPECT_FALSE(store.CopyImageInfo(0, info));
    const ResourceId png = add(pngWith({})), jpeg = add(jpegWith({}));
    EXPECT_TRUE(store.CopyImageInfo(png, info));
    EXPECT_EQ(info.width, 5u);
    EXPECT_EQ(info.height, 4u);
    EXPECT_TRUE(store.CopyImageInfo(jpeg, info));
    EXPECT_EQ(info.width, 6u);
    EXPECT_EQ(info.height, 5u);
    EXPECT_TRUE(store.RemoveResource(png));
    EXPECT_FALSE(store.CopyImageInfo(png, info));
    EXPECT_TRUE(store.CopyImageInfo(jpeg, info));
    EXPECT_EQ(store.sizeCache.size(), 1u);
}

TEST_F(StoreInfo, HasTheSizeAfterTheTurnOfAnExifOrientation)
{
    const Bytes file =
        jpegFile(randomJpeg(6, 5, JCS_YCbCr), [](jpeg_compress_struct* jpeg) { writeExif(jpeg, exifOrientation(6)); });
    Ondrel::ImageInfo info;
    ASSERT_TRUE(store.CopyImageInfo(add(file), info));
    EXPECT_EQ(info.width, 5u);
    EXPECT_EQ(info.height, 6u);
}

TEST_F(StoreInfo, GivesTheWholeDescriptionAndSharesTheCurve)
{
    ScriptedRawDecoder raw;
    using Curve = std::vector<Ondrel::CubicBezierSpline::Point>;
    const auto curve = std::make_shared<const Curve>(2);
    raw.validate = [&curve](const std::shared_ptr<ResourceEngine::ImageInfo>& record, void**) {
        Ondrel::ImageInfo& info = record->info;
        info.width = 30;
        info.height = 20;
        info.rawIsMosaic = info.rawHasInfo = info.rawIdentityMatrix = true;
        info.rawFilters = 0x94949494;
        for (int i = 0; i < 3; ++i) {
            info.rawPreMultipliers[i] = float(i) + 0.5f;
            info.rawCameraMultipliers[i] = float(i) + 1.5f;
        }
        info.rawToneCurve = curve;
        return true;
    };
    ResourceId id;
    ASSERT_TRUE(store.AddImageByData(ResourceEngine::FormatRAW, Bytes(5, 1), "raw", id));
    Ondrel::ImageInfo info;
    ASSERT_TRUE(store.CopyImageInfo(id, info));
    EXPECT_EQ(info.width, 30u);
    EXPECT_EQ(info.height, 20u);
    EXPECT_TRUE(info.rawIsMosaic && info.rawHasInfo && info.rawIdentityMatrix);
    EXPECT_EQ(info.rawFilters, 0x94949494u);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(info.rawPreMultipliers[i], float(i) + 0.5f);
        EXPECT_EQ(info.rawCameraMultipliers[i], float(i) + 1.5f);
    }
    EXPECT_EQ(info.rawToneCurve, curve);
}

} // namespace

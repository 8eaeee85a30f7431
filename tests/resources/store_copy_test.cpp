// Decoded copies of files: profiles and the one slot that each resource has in the cache.

#include "teststore.h"

#include "tests/support/testimages.h"

#include <ondrel/color/colorprofiles.h>

namespace
{

using namespace OndrelTest;
using Ondrel::ColorManager;
using Ondrel::DefaultColorProfileHash;
using Ondrel::EmbeddedColorProfile;
using Ondrel::Image;
using Ondrel::NoneColorProfile;
using Ondrel::ResourceId;
using StoreCopies = StoreTest;
using StoreCache = StoreTest;

Hash proPhoto()
{
    return ColorManager::buildColorProfileHash(Profile(Ondrel::CreateProPhotoRGBColorProfile()).get());
}

// What the decoder of the file makes of it, without a store.
Image decoded(const Bytes& file, ResourceEngine::Format format, const Hash& profile = EmbeddedColorProfile)
{
    Image image;
    const auto info = recordOf(file);
    const bool ok = format == ResourceEngine::FormatPNG    ? ResourceEngine::ReadPNG(info, image, nullptr)
                    : format == ResourceEngine::FormatJPEG ? ResourceEngine::ReadJPEG(info, image, nullptr, profile)
                                                           : ResourceEngine::ReadTIFF(info, image, nullptr, profile);
    EXPECT_TRUE(ok);
    return image;
}

// A profile registered for the length of a test.
class Registered
{
public:
    explicit Registered(const Bytes& icc) { ColorManager::addColorProfile(icc, kType, &hash); }
    ~Registered() { ColorManager::removeColorProfile(hash, kType); }
    Registered(const Registered&) = delete;
    Registered& operator=(const Registered&) = delete;
    Hash hash{};

private:
    static constexpr auto kType = ColorManager::ColorProfile::System;
};

TEST_F(StoreCopies, OfAnUnknownIdAreRefusedAndLeaveTheHolderAlone)
{
    const auto before = Image(2, 2).toPtr();
    auto holder = before;
    EXPECT_FALSE(store.CopyImage(1, holder, EmbeddedColorProfile, {}));
    EXPECT_FALSE(store.CopyImage(0, holder, EmbeddedColorProfile, {}));
    EXPECT_EQ(holder, before);
}

TEST_F(StoreCopies, InTheEmbeddedProfileAreThePixelsOfTheFile)
{
    const Bytes icc = iccOfGamma(1.51);
    const PngPicture picture = randomPng(5, 4, PNG_COLOR_TYPE_RGB_ALPHA, 16);
    const auto image = copy(add(pngWith(icc)));
    ASSERT_NE(image, nullptr);
    ASSERT_EQ(image->width, 5u);
    ASSERT_EQ(image->height, 4u);
    for (unsigned int y = 0; y < 4; ++y)
        for (unsigned int x = 0; x < 5; ++x)
            for (unsigned int c = 0; c < 4; ++c)
                EXPECT_EQ(pixelAt(*image, x, y)[c], picture.sample(x, y, c)) << x << ' ' << y << ' ' << c;
    EXPECT_EQ(image->colorProfile, hashOf(icc));
}

TEST_F(StoreCopies, OfEachFormatAreWhatItsDecoderGives)
{
    const Bytes jpeg = jpegWith(iccOfGamma(1.52)), tiff = tiffWith(iccOfGamma(1.53));
    const ResourceId jpegId = add(jpeg), tiffId = add(tiff);
    for (const Hash& profile : {EmbeddedColorProfile, proPhoto(), DefaultColorProfileHash, Hash{}, NoneColorProfile}) {
        const auto fromJpeg = copy(jpegId, profile), fromTiff = copy(tiffId, profile);
        ASSERT_TRUE(fromJpeg && fromTiff);
        const Image expectedJpeg = decoded(jpeg, ResourceEngine::FormatJPEG, profile);
        const Image expectedTiff = decoded(tiff, ResourceEngine::FormatTIFF, profile);
        EXPECT_TRUE(samePixels(*fromJpeg, expectedJpeg));
        EXPECT_TRUE(samePixels(*fromTiff, expectedTiff));
        EXPECT_EQ(fromJpeg->colorProfile, expectedJpeg.colorProfile);
        EXPECT_EQ(fromTiff->colorProfile, expectedTiff.colorProfile);
    }
}

TEST_F(StoreCopies, OfAPngAreConvertedToTheWantedProfileWithTheirAlphaKept)
{
    const Bytes icc = iccOfGamma(1.54), file = pngWith(icc);
    const Image original = decoded(file, ResourceEngine::FormatPNG);
    const ResourceId id = add(file);
    const auto image = copy(id, proPhoto());
    ASSERT_NE(image, nullptr);
    EXPECT_TRUE(samePixels(*image, convertedBetween(original, hashOf(icc), proPhoto())));
    EXPECT_FALSE(samePixels(*image, original));
    for (unsigned int i = 0; i < 20; ++i)
        EXPECT_EQ(image->data[i * 4 + 3], original.data[i * 4 + 3]);
    EXPECT_EQ(image->colorProfile, proPhoto());
}

TEST_F(StoreCopies, OfAPngInItsOwnProfileByHashRunThroughTheConversionToo)
{
    const Bytes icc = iccOfGamma(1.55), file = pngWith(icc);
    const auto image = copy(add(file), hashOf(icc));
    ASSERT_NE(image, nullptr);
    EXPECT_TRUE(
        samePixels(*image, convertedBetween(decoded(file, ResourceEngine::FormatPNG), hashOf(icc), hashOf(icc))));
    EXPECT_EQ(image->colorProfile, hashOf(icc));
}

TEST_F(StoreCopies, OfAPngInAnUnknownProfileFailAndCacheNothing)
{
    const ResourceId id = add(pngWith({}));
    for (const Hash& profile : {Hash{}, NoneColorProfile, wordHash("unknown")}) {
        std::shared_ptr<const Image> holder;
        EXPECT_FALSE(store.CopyImage(id, holder, profile, {}));
        ASSERT_NE(holder, nullptr);
        EXPECT_EQ(holder->width, 0u);
        EXPECT_TRUE(store.cachedImages.empty());
    }
    EXPECT_NE(copy(id), nullptr);
}

TEST_F(StoreCopies, OfAPngInAProfileThatTakesNoRgbFailAndCacheNothing)
{
    const ResourceId id = add(pngWith({}));
    const Registered cmyk(savedBytes(cmykProfile().get()));
    const Hash lab = ColorManager::buildColorProfileHash(Profile(Ondrel::CreateLabColorProfile()).get());
    for (const Hash& profile : {cmyk.hash, lab}) {
        ASSERT_TRUE(isRegistered(profile));
        EXPECT_EQ(copy(id, profile), nullptr);
        EXPECT_TRUE(store.cachedImages.empty());
    }
}

TEST_F(StoreCopies, OfAPngWhoseOwnProfileIsNotRegisteredComeUnconvertedOnly)
{
    ResourceMap* map = nullptr;
    store.BeginManualResources(&map);
    (*map)[5] = record(pngWith(iccOfGamma(1.56)), ResourceEngine::FormatPNG);
    store.EndManualResources(ResourceEngine::EndManualNoChange);
    EXPECT_NE(copy(5), nullptr);
    store.ClearCache();
    EXPECT_EQ(copy(5, proPhoto()), nullptr);
    EXPECT_TRUE(store.cachedImages.empty());
}

TEST_F(StoreCopies, OfDamagedDataFailWithAnEmptyImageAndCacheNothing)
{
    ResourceMap* map = nullptr;
    store.BeginManualResources(&map);
    (*map)[1] = record(Bytes(100, 7), ResourceEngine::FormatPNG);
    (*map)[2] = record(Bytes(100, 7), ResourceEngine::FormatJPEG);
    (*map)[3] = record(Bytes(100, 7), ResourceEngine::FormatTIFF);
    (*map)[4] = record(pngWith({}), ResourceEngine::Format(5));  // no format that there is
    (*map)[5] = record(jpegWith({}), ResourceEngine::FormatPNG); // the record's word counts, not the content
    store.EndManualResources(ResourceEngine::EndManualNoChange);
    const QuietTiff quiet;
    for (unsigned int id = 1; id <= 5; ++id) {
        auto holder = Image(2, 2).toPtr();
        const auto before = holder;
        EXPECT_FALSE(store.CopyImage(id, holder, EmbeddedColorProfile, {})) << id;
        ASSERT_NE(holder, nullptr);
        EXPECT_NE(holder, before);
        EXPECT_EQ(holder->width, 0u);
        EXPECT_EQ(before->width, 2u);
    }
    EXPECT_TRUE(store.cachedImages.empty());
}

TEST_F(StoreCopies, NeverOverwriteTheImageThatTheHolderHad)
{
    const ResourceId id = add(pngWith({}));
    const auto before = randomImage(5, 4, 9).toPtr();
    const Image kept = *before;
    auto holder = before;
    ASSERT_TRUE(store.CopyImage(id, holder, EmbeddedColorProfile, {}));
    EXPECT_NE(holder, before);
    EXPECT_TRUE(samePixels(*before, kept));
}

TEST_F(StoreCopies, OfOtherFilesThanRawCannotBeCancelled)
{
    const int cancelled = 1;
    for (const Bytes& file : {pngWith({}), jpegWith({}), tiffWith({})}) {
        std::shared_ptr<const Image> image;
        EXPECT_TRUE(store.CopyImage(add(file), image, EmbeddedColorProfile, {&cancelled}));
    }
}

TEST_F(StoreCache, GivesTheSameObjectForTheSameProfile)
{
    const ResourceId id = add(pngWith(iccOfGamma(1.61))), other = add(jpegWith({}));
    const auto first = copy(id), otherFirst = copy(other);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(copy(id), first);
    EXPECT_EQ(copy(other), otherFirst); // a slot each
    EXPECT_EQ(store.cachedImages.size(), 2u);
    EXPECT_EQ(store.cachedImages.at(id.id).colorProfile, EmbeddedColorProfile);
    EXPECT_EQ(store.cachedImages.at(id.id).image, first);
}

TEST_F(StoreCache, HasOneSlotForAllProfilesOfAResource)
{
    const ResourceId id = add(pngWith(iccOfGamma(1.62)));
    const auto embedded = copy(id);
    ASSERT_NE(embedded, nullptr);
    const Image pixels = *embedded;
    const auto wide = copy(id, proPhoto());
    ASSERT_NE(wide, nullptr);
    EXPECT_NE(wide, embedded);
    EXPECT_TRUE(samePixels(*embedded, pixels)); // still good in the hand of its holder
    EXPECT_EQ(store.cachedImages.size(), 1u);
    EXPECT_EQ(store.cachedImages.at(id.id).colorProfile, proPhoto());
    EXPECT_EQ(copy(id, proPhoto()), wide);
    const auto again = copy(id);
    ASSERT_NE(again, nullptr);
    EXPECT_NE(again, embedded); // it was decoded anew
    EXPECT_TRUE(samePixels(*again, pixels));
}

TEST_F(StoreCache, IsKeyedByTheProfileAskedForNotByThatOfThePixels)
{
    const ResourceId id = add(jpegWith({})); // sRGB by lack of another
    const auto embedded = copy(id), sRGB = copy(id, DefaultColorProfileHash), unknown = copy(id, Hash{});
    ASSERT_TRUE(embedded && sRGB && unknown);
    EXPECT_NE(embedded, sRGB);
    EXPECT_NE(sRGB, unknown);
    EXPECT_EQ(unknown->colorProfile, DefaultColorProfileHash);
    EXPECT_EQ(copy(id, Hash{}), unknown);
}

TEST_F(StoreCache, KeepsItsEntryWhenACallForAnotherProfileFails)
{
    const ResourceId id = add(pngWith({}));
    const auto image = copy(id);
    EXPECT_EQ(copy(id, wordHash("unknown")), nullptr);
    EXPECT_EQ(copy(id), image);
}

TEST_F(StoreCache, IsEmptiedByClearCacheAlone)
{
    const ResourceId id = add(pngWith({})), other = add(jpegWith({}));
    const auto image = copy(id), otherImage = copy(other);
    ASSERT_TRUE(image && otherImage);
    EXPECT_TRUE(store.ClearCache());
    EXPECT_TRUE(store.cachedImages.empty());
    EXPECT_EQ(store.resources.size(), 2u);
    const auto again = copy(id);
    EXPECT_NE(again, image);
    EXPECT_TRUE(again && samePixels(*again, *image));
}

TEST_F(StoreCache, LosesOnlyTheEntryOfARemovedResource)
{
    const ResourceId id = add(pngWith({})), other = add(jpegWith({}));
    copy(id);
    const auto otherImage = copy(other);
    EXPECT_TRUE(store.RemoveResource(id));
    EXPECT_EQ(store.cachedImages.size(), 1u);
    EXPECT_EQ(copy(other), otherImage);
}

} // namespace

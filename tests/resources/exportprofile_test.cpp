#include "exporting.h"

#include "tests/support/testimages.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>

namespace
{

using namespace OndrelTest;
using Ondrel::ColorManager;
using Ondrel::Image;

const Bytes kMark = {1, 2, 3}; // what stands in the bytes before; left where nothing is to be embedded

Hash linear()
{
    ColorManager::get();
    return hashOf(Profile(Ondrel::CreateLinear_sRGBColorProfile()));
}

struct Prepared {
    Image image;
    Bytes icc;
};

Prepared prepared(const Image& original, const Hash& profile)
{
    Prepared result{original, kMark};
    EXPECT_TRUE(ResourceEngine::PrepareImageForExport(result.image, profile, result.icc));
    EXPECT_EQ(result.image.colorProfile, original.colorProfile); // also of converted pixels
    return result;
}

void expectUntouched(const Image& image, const Hash& profile)
{
    const Prepared result = prepared(image, profile);
    EXPECT_TRUE(samePixels(result.image, image));
    EXPECT_EQ(result.icc, kMark);
}

// What Little CMS makes of the pixels by itself; alpha as in the source.
Image converted(const Image& image, const Hash& to)
{
    const Profile from(ColorManager::copyColorProfileByHash(image.colorProfile)),
        target(ColorManager::copyColorProfileByHash(to));
    Image result = image;
    void* const transform =
        cmsCreateTransform(from.get(), TYPE_RGBA_16, target.get(), TYPE_RGBA_16, INTENT_PERCEPTUAL, 0);
    EXPECT_NE(transform, nullptr);
    if (transform) {
        cmsDoTransform(transform, result.data, result.data, image.width * image.height);
        cmsDeleteTransform(transform);
    }
    return result;
}

Image imageIn(const Hash& profile)
{
    Image image = standardImage(40, 30);
    image.colorProfile = profile;
    return image;
}

TEST(ExportProfile, NoneLeavesPixelsAndEmbedsNothing)
{
    expectUntouched(imageIn(Ondrel::DefaultColorProfileHash), Ondrel::NoneColorProfile);
    expectUntouched(imageIn(Hash{}), Ondrel::NoneColorProfile);
}

TEST(ExportProfile, AnUnknownOwnProfileLeavesPixelsAndEmbedsNothing)
{
    for (const Hash& own : {Hash{}, wordHash("unknown"), Ondrel::NoneColorProfile, Ondrel::EmbeddedColorProfile})
        for (const Hash& target : {Ondrel::EmbeddedColorProfile, Ondrel::DefaultColorProfileHash, wordHash("unknown")})
            expectUntouched(imageIn(own), target);
}

TEST(ExportProfile, AnUnknownTargetLeavesPixelsAndEmbedsNothing)
{
    expectUntouched(imageIn(Ondrel::DefaultColorProfileHash), wordHash("unknown"));
    expectUntouched(imageIn(Ondrel::DefaultColorProfileHash), Hash{});
}

TEST(ExportProfile, ATargetThatFitsNoRgbTransformLeavesPixelsAndEmbedsNothing)
{
    const RegisteredProfile cmyk(tableProfile(cmsSigCmykData)), link(cmykProfile());
    expectUntouched(imageIn(Ondrel::DefaultColorProfileHash), cmyk.hash());
    expectUntouched(imageIn(Ondrel::DefaultColorProfileHash), link.hash());
    expectUntouched(imageIn(cmyk.hash()), Ondrel::DefaultColorProfileHash);
}

TEST(ExportProfile, EmbeddedGivesTheBytesOfTheOwnProfile)
{
    const Profile own = rgbProfile(1.9, "Own");
    const RegisteredProfile registered(own);
    const Image image = imageIn(registered.hash());
    const Prepared result = prepared(image, Ondrel::EmbeddedColorProfile);
    EXPECT_TRUE(samePixels(result.image, image));
    EXPECT_EQ(result.icc, savedBytes(own.get()));
}

TEST(ExportProfile, ATargetConvertsThePixelsInPlaceAndGivesItsBytes)
{
    for (const Hash& target : {linear(), proPhoto()}) {
        const Image image = imageIn(Ondrel::DefaultColorProfileHash);
        const Prepared result = prepared(image, target);
        EXPECT_FALSE(samePixels(result.image, image));
        EXPECT_TRUE(samePixels(result.image, converted(image, target)));
        EXPECT_EQ(result.icc, ColorManager::copyColorProfileDataByHash(target));
    }
}

TEST(ExportProfile, TheIntentIsPerceptual)
{
    const RegisteredProfile table(tableProfile(cmsSigRgbData)); // has another table for each intent
    const Image image = imageIn(table.hash());
    EXPECT_TRUE(samePixels(prepared(image, linear()).image, converted(image, linear())));
}

TEST(ExportProfile, TheOwnProfileAsTargetStillTransforms)
{
    const Profile flat = flatProfile();
    const RegisteredProfile registered(flat);
    const Image image = imageIn(registered.hash());
    const Prepared result = prepared(image, registered.hash());
    EXPECT_FALSE(samePixels(result.image, image));
    EXPECT_TRUE(samePixels(result.image, converted(image, registered.hash())));
    EXPECT_EQ(result.icc, savedBytes(flat.get()));
}

TEST(ExportProfile, AlphaIsKept)
{
    const Image image = imageIn(Ondrel::DefaultColorProfileHash);
    const Prepared result = prepared(image, linear());
    for (unsigned int i = 0; i < image.width * image.height; ++i)
        EXPECT_EQ(result.image.data[i * 4 + 3], image.data[i * 4 + 3]);
}

TEST(ExportProfile, AnImageWithoutPixelsIsNoHarm)
{
    Image image;
    image.colorProfile = Ondrel::DefaultColorProfileHash;
    EXPECT_EQ(prepared(image, linear()).icc, ColorManager::copyColorProfileDataByHash(linear()));
}

TEST(ExportProfile, EveryExportConvertsTheImageThatItIsGiven)
{
    const TemporaryFolder folder;
    for (const Exporter& exporter : exporters()) {
        SCOPED_TRACE(exporter.name);
        const Image original = imageIn(Ondrel::DefaultColorProfileHash);
        const Image image = original;
        Bytes data;
        ASSERT_TRUE(exporter.run(folder.path("file"), data, image, linear(), nullptr));
        EXPECT_TRUE(samePixels(image, converted(original, linear())));
        EXPECT_EQ(image.colorProfile, original.colorProfile);
    }
}

TEST(ExportProfile, AnExportThatConvertsNothingLeavesTheImageAlone)
{
    // Also not the byte order of its samples.
    const TemporaryFolder folder;
    for (const Exporter& exporter : exporters())
        for (const Hash& profile : {Ondrel::NoneColorProfile, Ondrel::EmbeddedColorProfile}) {
            SCOPED_TRACE(exporter.name);
            const Image original = imageIn(Ondrel::DefaultColorProfileHash);
            const Image image = original;
            Bytes data;
            ASSERT_TRUE(exporter.run(folder.path("file"), data, image, profile, nullptr));
            EXPECT_TRUE(samePixels(image, original));
        }
}

} // namespace

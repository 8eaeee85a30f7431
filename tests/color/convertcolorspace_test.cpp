#include "tests/support/testprofiles.h"

#include "tests/support/testimages.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>
#include <ondrel/color/colortransformer.h>

#include <lcms2.h>

#include <QSettings>

#include <memory>

namespace
{

using namespace OndrelTest;
using Ondrel::ColorManager;
using Ondrel::Image;

Hash builtIn(void* (*create)())
{
    return ColorManager::buildColorProfileHash(Profile(create()).get());
}

// What Little CMS makes of the pixels by itself; alpha as in the source.
Image converted(const Image& image, void* from, void* to, unsigned int intent)
{
    Image out = image;
    void* const transform = cmsCreateTransform(from, TYPE_RGBA_16, to, TYPE_RGBA_16, intent, 0);
    cmsDoTransform(transform, image.data, out.data, image.width * image.height);
    cmsDeleteTransform(transform);
    for (unsigned int i = 0; i < image.width * image.height; ++i)
        out.data[i * 4 + 3] = image.data[i * 4 + 3];
    return out;
}

Image blackFrame(unsigned int width, unsigned int height)
{
    Image image(width, height);
    image.Fill(0, 0, 0, 65535);
    return image;
}

TEST(ConvertColorSpace, IsWhatLittleCmsGivesWithAlphaKept)
{
    const Profile from = reopened(Profile(Ondrel::Create_sRGBColorProfile())),
                  to = reopened(Profile(Ondrel::CreateProPhotoRGBColorProfile()));
    const QByteArray fromHash = toByteArray(builtIn(Ondrel::Create_sRGBColorProfile)),
                     toHash = toByteArray(builtIn(Ondrel::CreateProPhotoRGBColorProfile));
    for (const unsigned int intent : {0u, 1u, 2u, 3u})
        for (const auto& [w, h] :
             {std::pair(1u, 1u), std::pair(7u, 300u), std::pair(300u, 7u), std::pair(40u, 1100u)}) {
            const Image image = randomImage(w, h, w);
            const Image result = ConvertColorSpace(image, fromHash, toHash, intent);
            EXPECT_TRUE(samePixels(result, converted(image, from.get(), to.get(), intent)));
            EXPECT_EQ(toByteArray(result.colorProfile), toHash);
        }
}

TEST(ConvertColorSpace, EqualHashesCopyWithoutAskingTheRegistry)
{
    Image image = randomImage(5, 4, 1);
    image.rawFilters = 3;
    const QByteArray unknown(32, 'u');
    const Image result = ConvertColorSpace(image, unknown, unknown, 0);
    EXPECT_TRUE(samePixels(result, image));
    EXPECT_EQ(toByteArray(result.colorProfile), unknown);
    EXPECT_EQ(result.rawFilters, 3u);
    // Compared as hashes: padding makes these two equal.
    EXPECT_TRUE(samePixels(ConvertColorSpace(image, "ab", QByteArray("ab") + QByteArray(30, '\0'), 0), image));
}

TEST(ConvertColorSpace, AutomaticTakesTheImagesOwnProfile)
{
    Image image = randomImage(9, 9, 1);
    image.colorProfile = builtIn(Ondrel::CreateLinear_sRGBColorProfile);
    const QByteArray to = toByteArray(builtIn(Ondrel::Create_sRGBColorProfile));
    EXPECT_TRUE(samePixels(ConvertColorSpace(image, "Automatic", to, 1),
                           ConvertColorSpace(image, toByteArray(image.colorProfile), to, 1)));
}

TEST(ConvertColorSpace, AutomaticToTheSameProfileStillTransforms)
{
    Image image = randomImage(60, 60, 1);
    image.rawFilters = 3;
    image.colorProfile = builtIn(Ondrel::CreateProPhotoRGBColorProfile);
    const Profile profile = reopened(Profile(Ondrel::CreateProPhotoRGBColorProfile()));
    const Image result = ConvertColorSpace(image, "Automatic", toByteArray(image.colorProfile), 0);
    EXPECT_TRUE(samePixels(result, converted(image, profile.get(), profile.get(), 0)));
    EXPECT_EQ(result.rawFilters, 0u); // a conversion drops the description, a copy keeps it
}

TEST(ConvertColorSpace, AutomaticIsMatchedByteForByte)
{
    Image image = randomImage(4, 4, 1);
    image.colorProfile = Ondrel::DefaultColorProfileHash;
    const QByteArray to = toByteArray(builtIn(Ondrel::CreateProPhotoRGBColorProfile));
    EXPECT_TRUE(samePixels(ConvertColorSpace(image, "automatic", to, 0), blackFrame(4, 4)));
    EXPECT_TRUE(
        samePixels(ConvertColorSpace(image, QByteArray("Automatic") + QByteArray(23, '\0'), to, 0), blackFrame(4, 4)));
}

TEST(ConvertColorSpace, UnknownProfilesGiveOpaqueBlack)
{
    Image image = randomImage(6, 3, 1);
    const QByteArray sRGB = toByteArray(Ondrel::DefaultColorProfileHash), unknown(32, 'u');
    for (const auto& [from, to] : {std::pair(unknown, sRGB), std::pair(sRGB, unknown), std::pair(QByteArray(), sRGB),
                                   std::pair(QByteArray("Automatic"), sRGB)}) {
        const Image result = ConvertColorSpace(image, from, to, 0);
        EXPECT_TRUE(samePixels(result, blackFrame(6, 3)));
        EXPECT_EQ(toByteArray(result.colorProfile), to);
    }
}

TEST(ConvertColorSpace, AProfileThatFitsNoRgbTransformGivesOpaqueBlack)
{
    Hash cmyk{};
    ASSERT_TRUE(
        ColorManager::addColorProfile(savedBytes(cmykProfile().get()), ColorManager::ColorProfile::Embedded, &cmyk));
    const Image result =
        ConvertColorSpace(randomImage(6, 3, 1), toByteArray(Ondrel::DefaultColorProfileHash), toByteArray(cmyk), 0);
    EXPECT_TRUE(samePixels(result, blackFrame(6, 3)));
    EXPECT_EQ(result.colorProfile, cmyk);
    ColorManager::removeColorProfile(cmyk, ColorManager::ColorProfile::Embedded);
}

TEST(ConvertColorSpace, GreysToLabAndBackAreNearlyTheSame)
{
    Image image(64, 64);
    for (unsigned int i = 0; i < 64 * 64; ++i)
        setPixel(image, i % 64, i / 64,
                 {std::uint16_t(i * 15), std::uint16_t(i * 15), std::uint16_t(i * 15), std::uint16_t(i)});
    const QByteArray sRGB = toByteArray(Ondrel::DefaultColorProfileHash),
                     lab = toByteArray(builtIn(Ondrel::CreateLabColorProfile));
    const Image there = ConvertColorSpace(image, sRGB, lab, 1), back = ConvertColorSpace(there, "Automatic", sRGB, 1);
    for (unsigned int i = 0; i < 64 * 64; ++i) {
        for (unsigned int c = 0; c < 3; ++c)
            ASSERT_NEAR(back.data[i * 4 + c], image.data[i * 4 + c], 500) << i;
        ASSERT_EQ(there.data[i * 4 + 3], image.data[i * 4 + 3]);
        ASSERT_EQ(back.data[i * 4 + 3], image.data[i * 4 + 3]);
    }
}

TEST(ConvertColorSpace, BetweenTwoLabProfilesPixelsAreLeftAlone)
{
    Hash other{}; // version 4, beside the version 2 of the library
    ASSERT_TRUE(
        ColorManager::addColorProfile(savedBytes(labProfile().get()), ColorManager::ColorProfile::BuiltIn, &other));
    Image image = randomImage(5, 5, 1);
    image.rawFilters = 3;
    image.colorProfile = builtIn(Ondrel::CreateLabColorProfile);
    for (const QByteArray& to : {toByteArray(other), toByteArray(image.colorProfile)}) {
        const Image result = ConvertColorSpace(image, "Automatic", to, 0);
        EXPECT_TRUE(samePixels(result, image));
        EXPECT_EQ(result.rawFilters, 3u);
        EXPECT_EQ(toByteArray(result.colorProfile), to);
    }
    ColorManager::removeColorProfile(other, ColorManager::ColorProfile::BuiltIn);
}

TEST(ConvertColorSpace, DoesNotConsultTheManagementSetting)
{
    const Image image = randomImage(9, 9, 1);
    const QByteArray sRGB = toByteArray(Ondrel::DefaultColorProfileHash),
                     wide = toByteArray(builtIn(Ondrel::CreateProPhotoRGBColorProfile));
    const Image on = ConvertColorSpace(image, sRGB, wide, 0);
    QSettings().setValue("settings/colormanagement/colormanagement", "Disabled");
    ColorManager::reload();
    EXPECT_TRUE(samePixels(ConvertColorSpace(image, sRGB, wide, 0), on));
    QSettings().remove("settings/colormanagement");
    ColorManager::reload();
}

TEST(ConvertColorSpace, EmptyImagesStayEmpty)
{
    const QByteArray sRGB = toByteArray(Ondrel::DefaultColorProfileHash),
                     wide = toByteArray(builtIn(Ondrel::CreateProPhotoRGBColorProfile));
    for (const Image& image : {Image(), Image(0, 5), Image(5, 0)}) {
        const Image result = ConvertColorSpace(image, sRGB, wide, 0);
        EXPECT_EQ(result.width, image.width);
        EXPECT_EQ(result.height, image.height);
        EXPECT_EQ(result.data, nullptr);
    }
}

} // namespace

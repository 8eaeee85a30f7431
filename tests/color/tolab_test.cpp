#include "tests/support/testprofiles.h"

#include "tests/support/testimages.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>

#include <lcms2.h>

#include <QSettings>

namespace
{

using namespace OndrelTest;
using Ondrel::ColorManager;
using Ondrel::Image;

std::vector<float> expectedLab(const Image& image, void* from)
{
    const Profile lab(Ondrel::CreateLabColorProfile());
    std::vector<float> out(std::size_t(image.width) * image.height * 3);
    void* const transform = cmsCreateTransform(from, TYPE_RGBA_16, lab.get(), TYPE_Lab_FLT, INTENT_PERCEPTUAL, 0);
    cmsDoTransform(transform, image.data, out.data(), image.width * image.height);
    cmsDeleteTransform(transform);
    return out;
}

TEST(ToLab, IsWhatLittleCmsGives)
{
    const Profile profile = reopened(Profile(Ondrel::CreateProPhotoRGBColorProfile()));
    Image image = randomImage(37, 141, 1);
    image.colorProfile = ColorManager::buildColorProfileHash(profile.get());
    EXPECT_EQ(ColorManager::toLab(image), expectedLab(image, profile.get()));
}

TEST(ToLab, WhiteBlackAndRedHaveTheirPlaces)
{
    Image image(3, 1);
    setPixel(image, 0, 0, {65535, 65535, 65535, 65535});
    setPixel(image, 1, 0, {0, 0, 0, 0});
    setPixel(image, 2, 0, {65535, 0, 0, 65535});
    image.colorProfile = Ondrel::DefaultColorProfileHash;
    const std::vector<float> lab = ColorManager::toLab(image);
    EXPECT_NEAR(lab[0], 100.0f, 0.05f);
    EXPECT_NEAR(lab[3], 0.0f, 0.05f);
    EXPECT_NEAR(lab[6], 54.3f, 0.3f); // sRGB red under D50
    EXPECT_NEAR(lab[7], 80.8f, 0.5f);
    EXPECT_NEAR(lab[8], 69.9f, 0.5f);
}

TEST(ToLab, AnUnknownProfileCountsAsSRGB)
{
    Image image = randomImage(9, 9, 2);
    image.colorProfile = wordHash("unknown");
    EXPECT_EQ(ColorManager::toLab(image), expectedLab(image, Profile(Ondrel::Create_sRGBColorProfile()).get()));
}

TEST(ToLab, LabImagesAreDecoded)
{
    Image image(1, 1);
    setPixel(image, 0, 0, {65280, 32768, 32768, 65535}); // version 2 encoding: 100, 0, 0
    image.colorProfile = ColorManager::buildColorProfileHash(Profile(Ondrel::CreateLabColorProfile()).get());
    const std::vector<float> lab = ColorManager::toLab(image);
    ASSERT_EQ(lab.size(), 3u);
    EXPECT_NEAR(lab[0], 100.0f, 0.5f);
    EXPECT_NEAR(lab[1], 0.0f, 0.6f);
    EXPECT_NEAR(lab[2], 0.0f, 0.6f);
}

TEST(ToLab, AProfileThatFitsNoRgbTransformGivesZeros)
{
    Image image = randomImage(3, 2, 1);
    ASSERT_TRUE(ColorManager::addColorProfile(savedBytes(cmykProfile().get()), ColorManager::ColorProfile::Embedded,
                                              &image.colorProfile));
    EXPECT_EQ(ColorManager::toLab(image), std::vector<float>(18, 0.0f));
    ColorManager::removeColorProfile(image.colorProfile, ColorManager::ColorProfile::Embedded);
}

TEST(ToLab, DoesNotConsultTheManagementSetting)
{
    Image image = randomImage(9, 9, 1);
    image.colorProfile = ColorManager::buildColorProfileHash(Profile(Ondrel::CreateProPhotoRGBColorProfile()).get());
    const std::vector<float> on = ColorManager::toLab(image);
    QSettings().setValue("settings/colormanagement/colormanagement", "Disabled");
    ColorManager::reload();
    EXPECT_EQ(ColorManager::toLab(image), on);
    QSettings().remove("settings/colormanagement");
    ColorManager::reload();
}

TEST(ToLab, NoPixelsGiveNothing)
{
    EXPECT_TRUE(ColorManager::toLab(Image()).empty());
    EXPECT_TRUE(ColorManager::toLab(Image(0, 5)).empty());
}

} // namespace

#include "tests/support/testprofiles.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>

#include <lcms2.h>

#include <set>

namespace
{

using namespace OndrelTest;

QString description(void* profile)
{
    const Bytes bytes = savedBytes(profile);
    return Ondrel::GetICCProfileName(bytes.data(), bytes.size());
}

TEST(ProfileFactory, DescriptionsAreTheirOwn)
{
    EXPECT_EQ(description(Profile(Ondrel::CreateProPhotoRGBColorProfile()).get()), "ProPhoto RGB");
    EXPECT_EQ(description(Profile(Ondrel::CreateLinearProPhotoRGBColorProfile()).get()), "Linear ProPhoto RGB");
    EXPECT_EQ(description(Profile(Ondrel::CreateLinear_sRGBColorProfile()).get()), "Linear sRGB");
    EXPECT_EQ(description(Profile(Ondrel::CreateLabColorProfile()).get()), "CIELAB D50 built-in");
    EXPECT_EQ(description(Profile(Ondrel::Create_sRGBColorProfile()).get()), "sRGB built-in");
}

TEST(ProfileFactory, SpacesAreRGBAndLab)
{
    EXPECT_EQ(cmsGetColorSpace(Profile(Ondrel::CreateProPhotoRGBColorProfile()).get()), cmsSigRgbData);
    EXPECT_EQ(cmsGetColorSpace(Profile(Ondrel::CreateLinear_sRGBColorProfile()).get()), cmsSigRgbData);
    EXPECT_EQ(cmsGetColorSpace(Profile(Ondrel::CreateLabColorProfile()).get()), cmsSigLabData);
}

TEST(ProfileFactory, AllFiveDiffer)
{
    std::set<Hash> hashes;
    for (auto* create :
         {Ondrel::CreateProPhotoRGBColorProfile, Ondrel::CreateLinearProPhotoRGBColorProfile,
          Ondrel::Create_sRGBColorProfile, Ondrel::CreateLinear_sRGBColorProfile, Ondrel::CreateLabColorProfile})
        hashes.insert(Ondrel::ColorManager::buildColorProfileHash(Profile(create()).get()));
    EXPECT_EQ(hashes.size(), 5u);
}

TEST(ProfileFactory, BytesAreTheSameEachTime)
{
    for (auto* create : {Ondrel::CreateProPhotoRGBColorProfile, Ondrel::CreateLinear_sRGBColorProfile})
        EXPECT_EQ(Ondrel::ColorManager::buildColorProfileHash(Profile(create()).get()),
                  Ondrel::ColorManager::buildColorProfileHash(Profile(create()).get()));
}

const cmsToneCurve* curve(void* profile, cmsTagSignature tag)
{
    return static_cast<const cmsToneCurve*>(cmsReadTag(profile, tag));
}

TEST(ProfileFactory, LinearProfilesHaveParametricCurvesOfGammaOne)
{
    for (auto* create : {Ondrel::CreateLinear_sRGBColorProfile, Ondrel::CreateLinearProPhotoRGBColorProfile}) {
        const Profile profile(create());
        for (const cmsTagSignature tag : {cmsSigRedTRCTag, cmsSigGreenTRCTag, cmsSigBlueTRCTag}) {
            ASSERT_NE(curve(profile.get(), tag), nullptr);
            EXPECT_EQ(cmsGetToneCurveParametricType(curve(profile.get(), tag)), 1);
            EXPECT_TRUE(cmsIsToneCurveLinear(curve(profile.get(), tag)));
            EXPECT_EQ(cmsEstimateGamma(curve(profile.get(), tag), 0.001), 1.0);
        }
    }
}

TEST(ProfileFactory, ProPhotoHasGammaOnePointEightAndAWideGamut)
{
    const Profile profile(Ondrel::CreateProPhotoRGBColorProfile());
    EXPECT_NEAR(cmsEstimateGamma(curve(profile.get(), cmsSigGreenTRCTag), 0.01), 1.8, 0.01);
    // ROMM RGB, ISO 22028-2
    const std::pair<cmsTagSignature, cmsCIEXYZ> primaries[] = {{cmsSigRedColorantTag, {0.7977, 0.2880, 0.0}},
                                                               {cmsSigGreenColorantTag, {0.1352, 0.7119, 0.0}},
                                                               {cmsSigBlueColorantTag, {0.0313, 0.0001, 0.8251}}};
    for (const auto& [tag, expected] : primaries) {
        const auto* const colorant = static_cast<const cmsCIEXYZ*>(cmsReadTag(profile.get(), tag));
        ASSERT_NE(colorant, nullptr);
        EXPECT_NEAR(colorant->X, expected.X, 0.0005);
        EXPECT_NEAR(colorant->Y, expected.Y, 0.0005);
        EXPECT_NEAR(colorant->Z, expected.Z, 0.0005);
    }
}

TEST(ProfileFactory, LinearSRGBKeepsThePrimaries)
{
    const Profile linear(Ondrel::CreateLinear_sRGBColorProfile()), standard(Ondrel::Create_sRGBColorProfile());
    for (const cmsTagSignature tag : {cmsSigRedColorantTag, cmsSigGreenColorantTag, cmsSigBlueColorantTag}) {
        const auto* const a = static_cast<const cmsCIEXYZ*>(cmsReadTag(linear.get(), tag));
        const auto* const b = static_cast<const cmsCIEXYZ*>(cmsReadTag(standard.get(), tag));
        EXPECT_EQ(a->X, b->X);
        EXPECT_EQ(a->Y, b->Y);
        EXPECT_EQ(a->Z, b->Z);
    }
}

TEST(ProfileBytes, AreWhatLittleCmsSaves)
{
    const Profile profile = rgbProfile(2.0, "Test");
    Bytes bytes = {1, 2, 3};
    Ondrel::GetICCProfileData(profile.get(), bytes);
    EXPECT_EQ(bytes, savedBytes(profile.get()));
}

TEST(ProfileBytes, OfNothingAreNoneAndKeepTheCapacity)
{
    Bytes bytes(1000, 7);
    const std::size_t capacity = bytes.capacity();
    Ondrel::GetICCProfileData(nullptr, bytes);
    EXPECT_TRUE(bytes.empty());
    EXPECT_EQ(bytes.capacity(), capacity);
}

TEST(ProfileCopy, IsIndependent)
{
    Profile original = rgbProfile(2.0, "Test");
    const Profile copy(Ondrel::CopyICCProfile(original.get()));
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(copy.get(), original.get());
    EXPECT_EQ(savedBytes(copy.get()), savedBytes(original.get()));
    original.reset();
    EXPECT_EQ(description(copy.get()), "Test");
    EXPECT_EQ(Ondrel::CopyICCProfile(nullptr), nullptr);
}

TEST(ProfileName, OfWhatIsNoProfileIsNull)
{
    const Bytes noise(300, 9);
    EXPECT_TRUE(Ondrel::GetICCProfileName(noise.data(), noise.size()).isNull());
    EXPECT_TRUE(Ondrel::GetICCProfileName(nullptr, 0).isNull());
}

TEST(ProfileName, IsCutAtTheBuffer)
{
    const Profile profile = rgbProfile(2.0, std::string(2000, 'x'));
    EXPECT_EQ(description(profile.get()), QString(511, 'x'));
}

TEST(RenderingIntent, NamesAreExact)
{
    EXPECT_EQ(Ondrel::renderingIntentFromString("Perceptual"), 0u);
    EXPECT_EQ(Ondrel::renderingIntentFromString("Relative Colorimetric"), 1u);
    EXPECT_EQ(Ondrel::renderingIntentFromString("Saturation"), 2u);
    EXPECT_EQ(Ondrel::renderingIntentFromString("Absolute Colorimetric"), 3u);
    EXPECT_EQ(Ondrel::renderingIntentFromString("perceptual"), 0u);
    EXPECT_EQ(Ondrel::renderingIntentFromString("saturation"), 0u);
    EXPECT_EQ(Ondrel::renderingIntentFromString(""), 0u);
}

TEST(HashBytes, AreTakenPaddedOrCut)
{
    QByteArray exact(32, 'a');
    exact[31] = 'z';
    EXPECT_EQ(toByteArray(Ondrel::QByteArrayToColorProfileHash(exact)), exact);
    EXPECT_EQ(toByteArray(Ondrel::QByteArrayToColorProfileHash(QByteArray(40, 'b'))), QByteArray(32, 'b'));
    EXPECT_EQ(toByteArray(Ondrel::QByteArrayToColorProfileHash("abc")), QByteArray("abc") + QByteArray(29, '\0'));
    EXPECT_EQ(Ondrel::QByteArrayToColorProfileHash(QByteArray()), Hash{});
}

TEST(SystemProfiles, ArePutInDirectoriesOnThisSystem)
{
    EXPECT_TRUE(Ondrel::EnumerateSystemColorProfiles().empty());
}

} // namespace

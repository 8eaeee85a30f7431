#include "decoding.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>

#include <cstring>

namespace
{

using namespace OndrelTest;

Bytes fileWith(const PngChunks& chunks, int colorType = PNG_COLOR_TYPE_RGB)
{
    return pngFile(randomPng(4, 3, colorType, 8), chunks);
}

// The profile that a file is read with: that of the image, which the handle agrees with.
Hash profileOf(const Bytes& file)
{
    const ReadResult result = readPng(file);
    EXPECT_TRUE(result.ok);
    EXPECT_NE(result.profile, nullptr);
    EXPECT_EQ(hashOf(result.profile), result.image.colorProfile);
    return result.image.colorProfile;
}

// Primaries as PNG writes them, in hundred-thousandths, so that they survive the file.
const cmsCIExyY kWhite = {0.3127, 0.329, 1.0};
const cmsCIExyYTRIPLE kPrimaries = {{0.64, 0.33, 1.0}, {0.21, 0.71, 1.0}, {0.15, 0.06, 1.0}};

void setPrimaries(png_struct* png, png_info* info)
{
    png_set_cHRM(png, info, kWhite.x, kWhite.y, kPrimaries.Red.x, kPrimaries.Red.y, kPrimaries.Green.x,
                 kPrimaries.Green.y, kPrimaries.Blue.x, kPrimaries.Blue.y);
}

Profile primariesProfile(double gamma)
{
    cmsToneCurve* const curve = cmsBuildGamma(nullptr, gamma);
    cmsToneCurve* const curves[3] = {curve, curve, curve};
    Profile profile(cmsCreateRGBProfile(&kWhite, &kPrimaries, curves));
    cmsFreeToneCurve(curve);
    cmsMLU* const text = cmsMLUalloc(nullptr, 1);
    cmsMLUsetASCII(text, "en", "US", "PNG Image RGB");
    cmsWriteTag(profile.get(), cmsSigProfileDescriptionTag, text);
    cmsMLUfree(text);
    return profile;
}

void setIcc(png_struct* png, png_info* info, const Bytes& profile)
{
    png_set_iCCP(png, info, "profile", 0, profile.data(), png_uint_32(profile.size()));
}

TEST(PngProfile, WithoutChunksIsSrgb)
{
    EXPECT_EQ(profileOf(fileWith({})), Ondrel::DefaultColorProfileHash);
    EXPECT_EQ(profileOf(fileWith({}, PNG_COLOR_TYPE_GRAY)), Ondrel::DefaultColorProfileHash);
}

TEST(PngProfile, TheSrgbChunkOfAnyIntentIsSrgb)
{
    for (const int intent : {0, 1, 2, 3})
        EXPECT_EQ(profileOf(fileWith([&](png_struct* png, png_info* info) { png_set_sRGB(png, info, intent); })),
                  Ondrel::DefaultColorProfileHash);
}

TEST(PngProfile, TheSrgbChunkWinsOverPrimaries)
{
    EXPECT_EQ(profileOf(fileWith([](png_struct* png, png_info* info) { png_set_sRGB_gAMA_and_cHRM(png, info, 1); })),
              Ondrel::DefaultColorProfileHash);
}

TEST(PngProfile, AnEmbeddedProfileIsTheImages)
{
    const Profile profile = rgbProfile(1.9, "Embedded");
    const Bytes icc = savedBytes(profile.get());
    const ReadResult result = readPng(fileWith([&](png_struct* png, png_info* info) { setIcc(png, info, icc); }));
    ASSERT_TRUE(result.ok);
    EXPECT_EQ(result.image.colorProfile, hashOf(profile));
    EXPECT_EQ(savedBytes(result.profile.get()), icc);
}

TEST(PngProfile, AnEmbeddedProfileWinsOverPrimaries)
{
    const Profile profile = rgbProfile(1.9, "Embedded");
    const auto chunks = [&](png_struct* png, png_info* info) {
        setPrimaries(png, info);
        png_set_gAMA(png, info, 0.5);
        setIcc(png, info, savedBytes(profile.get()));
    };
    EXPECT_EQ(profileOf(fileWith(chunks)), hashOf(profile));
}

TEST(PngProfile, AGreyFileHandsOverItsGreyProfile)
{
    const Profile profile = greyProfile();
    const auto chunks = [&](png_struct* png, png_info* info) { setIcc(png, info, savedBytes(profile.get())); };
    EXPECT_EQ(profileOf(fileWith(chunks, PNG_COLOR_TYPE_GRAY)), hashOf(profile));
}

// A profile that libpng lets pass and Little CMS does not open: it has more tags than Little CMS reads.
Bytes profileOfTooManyTags()
{
    const Bytes good = savedBytes(rgbProfile(1.9, "Embedded").get());
    constexpr std::size_t kTags = 120, kTable = 132;
    Bytes bytes(good.begin(), good.begin() + 128);
    bytes.insert(bytes.end(), {0, 0, 0, kTags});
    for (std::size_t i = 0; i < kTags; ++i)
        bytes.insert(bytes.end(), {'t', 'a', 'g', std::uint8_t(i), 0, 0, (kTable + kTags * 12) >> 8,
                                   (kTable + kTags * 12) & 255, 0, 0, 0, 8});
    bytes.insert(bytes.end(), {'t', 'e', 'x', 't', 0, 0, 0, 0});
    bytes[2] = std::uint8_t(bytes.size() >> 8);
    bytes[3] = std::uint8_t(bytes.size());
    return bytes;
}

TEST(PngProfile, AnEmbeddedProfileThatDoesNotOpenGivesSrgbDespitePrimaries)
{
    const Bytes icc = profileOfTooManyTags();
    ASSERT_EQ(Profile(cmsOpenProfileFromMem(icc.data(), cmsUInt32Number(icc.size()))), nullptr);
    const auto chunks = [&](png_struct* png, png_info* info) {
        setPrimaries(png, info);
        setIcc(png, info, icc);
    };
    EXPECT_EQ(profileOf(fileWith(chunks)), Ondrel::DefaultColorProfileHash);
}

TEST(PngProfile, PrimariesAndGammaBuildAProfile)
{
    for (const double gamma : {1.0, 0.5, 0.45455, 0.625}) {
        const auto chunks = [&](png_struct* png, png_info* info) {
            setPrimaries(png, info);
            png_set_gAMA(png, info, gamma);
        };
        EXPECT_EQ(profileOf(fileWith(chunks)), hashOf(primariesProfile(1.0 / gamma))) << gamma;
    }
}

TEST(PngProfile, PrimariesWithoutGammaTakeTheUsualGammaAsItStands)
{
    EXPECT_EQ(profileOf(fileWith(setPrimaries)), hashOf(primariesProfile(0.45454545454545453)));
    EXPECT_NE(hashOf(primariesProfile(0.45454545454545453)), hashOf(primariesProfile(2.2)));
}

TEST(PngProfile, ABuiltProfileIsNamedAfterTheFormat)
{
    const ReadResult result = readPng(fileWith(setPrimaries));
    ASSERT_TRUE(result.ok);
    const Bytes bytes = savedBytes(result.profile.get());
    EXPECT_EQ(Ondrel::GetICCProfileName(bytes.data(), bytes.size()), "PNG Image RGB");
}

TEST(PngProfile, GammaAloneBuildsNone)
{
    EXPECT_EQ(profileOf(fileWith([](png_struct* png, png_info* info) { png_set_gAMA(png, info, 1.0); })),
              Ondrel::DefaultColorProfileHash);
}

TEST(PngProfile, PrimariesThatSpanNoTriangleAreSurvived)
{
    // White on the line of the primaries, and primaries of zero: whatever they give is a profile.
    const std::vector<Bytes> chunks = {Bytes(32, 0), Bytes(32, 0xFF), [] {
                                           Bytes equal;
                                           for (int i = 0; i < 8; ++i)
                                               equal.insert(equal.end(), {0, 0, 0x75, 0x30});
                                           return equal;
                                       }()};
    for (const Bytes& chunk : chunks) {
        const ReadResult result = readPng(withPngChunk(fileWith({}), pngChunk("cHRM", chunk)));
        EXPECT_TRUE(result.ok);
        EXPECT_NE(result.profile, nullptr);
    }
}

TEST(PngProfile, IsClosedWhenNobodyAsksForIt)
{
    Ondrel::Image image;
    EXPECT_TRUE(ResourceEngine::ReadPNG(recordOf(fileWith(setPrimaries)), image, nullptr));
    EXPECT_EQ(image.colorProfile, hashOf(primariesProfile(0.45454545454545453)));
}

TEST(PngProfile, IsNotHandedOverByAFailure)
{
    Bytes file = fileWith(setPrimaries);
    file.resize(file.size() - 1);
    const ReadResult result = readPng(file);
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.profile, nullptr);
}

} // namespace

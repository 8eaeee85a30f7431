#include "decoding.h"

#include "tests/support/testimages.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>

#include <cmath>

namespace
{

using namespace OndrelTest;

const float kWhite[2] = {0.3127f, 0.3290f};
const float kPrimaries[6] = {0.64f, 0.33f, 0.21f, 0.71f, 0.15f, 0.06f}; // red, green, blue

void setPrimaries(TIFF* tiff)
{
    TIFFSetField(tiff, TIFFTAG_WHITEPOINT, kWhite);
    TIFFSetField(tiff, TIFFTAG_PRIMARYCHROMATICITIES, kPrimaries);
}

using Table = std::vector<std::uint16_t>;

Table power(std::size_t count, double gamma)
{
    Table table(count);
    for (std::size_t i = 0; i < count; ++i)
        table[i] = std::uint16_t(std::floor(65535.0 * std::pow(double(i) / double(count - 1), gamma) + 0.5));
    return table;
}

Profile primariesProfile(const Table& red, const Table& green, const Table& blue)
{
    const cmsCIExyY white = {double(kWhite[0]), double(kWhite[1]), 1.0};
    const cmsCIExyYTRIPLE primaries = {{double(kPrimaries[0]), double(kPrimaries[1]), 1.0},
                                       {double(kPrimaries[2]), double(kPrimaries[3]), 1.0},
                                       {double(kPrimaries[4]), double(kPrimaries[5]), 1.0}};
    cmsToneCurve* curves[3];
    const Table* const tables[3] = {&red, &green, &blue};
    for (int i = 0; i < 3; ++i)
        curves[i] = cmsBuildTabulatedToneCurve16(nullptr, cmsUInt32Number(tables[i]->size()), tables[i]->data());
    Profile profile(cmsCreateRGBProfile(&white, &primaries, curves));
    cmsFreeToneCurveTriple(curves);
    cmsMLU* const text = cmsMLUalloc(nullptr, 1);
    cmsMLUsetASCII(text, "en", "US", "TIFF Image RGB");
    cmsWriteTag(profile.get(), cmsSigProfileDescriptionTag, text);
    cmsMLUfree(text);
    return profile;
}

Bytes rgbFile(const TiffTags& tags, unsigned int bits = 8)
{
    return tiffFile(randomTiff(9, 7, PHOTOMETRIC_RGB, bits, 3), tags);
}

// The profile of an RGB file that loads: that of the handle and of the image.
Hash profileOf(const Bytes& file)
{
    const ReadResult result = readTiff(file);
    EXPECT_TRUE(result.ok);
    EXPECT_NE(result.profile, nullptr);
    EXPECT_EQ(hashOf(result.profile), result.image.colorProfile);
    return result.image.colorProfile;
}

TEST(TiffProfile, WithoutTagsIsSrgb)
{
    for (const unsigned int bits : {8u, 16u, 32u})
        EXPECT_EQ(profileOf(rgbFile({}, bits)), Ondrel::DefaultColorProfileHash);
}

TEST(TiffProfile, AnEmbeddedProfileIsTheImages)
{
    const Profile profile = rgbProfile(1.9, "Embedded");
    const Bytes icc = savedBytes(profile.get());
    for (const unsigned int bits : {8u, 16u, 32u}) {
        const ReadResult result = readTiff(rgbFile([&](TIFF* tiff) { setIccTag(tiff, icc); }, bits));
        ASSERT_TRUE(result.ok);
        EXPECT_EQ(result.image.colorProfile, hashOf(profile));
        EXPECT_EQ(savedBytes(result.profile.get()), icc);
    }
}

TEST(TiffProfile, AnEmbeddedProfileWinsOverPrimaries)
{
    const Profile profile = rgbProfile(1.9, "Embedded");
    const auto tags = [&](TIFF* tiff) {
        setPrimaries(tiff);
        setIccTag(tiff, savedBytes(profile.get()));
    };
    EXPECT_EQ(profileOf(rgbFile(tags)), hashOf(profile));
}

TEST(TiffProfile, AnEmbeddedProfileThatDoesNotOpenGivesSrgbDespitePrimaries)
{
    for (const Bytes& noise : {Bytes(4, 1), Bytes(500, 3), randomBytes(60000, 1)})
        EXPECT_EQ(profileOf(rgbFile([&](TIFF* tiff) {
                      setPrimaries(tiff);
                      setIccTag(tiff, noise);
                  })),
                  Ondrel::DefaultColorProfileHash);
}

TEST(TiffProfile, AGreyFileWithABadEmbeddedProfileTakesThePlainGrey)
{
    const TiffPicture picture = randomTiff(9, 7, PHOTOMETRIC_MINISBLACK, 8, 1);
    const ReadResult bad = readTiff(tiffFile(picture, [](TIFF* tiff) { setIccTag(tiff, Bytes(500, 3)); }));
    ASSERT_TRUE(bad.ok);
    EXPECT_TRUE(samePixels(bad.image, readTiff(tiffFile(picture)).image));
}

TEST(TiffProfile, AGreyFilesOwnProfileIsUsedAndNotReported)
{
    const TiffPicture picture = randomTiff(9, 7, PHOTOMETRIC_MINISBLACK, 16, 1);
    cmsToneCurve* const curve = cmsBuildGamma(nullptr, 1.2);
    const Profile grey(cmsCreateGrayProfile(cmsD50_xyY(), curve));
    cmsFreeToneCurve(curve);
    const ReadResult result = readTiff(tiffFile(picture, [&](TIFF* tiff) { setIccTag(tiff, savedBytes(grey.get())); }));
    ASSERT_TRUE(result.ok);
    EXPECT_EQ(result.profile, nullptr);
    EXPECT_TRUE(samePixels(result.image,
                           tiffPixels(picture, tiffFormat(picture, PT_GRAY), reopened(grey).get(), sRGB().get())));
}

TEST(TiffProfile, AnotherColorSpaceThanTheFilesIsRefused)
{
    const auto reads = [](unsigned int photometric, unsigned int samples, const Profile& profile) {
        const ReadResult result = readTiff(tiffFile(randomTiff(9, 7, photometric, 8, samples),
                                                    [&](TIFF* tiff) { setIccTag(tiff, savedBytes(profile.get())); }));
        EXPECT_TRUE(result.ok || result.profile == nullptr);
        return result.ok;
    };
    EXPECT_FALSE(reads(PHOTOMETRIC_RGB, 3, greyProfile()));
    EXPECT_FALSE(reads(PHOTOMETRIC_RGB, 3, labProfile()));
    EXPECT_FALSE(reads(PHOTOMETRIC_RGB, 3, tableProfile(cmsSigCmykData)));
    EXPECT_FALSE(reads(PHOTOMETRIC_MINISBLACK, 1, rgbProfile(1.0, "RGB")));
    EXPECT_FALSE(reads(PHOTOMETRIC_SEPARATED, 4, rgbProfile(1.0, "RGB")));
    EXPECT_FALSE(reads(PHOTOMETRIC_SEPARATED, 3, tableProfile(cmsSigCmykData)));
}

TEST(TiffProfile, PrimariesWithTheDefaultTransferBuildAProfile)
{
    const Table table = power(256, 2.2);
    EXPECT_EQ(profileOf(rgbFile(setPrimaries)), hashOf(primariesProfile(table, table, table)));
}

TEST(TiffProfile, PrimariesWithATransferFunctionBuildAProfile)
{
    Table red = power(256, 1.0), green = power(256, 1.5), blue = power(256, 3.0);
    const auto tags = [&](TIFF* tiff) {
        setPrimaries(tiff);
        TIFFSetField(tiff, TIFFTAG_TRANSFERFUNCTION, red.data(), green.data(), blue.data());
    };
    EXPECT_EQ(profileOf(rgbFile(tags)), hashOf(primariesProfile(red, green, blue)));
}

TEST(TiffProfile, ABuiltProfileIsNamedAfterTheFormat)
{
    for (const unsigned int bits : {8u, 16u}) {
        const ReadResult result = readTiff(rgbFile(setPrimaries, bits));
        ASSERT_TRUE(result.ok);
        const Bytes bytes = savedBytes(result.profile.get());
        EXPECT_EQ(Ondrel::GetICCProfileName(bytes.data(), bytes.size()), "TIFF Image RGB");
    }
}

// Every 16th of 65536 entries, and the last: more than Little CMS takes do not fit.
Table thinned(const Table& table)
{
    Table result;
    for (std::size_t i = 0; i < table.size(); i += 16)
        result.push_back(table[i]);
    result.push_back(table.back());
    return result;
}

TEST(TiffProfile, TheTransferFunctionOfWordsIsThinned)
{
    Table red = power(65536, 1.0), green = power(65536, 1.5), blue = power(65536, 3.0);
    const auto tags = [&](TIFF* tiff) {
        setPrimaries(tiff);
        TIFFSetField(tiff, TIFFTAG_TRANSFERFUNCTION, red.data(), green.data(), blue.data());
    };
    EXPECT_EQ(profileOf(rgbFile(tags, 16)), hashOf(primariesProfile(thinned(red), thinned(green), thinned(blue))));
    const Table usual = thinned(power(65536, 2.2));
    EXPECT_EQ(profileOf(rgbFile(setPrimaries, 16)), hashOf(primariesProfile(usual, usual, usual)));
}

TEST(TiffProfile, FloatsWithPrimariesAreSrgb)
{
    EXPECT_EQ(profileOf(rgbFile(setPrimaries, 32)), Ondrel::DefaultColorProfileHash);
}

TEST(TiffProfile, OnlyWhitePointAndPrimariesTogetherBuildOne)
{
    EXPECT_EQ(profileOf(rgbFile([](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_WHITEPOINT, kWhite); })),
              Ondrel::DefaultColorProfileHash);
    EXPECT_EQ(profileOf(rgbFile([](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_PRIMARYCHROMATICITIES, kPrimaries); })),
              Ondrel::DefaultColorProfileHash);
}

TEST(TiffProfile, APictureWithAlphaTakesTheTransferFunctionOfItsColors)
{
    TiffPicture picture = randomTiff(9, 7, PHOTOMETRIC_RGB, 8, 4);
    picture.extraSamples = {EXTRASAMPLE_UNASSALPHA};
    const Table table = power(256, 2.2);
    EXPECT_EQ(profileOf(tiffFile(picture, setPrimaries)), hashOf(primariesProfile(table, table, table)));
}

TEST(TiffProfile, AGreyFileWithPrimariesIsRefusedForItsRgbProfile)
{
    // libtiff gives such a file one tone curve, and leaves the pointers to the other two alone.
    for (const unsigned int bits : {8u, 16u}) {
        const ReadResult result = readTiff(tiffFile(randomTiff(9, 7, PHOTOMETRIC_MINISBLACK, bits, 1), setPrimaries));
        EXPECT_FALSE(result.ok);
        EXPECT_EQ(result.profile, nullptr);
    }
    EXPECT_TRUE(readTiff(tiffFile(randomTiff(9, 7, PHOTOMETRIC_MINISBLACK, 32, 1), setPrimaries)).ok);
}

TEST(TiffProfile, PrimariesThatSpanNoTriangleAreSurvived)
{
    const QuietTiff quiet; // about the numbers that are none
    const float nowhere[6] = {0, 0, 0, 0, 0, 0};
    const float notANumber[6] = {NAN, NAN, NAN, NAN, NAN, NAN};
    for (const float* const primaries : {nowhere, notANumber}) {
        const ReadResult result = readTiff(rgbFile([&](TIFF* tiff) {
            TIFFSetField(tiff, TIFFTAG_WHITEPOINT, primaries);
            TIFFSetField(tiff, TIFFTAG_PRIMARYCHROMATICITIES, primaries);
        }));
        EXPECT_EQ(result.ok, result.profile != nullptr);
    }
}

TEST(TiffProfile, AProfileThatGivesNoTransformIsRefusedAlsoWithoutAnotherAskedFor)
{
    const Profile hollow(cmsCreateProfilePlaceholder(nullptr)); // RGB by its header, with no tag to convert by
    cmsSetColorSpace(hollow.get(), cmsSigRgbData);
    cmsSetPCS(hollow.get(), cmsSigXYZData);
    cmsSetDeviceClass(hollow.get(), cmsSigDisplayClass);
    const ReadResult result = readTiff(rgbFile([&](TIFF* tiff) { setIccTag(tiff, savedBytes(hollow.get())); }));
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.profile, nullptr);
}

TEST(TiffProfile, IsClosedWhenNobodyAsksForIt)
{
    Ondrel::Image image;
    EXPECT_TRUE(
        ResourceEngine::ReadTIFF(recordOf(rgbFile(setPrimaries)), image, nullptr, Ondrel::EmbeddedColorProfile));
    const Table table = power(256, 2.2);
    EXPECT_EQ(image.colorProfile, hashOf(primariesProfile(table, table, table)));
}

} // namespace

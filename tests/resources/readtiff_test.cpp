#include "decoding.h"

#include "tests/support/testimages.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>

#include <cstdarg>

namespace
{

using namespace OndrelTest;
using Ondrel::ColorManager;
using Ondrel::Image;

constexpr Hash kNoHash{};

// Compares a file that holds this RGB picture with what Little CMS makes of its samples.
void expectRgb(const TiffPicture& picture, const Bytes& file)
{
    const ReadResult result = readTiff(file);
    ASSERT_TRUE(result.ok);
    EXPECT_EQ(result.image.colorProfile, Ondrel::DefaultColorProfileHash);
    EXPECT_EQ(hashOf(result.profile), Ondrel::DefaultColorProfileHash);
    EXPECT_TRUE(samePixels(result.image,
                           tiffPixels(picture, tiffFormat(picture, PT_RGB), sRGB().get(), reopened(sRGB()).get())));
}

// Compares a file of another colour space with what Little CMS makes of its samples; such a file comes out in sRGB.
void expectConverted(const TiffPicture& picture, const Bytes& file, unsigned int type, bool reversed,
                     const Profile& source)
{
    const ReadResult result = readTiff(file);
    ASSERT_TRUE(result.ok);
    EXPECT_EQ(result.profile, nullptr);
    EXPECT_EQ(result.image.colorProfile, Ondrel::DefaultColorProfileHash);
    EXPECT_TRUE(
        samePixels(result.image, tiffPixels(picture, tiffFormat(picture, type, reversed), source.get(), sRGB().get())));
}

// Every way to lay samples out: in one piece, in strips with a shorter last one, in tiles that stand over.
std::vector<TiffPicture> layoutsOf(const TiffPicture& picture)
{
    std::vector<TiffPicture> layouts;
    for (const bool planar : {false, true}) {
        for (const unsigned int rows : {0u, 1u, 3u, 8u, picture.height, 1000u}) {
            layouts.push_back(picture);
            layouts.back().rowsPerStrip = rows;
            layouts.back().planar = planar;
        }
        for (const auto& [tileWidth, tileLength] : {std::pair(16u, 16u), std::pair(32u, 16u), std::pair(16u, 48u)}) {
            layouts.push_back(picture);
            layouts.back().tileWidth = tileWidth;
            layouts.back().tileLength = tileLength;
            layouts.back().planar = planar;
        }
    }
    return layouts;
}

TEST(ReadTiff, EveryLayoutGivesTheSamePixels)
{
    for (const unsigned int bits : {8u, 16u, 32u})
        for (const unsigned int samples : {3u, 4u, 5u}) {
            TiffPicture picture = randomTiff(35, 20, PHOTOMETRIC_RGB, bits, samples);
            if (samples >= 4)
                picture.extraSamples.assign(samples - 3, EXTRASAMPLE_UNASSALPHA);
            for (const TiffPicture& layout : layoutsOf(picture)) {
                SCOPED_TRACE(testing::Message()
                             << bits << " bits, " << samples << " samples, planar " << layout.planar << ", rows "
                             << layout.rowsPerStrip << ", tile " << layout.tileWidth << " x " << layout.tileLength);
                expectRgb(picture, tiffFile(layout));
            }
        }
}

TEST(ReadTiff, EveryCompressionGivesTheSamePixels)
{
    for (const int compression :
         {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE, COMPRESSION_DEFLATE, COMPRESSION_PACKBITS})
        for (const unsigned int bits : {8u, 16u, 32u}) {
            TiffPicture picture = randomTiff(20, 20, PHOTOMETRIC_RGB, bits, 3);
            picture.compression = std::uint16_t(compression);
            picture.rowsPerStrip = 7;
            expectRgb(picture, tiffFile(picture));
        }
}

TEST(ReadTiff, EitherByteOrderAndBigFilesGiveTheSamePixels)
{
    for (const char* const mode : {"wl", "wb", "wl8", "wb8"})
        for (const unsigned int bits : {8u, 16u, 32u}) {
            SCOPED_TRACE(mode);
            const TiffPicture picture = randomTiff(9, 7, PHOTOMETRIC_RGB, bits, 3);
            expectRgb(picture, tiffFile(picture, {}, mode));
        }
}

TEST(ReadTiff, OnePixelIsEnough)
{
    for (const unsigned int bits : {8u, 16u, 32u}) {
        const TiffPicture picture = randomTiff(1, 1, PHOTOMETRIC_RGB, bits, 3);
        expectRgb(picture, tiffFile(picture));
    }
}

TEST(ReadTiff, GreyComesOutInSrgbAndReportsNoProfile)
{
    for (const unsigned int bits : {8u, 16u, 32u})
        for (const int photometric : {PHOTOMETRIC_MINISBLACK, PHOTOMETRIC_MINISWHITE}) {
            SCOPED_TRACE(testing::Message() << bits << " bits, photometric " << photometric);
            const TiffPicture picture = randomTiff(35, 20, unsigned(photometric), bits, 1);
            for (const TiffPicture& layout : layoutsOf(picture))
                expectConverted(picture, tiffFile(layout), PT_GRAY, photometric == PHOTOMETRIC_MINISWHITE,
                                greyProfile());
        }
}

TEST(ReadTiff, MinimumIsWhiteReversesGrey)
{
    TiffPicture picture{2, 1, PHOTOMETRIC_MINISWHITE, 8, SAMPLEFORMAT_UINT, 1, {0, 255}};
    const ReadResult result = readTiff(tiffFile(picture));
    ASSERT_TRUE(result.ok);
    EXPECT_EQ(pixelAt(result.image, 0, 0), (Pixel{65535, 65535, 65535, 65535}));
    EXPECT_EQ(pixelAt(result.image, 1, 0), (Pixel{0, 0, 0, 65535}));
}

TiffTags withIcc(const Profile& profile)
{
    return [icc = savedBytes(profile.get())](TIFF* tiff) { setIccTag(tiff, icc); };
}

TEST(ReadTiff, SeparatedIsReadByItsNumberOfChannels)
{
    const struct {
        unsigned int channels, type;
        cmsColorSpaceSignature space;
    } kinds[] = {{2, PT_MCH2, cmsSigMCH2Data}, {3, PT_MCH3, cmsSigMCH3Data}, {4, PT_CMYK, cmsSigCmykData}};
    for (const auto& [channels, type, space] : kinds)
        for (const unsigned int bits : {8u, 16u, 32u}) {
            SCOPED_TRACE(testing::Message() << channels << " channels of " << bits);
            const Profile profile = tableProfile(space);
            const TiffPicture picture = randomTiff(20, 9, PHOTOMETRIC_SEPARATED, bits, channels);
            TiffPicture strips = picture, planarTiles = picture;
            strips.rowsPerStrip = 4;
            planarTiles.planar = true;
            planarTiles.tileWidth = planarTiles.tileLength = 16;
            for (const TiffPicture& layout : {strips, planarTiles})
                expectConverted(picture, tiffFile(layout, withIcc(profile)), type, false, reopened(profile));
        }
}

TEST(ReadTiff, SeparatedOfOneChannelNeedsNoProfileAndOthersDo)
{
    const TiffPicture one = randomTiff(9, 9, PHOTOMETRIC_SEPARATED, 8, 1);
    expectConverted(one, tiffFile(one), PT_GRAY, false, greyProfile());
    for (const unsigned int channels : {2u, 3u, 4u, 5u, 15u})
        EXPECT_FALSE(readTiff(tiffFile(randomTiff(9, 9, PHOTOMETRIC_SEPARATED, 8, channels))).ok) << channels;
}

TEST(ReadTiff, InksBeyondFourAreExtraSamplesAsLibtiffCountsThem)
{
    const QuietTiff quiet;
    const Profile profile = tableProfile(cmsSigCmykData);
    for (const unsigned int samples : {5u, 8u, 11u}) {
        const TiffPicture picture = randomTiff(9, 9, PHOTOMETRIC_SEPARATED, 8, samples);
        TiffPicture counted = picture;
        counted.extraSamples.assign(samples - 4, EXTRASAMPLE_UNSPECIFIED);
        SCOPED_TRACE(samples);
        expectConverted(counted, tiffFile(picture, withIcc(profile)), PT_CMYK, false, reopened(profile));
    }
    for (const unsigned int samples : {12u, 15u, 16u, 40u})
        EXPECT_FALSE(readTiff(tiffFile(randomTiff(9, 9, PHOTOMETRIC_SEPARATED, 8, samples), withIcc(profile))).ok);
}

TEST(ReadTiff, SeparatedExtraSamplesAreNoChannels)
{
    const Profile profile = tableProfile(cmsSigCmykData);
    TiffPicture picture = randomTiff(9, 9, PHOTOMETRIC_SEPARATED, 8, 5);
    picture.extraSamples = {EXTRASAMPLE_UNASSALPHA};
    expectConverted(picture, tiffFile(picture, withIcc(profile)), PT_CMYK, false, reopened(profile));
}

Bytes yCbCrFile(const TiffPicture& picture, unsigned int horizontal, unsigned int vertical, const Profile& profile)
{
    return tiffFile(picture, [&](TIFF* tiff) {
        TIFFSetField(tiff, TIFFTAG_YCBCRSUBSAMPLING, horizontal, vertical);
        if (profile)
            setIccTag(tiff, savedBytes(profile.get()));
    });
}

TEST(ReadTiff, YCbCrIsReadWithAProfileOfItsOwnAndWithoutSubsampling)
{
    const TiffPicture picture = randomTiff(16, 16, PHOTOMETRIC_YCBCR, 8, 3);
    const Profile profile = tableProfile(cmsSigYCbCrData);
    expectConverted(picture, yCbCrFile(picture, 1, 1, profile), PT_YCbCr, false, reopened(profile));
    EXPECT_FALSE(readTiff(yCbCrFile(picture, 1, 1, nullptr)).ok);
    EXPECT_FALSE(readTiff(yCbCrFile(picture, 1, 1, rgbProfile(1.8, "RGB"))).ok);
    // Two pixels in a row take six bytes with and without subsampling.
    for (const TiffPicture& any : {picture, randomTiff(2, 1, PHOTOMETRIC_YCBCR, 8, 3)}) {
        EXPECT_FALSE(readTiff(yCbCrFile(any, 2, 1, profile)).ok);
        EXPECT_FALSE(readTiff(yCbCrFile(any, 1, 2, profile)).ok);
        EXPECT_FALSE(readTiff(yCbCrFile(any, 2, 2, profile)).ok);
    }
}

TEST(ReadTiff, OtherPhotometricsAreRefused)
{
    for (const unsigned int photometric : {unsigned(PHOTOMETRIC_MASK), unsigned(PHOTOMETRIC_CIELAB),
                                           unsigned(PHOTOMETRIC_ITULAB), 32803u, unsigned(PHOTOMETRIC_LOGL), 12345u})
        EXPECT_FALSE(readTiff(tiffFile(randomTiff(8, 8, photometric, 8, 3))).ok) << photometric;
    const Bytes palette = tiffFile(randomTiff(8, 8, PHOTOMETRIC_PALETTE, 8, 1), [](TIFF* tiff) {
        std::vector<std::uint16_t> colors(256, 1000);
        TIFFSetField(tiff, TIFFTAG_COLORMAP, colors.data(), colors.data(), colors.data());
    });
    EXPECT_FALSE(readTiff(palette).ok);
}

TEST(ReadTiff, LogLuvWithoutAProfileOfItsOwnIsRefused)
{
    TiffPicture picture = randomTiff(16, 16, PHOTOMETRIC_LOGLUV, 16, 3);
    picture.sampleFormat = SAMPLEFORMAT_INT;
    picture.compression = COMPRESSION_SGILOG;
    const auto tags = [](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_SGILOGDATAFMT, SGILOGDATAFMT_16BIT); };
    EXPECT_FALSE(readTiff(tiffFile(picture, tags)).ok);
}

TEST(ReadTiff, BitsPerSampleOtherThanByteWordAndFloatAreRefused)
{
    for (const unsigned int bits : {24u, 64u, 128u}) {
        TiffPicture picture = randomTiff(8, 8, PHOTOMETRIC_RGB, bits, 3);
        EXPECT_FALSE(readTiff(tiffFile(picture)).ok) << bits;
        picture.sampleFormat = SAMPLEFORMAT_IEEEFP;
        EXPECT_FALSE(readTiff(tiffFile(picture)).ok) << bits;
    }
    // Two and four pixels a byte: a picture of bytes serves as their rows.
    for (const int bits : {1, 2, 4}) {
        const TiffPicture bytes = randomTiff(8, 8, PHOTOMETRIC_MINISBLACK, 8, 1);
        EXPECT_FALSE(readTiff(tiffFile(bytes,
                                       [&](TIFF* tiff) {
                                           TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, bits);
                                           TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 64 / bits);
                                       }))
                         .ok)
            << bits;
    }
}

TEST(ReadTiff, FloatSamplesHaveThirtyTwoBits)
{
    for (const unsigned int bits : {8u, 16u}) {
        TiffPicture picture = randomTiff(8, 8, PHOTOMETRIC_RGB, bits, 3);
        picture.sampleFormat = SAMPLEFORMAT_IEEEFP;
        EXPECT_FALSE(readTiff(tiffFile(picture)).ok) << bits;
    }
}

TEST(ReadTiff, IntegersOfThirtyTwoBitsHaveNoTransform)
{
    TiffPicture picture = randomTiff(8, 8, PHOTOMETRIC_RGB, 32, 3);
    picture.sampleFormat = SAMPLEFORMAT_UINT;
    EXPECT_FALSE(readTiff(tiffFile(picture)).ok);
}

TEST(ReadTiff, OtherSampleFormatsAreRefused)
{
    for (const int format : {SAMPLEFORMAT_INT, SAMPLEFORMAT_VOID, SAMPLEFORMAT_COMPLEXINT, SAMPLEFORMAT_COMPLEXIEEEFP})
        for (const unsigned int bits : {8u, 16u, 32u}) {
            TiffPicture picture = randomTiff(8, 8, PHOTOMETRIC_RGB, bits, 3);
            picture.sampleFormat = std::uint16_t(format);
            EXPECT_FALSE(readTiff(tiffFile(picture)).ok) << format << ' ' << bits;
        }
}

TEST(ReadTiff, MoreThanSevenExtraSamplesAreRefused)
{
    for (const unsigned int extra : {1u, 6u, 7u}) {
        TiffPicture picture = randomTiff(8, 8, PHOTOMETRIC_RGB, 8, 3 + extra);
        picture.extraSamples.assign(extra, EXTRASAMPLE_UNASSALPHA);
        expectRgb(picture, tiffFile(picture));
    }
    for (const unsigned int extra : {8u, 9u, 16u, 40u}) {
        TiffPicture picture = randomTiff(8, 8, PHOTOMETRIC_RGB, 8, 3 + extra);
        picture.extraSamples.assign(extra, EXTRASAMPLE_UNASSALPHA);
        EXPECT_FALSE(readTiff(tiffFile(picture)).ok) << extra;
    }
}

TEST(ReadTiff, SamplesBeyondTheColorsOfThePhotometricAreUnspecified)
{
    const QuietTiff quiet;
    const TiffPicture picture = randomTiff(9, 9, PHOTOMETRIC_RGB, 8, 4);
    const ReadResult result = readTiff(tiffFile(picture));
    ASSERT_TRUE(result.ok);
    TiffPicture declared = picture;
    declared.extraSamples = {EXTRASAMPLE_UNSPECIFIED};
    EXPECT_TRUE(samePixels(result.image, readTiff(tiffFile(declared)).image));
    EXPECT_EQ(pixelAt(result.image, 4, 4)[3], 65535);
}

TEST(ReadTiff, ExtraSamplesThatLeaveNoColorAreRefused)
{
    const QuietTiff quiet;
    for (const int photometric : {PHOTOMETRIC_MINISBLACK, PHOTOMETRIC_SEPARATED, PHOTOMETRIC_RGB})
        for (const unsigned int samples : {1u, 3u})
            for (const bool planar : {false, true}) {
                TiffPicture picture = randomTiff(8, 8, unsigned(photometric), 8, samples);
                picture.extraSamples.assign(samples, EXTRASAMPLE_UNASSALPHA);
                picture.planar = planar;
                EXPECT_FALSE(readTiff(tiffFile(picture)).ok) << photometric << ' ' << samples;
            }
}

TEST(ReadTiff, WarningsGoToTheHandlersOfTheHost)
{
    static int warnings = 0;
    warnings = 0;
    const TIFFErrorHandler handler = [](const char*, const char*, va_list) { ++warnings; };
    const QuietTiff quiet;                                                // puts the former handlers back
    const Bytes file = tiffFile(randomTiff(9, 9, PHOTOMETRIC_RGB, 8, 4)); // one sample more than its colours
    TIFFSetWarningHandler(handler);
    EXPECT_TRUE(readTiff(file).ok);
    EXPECT_EQ(warnings, 1);
    EXPECT_EQ(TIFFSetWarningHandler(nullptr), handler);
}

TEST(ReadTiff, RgbIsConvertedToTheProfileAskedFor)
{
    const TiffPicture picture = randomTiff(20, 9, PHOTOMETRIC_RGB, 16, 3);
    const ReadResult result = readTiff(tiffFile(picture), proPhoto());
    ASSERT_TRUE(result.ok);
    EXPECT_EQ(result.image.colorProfile, proPhoto());
    EXPECT_EQ(hashOf(result.profile), Ondrel::DefaultColorProfileHash);
    const Profile to(ColorManager::copyColorProfileByHash(proPhoto()));
    EXPECT_TRUE(samePixels(result.image, tiffPixels(picture, tiffFormat(picture, PT_RGB), sRGB().get(), to.get())));
}

TEST(ReadTiff, AnUnknownProfileAskedForMeansSrgb)
{
    const Profile own = rgbProfile(1.4, "Own");
    const TiffPicture picture = randomTiff(20, 9, PHOTOMETRIC_RGB, 8, 3);
    const Bytes file = tiffFile(picture, withIcc(own));
    for (const Hash& wanted : {kNoHash, Ondrel::NoneColorProfile, wordHash("unknown")}) {
        const ReadResult result = readTiff(file, wanted);
        ASSERT_TRUE(result.ok);
        EXPECT_EQ(result.image.colorProfile, Ondrel::DefaultColorProfileHash);
        EXPECT_EQ(hashOf(result.profile), hashOf(own));
        EXPECT_TRUE(samePixels(result.image,
                               tiffPixels(picture, tiffFormat(picture, PT_RGB), reopened(own).get(), sRGB().get())));
    }
}

TEST(ReadTiff, ATransformRunsEvenFromAProfileToItself)
{
    const Profile profile = flatProfile();
    const TiffPicture picture = randomTiff(20, 9, PHOTOMETRIC_RGB, 16, 3);
    const ReadResult result = readTiff(tiffFile(picture, withIcc(profile)));
    ASSERT_TRUE(result.ok);
    EXPECT_EQ(result.image.colorProfile, hashOf(profile));
    EXPECT_TRUE(samePixels(result.image, tiffPixels(picture, tiffFormat(picture, PT_RGB), reopened(profile).get(),
                                                    reopened(profile).get())));
    const TiffPicture dark{1, 1, PHOTOMETRIC_RGB, 16, SAMPLEFORMAT_UINT, 3, {0, 8, 0, 16, 0, 32}};
    EXPECT_NE(pixelAt(readTiff(tiffFile(dark, withIcc(profile))).image, 0, 0), (Pixel{0x800, 0x1000, 0x2000, 65535}));
}

TEST(ReadTiff, TheOrientationTagIsNotApplied)
{
    const TiffPicture picture = randomTiff(9, 7, PHOTOMETRIC_RGB, 8, 3);
    for (const int orientation : {2, 3, 6, 8})
        expectRgb(picture,
                  tiffFile(picture, [&](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_ORIENTATION, orientation); }));
}

TEST(ReadTiff, OnlyTheFirstImageOfAFileIsRead)
{
    const TemporaryFolder folder;
    const TiffPicture picture = randomTiff(9, 7, PHOTOMETRIC_RGB, 8, 3);
    writeFile(folder.path("a.tif"), tiffFile(picture));
    TIFF* const tiff = TIFFOpen(qPrintable(folder.path("a.tif")), "a");
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 1u);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 1u);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_PALETTE);
    std::uint8_t sample = 0;
    TIFFWriteEncodedStrip(tiff, 0, &sample, 1);
    TIFFClose(tiff);
    expectRgb(picture, readFile(folder.path("a.tif")));
}

TEST(ReadTiff, ReplacesAnImageThatHeldSomethingElse)
{
    const TiffPicture picture = randomTiff(9, 7, PHOTOMETRIC_RGB, 8, 3);
    Image image = randomImage(40, 40, 1);
    image.rawFilters = 7;
    ASSERT_TRUE(ResourceEngine::ReadTIFF(recordOf(tiffFile(picture)), image, nullptr, kNoHash));
    EXPECT_TRUE(samePixels(image, tiffPixels(picture, tiffFormat(picture, PT_RGB), sRGB().get(), sRGB().get())));
    EXPECT_EQ(image.rawFilters, 0u);
}

TEST(ReadTiff, DataThatIsNoTiffIsRefused)
{
    const QuietTiff quiet;
    EXPECT_FALSE(readTiff({}).ok);
    EXPECT_FALSE(readTiff({'I', 'I', 42, 0}).ok);
    EXPECT_FALSE(readTiff({'I', 'I', 42, 0, 0xFF, 0xFF, 0xFF, 0xFF}).ok);
    EXPECT_FALSE(readTiff(randomBytes(5000, 1)).ok);
}

} // namespace

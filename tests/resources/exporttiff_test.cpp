#include "exporting.h"

#include "tests/support/testimages.h"

#include <ondrel/color/colormanager.h>

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace
{

using namespace OndrelTest;
using Ondrel::ColorManager;
using Ondrel::Image;
using Settings = ResourceEngine::ExportTIFFSettings;

std::uint8_t rounded(std::uint16_t v)
{
    return std::uint8_t(std::min(lroundf(float(v) * 0.0038910506f), 255L));
}

Bytes expectedSamples(const Image& image, bool alpha, bool words)
{
    Bytes samples;
    for (unsigned int i = 0; i < image.width * image.height; ++i)
        for (unsigned int c = 0; c < (alpha ? 4u : 3u); ++c) {
            const std::uint16_t v = image.data[i * 4 + c];
            if (words)
                append(samples, {std::uint8_t(v), std::uint8_t(v >> 8)});
            else
                append(samples, {rounded(v)});
        }
    return samples;
}

template <typename Number>
Number tag(TIFF* tiff, unsigned int name)
{
    Number value = 0;
    EXPECT_NE(TIFFGetField(tiff, name, &value), 0) << name;
    return value;
}

void expectCommonTags(TIFF* tiff, unsigned int width, unsigned int height)
{
    EXPECT_EQ(tag<std::uint32_t>(tiff, TIFFTAG_IMAGEWIDTH), width);
    EXPECT_EQ(tag<std::uint32_t>(tiff, TIFFTAG_IMAGELENGTH), height);
    EXPECT_EQ(tag<std::uint16_t>(tiff, TIFFTAG_PLANARCONFIG), PLANARCONFIG_CONTIG);
    EXPECT_EQ(tag<std::uint32_t>(tiff, TIFFTAG_ROWSPERSTRIP), 1u);
    EXPECT_EQ(tag<float>(tiff, TIFFTAG_XRESOLUTION), 90.0f);
    EXPECT_EQ(tag<float>(tiff, TIFFTAG_YRESOLUTION), 90.0f);
    EXPECT_EQ(tag<std::uint16_t>(tiff, TIFFTAG_RESOLUTIONUNIT), RESUNIT_INCH);
    EXPECT_EQ(tag<std::uint16_t>(tiff, TIFFTAG_ORIENTATION), ORIENTATION_TOPLEFT);
    const char* software = nullptr;
    EXPECT_NE(TIFFGetField(tiff, TIFFTAG_SOFTWARE, &software), 0);
    EXPECT_STREQ(software,
                 qPrintable(QCoreApplication::applicationName() + " " + QCoreApplication::applicationVersion()));
    EXPECT_EQ(TIFFNumberOfDirectories(tiff), 1u);
}

class ExportTiff : public testing::Test
{
protected:
    const TemporaryFolder folder;
    const QString file = folder.path("file.tif");

    // The file, which the export to memory has to agree with, but for the byte order.
    Bytes exported(const Image& image, const Settings& settings)
    {
        EXPECT_TRUE(ResourceEngine::ExportTIFF(file, image, settings, nullptr, nullptr));
        const Bytes bytes = readFile(file), memory = inMemory(image, settings);
        EXPECT_EQ(decodeTiff(memory).samples, decodeTiff(bytes).samples);
        EXPECT_EQ(iccTag(memory), iccTag(bytes));
        EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 4), (Bytes{'I', 'I', 42, 0}));
        EXPECT_EQ(Bytes(memory.begin(), memory.begin() + 4), (Bytes{'M', 'M', 0, 42}));
        return bytes;
    }
    static Bytes inMemory(const Image& image, const Settings& settings)
    {
        Bytes data;
        EXPECT_TRUE(ResourceEngine::ExportTIFFToMemory(data, image, settings, nullptr, nullptr));
        return data;
    }
};

TEST_F(ExportTiff, HoldsTheSamplesOfEveryKind)
{
    for (const unsigned int alpha : {0u, 1u})
        for (const unsigned int depth : {0u, 1u})
            for (const auto& [width, height] : {std::pair(1u, 1u), std::pair(7u, 5u), std::pair(3u, 230u)}) {
                const Image image = standardImage(width, height);
                const Settings settings = tiffSettings(Ondrel::NoneColorProfile, alpha, depth);
                for (const Bytes& bytes : {exported(image, settings), inMemory(image, settings)}) {
                    const TiffPicture picture = decodeTiff(bytes);
                    EXPECT_EQ(picture.photometric, PHOTOMETRIC_RGB);
                    EXPECT_EQ(picture.samplesPerPixel, alpha == 1 ? 4 : 3);
                    EXPECT_EQ(picture.extraSamples, alpha == 1 ? std::vector<std::uint16_t>{EXTRASAMPLE_UNASSALPHA}
                                                               : std::vector<std::uint16_t>());
                    EXPECT_EQ(picture.bits, depth == 1 ? 16 : 8);
                    EXPECT_EQ(picture.sampleFormat, SAMPLEFORMAT_UINT);
                    EXPECT_EQ(picture.samples, expectedSamples(image, alpha == 1, depth == 1));
                    EXPECT_EQ(iccTag(bytes), Bytes());
                    withTiff(bytes, [w = width, h = height](TIFF* tiff) { expectCommonTags(tiff, w, h); });
                }
            }
}

TEST_F(ExportTiff, EveryValueIsRoundedToEightBits)
{
    const Image image = everyValue();
    EXPECT_EQ(decodeTiff(exported(image, tiffSettings(Ondrel::NoneColorProfile, 1, 0))).samples,
              expectedSamples(image, true, false));
    Image half(1, 1);
    half.Fill(32768, 65535, 65406, 128);
    EXPECT_EQ(decodeTiff(exported(half, tiffSettings(Ondrel::NoneColorProfile, 1, 0))).samples,
              (Bytes{128, 255, 254, 0}));
}

TEST_F(ExportTiff, EveryValueIsKeptInSixteenBits)
{
    const Image image = everyValue();
    EXPECT_EQ(decodeTiff(exported(image, tiffSettings(Ondrel::NoneColorProfile, 1, 1))).samples,
              expectedSamples(image, true, true));
}

TEST_F(ExportTiff, AnythingAsksForFourSamplesAndOnlyOneSaysWhatTheFourthIs)
{
    const QuietTiff quiet; // libtiff wonders about the fourth sample
    const Image image = standardImage(4, 4);
    const TiffPicture picture = decodeTiff(exported(image, tiffSettings(Ondrel::NoneColorProfile, 2, 2)));
    EXPECT_EQ(picture.samplesPerPixel, 4);
    EXPECT_EQ(picture.extraSamples, std::vector<std::uint16_t>{EXTRASAMPLE_UNSPECIFIED}); // libtiff's own word
    EXPECT_EQ(picture.bits, 16);
    EXPECT_EQ(picture.samples, expectedSamples(image, true, true));
}

TEST_F(ExportTiff, CompressionIsChosenByNumber)
{
    const QuietTiff quiet; // libtiff would rather have another word for Deflate
    const Image image = standardImage(40, 30);
    const std::pair<unsigned int, int> compressions[] = {{0, COMPRESSION_NONE}, {1, COMPRESSION_DEFLATE},
                                                         {2, COMPRESSION_LZW},  {3, COMPRESSION_PACKBITS},
                                                         {4, COMPRESSION_NONE}, {~0u, COMPRESSION_NONE}};
    for (const auto& [number, compression] : compressions) {
        Settings settings = tiffSettings(Ondrel::NoneColorProfile, 1, 1);
        settings.compression = number;
        const TiffPicture picture = decodeTiff(exported(image, settings));
        EXPECT_EQ(picture.compression, compression);
        EXPECT_EQ(picture.samples, expectedSamples(image, true, true));
    }
}

TEST_F(ExportTiff, NamesTheApplicationAndItsVersionAsItsSoftware)
{
    const QString name = QCoreApplication::applicationName(), version = QCoreApplication::applicationVersion();
    QCoreApplication::setApplicationName(QString::fromUtf8("Größe"));
    QCoreApplication::setApplicationVersion("4.2");
    const Bytes bytes = inMemory(standardImage(2, 2), tiffSettings(Ondrel::NoneColorProfile, 1, 1));
    QCoreApplication::setApplicationName(name);
    QCoreApplication::setApplicationVersion(version);
    withTiff(bytes, [](TIFF* tiff) {
        const char* software = nullptr;
        ASSERT_NE(TIFFGetField(tiff, TIFFTAG_SOFTWARE, &software), 0);
        EXPECT_STREQ(software, "Größe 4.2");
    });
}

TEST_F(ExportTiff, TheOwnProfileIsEmbedded)
{
    const Image image = standardImage(4, 4);
    const Bytes bytes = exported(image, tiffSettings(Ondrel::EmbeddedColorProfile, 1, 1));
    EXPECT_EQ(iccTag(bytes), ColorManager::copyColorProfileDataByHash(Ondrel::DefaultColorProfileHash));
    EXPECT_EQ(decodeTiff(bytes).samples, expectedSamples(image, true, true));
}

TEST_F(ExportTiff, WithoutAProfileNoneIsEmbedded)
{
    Image image = standardImage(4, 4);
    image.colorProfile = wordHash("unknown");
    const Bytes bytes = exported(image, tiffSettings(Ondrel::EmbeddedColorProfile, 1, 1));
    EXPECT_EQ(iccTag(bytes), Bytes());
    EXPECT_EQ(decodeTiff(bytes).samples, expectedSamples(image, true, true));
}

TEST_F(ExportTiff, AnotherProfileConvertsThePixels)
{
    Image image = standardImage(20, 20), copy = image;
    Bytes icc;
    ResourceEngine::PrepareImageForExport(copy, proPhoto(), icc);
    const Bytes bytes = inMemory(image, tiffSettings(proPhoto(), 1, 1));
    EXPECT_EQ(decodeTiff(bytes).samples, expectedSamples(copy, true, true));
    EXPECT_EQ(iccTag(bytes), icc);
}

TEST_F(ExportTiff, ReplacesWhatTheMemoryHeld)
{
    const Image image = standardImage(4, 4);
    const Settings settings = tiffSettings(Ondrel::NoneColorProfile, 1, 1);
    Bytes data(100000, 7);
    ASSERT_TRUE(ResourceEngine::ExportTIFFToMemory(data, image, settings, nullptr, nullptr));
    EXPECT_EQ(data, inMemory(image, settings));
}

TEST_F(ExportTiff, ComesBackFromTheReader)
{
    const Image image = standardImage(13, 9);
    const ReadResult result = readTiff(inMemory(image, tiffSettings(Ondrel::EmbeddedColorProfile, 1, 1)));
    ASSERT_TRUE(result.ok);
    EXPECT_EQ(result.image.colorProfile, Ondrel::DefaultColorProfileHash);
    for (unsigned int i = 0; i < 13 * 9; ++i)
        EXPECT_EQ(result.image.data[i * 4 + 3], image.data[i * 4 + 3]);
}

TEST_F(ExportTiff, AnImageShrunkInPlaceIsWrittenByItsSize)
{
    const Image image = shrunkImage(7, 5, 1);
    EXPECT_EQ(decodeTiff(inMemory(image, tiffSettings(Ondrel::NoneColorProfile, 1, 1))).samples,
              expectedSamples(image, true, true));
}

TEST_F(ExportTiff, AnImageWithoutPixelsIsRefusedInMemory)
{
    for (const Image& image : {Image(), Image(0, 5), Image(5, 0)}) {
        Bytes data;
        Progress progress;
        EXPECT_FALSE(ResourceEngine::ExportTIFFToMemory(data, image, tiffSettings(Ondrel::NoneColorProfile, 1, 1),
                                                        Progress::report, &progress));
        EXPECT_TRUE(progress.percents.empty());
    }
}

// ---- CMYK

class ExportCmykTiff : public testing::Test
{
protected:
    const Profile profile = tableProfile(cmsSigCmykData);
    const RegisteredProfile registered{profile};
    const Bytes cmyk = randomBytes(7 * 5 * 4, 1);

    bool run(Bytes& data, const Settings& settings) const
    {
        return ResourceEngine::ExportCMYKTIFFToMemory(data, cmyk, 7, 5, settings, nullptr, nullptr);
    }
    Bytes exported(const Settings& settings) const
    {
        Bytes data;
        EXPECT_TRUE(run(data, settings));
        return data;
    }
};

TEST_F(ExportCmykTiff, HoldsTheBytesAndTheProfile)
{
    const QuietTiff quiet;
    const std::pair<unsigned int, int> compressions[] = {
        {0, COMPRESSION_NONE}, {1, COMPRESSION_DEFLATE}, {2, COMPRESSION_LZW}, {3, COMPRESSION_PACKBITS}};
    for (const auto& [number, compression] : compressions) {
        Settings settings = tiffSettings(registered.hash(), 0, 0);
        settings.compression = number;
        const Bytes bytes = exported(settings);
        EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 4), (Bytes{'M', 'M', 0, 42}));
        const TiffPicture picture = decodeTiff(bytes);
        EXPECT_EQ(picture.photometric, PHOTOMETRIC_SEPARATED);
        EXPECT_EQ(picture.samplesPerPixel, 4);
        EXPECT_TRUE(picture.extraSamples.empty());
        EXPECT_EQ(picture.bits, 8);
        EXPECT_EQ(picture.compression, compression);
        EXPECT_EQ(picture.samples, cmyk);
        EXPECT_EQ(iccTag(bytes), savedBytes(profile.get()));
        withTiff(bytes, [](TIFF* tiff) {
            expectCommonTags(tiff, 7, 5);
            EXPECT_EQ(tag<std::uint16_t>(tiff, TIFFTAG_INKSET), INKSET_CMYK);
        });
    }
}

TEST_F(ExportCmykTiff, IgnoresAlphaAndBitDepth)
{
    EXPECT_EQ(exported(tiffSettings(registered.hash(), 1, 1)), exported(tiffSettings(registered.hash(), 0, 0)));
}

TEST_F(ExportCmykTiff, MustHaveAProfile)
{
    const QuietTiff quiet;
    for (const Hash& hash : {Ondrel::NoneColorProfile, Ondrel::EmbeddedColorProfile, Hash{}, wordHash("unknown")}) {
        Bytes data;
        Progress progress;
        EXPECT_FALSE(ResourceEngine::ExportCMYKTIFFToMemory(data, cmyk, 7, 5, tiffSettings(hash, 0, 0),
                                                            Progress::report, &progress));
        EXPECT_TRUE(progress.percents.empty());
    }
}

TEST_F(ExportCmykTiff, ReplacesWhatTheMemoryHeld)
{
    Bytes data(100000, 7);
    ASSERT_TRUE(run(data, tiffSettings(registered.hash(), 0, 0)));
    EXPECT_EQ(data, exported(tiffSettings(registered.hash(), 0, 0)));
}

TEST_F(ExportCmykTiff, FewerSamplesThanTheSizeAsksForAreRefused)
{
    for (const auto& [width, height] : {std::pair(7u, 6u), {8u, 5u}, {65536u, 65536u}, {0x40000000u, 1u}, {0u, 0u}}) {
        Bytes data;
        EXPECT_FALSE(ResourceEngine::ExportCMYKTIFFToMemory(data, cmyk, width, height,
                                                            tiffSettings(registered.hash(), 0, 0), nullptr, nullptr));
    }
}

TEST_F(ExportCmykTiff, ComesBackFromTheReader)
{
    const ReadResult result = readTiff(exported(tiffSettings(registered.hash(), 0, 0)));
    ASSERT_TRUE(result.ok);
    EXPECT_EQ(result.image.colorProfile, Ondrel::DefaultColorProfileHash);
    const cmsUInt32Number format = COLORSPACE_SH(PT_CMYK) | CHANNELS_SH(4) | BYTES_SH(1);
    EXPECT_TRUE(samePixels(result.image, transformed(cmyk, 7, 5, format, reopened(profile).get(), sRGB().get())));
}

} // namespace

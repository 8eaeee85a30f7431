#include "exporting.h"

#include "tests/support/testimages.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>

namespace
{

using namespace OndrelTest;
using Ondrel::ColorManager;
using Ondrel::Image;

std::uint8_t truncated(std::uint16_t v)
{
    return static_cast<std::uint8_t>(float(v) / 65535.0f * 255.0f);
}

// The rows that the file is to hold.
PngPicture expectedPicture(const Image& image, bool alpha, bool words)
{
    PngPicture picture{
        image.width, image.height, alpha ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB, words ? 16 : 8, {}};
    for (unsigned int i = 0; i < image.width * image.height; ++i)
        for (unsigned int c = 0; c < (alpha ? 4u : 3u); ++c) {
            const std::uint16_t v = image.data[i * 4 + c];
            if (words)
                append(picture.rows, {std::uint8_t(v >> 8), std::uint8_t(v)});
            else
                append(picture.rows, {truncated(v)});
        }
    return picture;
}

class ExportPng : public testing::Test
{
protected:
    const TemporaryFolder folder;
    const QString file = folder.path("file.png");

    bool run(const Image& image, const ResourceEngine::ExportPNGSettings& settings)
    {
        return ResourceEngine::ExportPNG(file, image, settings, nullptr, nullptr);
    }
    PngContent exported(const Image& image, const ResourceEngine::ExportPNGSettings& settings)
    {
        EXPECT_TRUE(run(image, settings));
        return decodePng(readFile(file));
    }
};

TEST_F(ExportPng, HoldsTheSamplesOfEveryKind)
{
    for (const unsigned int alpha : {0u, 1u})
        for (const unsigned int depth : {0u, 1u})
            for (const auto& [width, height] : {std::pair(1u, 1u), std::pair(7u, 5u), std::pair(3u, 230u)}) {
                const Image image = standardImage(width, height);
                const PngContent content = exported(image, pngSettings(Ondrel::NoneColorProfile, alpha, depth));
                const PngPicture expected = expectedPicture(image, alpha == 1, depth == 1);
                EXPECT_EQ(content.picture.width, width);
                EXPECT_EQ(content.picture.height, height);
                EXPECT_EQ(content.picture.colorType, expected.colorType);
                EXPECT_EQ(content.picture.bitDepth, expected.bitDepth);
                EXPECT_FALSE(content.picture.interlaced);
                EXPECT_EQ(content.picture.rows, expected.rows);
                EXPECT_EQ(content.otherInfo, 0u);
            }
}

TEST_F(ExportPng, EveryValueIsTruncatedToEightBits)
{
    const Image image = everyValue();
    for (const unsigned int alpha : {0u, 1u})
        EXPECT_EQ(exported(image, pngSettings(Ondrel::NoneColorProfile, alpha, 0)).picture.rows,
                  expectedPicture(image, alpha == 1, false).rows);
    Image half(1, 1);
    half.Fill(32768, 65534, 65535, 257);
    EXPECT_EQ(exported(half, pngSettings(Ondrel::NoneColorProfile, 1, 0)).picture.rows, (Bytes{127, 254, 255, 1}));
}

TEST_F(ExportPng, EveryValueIsKeptInSixteenBits)
{
    const Image image = everyValue();
    for (const unsigned int alpha : {0u, 1u})
        EXPECT_EQ(exported(image, pngSettings(Ondrel::NoneColorProfile, alpha, 1)).picture.rows,
                  expectedPicture(image, alpha == 1, true).rows);
}

TEST_F(ExportPng, OnlyOneAsksForAlphaAndAnythingForSixteenBits)
{
    const Image image = standardImage(4, 4);
    EXPECT_EQ(exported(image, pngSettings(Ondrel::NoneColorProfile, 2, 0)).picture.colorType, PNG_COLOR_TYPE_RGB);
    EXPECT_EQ(exported(image, pngSettings(Ondrel::NoneColorProfile, ~0u, 1)).picture.colorType, PNG_COLOR_TYPE_RGB);
    EXPECT_EQ(exported(image, pngSettings(Ondrel::NoneColorProfile, 1, 2)).picture.bitDepth, 16);
    EXPECT_EQ(exported(image, pngSettings(Ondrel::NoneColorProfile, 1, ~0u)).picture.bitDepth, 16);
}

TEST_F(ExportPng, WithoutAlphaTransparentColorsAreUnchanged)
{
    Image image(2, 1);
    image.Fill(65535, 32768, 257, 0);
    EXPECT_EQ(exported(image, pngSettings(Ondrel::NoneColorProfile, 0, 0)).picture.rows,
              (Bytes{255, 127, 1, 255, 127, 1}));
}

// The file that libpng writes of these rows by itself.
Bytes writtenByLibpng(PngPicture picture, int level, const std::string& name, const Bytes& icc)
{
    Bytes bytes;
    png_struct* png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_info* info = png_create_info_struct(png);
    png_set_write_fn(
        png, &bytes,
        [](png_struct* self, png_byte* data, std::size_t size) {
            append(*static_cast<Bytes*>(png_get_io_ptr(self)), Bytes(data, data + size));
        },
        [](png_struct*) {});
    png_set_IHDR(png, info, picture.width, picture.height, picture.bitDepth, picture.colorType, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_compression_level(png, level);
    if (!icc.empty())
        png_set_iCCP(png, info, name.c_str(), 0, icc.data(), png_uint_32(icc.size()));
    png_write_info(png, info);
    png_set_flush(png, 100);
    for (unsigned int y = 0; y < picture.height; ++y)
        png_write_row(png, &picture.rows[picture.rowBytes() * y]);
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return bytes;
}

TEST_F(ExportPng, IsTheFileThatLibpngWritesFlushingEveryHundredRows)
{
    const Image image = standardImage(60, 250);
    const Bytes icc = ColorManager::copyColorProfileDataByHash(Ondrel::DefaultColorProfileHash);
    for (const int level : {0, 1, 6, 9})
        for (const unsigned int alpha : {0u, 1u})
            for (const unsigned int depth : {0u, 1u}) {
                auto settings = pngSettings(Ondrel::EmbeddedColorProfile, alpha, depth);
                settings.compressionLevel = level;
                ASSERT_TRUE(run(image, settings));
                EXPECT_EQ(readFile(file),
                          writtenByLibpng(expectedPicture(image, alpha == 1, depth == 1), level, "sRGB built-in", icc))
                    << level << ' ' << alpha << ' ' << depth;
            }
}

TEST_F(ExportPng, ADescriptionNamesTheProfile)
{
    const Profile own = rgbProfile(1.9, "A name of its own");
    const RegisteredProfile registered(own);
    Image image = standardImage(4, 4);
    image.colorProfile = registered.hash();
    const PngContent content = exported(image, pngSettings(Ondrel::EmbeddedColorProfile, 1, 1));
    EXPECT_EQ(content.iccName, "A name of its own");
    EXPECT_EQ(content.icc, savedBytes(own.get()));
    EXPECT_EQ(content.picture.rows, expectedPicture(image, true, true).rows);
}

TEST_F(ExportPng, ALongDescriptionIsCut)
{
    const RegisteredProfile registered(rgbProfile(1.9, std::string(200, 'n')));
    Image image = standardImage(4, 4);
    image.colorProfile = registered.hash();
    EXPECT_EQ(exported(image, pngSettings(Ondrel::EmbeddedColorProfile, 1, 1)).iccName, std::string(79, 'n'));
}

TEST_F(ExportPng, WithoutAProfileNoneIsEmbedded)
{
    Image image = standardImage(4, 4);
    EXPECT_EQ(exported(image, pngSettings(Ondrel::NoneColorProfile, 1, 1)).icc, Bytes());
    image.colorProfile = wordHash("unknown");
    const PngContent content = exported(image, pngSettings(Ondrel::EmbeddedColorProfile, 1, 1));
    EXPECT_EQ(content.icc, Bytes());
    EXPECT_EQ(content.picture.rows, expectedPicture(image, true, true).rows);
}

TEST_F(ExportPng, AnotherProfileConvertsThePixels)
{
    Image image = standardImage(20, 20), copy = image;
    Bytes icc;
    ResourceEngine::PrepareImageForExport(copy, proPhoto(), icc);
    const PngContent content = exported(image, pngSettings(proPhoto(), 1, 1));
    EXPECT_EQ(content.picture.rows, expectedPicture(copy, true, true).rows);
    EXPECT_EQ(content.icc, icc);
    EXPECT_EQ(content.iccName, "ProPhoto RGB");
}

TEST_F(ExportPng, ComesBackFromTheReader)
{
    const Image image = standardImage(13, 9);
    ASSERT_TRUE(run(image, pngSettings(Ondrel::EmbeddedColorProfile, 1, 1)));
    const ReadResult result = readPng(readFile(file));
    ASSERT_TRUE(result.ok);
    EXPECT_TRUE(samePixels(result.image, image));
    EXPECT_EQ(result.image.colorProfile, Ondrel::DefaultColorProfileHash);
}

TEST_F(ExportPng, AProfileThatLibpngRefusesIsFailure)
{
    // Another colour space than the picture's, and one without a description to name it by.
    const RegisteredProfile nameless(rgbProfile(1.9, "")), cmyk(tableProfile(cmsSigCmykData));
    Image image = standardImage(4, 4);
    for (const Hash& own : {hashOf(Profile(Ondrel::CreateLabColorProfile())), nameless.hash(), cmyk.hash()}) {
        image.colorProfile = own;
        Progress progress;
        EXPECT_FALSE(ResourceEngine::ExportPNG(file, image, pngSettings(Ondrel::EmbeddedColorProfile, 1, 1),
                                               Progress::report, &progress));
        EXPECT_TRUE(progress.percents.empty());
    }
}

TEST_F(ExportPng, AnImageShrunkInPlaceIsWrittenByItsSize)
{
    const Image image = shrunkImage(7, 5, 1);
    EXPECT_EQ(exported(image, pngSettings(Ondrel::NoneColorProfile, 1, 1)).picture.rows,
              expectedPicture(image, true, true).rows);
    EXPECT_EQ(exported(image, pngSettings(Ondrel::NoneColorProfile, 0, 0)).picture.rows,
              expectedPicture(image, false, false).rows);
}

} // namespace

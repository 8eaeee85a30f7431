#include "decoding.h"

#include "tests/support/testimages.h"

#include <ondrel/color/colormanager.h>

#include <algorithm>

namespace
{

using namespace OndrelTest;
using Ondrel::Image;

bool hasAlpha(const PngPicture& picture)
{
    return (picture.colorType & PNG_COLOR_MASK_ALPHA) != 0;
}

// A sample of any depth in 16 bits: its bits repeated.
std::uint16_t expanded(unsigned int sample, int depth)
{
    return std::uint16_t(depth == 16 ? sample : sample * (65535u / ((1u << depth) - 1)));
}

// The colour samples of one pixel, and its alpha.
std::vector<std::uint16_t> pixelOf(const PngPicture& picture, unsigned int x, unsigned int y)
{
    std::vector<std::uint16_t> pixel;
    if (picture.colorType == PNG_COLOR_TYPE_PALETTE) {
        const png_color& color = picture.palette[picture.sample(x, y, 0)];
        pixel = {expanded(color.red, 8), expanded(color.green, 8), expanded(color.blue, 8)};
    } else {
        for (unsigned int c = 0; c < picture.channels(); ++c)
            pixel.push_back(expanded(picture.sample(x, y, c), picture.bitDepth));
    }
    if (!hasAlpha(picture))
        pixel.push_back(65535);
    return pixel;
}

// What the file's samples become: grey keeps two samples a pixel, side by side from the start of the row.
Image expectedImage(const PngPicture& picture)
{
    Image image(picture.width, picture.height);
    for (unsigned int y = 0; y < picture.height; ++y) {
        std::uint16_t* to = image.data + std::size_t(y) * picture.width * 4;
        for (unsigned int x = 0; x < picture.width; ++x) {
            const std::vector<std::uint16_t> pixel = pixelOf(picture, x, y);
            to = std::copy(pixel.begin(), pixel.end(), to);
        }
    }
    return image;
}

struct Kind {
    int colorType, bitDepth;
};

const Kind kKinds[] = {{PNG_COLOR_TYPE_GRAY, 1},        {PNG_COLOR_TYPE_GRAY, 2},      {PNG_COLOR_TYPE_GRAY, 4},
                       {PNG_COLOR_TYPE_GRAY, 8},        {PNG_COLOR_TYPE_GRAY, 16},     {PNG_COLOR_TYPE_GRAY_ALPHA, 8},
                       {PNG_COLOR_TYPE_GRAY_ALPHA, 16}, {PNG_COLOR_TYPE_PALETTE, 1},   {PNG_COLOR_TYPE_PALETTE, 2},
                       {PNG_COLOR_TYPE_PALETTE, 4},     {PNG_COLOR_TYPE_PALETTE, 8},   {PNG_COLOR_TYPE_RGB, 8},
                       {PNG_COLOR_TYPE_RGB, 16},        {PNG_COLOR_TYPE_RGB_ALPHA, 8}, {PNG_COLOR_TYPE_RGB_ALPHA, 16}};

TEST(ReadPng, WidensEveryColorTypeAndDepth)
{
    for (const Kind& kind : kKinds)
        for (const bool interlaced : {false, true})
            for (const auto& [width, height] : {std::pair(1u, 1u), std::pair(13u, 9u), std::pair(3u, 40u)}) {
                SCOPED_TRACE(testing::Message() << kind.colorType << ' ' << kind.bitDepth << ' ' << interlaced);
                PngPicture picture = randomPng(width, height, kind.colorType, kind.bitDepth);
                picture.interlaced = interlaced;
                const ReadResult result = readPng(pngFile(picture));
                ASSERT_TRUE(result.ok);
                EXPECT_TRUE(samePixels(result.image, expectedImage(picture)));
            }
}

TEST(ReadPng, AgreesWithLibpng)
{
    for (const Kind& kind : kKinds) {
        const Bytes file = pngFile(randomPng(17, 11, kind.colorType, kind.bitDepth));
        EXPECT_TRUE(samePixels(readPng(file).image, pngPixels(file))) << kind.colorType << ' ' << kind.bitDepth;
    }
}

TEST(ReadPng, GreyFillsTheFirstHalfOfEachRow)
{
    PngPicture picture{3, 2, PNG_COLOR_TYPE_GRAY_ALPHA, 8, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}};
    const ReadResult result = readPng(pngFile(picture));
    ASSERT_TRUE(result.ok);
    const Pixel expected[] = {{257, 514, 771, 1028},    {1285, 1542, 0, 0}, {0, 0, 0, 0},
                              {1799, 2056, 2313, 2570}, {2827, 3084, 0, 0}, {0, 0, 0, 0}};
    for (unsigned int i = 0; i < 6; ++i)
        EXPECT_EQ(pixelAt(result.image, i % 3, i / 3), expected[i]) << i;
}

TEST(ReadPng, ATransparentColorBecomesAlpha)
{
    for (const int depth : {8, 16}) {
        PngPicture picture = randomPng(8, 8, PNG_COLOR_TYPE_RGB, depth);
        png_color_16 transparent{};
        transparent.red = png_uint_16(picture.sample(3, 2, 0));
        transparent.green = png_uint_16(picture.sample(3, 2, 1));
        transparent.blue = png_uint_16(picture.sample(3, 2, 2));
        Image expected = expectedImage(picture);
        expected.data[(2 * 8 + 3) * 4 + 3] = 0;
        const ReadResult result = readPng(pngFile(
            picture, [&](png_struct* png, png_info* info) { png_set_tRNS(png, info, nullptr, 0, &transparent); }));
        ASSERT_TRUE(result.ok);
        EXPECT_TRUE(samePixels(result.image, expected));
    }
}

TEST(ReadPng, ATransparentGreyBecomesAlpha)
{
    for (const int depth : {1, 2, 4, 8, 16}) {
        PngPicture picture = randomPng(9, 5, PNG_COLOR_TYPE_GRAY, depth);
        png_color_16 transparent{};
        transparent.gray = png_uint_16(picture.sample(3, 2, 0));
        Image expected = expectedImage(picture);
        for (unsigned int i = 0; i < 45; ++i)
            if (picture.sample(i % 9, i / 9, 0) == transparent.gray)
                expected.data[i / 9 * 36 + i % 9 * 2 + 1] = 0;
        const ReadResult result = readPng(pngFile(
            picture, [&](png_struct* png, png_info* info) { png_set_tRNS(png, info, nullptr, 0, &transparent); }));
        ASSERT_TRUE(result.ok);
        EXPECT_TRUE(samePixels(result.image, expected)) << depth;
    }
}

TEST(ReadPng, TransparentPaletteEntriesBecomeAlpha)
{
    PngPicture picture = randomPng(16, 16, PNG_COLOR_TYPE_PALETTE, 4);
    const png_byte alphas[] = {0, 128, 255, 1}; // the other twelve entries are opaque
    Image expected = expectedImage(picture);
    for (unsigned int i = 0; i < 256; ++i) {
        const unsigned int entry = picture.sample(i % 16, i / 16, 0);
        if (entry < 4)
            expected.data[i * 4 + 3] = expanded(alphas[entry], 8);
    }
    const ReadResult result = readPng(
        pngFile(picture, [&](png_struct* png, png_info* info) { png_set_tRNS(png, info, alphas, 4, nullptr); }));
    ASSERT_TRUE(result.ok);
    EXPECT_TRUE(samePixels(result.image, expected));
}

// A row of 16-bit pixels, red, green and blue alike, with these values; alpha is 1000.
PngPicture rowOf(const std::vector<unsigned int>& values)
{
    PngPicture picture{unsigned(values.size()), 1, PNG_COLOR_TYPE_RGB_ALPHA, 16, {}};
    for (const unsigned int value : values)
        for (const unsigned int sample : {value, value, value, 1000u})
            picture.rows.insert(picture.rows.end(), {std::uint8_t(sample >> 8), std::uint8_t(sample)});
    return picture;
}

std::vector<unsigned int> redsWithGamma(const std::vector<unsigned int>& values, const PngChunks& chunks)
{
    const ReadResult result = readPng(pngFile(rowOf(values), chunks));
    EXPECT_TRUE(result.ok);
    std::vector<unsigned int> reds;
    for (unsigned int x = 0; x < result.image.width; ++x) {
        reds.push_back(pixelAt(result.image, x, 0)[0]);
        EXPECT_EQ(pixelAt(result.image, x, 0)[3], 1000);
    }
    return reds;
}

TEST(ReadPng, AFilesGammaIsCorrectedToThatOfSrgb)
{
    const std::vector<unsigned int> values = {0, 1000, 20000, 32768, 40000, 65535};
    const auto linear = [](png_struct* png, png_info* info) { png_set_gAMA(png, info, 1.0); };
    EXPECT_EQ(redsWithGamma(values, linear), (std::vector<unsigned int>{0, 9790, 38210, 47824, 52361, 65535}));
    const auto usual = [](png_struct* png, png_info* info) { png_set_gAMA(png, info, 0.45455); };
    EXPECT_EQ(redsWithGamma(values, usual), values);
    const auto standard = [](png_struct* png, png_info* info) { png_set_sRGB_gAMA_and_cHRM(png, info, 0); };
    EXPECT_EQ(redsWithGamma(values, standard), values);
    EXPECT_EQ(redsWithGamma(values, {}), values);
}

TEST(ReadPng, AFileWithPrimariesAndGammaIsCorrectedToo)
{
    const auto chunks = [](png_struct* png, png_info* info) {
        png_set_gAMA(png, info, 1.0);
        png_set_cHRM(png, info, 0.3127, 0.329, 0.64, 0.33, 0.21, 0.71, 0.15, 0.06);
    };
    EXPECT_EQ(redsWithGamma({1000, 32768}, chunks), (std::vector<unsigned int>{9790, 47824}));
}

TEST(ReadPng, ReplacesAnImageThatHeldSomethingElse)
{
    const PngPicture picture = randomPng(6, 5, PNG_COLOR_TYPE_RGB, 8);
    Image image = randomImage(40, 40, 1);
    image.rawFilters = 7;
    ASSERT_TRUE(ResourceEngine::ReadPNG(recordOf(pngFile(picture)), image, nullptr));
    EXPECT_TRUE(samePixels(image, expectedImage(picture)));
    EXPECT_EQ(image.rawFilters, 0u);
}

TEST(ReadPng, WhatFollowsTheLastChunkIsIgnored)
{
    Bytes file = pngFile(randomPng(4, 4, PNG_COLOR_TYPE_RGB, 8));
    for (const std::size_t more : {1u, 4u, 8u, 100u}) {
        Bytes longer = file;
        longer.resize(file.size() + more, 0xFF);
        EXPECT_TRUE(readPng(longer).ok) << more;
    }
}

TEST(ReadPng, AnyNumberOfTextAndPaletteChunksIsPassedOver)
{
    const PngPicture picture = randomPng(4, 4, PNG_COLOR_TYPE_RGB, 8);
    Bytes chunks;
    for (int i = 0; i < 500; ++i) {
        append(chunks, pngChunk("tEXt", {'a', 0, 'b'}));
        append(chunks, pngChunk("sPLT", {std::uint8_t('A' + i % 26), 0, 8, 1, 2, 3, 4, 0, 5}));
        append(chunks, pngChunk("abCd", {1, 2, 3}));
    }
    const ReadResult result = readPng(withPngChunk(pngFile(picture), chunks));
    ASSERT_TRUE(result.ok);
    EXPECT_TRUE(samePixels(result.image, expectedImage(picture)));
}

TEST(ReadPng, DataThatIsNoPngIsRefused)
{
    const Bytes file = pngFile(randomPng(4, 4, PNG_COLOR_TYPE_RGB, 8));
    EXPECT_FALSE(readPng({}).ok);
    EXPECT_FALSE(readPng(Bytes(file.begin(), file.begin() + 7)).ok);
    EXPECT_FALSE(readPng(Bytes(file.begin(), file.begin() + 8)).ok);
    EXPECT_FALSE(readPng(randomBytes(5000, 1)).ok);
    for (std::size_t i = 0; i < 8; ++i) {
        Bytes damaged = file;
        damaged[i] ^= 1;
        EXPECT_FALSE(readPng(damaged).ok) << i;
    }
}

} // namespace

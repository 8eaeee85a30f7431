#include "tests/reference/image_reference.h"
#include "tests/support/instructionlevels.h"
#include "tests/support/testimages.h"

#include <gtest/gtest.h>

#include <numeric>

namespace
{

using Ondrel::Image;
using Histogram = Image::Histogram;

Histogram of(const Image& image, unsigned int bins, unsigned int flags = 31)
{
    Histogram histogram;
    image.BuildHistogram(histogram, flags & 1, flags & 2, flags & 4, flags & 8, flags & 16, bins);
    return histogram;
}

void expectSame(const Histogram& a, const Histogram& b)
{
    EXPECT_EQ(a.luminance, b.luminance);
    EXPECT_EQ(a.lightness, b.lightness);
    EXPECT_EQ(a.red, b.red);
    EXPECT_EQ(a.green, b.green);
    EXPECT_EQ(a.blue, b.blue);
}

TEST(Histogram, AnEmptyImageOrNoBinsClearsAllFive)
{
    for (const auto& [image, bins] :
         {std::pair(Image(), 256u), std::pair(Image(0, 4), 256u), std::pair(Image(4, 4), 0u)}) {
        Histogram histogram;
        histogram.luminance = histogram.lightness = histogram.red = histogram.green = histogram.blue = {1, 2, 3};
        image.BuildHistogram(histogram, true, true, true, true, true, bins);
        expectSame(histogram, Histogram());
    }
}

TEST(Histogram, WhatIsNotAskedForIsCleared)
{
    const Image image(4, 4);
    Histogram histogram;
    histogram.luminance = histogram.green = {1, 2, 3};
    image.BuildHistogram(histogram, false, true, false, false, true, 16);
    EXPECT_TRUE(histogram.luminance.empty());
    EXPECT_TRUE(histogram.red.empty());
    EXPECT_TRUE(histogram.green.empty());
    EXPECT_EQ(histogram.lightness.size(), 16u);
    EXPECT_EQ(histogram.blue[0], 16u);
}

TEST(Histogram, OneBinHoldsEveryPixel)
{
    const Histogram histogram = of(OndrelTest::randomImage(13, 9, 1), 1);
    for (const auto* bins :
         {&histogram.luminance, &histogram.lightness, &histogram.red, &histogram.green, &histogram.blue})
        EXPECT_EQ(*bins, std::vector<unsigned int>{117});
}

TEST(Histogram, WhiteIsInTheLastBinOfAll)
{
    Image image(1, 1);
    image.FastFill(65535);
    const Histogram histogram = of(image, 256);
    for (const auto* bins :
         {&histogram.luminance, &histogram.lightness, &histogram.red, &histogram.green, &histogram.blue})
        EXPECT_EQ(bins->at(255), 1u);
}

TEST(Histogram, TransparentPixelsCount)
{
    Image image(3, 1);
    EXPECT_EQ(of(image, 4).red[0], 3u);
}

TEST(Histogram, LightnessAloneIsRounded)
{
    // 65535 / 255 = 257 a bin: 200 lies at 0.78.
    Image image(1, 1);
    image.Fill(200, 200, 200, 65535);
    const Histogram histogram = of(image, 256);
    EXPECT_EQ(histogram.lightness[1], 1u);
    EXPECT_EQ(histogram.luminance[0], 1u);
    EXPECT_EQ(histogram.red[0], 1u);
}

TEST(Histogram, LightnessIsHalfOfLeastAndGreatest)
{
    Image image(1, 1);
    image.Fill(65535, 40000, 0, 65535);
    EXPECT_EQ(of(image, 65536).lightness[32767], 1u);
}

TEST(Histogram, LuminanceMixesSingleAndDoublePrecision)
{
    // Every weight's own rounding shows in one of these: bins are single values.
    OndrelTest::forEveryInstructionLevel([] {
        const Image image = OndrelTest::randomImage(300, 200, 17);
        Histogram expected;
        OndrelReference::buildHistogram(image, expected, true, false, false, false, false, 65536);
        EXPECT_EQ(of(image, 65536, 1).luminance, expected.luminance);
    });
}

TEST(Histogram, AgreesWithTheLiteralFormForAllFlagsAndBins)
{
    OndrelTest::forEveryInstructionLevel([] {
        unsigned int seed = 0;
        for (const unsigned int bins : {1u, 2u, 3u, 100u, 255u, 256u, 1000u, 65535u, 65536u, 70000u})
            for (const unsigned int flags : {1u, 2u, 4u, 8u, 16u, 29u, 30u, 31u, 0u}) {
                const auto w = 1 + seed * 7 % 61, h = 1 + seed * 5 % 37;
                const Image image =
                    seed % 2 ? OndrelTest::randomImage(w, h, seed) : OndrelTest::shrunkImage(w, h, seed);
                ++seed;
                Histogram expected;
                OndrelReference::buildHistogram(image, expected, flags & 1, flags & 2, flags & 4, flags & 8, flags & 16,
                                                bins);
                expectSame(of(image, bins, flags), expected);
            }
    });
}

// Large images are counted by vectors and in shares, where the number of bins allows it.
TEST(Histogram, LargeImagesAgreeWithTheLiteralFormForAllFlagsAndBins)
{
    const Image image = OndrelTest::randomImage(521, 511, 23);
    OndrelTest::forEveryInstructionLevel([&image] {
        for (const unsigned int bins : {1u, 2u, 100u, 256u, 4096u, 4097u})
            for (const unsigned int flags : {1u, 2u, 16u, 29u, 30u, 31u}) {
                Histogram expected;
                OndrelReference::buildHistogram(image, expected, flags & 1, flags & 2, flags & 4, flags & 8, flags & 16,
                                                bins);
                expectSame(of(image, bins, flags), expected);
            }
    });
}

TEST(Histogram, EveryValueOfALargeImageFallsIntoItsBin)
{
    Image image(65536, 5);
    for (unsigned int v = 0; v < 65536; ++v) {
        const auto s = std::uint16_t(v);
        OndrelTest::setPixel(image, v, 0, {s, s, s, 0});
        OndrelTest::setPixel(image, v, 1, {s, 0, 0, 0});
        OndrelTest::setPixel(image, v, 2, {0, s, 0, 0});
        OndrelTest::setPixel(image, v, 3, {0, 0, s, 0});
        OndrelTest::setPixel(image, v, 4, {65535, s, std::uint16_t(65535 - v), 0});
    }
    OndrelTest::forEveryInstructionLevel([&image] {
        for (const unsigned int bins : {2u, 16u, 255u, 256u, 257u, 1021u, 4096u, 65536u}) {
            Histogram expected;
            OndrelReference::buildHistogram(image, expected, true, true, true, true, true, bins);
            expectSame(of(image, bins), expected);
        }
    });
}

TEST(Histogram, EveryGreyValueFallsIntoItsBin)
{
    Image image(65536, 1);
    for (unsigned int v = 0; v < 65536; ++v)
        OndrelTest::setPixel(image, v, 0, {std::uint16_t(v), std::uint16_t(v), std::uint16_t(v), 0});
    for (const unsigned int bins : {2u, 256u, 1021u, 65536u}) {
        Histogram expected;
        OndrelReference::buildHistogram(image, expected, true, true, true, true, true, bins);
        expectSame(of(image, bins), expected);
    }
}

TEST(Histogram, LargeImagesOfOneColourDoNotLoseCounts)
{
    Image image(1000, 700);
    image.Fill(1, 2, 3, 4);
    const Histogram histogram = of(image, 256);
    EXPECT_EQ(histogram.red[0], 700000u);
    EXPECT_EQ(std::accumulate(histogram.luminance.begin(), histogram.luminance.end(), 0u), 700000u);
}

} // namespace

// The fast forms of scaling against the literal ones, bit by bit.

#include "tests/reference/scale_reference.h"
#include "tests/support/instructionlevels.h"
#include "tests/support/testimages.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace
{

using Ondrel::FilterMethod;
using Ondrel::Image;
using OndrelTest::forEveryInstructionLevel;
using OndrelTest::randomImage;
using OndrelTest::samePixels;
using OndrelTest::shrunkImage;

void expectSame(const Image& source, unsigned int width, unsigned int height, FilterMethod filter)
{
    const Image expected = OndrelReference::scale(source, width, height, filter);
    Image result;
    Scale_CPU(source, result, width, height, filter);
    EXPECT_TRUE(samePixels(result, expected)) << source.width << " x " << source.height << " to " << width << " x "
                                              << height << ", filter " << unsigned(filter);
}

constexpr FilterMethod kFilters[] = {FilterMethod::NearestNeighbor, FilterMethod::Bilinear, FilterMethod::Bicubic};

TEST(ScaleReference, SmallSizesInAllCombinations)
{
    forEveryInstructionLevel([] {
        for (const FilterMethod filter : kFilters)
            for (unsigned int from = 1; from <= 9; ++from)
                for (unsigned int to = 1; to <= 9; ++to) {
                    expectSame(randomImage(from, to, from * 16 + to), to, from, filter);
                    expectSame(randomImage(from, 3, from), to, 3, filter);
                }
    });
}

TEST(ScaleReference, RandomSizes)
{
    forEveryInstructionLevel([] {
        std::mt19937 random(42);
        const auto size = [&random] { return 1 + unsigned(std::exp2(double(random() % 7000) / 1000.0)); };
        for (int i = 0; i < 150; ++i) {
            const unsigned int w = size(), h = size(), toW = size(), toH = size();
            const Image source = i % 3 ? randomImage(w, h, unsigned(i)) : shrunkImage(w, h, unsigned(i));
            for (const FilterMethod filter : kFilters)
                expectSame(source, toW, toH, filter);
        }
    });
}

TEST(ScaleReference, OpaqueAndEvenAlphas)
{
    forEveryInstructionLevel([] {
        for (const std::uint16_t alpha : std::initializer_list<std::uint16_t>{0, 1, 2, 32768, 65534, 65535}) {
            Image source = randomImage(61, 47, alpha);
            for (unsigned int i = 0; i < 61 * 47; ++i)
                source.data[i * 4 + 3] = alpha;
            for (const FilterMethod filter : kFilters)
                for (const auto& [w, h] : {std::pair(30u, 24u), std::pair(61u, 20u), std::pair(15u, 47u),
                                           std::pair(90u, 71u), std::pair(7u, 5u)})
                    expectSame(source, w, h, filter);
        }
    });
}

TEST(ScaleReference, ReductionsAroundTheChangeOfLevel)
{
    forEveryInstructionLevel([] {
        // Ratios of 1.5, 2, 3, 4, 6, 8, 12 and 16, one pixel more, one less, and unequal in the two directions.
        for (const unsigned int from : {48u, 96u, 120u})
            for (const unsigned int ratio : {2u, 3u, 4u, 6u, 8u, 12u, 16u})
                for (const int off : {-1, 0, 1}) {
                    const unsigned int to = unsigned(int(from / ratio) + off);
                    if (to == 0)
                        continue;
                    const Image source = randomImage(from, 32, from + ratio);
                    for (const FilterMethod filter : {FilterMethod::Bilinear, FilterMethod::Bicubic}) {
                        expectSame(source, to, 32, filter);
                        expectSame(source, to, 16, filter);
                        expectSame(source, to, 5, filter);
                        expectSame(source, from * 2, 5, filter);
                    }
                }
    });
}

TEST(ScaleReference, HeavyReductionsToAFewPixels)
{
    forEveryInstructionLevel([] {
        for (const FilterMethod filter : {FilterMethod::Bilinear, FilterMethod::Bicubic}) {
            expectSame(randomImage(1500, 40, 5), 3, 2, filter);
            expectSame(randomImage(40, 1500, 6), 2, 3, filter);
            expectSame(randomImage(700, 500, 7), 1, 1, filter);
            expectSame(randomImage(1000, 1, 8), 10, 20, filter);
        }
    });
}

TEST(ScaleReference, EnlargementsOfASinglePixelAndASingleRow)
{
    forEveryInstructionLevel([] {
        for (const FilterMethod filter : kFilters) {
            expectSame(randomImage(1, 1, 5), 37, 23, filter);
            expectSame(randomImage(1, 9, 6), 37, 4, filter);
            expectSame(randomImage(200, 1, 7), 333, 7, filter);
        }
    });
}

TEST(ScaleReference, APhotographToItsThumbnail)
{
    forEveryInstructionLevel([] {
        const Image source = randomImage(1531, 1021, 99);
        for (const FilterMethod filter : kFilters) {
            expectSame(source, 182, 121, filter);
            expectSame(source, 766, 511, filter);
        }
    });
}

TEST(ScaleReference, SamplersGiveTheSameFloats)
{
    forEveryInstructionLevel([] {
        std::mt19937 random(3);
        std::uniform_real_distribution<float> position(-9.0f, 40.0f), extent(0.0f, 30.0f);
        const Image image = randomImage(31, 27, 12);
        for (int i = 0; i < 2000; ++i) {
            const float x = position(random), y = position(random), w = extent(random), h = extent(random);
            float xs[3] = {x, x + 0.5f * w, x + w}, ys[3] = {y, y + 0.5f * h, y + h};
            float expected[4], result[4];
            OndrelReference::bilinearSupersample(image, xs, ys, expected);
            BilinearSupersampleMultiplied(image, xs, ys, result);
            for (int c = 0; c < 4; ++c)
                ASSERT_EQ(result[c], expected[c]) << i;
            OndrelReference::bicubicSupersample(image, xs, ys, expected);
            BicubicSupersampleMultiplied(image, xs, ys, result);
            for (int c = 0; c < 4; ++c)
                ASSERT_EQ(result[c], expected[c]) << i;
            OndrelReference::bicubicSample(image, x, y, expected);
            BicubicSample<GetPixelAsFloatRGBAPremultiplied>(image, x, y, result);
            for (int c = 0; c < 4; ++c)
                ASSERT_EQ(result[c], expected[c]) << i;
        }
    });
}

TEST(ScaleReference, TheBlankSamplerFadesToNothingOutside)
{
    const Image image = randomImage(5, 5, 1);
    float rgba[4] = {1, 1, 1, 1};
    BicubicSample<GetPixelAsFloatRGBABlankPremultiplied>(image, -10.5f, 2.0f, rgba);
    for (const float v : rgba)
        EXPECT_EQ(v, 0.0f);
    float inside[4], clamped[4];
    BicubicSample<GetPixelAsFloatRGBABlankPremultiplied>(image, 2.25f, 2.75f, inside);
    BicubicSample<GetPixelAsFloatRGBAPremultiplied>(image, 2.25f, 2.75f, clamped);
    for (int c = 0; c < 4; ++c)
        EXPECT_EQ(inside[c], clamped[c]);
}

TEST(ScaleReference, MoreColumnsThanOneGroupHoldsUnderManyRows)
{
    expectSame(randomImage(600, 300, 31), 600, 1, FilterMethod::Bilinear);
    expectSame(randomImage(600, 70, 32), 600, 1, FilterMethod::Bicubic);
}

// Far from the left edge the ends of a box are rounded so coarsely that one half of it may be quartered again and the
// other not.
TEST(ScaleReference, LongRowsWhoseBoxesAreQuarteredUnevenly)
{
    expectSame(randomImage(3145729, 1, 33), 1048576, 1, FilterMethod::Bilinear);
    expectSame(randomImage(524289, 1, 34), 262144, 1, FilterMethod::Bicubic);
}

TEST(ScaleReference, SidesBeyondThePrecisionOfFloats)
{
    const Image source = randomImage(4194305, 1, 35);
    expectSame(source, 2097152, 1, FilterMethod::Bilinear);
    expectSame(source, 3000000, 1, FilterMethod::Bicubic);
    expectSame(randomImage(1, 4194305, 36), 1, 2097152, FilterMethod::Bilinear);
}

float premultipliedOrZero(const Image& image, int x, int y, int channel)
{
    float rgba[4];
    GetPixelAsFloatRGBABlankPremultiplied(image, x, y, rgba);
    return rgba[channel];
}

// The same sum as in the middle, with nothing where the picture ends.
TEST(ScaleReference, TheBlankSamplerTakesWhatLiesAcrossTheEdgeAsNothing)
{
    Image framed(9, 9);
    const Image image = randomImage(5, 5, 17);
    for (unsigned int y = 0; y < 5; ++y)
        for (unsigned int x = 0; x < 5; ++x)
            OndrelTest::setPixel(framed, x + 2, y + 2, OndrelTest::pixelAt(image, x, y));
    ASSERT_EQ(premultipliedOrZero(image, -1, 0, 3), 0.0f);
    for (const auto& [x, y] : {std::pair(-0.75f, 2.5f), std::pair(4.25f, -0.5f), std::pair(0.0f, 0.0f),
                               std::pair(3.5f, 4.5f), std::pair(-1.5f, -1.5f)}) {
        float across[4], inside[4];
        BicubicSample<GetPixelAsFloatRGBABlankPremultiplied>(image, x, y, across);
        BicubicSample<GetPixelAsFloatRGBABlankPremultiplied>(framed, x + 2.0f, y + 2.0f, inside);
        for (int c = 0; c < 4; ++c)
            EXPECT_EQ(across[c], inside[c]) << x << " " << y << " " << c;
    }
}

TEST(ScaleReference, SamplersAtPlacesThatAreNoNumberOrFarAwayStayInside)
{
    const Image image = randomImage(4, 3, 18);
    const float infinity = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (const float far : {infinity, -infinity, nan, 3e38f, -3e38f, 2147483648.0f, -2147483904.0f}) {
        float rgba[4];
        BicubicSample<GetPixelAsFloatRGBAPremultiplied>(image, far, 1.0f, rgba);
        BicubicSample<GetPixelAsFloatRGBAPremultiplied>(image, 1.0f, far, rgba);
        BicubicSample<GetPixelAsFloatRGBABlankPremultiplied>(image, far, far, rgba);
        float around[3] = {1.0f, far, 2.0f}, ends[3] = {far, 1.0f, far};
        float middle[3] = {0.5f, 1.0f, 1.5f};
        BilinearSupersampleMultiplied(image, around, middle, rgba);
        BilinearSupersampleMultiplied(image, middle, ends, rgba);
        BicubicSupersampleMultiplied(image, around, middle, rgba);
        BicubicSupersampleMultiplied(image, middle, ends, rgba);
    }
}

} // namespace

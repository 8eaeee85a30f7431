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

} // namespace

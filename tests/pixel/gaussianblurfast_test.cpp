// The fast forms of the blur against the literal one, bit by bit.

#include "tests/reference/gaussianblur_reference.h"
#include "tests/support/instructionlevels.h"
#include "tests/support/testimages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <ondrel/pixel/gaussianblur.h>
#include <random>
#include <vector>

namespace
{

using Ondrel::Image;
using OndrelReference::Outside;
using OndrelTest::forEveryInstructionLevel;
using OndrelTest::randomImage;
using OndrelTest::samePixels;
using OndrelTest::shrunkImage;

constexpr GaussianEdge kEdges[] = {GaussianEdge::Clamp, GaussianEdge::Blank, GaussianEdge::Repeat};

void expectSame(const Image& source, float radiusX, float radiusY, GaussianEdge edge)
{
    const Image expected = OndrelReference::gaussianBlur(source, radiusX, radiusY, Outside(unsigned(edge)));
    const Image result = GaussianBlur_CPU(source, radiusX, radiusY, edge, {});
    EXPECT_TRUE(samePixels(result, expected)) << source.width << " x " << source.height << ", radii " << radiusX
                                              << " and " << radiusY << ", edge " << unsigned(edge);
}

// Sets every sample to value(x, y, channel).
template <typename Value>
Image drawnImage(unsigned int width, unsigned int height, Value value)
{
    Image image(width, height);
    for (unsigned int y = 0; y < height; ++y)
        for (unsigned int x = 0; x < width; ++x)
            for (unsigned int c = 0; c < 4; ++c)
                image.data[(std::size_t(y) * width + x) * 4 + c] = std::uint16_t(value(x, y, c));
    return image;
}

TEST(GaussianBlurFast, SmallSizesWithEveryNumberOfTaps)
{
    forEveryInstructionLevel([] {
        for (const GaussianEdge edge : kEdges)
            for (unsigned int w = 1; w <= 9; ++w)
                for (unsigned int h = 1; h <= 9; h += 1 + w % 2)
                    for (const float radius : {0.0f, 0.3f, 1.0f, 2.5f, 4.0f, 11.0f})
                        expectSame(randomImage(w, h, w * 16 + h), radius, radius / 2, edge);
    });
}

TEST(GaussianBlurFast, RandomSizesRadiiAndEdges)
{
    forEveryInstructionLevel([] {
        std::mt19937 random(7);
        const auto size = [&random] { return 1 + unsigned(std::exp2(double(random() % 8000) / 1000.0)); };
        const auto radius = [&random] {
            const float r = std::exp2(float(random() % 8000) / 1000.0f) - 2.0f;
            return random() % 2 ? std::floor(r) : r;
        };
        for (int i = 0; i < 120; ++i) {
            const unsigned int w = size(), h = size();
            const Image source = i % 3 ? randomImage(w, h, unsigned(i)) : shrunkImage(w, h, unsigned(i));
            const float x = radius(), y = radius();
            expectSame(source, x, y, kEdges[i % 3]);
        }
    });
}

// Whatever way a kernel is applied, its neighbours in size use it or the next one.
TEST(GaussianBlurFast, EveryRadiusUpToAHundred)
{
    const Image source = randomImage(219, 203, 3);
    for (int radius = 0; radius <= 100; ++radius)
        expectSame(source, float(radius), float(100 - radius), kEdges[radius % 3]);
}

TEST(GaussianBlurFast, OneLongDirection)
{
    forEveryInstructionLevel([] {
        for (const GaussianEdge edge : kEdges) {
            expectSame(randomImage(300, 41, 4), 60.0f, -1.0f, edge);
            expectSame(randomImage(300, 41, 4), -1.0f, 60.0f, edge);
            expectSame(randomImage(75, 300, 5), 60.0f, 3.0f, edge);
            expectSame(randomImage(75, 300, 5), 3.0f, 60.0f, edge);
            expectSame(randomImage(300, 41, 6), 0.0f, 33.3f, edge);
            expectSame(randomImage(300, 41, 6), 33.3f, 0.0f, edge);
        }
    });
}

TEST(GaussianBlurFast, KernelsManyTimesAsLongAsTheImage)
{
    forEveryInstructionLevel([] {
        for (const GaussianEdge edge : kEdges)
            for (const float radius : {100.0f, 700.5f, 3000.0f})
                for (const auto& [w, h] : {std::pair(1u, 1u), std::pair(2u, 7u), std::pair(33u, 18u)}) {
                    expectSame(randomImage(w, h, w + h), radius, 0.0f, edge);
                    expectSame(randomImage(w, h, w * h), 2.0f, radius, edge);
                }
    });
}

TEST(GaussianBlurFast, FlatFields)
{
    for (const GaussianEdge edge : kEdges)
        for (const float radius : {0.25f, 0.5f, 1.5f, 2.7f, 20.5f, 31.0f, 47.25f, 80.5f}) {
            const Image source = drawnImage(67, 45, [](unsigned, unsigned, unsigned c) { return c * 21845u; });
            expectSame(source, radius, radius, edge);
            const Image odd = drawnImage(45, 67, [](unsigned, unsigned, unsigned c) { return 1 + c * 257u; });
            expectSame(odd, radius, 0.0f, edge);
        }
}

TEST(GaussianBlurFast, TwoLevelsRampsAndStairs)
{
    const auto levels = [](unsigned x, unsigned y, unsigned c) {
        switch (c) {
        case 0:
            return x < 60 ? 0u : 65535u;
        case 1:
            return (x + y) % 2 ? 65535u : 0u;
        case 2:
            return x * 257u + y;
        default:
            return 1000 + x / 2 + y / 3;
        }
    };
    const auto alternate = [](unsigned x, unsigned y, unsigned c) {
        return c % 2 ? (x % 2) * 65535u : (y / 2 % 2) * (c + 1);
    };
    for (const GaussianEdge edge : kEdges)
        for (const float radius : {1.0f, 6.0f, 30.0f, 45.5f, 64.0f, 100.0f}) {
            expectSame(drawnImage(120, 97, levels), radius, radius, edge);
            expectSame(drawnImage(97, 120, alternate), radius, radius, edge);
        }
}

// Sums so near the middle between two samples that their rounding says nothing about the last steps of the sum: by
// neighbours that differ by 1 and a kernel so long that both count the same.
TEST(GaussianBlurFast, SumsNextToAHalf)
{
    const auto alternate = [](unsigned x, unsigned y, unsigned c) { return 1000 + 777 * c + (x + y) % 2; };
    forEveryInstructionLevel([&] {
        for (const unsigned int width : {2u, 10u, 64u})
            expectSame(drawnImage(width, 5, alternate), 3000.0f, -1.0f, GaussianEdge::Repeat);
        expectSame(drawnImage(5, 6, alternate), -1.0f, 3000.0f, GaussianEdge::Repeat);
        expectSame(drawnImage(1, 6, alternate), 5000.0f, -1.0f, GaussianEdge::Repeat);
        for (const unsigned int width : {2u, 12u})
            expectSame(drawnImage(width, 1, alternate), 300000.0f, -1.0f, GaussianEdge::Clamp);
        expectSame(drawnImage(1, 8, alternate), -1.0f, 300000.0f, GaussianEdge::Clamp);
    });
}

TEST(GaussianBlurFast, SumsNextToAHalfBesideBlankPixels)
{
    // Near its middle such a kernel is flat: it is the sum of the samples that counts.
    const float radius = 300000.0f;
    const std::vector<double> weights = OndrelReference::gaussianWeights(radius + 1);
    const double middle = weights[weights.size() / 2];
    const unsigned int total = unsigned(std::lround(0.5 / middle));
    ASSERT_GT(total, 65536u);
    ASSERT_LT(total, 2 * 65536u);
    ASSERT_NEAR(total * middle, 0.5, 1e-5);
    const auto value = [total](unsigned x, unsigned, unsigned c) {
        const unsigned int sum = total - 2 + c;
        return x == 1 ? 60000u : x == 4 ? sum - 60000u : 0u;
    };
    expectSame(drawnImage(6, 1, value), radius, -1.0f, GaussianEdge::Blank);
}

// A sum of every pixel with each of the weights would take minutes here, so some pixels are picked out.
TEST(GaussianBlurFast, RadiiAsLongAsPanoramas)
{
    const std::int64_t width = 140000;
    const Image source = randomImage(unsigned(width), 1, 8);
    const float radius = 100000.0f;
    const std::vector<double> weights = OndrelReference::gaussianWeights(radius + 1);
    const std::int64_t reach = std::int64_t(weights.size() / 2);
    for (const GaussianEdge edge : kEdges) {
        const Image result = GaussianBlur_CPU(source, radius, -1.0f, edge, {});
        for (std::int64_t x = 0; x < width; x += 13999)
            for (std::int64_t c = 0; c < 4; ++c) {
                double sum = 0;
                for (std::int64_t i = 0; i < std::int64_t(weights.size()); ++i) {
                    std::int64_t from = x + i - reach;
                    if (edge == GaussianEdge::Blank && (from < 0 || from >= width))
                        continue;
                    from = edge == GaussianEdge::Repeat ? (from + width) % width
                                                        : std::clamp<std::int64_t>(from, 0, width - 1);
                    sum += double(source.data[from * 4 + c]) * weights[std::size_t(i)];
                }
                ASSERT_EQ(result.data[x * 4 + c], std::min(std::round(sum), 65535.0)) << x << ", " << c;
            }
    }
}

} // namespace

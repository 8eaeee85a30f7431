// The fast form of gradients against the literal one, bit by bit.

#include "tests/reference/gradient_reference.h"
#include "tests/support/instructionlevels.h"
#include "tests/support/testimages.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <ondrel/color/colormanager.h>
#include <ondrel/pixel/gradient.h>
#include <random>

namespace
{

using Ondrel::GradientStop;
using Ondrel::Image;
using Ondrel::RectT;
using OndrelReference::GradientStops;
using OndrelReference::Knots;
using OndrelTest::forEveryInstructionLevel;
using OndrelTest::randomImage;
using OndrelTest::shrunkImage;

constexpr auto kRGB = Ondrel::GradientColorInterpolationRGB;

GradientStops randomStops(std::mt19937& random, std::size_t count)
{
    GradientStops stops;
    for (std::size_t i = 0; i < count; ++i) {
        const auto sample = [&random] { return static_cast<unsigned short>(random()); };
        // Some positions are equal, and some are the ends.
        const float position = float(random() % 40) / (random() % 2 ? 39.0f : 39000.0f);
        stops.push_back({position, sample(), sample(), sample(), sample()});
    }
    SanitizeGradientStops(stops);
    return stops;
}

Knots randomKnots(std::mt19937& random, std::size_t count)
{
    Knots knots;
    for (std::size_t i = 0; i < count; ++i)
        knots.push_back({int(65535 * i / std::max<std::size_t>(count - 1, 1)), int(random() % 65536)});
    return knots;
}

// Pixels outside the rectangle too.
bool sameBlocks(const Image& a, const Image& b)
{
    return a.sizeBytes == b.sizeBytes && std::memcmp(a.data, b.data, a.sizeBytes) == 0;
}

struct Case {
    Image before;
    RectT<int> rect;
    GradientStops stops;
    Knots curve;
};

Case randomCase(std::mt19937& random)
{
    const auto side = [&random] { return unsigned(std::exp2(double(random() % 7000) / 1000.0)); };
    const unsigned int width = random() % 8 == 0 ? 1500 + unsigned(random() % 1000) : side(), height = side();
    const unsigned int seed = unsigned(random());
    const auto some = [&random](unsigned int n) { return int(random() % (n + 1)); };
    RectT<int> rect(0, 0, int(width), int(height));
    if (random() % 2)
        rect = RectT<int>(some(width) - 3, some(height) - 3, some(2 * width), some(2 * height));
    return {random() % 3 ? randomImage(width, height, seed) : shrunkImage(width, height, seed), rect,
            randomStops(random, random() % 9), randomKnots(random, random() % 4)};
}

TEST(GradientFast, LinearGradientsOfRandomGeometry)
{
    forEveryInstructionLevel([] {
        std::mt19937 random(1);
        std::uniform_real_distribution<float> place(-0.5f, 1.5f);
        for (int i = 0; i < 300; ++i) {
            const Case c = randomCase(random);
            GradientLinearGeometry geometry{place(random), place(random), place(random), place(random)};
            if (i % 5 == 0)
                geometry.x2 = geometry.x1;
            if (i % 7 == 0)
                geometry.y2 = geometry.y1;
            Image expected = c.before, result = c.before;
            OndrelReference::gradient(expected, c.rect, OndrelReference::linearPosition(expected, geometry), c.stops,
                                      c.curve);
            if (i % 35 == 0 && c.curve.size() > 1)
                continue; // the middle of a gradient without length is not a number, which no table holds
            GradientLinear(result, c.rect, geometry, c.stops, kRGB, c.curve);
            ASSERT_TRUE(sameBlocks(result, expected)) << i;
        }
    });
}

TEST(GradientFast, RadialGradientsOfRandomGeometry)
{
    forEveryInstructionLevel([] {
        std::mt19937 random(2);
        std::uniform_real_distribution<float> place(-0.3f, 1.3f), radius(-0.1f, 1.0f), turn(-7.0f, 7.0f);
        for (int i = 0; i < 300; ++i) {
            const Case c = randomCase(random);
            GradientRadialGeometry geometry{place(random), place(random),  radius(random), radius(random),
                                            turn(random),  radius(random), radius(random)};
            if (i % 3 == 0)
                geometry.focalX = geometry.focalY = 0.0f;
            if (i % 4 == 0)
                geometry.angle = 0.0f;
            if (i % 11 == 0)
                geometry.radiusX = 0.0f;
            if (i % 13 == 0)
                geometry.radiusY = 0.0f;
            if (i % 2 == 0)
                geometry.centerX = geometry.centerY = 0.5f;
            if (c.curve.size() > 1 && (geometry.radiusX < 0.0f || geometry.radiusY < 0.0f))
                continue; // positions may not be numbers, which no table holds
            Image expected = c.before, result = c.before;
            OndrelReference::gradient(expected, c.rect, OndrelReference::radialPosition(expected, geometry), c.stops,
                                      c.curve);
            GradientRadial(result, c.rect, geometry, c.stops, kRGB, c.curve);
            ASSERT_TRUE(sameBlocks(result, expected)) << i;
        }
    });
}

// Rows that mirror each other at the centre of an ellipse that is not turned.
TEST(GradientFast, UprightEllipsesAboutEveryCentre)
{
    forEveryInstructionLevel([] {
        std::mt19937 random(5);
        const GradientStops stops = {{0, 1, 65535, 3, 4}, {0.4f, 60000, 9, 30000, 65535}, {1, 5, 6, 65535, 8}};
        for (const unsigned int height : {1u, 2u, 17u, 30u, 64u})
            for (const float centre : {0.5f, 0.25f, 0.0f, 1.0f, 1.0f / 3.0f, 0.46f, -0.5f, 1.5f, 0.500001f})
                for (int i = 0; i < 12; ++i) {
                    GradientRadialGeometry geometry{0.5f, centre, 0.4f, 0.3f, i % 2 ? -0.0f : 0.0f, 0, 0};
                    geometry.focalX = i % 3 == 0 ? 0.1f : 0.0f;
                    geometry.focalY = i % 5 == 0 ? 0.1f : 0.0f;
                    geometry.centerX = i % 4 == 0 ? 0.37f : 0.5f;
                    const Image before = i % 3 ? randomImage(50, height, height) : shrunkImage(50, height, height);
                    RectT<int> rect(0, 0, 50, int(height));
                    if (i > 3) // often one of two rows that mirror each other, without the other
                        rect = RectT<int>(int(random() % 50), int(random() % height), 40, 1 + int(random() % height));
                    const Knots curve = i % 6 == 5 ? randomKnots(random, 3) : Knots();
                    Image expected = before, result = before;
                    OndrelReference::gradient(expected, rect, OndrelReference::radialPosition(expected, geometry),
                                              stops, curve);
                    GradientRadial(result, rect, geometry, stops, kRGB, curve);
                    ASSERT_TRUE(sameBlocks(result, expected)) << height << ", " << centre << ", " << i;
                }
    });
}

TEST(GradientFast, MoreStopsThanPixels)
{
    forEveryInstructionLevel([] {
        std::mt19937 random(3);
        GradientStops stops;
        for (int i = 0; i <= 3000; ++i)
            stops.push_back({float(i) / 3000.0f, static_cast<unsigned short>(random()), 0, 65535,
                             static_cast<unsigned short>(random())});
        SanitizeGradientStops(stops);
        const GradientLinearGeometry geometry{0.0f, 0.0f, 1.0f, 0.3f};
        Image expected(2100, 3), result(2100, 3);
        const RectT<int> rect(0, 0, 2100, 3);
        OndrelReference::gradient(expected, rect, OndrelReference::linearPosition(expected, geometry), stops, {});
        GradientLinear(result, rect, geometry, stops, kRGB, {});
        EXPECT_TRUE(sameBlocks(result, expected));
    });
}

// A large picture is converted in bands, and a part of the width by way of another image.
TEST(GradientFast, BandsOfLightnessChromaAndHueJoin)
{
    Image whole = Image(2100, 2050), parts = Image(2100, 2050);
    whole.colorProfile = parts.colorProfile = Ondrel::DefaultColorProfileHash;
    const GradientStops stops = {{0, 65535, 0, 0, 65535}, {0.4f, 0, 65535, 9000, 0}, {1, 0, 0, 65535, 30000}};
    const GradientLinearGeometry geometry{0.1f, 0.0f, 0.7f, 0.9f};
    const auto draw = [&](Image& image, const RectT<int>& rect) {
        GradientLinear(image, rect, geometry, stops, Ondrel::GradientColorInterpolationLCH, {});
    };
    draw(whole, RectT<int>(0, 0, 2100, 2050));
    draw(parts, RectT<int>(0, 0, 1000, 2050));
    draw(parts, RectT<int>(1000, 0, 1100, 1300));
    draw(parts, RectT<int>(1000, 1300, 1100, 750));
    EXPECT_TRUE(sameBlocks(whole, parts));
    EXPECT_NE(OndrelTest::pixelAt(whole, 0, 2049), OndrelTest::pixelAt(whole, 0, 0));
}

// Numbers of every size, also those that single precision cannot multiply.
TEST(GradientFast, GeometriesOfEverySize)
{
    forEveryInstructionLevel([] {
        std::mt19937 random(6);
        const auto some = [&random] {
            const float v = std::exp2(float(random() % 25600) / 100.0f - 128.0f);
            return random() % 4 == 0 ? 0.5f : random() % 2 ? v : -v;
        };
        const GradientStops stops = {{0, 1, 65535, 3, 4}, {0.4f, 60000, 9, 30000, 65535}, {1, 5, 6, 65535, 8}};
        for (int i = 0; i < 20000; ++i) {
            const Image before(19, 4);
            const RectT<int> rect(0, 0, 19, 4);
            GradientRadialGeometry ellipse{some(), some(), some(), some(), some(), some(), some()};
            if (i % 2)
                ellipse.angle = 0.0f;
            if (i % 3 == 0)
                ellipse.focalX = ellipse.focalY = 0.0f;
            const GradientLinearGeometry axis{some(), some(), some(), some()};
            Image expected = before, result = before;
            OndrelReference::gradient(expected, rect, OndrelReference::radialPosition(expected, ellipse), stops, {});
            GradientRadial(result, rect, ellipse, stops, kRGB, {});
            ASSERT_TRUE(sameBlocks(result, expected)) << i;
            OndrelReference::gradient(expected, rect, OndrelReference::linearPosition(expected, axis), stops, {});
            GradientLinear(result, rect, axis, stops, kRGB, {});
            ASSERT_TRUE(sameBlocks(result, expected)) << i;
        }
    });
}

// Whatever is given, no pixel outside of the rectangle changes, and nothing else is touched.
TEST(GradientFast, SenselessArgumentsDoNoHarm)
{
    forEveryInstructionLevel([] {
        const float inf = std::numeric_limits<float>::infinity();
        const float odd[] = {inf, -inf, std::nanf(""), 0.0f, -0.0f, 1e38f, -1e38f, 1e-45f, 3e9f, 0.5f};
        std::mt19937 random(4);
        const auto some = [&] { return odd[random() % std::size(odd)]; };
        const int edges[] = {std::numeric_limits<int>::min(), -1, 0, 3, 40, std::numeric_limits<int>::max()};
        const auto edge = [&] { return edges[random() % std::size(edges)]; };
        for (int i = 0; i < 2000; ++i) {
            Image image = randomImage(37, 5, unsigned(i));
            const Image before = image;
            const RectT<int> rect = i % 2 ? RectT<int>(edge(), edge(), edge(), edge()) : RectT<int>(3, 1, 30, 3);
            GradientStops stops;
            for (unsigned int n = unsigned(random() % 5); n > 0; --n)
                stops.push_back({some(), 65535, 0, 65535, 65535});
            const Knots curve = i % 3 ? Knots() : Knots{{edge(), edge()}, {edge(), edge()}};
            if (i % 4 < 2)
                GradientLinear(image, rect, {some(), some(), some(), some()}, stops, kRGB, curve);
            else
                GradientRadial(image, rect, {some(), some(), some(), some(), some(), some(), some()}, stops, kRGB,
                               curve);
            for (unsigned int y = 0; y < 5 && i % 2 == 0; ++y)
                for (unsigned int x = 0; x < 37; ++x)
                    if (x < 3 || x >= 33 || y < 1 || y >= 4) {
                        ASSERT_EQ(OndrelTest::pixelAt(image, x, y), OndrelTest::pixelAt(before, x, y));
                    }
        }
    });
}

TEST(GradientFast, ImagesWithoutPixelsStayAsTheyAre)
{
    for (const auto& [width, height] : {std::pair(0u, 0u), std::pair(0u, 5u), std::pair(5u, 0u)}) {
        Image image(width, height);
        GradientLinear(image, RectT<int>(0, 0, 5, 5), {0, 0, 1, 1}, {}, kRGB, {});
        GradientRadial(image, RectT<int>(0, 0, 5, 5), {0.5f, 0.5f, 0.5f, 0.5f, 0, 0, 0}, {}, kRGB, {});
        EXPECT_EQ(image.width, width);
        EXPECT_EQ(image.height, height);
    }
    // Sides whose product wraps, in a block of one pixel.
    Image liar(1, 1);
    liar.width = liar.height = 65536;
    GradientLinear(liar, RectT<int>(0, 0, 65536, 65536), {0, 0, 1, 1}, {}, kRGB, {});
    EXPECT_EQ(liar.data[0], 0);
}

} // namespace

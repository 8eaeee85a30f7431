#include <ondrel/pixel/gradient.h>

#include "tests/reference/gradient_reference.h"
#include "tests/support/instructionlevels.h"
#include "tests/support/testimages.h"
#include "tests/support/testprofiles.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>

#include <gtest/gtest.h>
#include <lcms2.h>

#include <QSettings>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <ostream>
#include <random>
#include <utility>
#include <vector>

namespace
{

using namespace OndrelTest;
using Ondrel::ColorManager;
using Ondrel::GradientStop;
using Ondrel::Image;
using OndrelReference::GradientPosition;
using Knots = std::vector<Ondrel::CubicBezierSpline::Point>;
using RectI = Ondrel::RectT<int>;
using Stops = std::vector<GradientStop>;

constexpr auto kRgb = Ondrel::GradientColorInterpolationRGB;
constexpr auto kLch = Ondrel::GradientColorInterpolationLCH;
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kPart = 1.5259022e-5f; // one of 65535

const Stops kBlackToWhite = {{0, 0, 0, 0, 65535}, {1, 65535, 65535, 65535, 65535}};

RectI whole(const Image& image)
{
    return RectI(0, 0, int(image.width), int(image.height));
}

Image linear(unsigned int width, unsigned int height, const GradientLinearGeometry& geometry, const Stops& stops,
             const Knots& curve = {})
{
    Image image(width, height);
    GradientLinear(image, whole(image), geometry, stops, kRgb, curve);
    return image;
}

Image radial(unsigned int width, unsigned int height, const GradientRadialGeometry& geometry, const Stops& stops)
{
    Image image(width, height);
    GradientRadial(image, whole(image), geometry, stops, kRgb, {});
    return image;
}

Stops sanitized(Stops stops)
{
    SanitizeGradientStops(stops);
    return stops;
}

std::vector<float> positions(const Stops& stops)
{
    std::vector<float> values;
    for (const GradientStop& stop : stops)
        values.push_back(stop.position);
    return values;
}

Pixel colour(const GradientStop& s)
{
    return {s.red, s.green, s.blue, s.alpha};
}

bool sameStops(const Stops& a, const Stops& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const GradientStop& x, const GradientStop& y) {
        return x.position == y.position && colour(x) == colour(y);
    });
}

TEST(SanitizeGradientStops, NoStopsBecomeOpaqueBlackAndOpaqueWhite)
{
    EXPECT_TRUE(sameStops(sanitized({}), kBlackToWhite));
}

TEST(SanitizeGradientStops, ASingleStopIsDoubled)
{
    EXPECT_TRUE(sameStops(sanitized({{0.3f, 1, 2, 3, 4}}), {{0, 1, 2, 3, 4}, {1, 1, 2, 3, 4}}));
}

TEST(SanitizeGradientStops, StopsAreSortedAndSpanTheWhole)
{
    EXPECT_TRUE(sameStops(sanitized({{0.9f, 1, 1, 1, 1}, {0.5f, 2, 2, 2, 2}, {0.1f, 3, 3, 3, 3}}),
                          {{0, 3, 3, 3, 3}, {0.5f, 2, 2, 2, 2}, {1, 1, 1, 1, 1}}));
    EXPECT_EQ(positions(sanitized({{0.4f, 1, 1, 1, 1}, {0.6f, 2, 2, 2, 2}})), (std::vector<float>{0, 1}));
}

TEST(SanitizeGradientStops, OfTwoEqualStopsTheFirstGoesToTheStart)
{
    EXPECT_EQ(positions(sanitized({{0.2f, 1, 0, 0, 0}, {0.2f, 2, 0, 0, 0}, {0.7f, 3, 0, 0, 0}})),
              (std::vector<float>{0, 0.2f, 1}));
}

TEST(SanitizeGradientStops, CloseStopsAreMovedApart)
{
    const std::vector<float> expected = {0, 0.5f, 0.5f + kPart, 0.5f + kPart + kPart, 1};
    EXPECT_EQ(positions(sanitized({{0}, {0.5f}, {0.5f}, {0.5f + kPart / 4}, {1}})), expected);
    EXPECT_EQ(positions(sanitized({{0}, {0}, {0}, {1}})), (std::vector<float>{0, kPart, kPart + kPart, 1}));
    // As far apart as that, or more, they stay.
    EXPECT_EQ(positions(sanitized({{0}, {kPart}, {3 * kPart}, {1}})), (std::vector<float>{0, kPart, 3 * kPart, 1}));
}

TEST(SanitizeGradientStops, WhatStandsBehindAStopAtOneIsRemoved)
{
    EXPECT_TRUE(sameStops(sanitized({{0, 1, 0, 0, 0}, {1, 2, 0, 0, 0}, {1, 3, 0, 0, 0}, {1, 4, 0, 0, 0}}),
                          {{0, 1, 0, 0, 0}, {1, 2, 0, 0, 0}}));
    // Moved to 1 by its neighbour.
    EXPECT_TRUE(
        sameStops(sanitized({{0, 1, 0, 0, 0}, {0.999995f, 2, 0, 0, 0}, {0.999999f, 3, 0, 0, 0}, {1, 4, 0, 0, 0}}),
                  {{0, 1, 0, 0, 0}, {0.999995f, 2, 0, 0, 0}, {1, 3, 0, 0, 0}}));
}

TEST(SanitizeGradientStops, AHundredThousandStopsInOnePlaceEndAtOne)
{
    const Stops stops = sanitized(Stops(100000, {0.5f, 1, 2, 3, 4}));
    EXPECT_LE(stops.size(), 32772u);
    EXPECT_GT(stops.size(), 32000u);
    EXPECT_EQ(stops.front().position, 0.0f);
    EXPECT_EQ(stops.back().position, 1.0f);
    for (std::size_t i = 1; i < stops.size(); ++i)
        ASSERT_GT(stops[i].position, stops[i - 1].position) << i;
}

TEST(SanitizeGradientStops, IsTheFormulaForRandomStops)
{
    std::mt19937 random(4);
    for (int i = 0; i < 500; ++i) {
        Stops stops(random() % 12);
        for (GradientStop& stop : stops) {
            stop.position = float(random() % 40) / 39.0f + (random() % 2 ? 0.0f : float(random() % 5) * kPart * 0.4f);
            stop.red = std::uint16_t(random());
        }
        Stops expected = stops;
        OndrelReference::sanitizeGradientStops(expected);
        ASSERT_TRUE(sameStops(sanitized(stops), expected)) << i;
    }
}

TEST(SanitizeGradientStops, PositionsThatAreNotNumbersAreHarmless)
{
    std::mt19937 random(5);
    const float values[] = {kNaN, kInfinity, -kInfinity, -1.0f, 2.0f, 0.5f, 1e-40f, 3e38f};
    for (int i = 0; i < 300; ++i) {
        Stops stops(2 + random() % 60);
        for (GradientStop& stop : stops)
            stop.position = values[random() % 8];
        SanitizeGradientStops(stops);
        ASSERT_GE(stops.size(), 2u);
        EXPECT_EQ(stops.front().position, 0.0f);
        EXPECT_EQ(stops.back().position, 1.0f);
        Image image(20, 2);
        GradientLinear(image, whole(image), {0, 0, 1, 0}, stops, kRgb, {});
    }
}

TEST(GradientLinear, RunsFromTheStartToTheEndPointByWholePixelCoordinates)
{
    const Image image = linear(16, 1, {0, 0, 0.5f, 0}, kBlackToWhite); // ends at pixel 8
    const int expected[16] = {0,     8191,  16383, 24575, 32767, 40959, 49151, 57343,
                              65535, 65535, 65535, 65535, 65535, 65535, 65535, 65535};
    for (unsigned int x = 0; x < 16; ++x)
        EXPECT_EQ(pixelAt(image, x, 0),
                  (Pixel{std::uint16_t(expected[x]), std::uint16_t(expected[x]), std::uint16_t(expected[x]), 65535}))
            << x;
}

TEST(GradientLinear, APixelAtTheEndPointHasTheLastStopsColour)
{
    for (const unsigned int n : {4u, 8u, 10u, 16u}) {
        const Image across = linear(2 * n, 1, {0, 0, 0.5f, 0}, kBlackToWhite);
        EXPECT_EQ(pixelAt(across, n, 0)[0], 65535) << n;
        EXPECT_LT(pixelAt(across, n - 1, 0)[0], 65535) << n;
        const Image down = linear(1, 2 * n, {0, 0, 0, 0.5f}, kBlackToWhite);
        EXPECT_EQ(pixelAt(down, 0, n)[0], 65535) << n;
        EXPECT_LT(pixelAt(down, 0, n - 1)[0], 65535) << n;
    }
}

TEST(GradientLinear, BeforeTheStartIsTheFirstColour)
{
    const Image image = linear(16, 1, {0.25f, 0, 0.75f, 0}, {{0, 1, 2, 3, 4}, {1, 65535, 5, 6, 7}});
    for (unsigned int x = 0; x <= 4; ++x)
        EXPECT_EQ(pixelAt(image, x, 0), (Pixel{1, 2, 3, 4})) << x;
    for (unsigned int x = 12; x < 16; ++x)
        EXPECT_EQ(pixelAt(image, x, 0), (Pixel{65535, 5, 6, 7})) << x;
}

TEST(GradientLinear, BackwardIsTheMirror)
{
    const Image image = linear(17, 1, {16.0f / 17.0f, 0, 0, 0}, kBlackToWhite);
    EXPECT_EQ(pixelAt(image, 16, 0)[0], 0);
    EXPECT_NEAR(pixelAt(image, 8, 0)[0], 32767, 1);
    EXPECT_NEAR(pixelAt(image, 0, 0)[0], 65535, 1);
}

TEST(GradientLinear, IsConstantAcrossItsDirection)
{
    // From one corner to the other of a square: x + y decides.
    const Image image = linear(16, 16, {0, 0, 1, 1}, kBlackToWhite);
    for (unsigned int y = 0; y < 16; ++y)
        for (unsigned int x = 0; x < 16; ++x)
            EXPECT_NEAR(pixelAt(image, x, y)[0], (x + y) * 65535.0 / 32.0, 1.5) << x << ", " << y;
}

TEST(GradientLinear, EqualPointsGiveOneColour)
{
    const Stops stops = {{0, 1, 2, 3, 4}, {1, 60000, 5, 6, 7}};
    for (const GradientLinearGeometry& g : {GradientLinearGeometry{0.5f, 0.5f, 0.5f, 0.5f}, {}}) {
        const Image image = linear(9, 7, g, stops);
        for (unsigned int i = 0; i < 63; ++i)
            EXPECT_EQ(pixelAt(image, i % 9, i / 9), (Pixel{60000, 5, 6, 7}));
    }
}

TEST(GradientLinear, AStopHasItsColourExactly)
{
    const Image image = linear(16, 1, {0, 0, 1, 0},
                               {{0, 1, 2, 3, 4}, {0.25f, 1000, 20000, 5, 65535}, {0.5f, 9, 8, 7, 6}, {1, 0, 0, 0, 0}});
    EXPECT_EQ(pixelAt(image, 0, 0), (Pixel{1, 2, 3, 4}));
    EXPECT_EQ(pixelAt(image, 4, 0), (Pixel{1000, 20000, 5, 65535}));
    EXPECT_EQ(pixelAt(image, 8, 0), (Pixel{9, 8, 7, 6}));
    EXPECT_EQ(pixelAt(image, 6, 0), (Pixel{504, 10004, 6, 32770})); // 504.5, 10004, 6, 32770.5
}

TEST(GradientLinear, ReplacesWhatWasThere)
{
    Image image(16, 3);
    image.Fill(11, 22, 33, 44);
    GradientLinear(image, whole(image), {0, 0, 1, 0}, {{0, 5, 6, 7, 0}, {1, 5, 6, 7, 0}}, kRgb, {});
    EXPECT_EQ(pixelAt(image, 0, 1), (Pixel{5, 6, 7, 0}));
    EXPECT_EQ(pixelAt(image, 15, 1)[3], 0);
}

TEST(GradientLinear, TheGeometryIsThatOfTheImageNotOfTheRectangle)
{
    const GradientLinearGeometry g{0.1f, 0.2f, 0.8f, 0.9f};
    const Image full = linear(33, 21, g, kBlackToWhite);
    Image part(33, 21);
    part.Fill(7, 7, 7, 7);
    GradientLinear(part, RectI(10, 4, 15, 9), g, kBlackToWhite, kRgb, {});
    for (unsigned int y = 0; y < 21; ++y)
        for (unsigned int x = 0; x < 33; ++x) {
            const bool inside = x >= 10 && x < 25 && y >= 4 && y < 13;
            EXPECT_EQ(pixelAt(part, x, y), inside ? pixelAt(full, x, y) : (Pixel{7, 7, 7, 7})) << x << ", " << y;
        }
}

TEST(GradientLinear, KeepsTheMetadata)
{
    Image image(8, 8);
    image.colorProfile.fill(3);
    image.rawFilters = 5;
    GradientLinear(image, whole(image), {0, 0, 1, 0}, kBlackToWhite, kRgb, {});
    EXPECT_EQ(image.colorProfile[31], 3);
    EXPECT_EQ(image.rawFilters, 5u);
}

TEST(GradientCurve, ACurveOfOnePointOrNoneIsIgnored)
{
    const GradientLinearGeometry g{0, 0, 1, 0};
    const Image plain = linear(64, 1, g, kBlackToWhite);
    EXPECT_TRUE(samePixels(linear(64, 1, g, kBlackToWhite, {{30000, 5}}), plain));
}

TEST(GradientCurve, ReshapesThePosition)
{
    const GradientLinearGeometry g{0, 0, 1, 0};
    const Stops stops = {{0, 1, 2, 3, 4}, {1, 60000, 5, 6, 7}};
    const Image turned = linear(64, 1, g, stops, {{0, 65535}, {65535, 0}});
    EXPECT_EQ(pixelAt(turned, 0, 0), (Pixel{60000, 5, 6, 7}));
    EXPECT_NEAR(pixelAt(turned, 32, 0)[0], 30000, 4);
    EXPECT_LT(pixelAt(turned, 63, 0)[0], 2000);
    const Image flat = linear(64, 1, g, stops, {{0, 0}, {65535, 0}});
    for (unsigned int x = 0; x < 64; ++x)
        EXPECT_EQ(pixelAt(flat, x, 0), (Pixel{1, 2, 3, 4}));
}

TEST(GradientCurve, TheIndexOfTheTableIsTruncated)
{
    // A step from 0 to 65535 between the knots at 32767 and 32768: t = 0.5 is entry 32767.5, so 32767.
    const Knots step = {{0, 0}, {32767, 0}, {32768, 65535}, {65535, 65535}};
    const Image image = linear(4, 1, {0, 0, 1, 0}, kBlackToWhite, step);
    std::vector<unsigned short> table = OndrelReference::curveTable(step);
    ASSERT_EQ(table[32767], 0);
    ASSERT_EQ(table[32768], 65535);
    EXPECT_EQ(pixelAt(image, 2, 0)[0], 0);
    EXPECT_EQ(pixelAt(image, 3, 0)[0], 65535);
}

TEST(GradientRadial, GrowsFromTheCentreToTheEdgeOfTheCircle)
{
    const Image image = radial(32, 32, {0.5f, 0.5f, 0.25f, 0.25f, 0, 0, 0}, kBlackToWhite); // radius 8
    EXPECT_EQ(pixelAt(image, 16, 16)[0], 0);
    for (unsigned int d = 1; d <= 8; ++d)
        for (const auto& [x, y] :
             {std::pair(16 + d, 16u), std::pair(16 - d, 16u), std::pair(16u, 16 + d), std::pair(16u, 16 - d)})
            EXPECT_NEAR(pixelAt(image, x, y)[0], d * 65535.0 / 8.0, 1) << x << ", " << y;
    EXPECT_EQ(pixelAt(image, 24, 16)[0], 65535);
    EXPECT_EQ(pixelAt(image, 31, 31)[0], 65535);
    EXPECT_EQ(pixelAt(image, 0, 16)[0], 65535);
    EXPECT_EQ(pixelAt(image, 20, 16)[0], 32767);
}

TEST(GradientRadial, HasARadiusForEachDirection)
{
    const Image image = radial(32, 32, {0.5f, 0.5f, 0.25f, 0.125f, 0, 0, 0}, kBlackToWhite);
    EXPECT_EQ(pixelAt(image, 20, 16)[0], 32767);
    EXPECT_EQ(pixelAt(image, 16, 18)[0], 32767);
    EXPECT_EQ(pixelAt(image, 16, 20)[0], 65535);
    EXPECT_EQ(pixelAt(image, 22, 16)[0], 49151);
}

TEST(GradientRadial, IsTurnedByItsAngle)
{
    // By an eighth, the long axis points up to the right.
    const Image image = radial(64, 64, {0.5f, 0.5f, 0.375f, 0.125f, 0.78539816f, 0, 0}, kBlackToWhite);
    EXPECT_NEAR(pixelAt(image, 42, 22)[0], std::sqrt(200.0) / 24.0 * 65535.0, 30);
    EXPECT_NEAR(pixelAt(image, 22, 42)[0], std::sqrt(200.0) / 24.0 * 65535.0, 30);
    EXPECT_EQ(pixelAt(image, 42, 42)[0], 65535);
    EXPECT_EQ(pixelAt(image, 22, 22)[0], 65535);
    EXPECT_NEAR(pixelAt(image, 36, 36)[0], std::sqrt(32.0) / 8.0 * 65535.0, 30);
}

TEST(GradientRadial, StartsAtTheFocalPoint)
{
    // Focal point 4 right of the centre, radius 8: to the right 4 pixels to the edge, to the left 12.
    const Image image = radial(32, 32, {0.5f, 0.5f, 0.25f, 0.25f, 0, 0.125f, 0}, kBlackToWhite);
    EXPECT_EQ(pixelAt(image, 20, 16)[0], 0);
    EXPECT_EQ(pixelAt(image, 22, 16)[0], 32767);
    EXPECT_EQ(pixelAt(image, 14, 16)[0], 32767);
    EXPECT_EQ(pixelAt(image, 17, 16)[0], 16383);
    EXPECT_EQ(pixelAt(image, 24, 16)[0], 65535);
}

TEST(GradientRadial, AFocalPointBeyondTheEllipseIsMovedToItsEdge)
{
    const Image edge = radial(32, 32, {0.5f, 0.5f, 0.25f, 0.25f, 0, 0.25f, 0}, kBlackToWhite);
    for (const float far : {0.5f, 1.0f, 64.0f})
        EXPECT_TRUE(samePixels(radial(32, 32, {0.5f, 0.5f, 0.25f, 0.25f, 0, far, 0}, kBlackToWhite), edge)) << far;
    EXPECT_EQ(pixelAt(edge, 16, 16)[0], 32767); // 8 of 16
    EXPECT_EQ(pixelAt(edge, 12, 16)[0], 49151);
    // Downward, where the other radius counts.
    const Image below = radial(32, 32, {0.5f, 0.5f, 0.25f, 0.125f, 0, 0, 1.0f}, kBlackToWhite);
    EXPECT_NEAR(pixelAt(below, 16, 16)[0], 32767, 2);
}

TEST(GradientRadial, TheGeometryIsThatOfTheImageNotOfTheRectangle)
{
    const GradientRadialGeometry g{0.4f, 0.6f, 0.3f, 0.2f, 0.5f, 0.1f, 0.05f};
    const Image full = radial(33, 21, g, kBlackToWhite);
    Image part(33, 21);
    part.Fill(7, 7, 7, 7);
    GradientRadial(part, RectI(10, 4, 15, 9), g, kBlackToWhite, kRgb, {});
    for (unsigned int y = 0; y < 21; ++y)
        for (unsigned int x = 0; x < 33; ++x) {
            const bool inside = x >= 10 && x < 25 && y >= 4 && y < 13;
            EXPECT_EQ(pixelAt(part, x, y), inside ? pixelAt(full, x, y) : (Pixel{7, 7, 7, 7})) << x << ", " << y;
        }
}

// Renders of either kind, for what holds for both.

using Render =
    std::function<void(Image&, const RectI&, const Stops&, Ondrel::GradientColorInterpolation, const Knots&)>;

Render linearRender(const GradientLinearGeometry& g)
{
    return [g](Image& image, const RectI& rect, const Stops& stops, Ondrel::GradientColorInterpolation mode,
               const Knots& curve) { GradientLinear(image, rect, g, stops, mode, curve); };
}

Render radialRender(const GradientRadialGeometry& g)
{
    return [g](Image& image, const RectI& rect, const Stops& stops, Ondrel::GradientColorInterpolation mode,
               const Knots& curve) { GradientRadial(image, rect, g, stops, mode, curve); };
}

const GradientLinearGeometry kLine{0.1f, 0.2f, 0.8f, 0.9f};
const GradientRadialGeometry kEllipse{0.4f, 0.6f, 0.3f, 0.2f, 0.5f, 0.1f, 0.05f};

std::vector<RectI> rectanglesBeyond(int width, int height)
{
    const int far = std::numeric_limits<int>::max(), near = std::numeric_limits<int>::min();
    return {RectI(-5, -5, 10, 10),
            RectI(width - 3, height - 2, 50, 50),
            RectI(-9, 2, width + 20, 3),
            RectI(QPoint(near, near), QPoint(far, far)),
            RectI(width, 0, 4, 4),
            RectI(0, height, 4, 4),
            RectI(-9, -9, 4, 4),
            RectI(0, 0, 0, 0),
            RectI(3, 3, -2, 5),
            RectI(3, 3, 5, -2),
            RectI::invalid(),
            RectI(far, far, 0, 0),
            RectI(near, near, 0, 0)};
}

TEST(Gradient, RectanglesBeyondTheImageWriteInsideAlone)
{
    for (const Render& render : {linearRender(kLine), radialRender(kEllipse)})
        for (const auto mode : {kRgb, kLch}) {
            Image full(23, 17);
            full.colorProfile = Ondrel::DefaultColorProfileHash;
            ColorManager::get();
            render(full, whole(full), kBlackToWhite, mode, {});
            for (const RectI& rect : rectanglesBeyond(23, 17)) {
                // The image is a part of its block, so that writes behind its end are seen.
                Image image = shrunkImage(23, 17, 1);
                image.colorProfile = Ondrel::DefaultColorProfileHash;
                const Image before = image;
                render(image, rect, kBlackToWhite, mode, {});
                const std::size_t used = 23 * 17 * 4;
                ASSERT_TRUE(std::equal(image.data + used, image.data + image.sizeBytes / 2, before.data + used));
                for (unsigned int y = 0; y < 17; ++y)
                    for (unsigned int x = 0; x < 23; ++x) {
                        const bool inside = int(x) >= rect.left() && int(x) < rect.right() && int(y) >= rect.top() &&
                                            int(y) < rect.bottom();
                        ASSERT_EQ(pixelAt(image, x, y), pixelAt(inside ? full : before, x, y))
                            << x << ", " << y << ", mode " << mode;
                    }
            }
        }
}

TEST(Gradient, ImagesWithoutPixels)
{
    ColorManager::get();
    for (const Render& render : {linearRender(kLine), radialRender(kEllipse)})
        for (const auto mode : {kRgb, kLch})
            for (const Image& empty : {Image(), Image(0, 5), Image(5, 0)}) {
                Image image = empty;
                image.colorProfile = Ondrel::DefaultColorProfileHash;
                render(image, RectI(0, 0, 5, 5), kBlackToWhite, mode, {});
                EXPECT_EQ(image.data, nullptr);
            }
}

TEST(Gradient, SenselessNumbersAreHarmless)
{
    ColorManager::get();
    const float values[] = {kNaN, kInfinity, -kInfinity, 3e38f, -3e38f, 1e-40f, 0.0f};
    const Knots curve = {{0, 65535}, {65535, 0}};
    Image image(9, 7);
    image.colorProfile = Ondrel::DefaultColorProfileHash;
    for (const float value : values)
        for (int field = 0; field < 7; ++field)
            for (const auto mode : {kRgb, kLch})
                for (const Knots& c : {Knots{}, curve}) {
                    GradientLinearGeometry line = kLine;
                    float* const lineFields[] = {&line.x1, &line.y1, &line.x2, &line.y2};
                    *lineFields[field % 4] = value;
                    GradientLinear(image, whole(image), line, kBlackToWhite, mode, c);
                    GradientRadialGeometry g = kEllipse;
                    float* const fields[] = {&g.centerX, &g.centerY, &g.radiusX, &g.radiusY,
                                             &g.angle,   &g.focalX,  &g.focalY};
                    *fields[field] = value;
                    GradientRadial(image, whole(image), g, kBlackToWhite, mode, c);
                }
}

TEST(Gradient, StopsThatWereNotSanitisedAreHarmless)
{
    ColorManager::get();
    Image image(9, 7);
    image.colorProfile = Ondrel::DefaultColorProfileHash;
    const Stops lists[] = {{},
                           {{0.5f, 1, 2, 3, 4}},
                           {{0.9f, 1, 2, 3, 4}, {0.1f, 5, 6, 7, 8}},
                           {{kNaN, 1, 2, 3, 4}, {kNaN, 5, 6, 7, 8}},
                           {{-kInfinity, 1, 2, 3, 4}, {kInfinity, 5, 6, 7, 8}},
                           {{0.5f, 1, 2, 3, 4}, {0.5f, 5, 6, 7, 8}},
                           {{2, 1, 2, 3, 4}, {3, 5, 6, 7, 8}},
                           {{-3, 65535, 2, 3, 4}, {-2, 0, 6, 7, 8}}};
    for (const Stops& stops : lists)
        for (const Render& render : {linearRender(kLine), radialRender(kEllipse)})
            for (const auto mode : {kRgb, kLch})
                render(image, whole(image), stops, mode, {});
}

TEST(Gradient, CurvesOfAnyKnotsAreHarmless)
{
    Image image(40, 7);
    for (const Knots& curve : {Knots{{70000, 5}, {-5, 70000}}, Knots{{-100, -100}, {100000, 100000}},
                               Knots{{5, 5}, {5, 5}}, Knots{{65535, 0}, {0, 65535}}})
        for (const Render& render : {linearRender(kLine), radialRender(kEllipse)})
            render(image, whole(image), kBlackToWhite, kRgb, curve);
}

// The fast forms against the literal one, bit by bit, on every instruction level.

Stops randomStops(std::mt19937& random)
{
    Stops stops(2 + (random() % 4 ? random() % 5 : random() % 40));
    for (GradientStop& stop : stops) {
        stop.position = float(random() % 1000) / 999.0f;
        stop.red = std::uint16_t(random());
        stop.green = std::uint16_t(random() % 2 ? 65535 : 0);
        stop.blue = std::uint16_t(random() % 3);
        stop.alpha = std::uint16_t(random());
    }
    SanitizeGradientStops(stops);
    return stops;
}

Knots randomCurve(std::mt19937& random)
{
    if (random() % 2)
        return {};
    Knots curve;
    for (int x = int(random() % 20000); x < 65536; x += 1 + int(random() % 30000))
        curve.push_back({x, int(random() % 65536)});
    return curve;
}

RectI randomRect(std::mt19937& random, const Image& image)
{
    if (random() % 2)
        return whole(image);
    const int x = int(random() % image.width), y = int(random() % image.height);
    return RectI(x, y, 1 + int(random() % image.width), 1 + int(random() % image.height));
}

void expectAsTheReference(const Render& render, const GradientPosition& position, const Image& image,
                          std::mt19937& random)
{
    const Stops stops = randomStops(random);
    const Knots curve = randomCurve(random);
    const RectI rect = randomRect(random, image);
    Image expected = image;
    OndrelReference::gradient(expected, rect, position, stops, curve);
    forEveryInstructionLevel([&] {
        Image result = image;
        render(result, rect, stops, kRgb, curve);
        EXPECT_TRUE(samePixels(result, expected))
            << image.width << " x " << image.height << ", " << stops.size() << " stops, " << curve.size() << " knots";
    });
}

Image randomCanvas(std::mt19937& random)
{
    const unsigned int w = 1 + unsigned(random() % 150), h = 1 + unsigned(random() % 60);
    return random() % 3 ? randomImage(w, h, 1) : shrunkImage(w, h, 2);
}

TEST(GradientReference, Lines)
{
    std::mt19937 random(21);
    std::uniform_real_distribution<float> place(-0.5f, 1.5f);
    for (int i = 0; i < 400; ++i) {
        const Image image = randomCanvas(random);
        GradientLinearGeometry g{place(random), place(random), place(random), place(random)};
        if (i % 5 == 0)
            g.x2 = g.x1;
        if (i % 7 == 0)
            g.y2 = g.y1;
        if (i % 11 == 0)
            g = {0, 0, 1, 0};
        if (i % 35 == 0) // equal points: one colour, without a curve
            continue;
        expectAsTheReference(linearRender(g), OndrelReference::linearPosition(image, g), image, random);
    }
}

TEST(GradientReference, LinesOfEveryLength)
{
    // n / n rounds below 1 for some lengths.
    std::mt19937 random(22);
    for (unsigned int n = 1; n < 300; ++n) {
        const Image image(n + 3, 2);
        const GradientLinearGeometry g{0, 0, float(n) / float(n + 3), 0};
        expectAsTheReference(linearRender(g), OndrelReference::linearPosition(image, g), image, random);
    }
}

TEST(GradientReference, Ellipses)
{
    std::mt19937 random(23);
    std::uniform_real_distribution<float> place(-0.5f, 1.5f), radius(0.01f, 1.2f), angle(-7.0f, 7.0f),
        focal(-0.6f, 0.6f);
    for (int i = 0; i < 400; ++i) {
        const Image image = randomCanvas(random);
        GradientRadialGeometry g{place(random), place(random), radius(random), radius(random),
                                 angle(random), focal(random), focal(random)};
        if (i % 4 == 0)
            g.focalX = g.focalY = 0;
        if (i % 4 == 1)
            g.angle = 0;
        if (i % 9 == 0) { // centred on a pixel
            g.centerX = float(image.width / 2) / float(image.width);
            g.centerY = float(image.height / 2) / float(image.height);
        }
        if (i % 13 == 0)
            g.radiusX = 0;
        if (i % 17 == 0)
            g.radiusY = 0;
        expectAsTheReference(radialRender(g), OndrelReference::radialPosition(image, g), image, random);
    }
}

TEST(GradientReference, ALargePicture)
{
    std::mt19937 random(24);
    const Image image(1201, 333);
    for (int i = 0; i < 3; ++i) {
        expectAsTheReference(linearRender(kLine), OndrelReference::linearPosition(image, kLine), image, random);
        expectAsTheReference(radialRender(kEllipse), OndrelReference::radialPosition(image, kEllipse), image, random);
    }
}

// Mixing by lightness, chroma and hue, against Little CMS itself.

struct Transform {
    cmsHTRANSFORM handle;
    Transform(void* from, cmsUInt32Number fromFormat, void* to, cmsUInt32Number toFormat, cmsUInt32Number flags)
        : handle(cmsCreateTransform(from, fromFormat, to, toFormat, INTENT_ABSOLUTE_COLORIMETRIC, flags))
    {
    }
    ~Transform() { cmsDeleteTransform(handle); }
    Transform(const Transform&) = delete;
    Transform& operator=(const Transform&) = delete;
};

struct Lch {
    float l, c, h;
};

// The stops with hues that take the short way from each to the next.
std::vector<Lch> lchStops(const Stops& stops, void* profile, void* lab)
{
    const Transform toLab(profile, TYPE_RGB_16, lab, TYPE_Lab_FLT, cmsFLAGS_NOCACHE);
    const float turn = 6.283185307179586f;
    std::vector<Lch> result;
    int turns = 0;
    for (const GradientStop& stop : stops) {
        const std::uint16_t rgb[3] = {stop.red, stop.green, stop.blue};
        float v[3];
        cmsDoTransform(toLab.handle, rgb, v, 1);
        Lch lch{v[0], std::sqrt(v[1] * v[1] + v[2] * v[2]), std::atan2(v[2], v[1])};
        if (!result.empty()) {
            lch.h += turn * float(turns);
            const float d = result.back().h - lch.h;
            const float plain = std::fabs(d), up = std::fabs(d + turn), down = std::fabs(d - turn);
            if (up < down && up < plain) {
                lch.h -= turn;
                --turns;
            } else if (down < up && down < plain) {
                lch.h += turn;
                ++turns;
            }
        }
        result.push_back(lch);
    }
    return result;
}

// The picture with the part of `rect` filled; `profile` stands for that of the image.
Image filledInLch(const Image& image, const RectI& rect, const GradientPosition& position, const Stops& stops,
                  const Knots& curve, void* profile)
{
    const Profile lab(Ondrel::CreateLabColorProfile());
    const std::vector<Lch> lch = lchStops(stops, profile, lab.get());
    const Transform fromLab(lab.get(), TYPE_Lab_FLT, profile, TYPE_RGBA_16, 0);
    const std::vector<unsigned short> table = OndrelReference::curveTable(curve);
    Image out = image;
    for (int y = rect.top(); y < rect.bottom(); ++y)
        for (int x = rect.left(); x < rect.right(); ++x) {
            const auto mix = OndrelReference::mixAt(OndrelReference::throughCurve(position(x, y), table), stops);
            const Lch &a = lch[mix.previous], &b = lch[mix.next];
            const float f = mix.share, g = 1.0f - mix.share;
            const float c = b.c * f + a.c * g, h = b.h * f + a.h * g;
            const float v[3] = {b.l * f + a.l * g, c * std::cos(h), c * std::sin(h)};
            std::uint16_t* const pixel = out.data + (std::size_t(y) * out.width + std::size_t(x)) * 4;
            cmsDoTransform(fromLab.handle, v, pixel, 1);
            pixel[3] = std::uint16_t(float(stops[mix.next].alpha) * f + float(stops[mix.previous].alpha) * g);
        }
    return out;
}

class LchGradient : public testing::Test
{
protected:
    void SetUp() override { ColorManager::get(); }
    void TearDown() override
    {
        QSettings().remove("settings/colormanagement");
        ColorManager::reload();
    }

    static Hash hashOf(void* (*create)()) { return ColorManager::buildColorProfileHash(Profile(create()).get()); }

    static Image canvas(unsigned int width, unsigned int height, const Hash& hash)
    {
        Image image = randomImage(width, height, 1);
        image.colorProfile = hash;
        return image;
    }
};

const Stops kColours = {{0, 65535, 2000, 0, 65535},
                        {0.25f, 10000, 60000, 5000, 1000},
                        {0.6f, 3000, 0, 65000, 0},
                        {0.75f, 65535, 0, 40000, 30000},
                        {1, 50000, 50000, 50000, 65535}};

TEST_F(LchGradient, IsWhatLittleCmsGives)
{
    for (void* (*const create)() : {Ondrel::Create_sRGBColorProfile, Ondrel::CreateProPhotoRGBColorProfile,
                                    Ondrel::CreateLinear_sRGBColorProfile}) {
        const Hash hash = hashOf(create);
        const Profile profile(ColorManager::copyColorProfileByHash(hash));
        for (const RectI& rect : {RectI(0, 0, 61, 300), RectI(7, 9, 30, 280), RectI(60, 299, 1, 1)})
            for (const Knots& curve : {Knots{}, Knots{{0, 0}, {20000, 40000}, {65535, 65535}}}) {
                const Image image = canvas(61, 300, hash);
                Image line = image, ellipse = image;
                GradientLinear(line, rect, kLine, kColours, kLch, curve);
                GradientRadial(ellipse, rect, kEllipse, kColours, kLch, curve);
                EXPECT_TRUE(samePixels(line, filledInLch(image, rect, OndrelReference::linearPosition(image, kLine),
                                                         kColours, curve, profile.get())));
                EXPECT_TRUE(
                    samePixels(ellipse, filledInLch(image, rect, OndrelReference::radialPosition(image, kEllipse),
                                                    kColours, curve, profile.get())));
                EXPECT_EQ(line.colorProfile, hash);
            }
    }
}

TEST_F(LchGradient, IsWhatLittleCmsGivesForRandomStops)
{
    std::mt19937 random(31);
    const Hash hash = hashOf(Ondrel::CreateProPhotoRGBColorProfile);
    const Profile profile(ColorManager::copyColorProfileByHash(hash));
    for (int i = 0; i < 40; ++i) {
        const Image image = canvas(50, 4, hash);
        Stops stops(2 + random() % 12);
        for (GradientStop& stop : stops)
            stop = {float(random() % 1000) / 999.0f, std::uint16_t(random()), std::uint16_t(random()),
                    std::uint16_t(random()), std::uint16_t(random())};
        SanitizeGradientStops(stops);
        Image result = image;
        GradientLinear(result, whole(image), {0, 0, 1, 0}, stops, kLch, {});
        EXPECT_TRUE(
            samePixels(result, filledInLch(image, whole(image), OndrelReference::linearPosition(image, {0, 0, 1, 0}),
                                           stops, {}, profile.get())))
            << i;
    }
}

TEST_F(LchGradient, AnyValueButZeroMixesSo)
{
    Image lch = canvas(30, 5, Ondrel::DefaultColorProfileHash), other = lch, rgb = lch;
    GradientLinear(lch, whole(lch), {0, 0, 1, 0}, kColours, kLch, {});
    GradientLinear(other, whole(lch), {0, 0, 1, 0}, kColours, static_cast<Ondrel::GradientColorInterpolation>(77), {});
    GradientLinear(rgb, whole(lch), {0, 0, 1, 0}, kColours, kRgb, {});
    EXPECT_TRUE(samePixels(lch, other));
    EXPECT_FALSE(samePixels(lch, rgb));
}

TEST_F(LchGradient, HuesTakeTheShortWayRound)
{
    // From a green to a blue and back, over the place where the angle jumps from 180 to -180 degrees: half way it is a
    // teal, while the long way goes by the reds.
    const GradientStop green{0, 10000, 50000, 10000, 65535}, blue{1, 0, 35000, 60000, 65535};
    for (const auto& [from, to] : {std::pair(green, blue), std::pair(blue, green)}) {
        const Stops stops = {{0, from.red, from.green, from.blue, 65535}, {1, to.red, to.green, to.blue, 65535}};
        Image image = canvas(32, 1, Ondrel::DefaultColorProfileHash);
        GradientLinear(image, whole(image), {0, 0, 1, 0}, stops, kLch, {});
        const Pixel middle = pixelAt(image, 16, 0);
        EXPECT_LT(middle[0], 20000);
        EXPECT_GT(middle[1], 35000);
        EXPECT_GT(middle[2], 25000);
    }
}

TEST_F(LchGradient, HuesGoOnTurningInOneDirection)
{
    // Twice round the circle in steps of a third: each step is the short way, and turns add up.
    const Stops stops = {{0, 60000, 5000, 5000, 65535},    {0.2f, 5000, 60000, 5000, 65535},
                         {0.4f, 5000, 5000, 60000, 65535}, {0.6f, 60000, 5000, 5000, 65535},
                         {0.8f, 5000, 60000, 5000, 65535}, {1, 5000, 5000, 60000, 65535}};
    Image image = canvas(50, 1, Ondrel::DefaultColorProfileHash);
    GradientLinear(image, whole(image), {0, 0, 1, 0}, stops, kLch, {});
    for (unsigned int x = 0; x < 20; ++x) // the second turn is the first again
        for (std::size_t c = 0; c < 3; ++c)
            EXPECT_NEAR(pixelAt(image, x, 0)[c], pixelAt(image, x + 30, 0)[c], 300) << x;
}

TEST_F(LchGradient, ColoursAreConvertedAbsolutely)
{
    const Profile paper = rgbProfile(1.8, "Gradient paper");
    const cmsCIEXYZ white = {0.80, 0.83, 0.68}; // so that the absolute intent differs from the others
    cmsWriteTag(paper.get(), cmsSigMediaWhitePointTag, &white);
    const Profile profile = reopened(paper);
    Hash hash{};
    ASSERT_TRUE(ColorManager::addColorProfile(savedBytes(profile.get()), ColorManager::ColorProfile::Embedded, &hash));
    const Image image = canvas(40, 9, hash);
    Image result = image;
    GradientLinear(result, whole(image), kLine, kColours, kLch, {});
    EXPECT_TRUE(samePixels(result, filledInLch(image, whole(image), OndrelReference::linearPosition(image, kLine),
                                               kColours, {}, profile.get())));
    ColorManager::removeColorProfile(hash, ColorManager::ColorProfile::Embedded);
}

TEST_F(LchGradient, AlphaIsMixedAsItIs)
{
    const Stops stops = {{0, 65535, 0, 0, 0}, {1, 0, 0, 65535, 65535}};
    Image whole16 = canvas(16, 2, Ondrel::DefaultColorProfileHash), part = whole16;
    GradientLinear(whole16, RectI(0, 0, 16, 2), {0, 0, 1, 0}, stops, kLch, {});
    GradientLinear(part, RectI(2, 0, 14, 2), {0, 0, 1, 0}, stops, kLch, {});
    for (unsigned int x = 0; x < 16; ++x) {
        EXPECT_EQ(pixelAt(whole16, x, 1)[3], std::uint16_t(x * 65535 / 16)) << x;
        if (x >= 2) {
            EXPECT_EQ(pixelAt(part, x, 1), pixelAt(whole16, x, 1)) << x;
        }
    }
}

TEST_F(LchGradient, AnUnknownProfileBlanksTheWholeImage)
{
    for (const Hash& hash : {Hash{}, wordHash("unknown")})
        for (const Render& render : {linearRender(kLine), radialRender(kEllipse)}) {
            Image image = canvas(20, 10, hash);
            render(image, RectI(3, 3, 4, 4), kColours, kLch, {});
            EXPECT_TRUE(samePixels(image, Image(20, 10)));
            EXPECT_EQ(image.colorProfile, hash);
            // In RGB no profile is asked for.
            image = canvas(20, 10, hash);
            render(image, RectI(3, 3, 4, 4), kColours, kRgb, {});
            EXPECT_EQ(pixelAt(image, 0, 0), pixelAt(canvas(20, 10, hash), 0, 0));
        }
}

TEST_F(LchGradient, AProfileThatFitsNoRgbPixelsIsHarmless)
{
    Hash cmyk{};
    ASSERT_TRUE(
        ColorManager::addColorProfile(savedBytes(cmykProfile().get()), ColorManager::ColorProfile::Embedded, &cmyk));
    Image image = canvas(20, 10, cmyk);
    GradientLinear(image, RectI(3, 3, 4, 4), kLine, kColours, kLch, {});
    EXPECT_EQ(image.width, 20u);
    ColorManager::removeColorProfile(cmyk, ColorManager::ColorProfile::Embedded);
}

TEST_F(LchGradient, LabImagesTakeTheDisplaysProfile)
{
    const Profile display = reopened(rgbProfile(1.4, "Gradient display"));
    Hash displayHash{};
    ASSERT_TRUE(
        ColorManager::addColorProfile(savedBytes(display.get()), ColorManager::ColorProfile::Embedded, &displayHash));
    QSettings().setValue("settings/colormanagement/displayprofile", toByteArray(displayHash));
    ColorManager::reload();
    const Hash lab = hashOf(Ondrel::CreateLabColorProfile);
    const Image image = canvas(40, 9, lab);
    const auto filled = [&](void* profile) {
        return filledInLch(image, whole(image), OndrelReference::linearPosition(image, kLine), kColours, {}, profile);
    };
    Image result = image;
    GradientLinear(result, whole(image), kLine, kColours, kLch, {});
    EXPECT_TRUE(samePixels(result, filled(display.get())));
    EXPECT_EQ(result.colorProfile, lab);

    // With colour management off there is no display profile, and sRGB takes its place.
    QSettings().setValue("settings/colormanagement/colormanagement", "Disabled");
    ColorManager::reload();
    result = image;
    GradientLinear(result, whole(image), kLine, kColours, kLch, {});
    EXPECT_TRUE(samePixels(result, filled(Profile(Ondrel::Create_sRGBColorProfile()).get())));
    ColorManager::removeColorProfile(displayHash, ColorManager::ColorProfile::Embedded);
}

} // namespace

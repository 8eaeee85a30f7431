#include <ondrel/core/cubicbezierspline.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace
{

using Ondrel::CubicBezierSpline;
using Points = std::vector<CubicBezierSpline::Point>;

std::vector<float> smooth(const Points& points, int size, int maxValue)
{
    CubicBezierSpline spline;
    spline.setPoints(points);
    std::vector<float> table;
    spline.smoothSpline(table, size, maxValue);
    return table;
}

std::vector<unsigned short> rounded(const Points& points, int size, int maxValue)
{
    CubicBezierSpline spline;
    spline.setPoints(points);
    std::vector<unsigned short> table;
    spline.roundedSpline(table, size, maxValue);
    return table;
}

// The table by the rules, segment by segment, in plain arithmetic.
float slope(const CubicBezierSpline::Point& a, const CubicBezierSpline::Point& b)
{
    return a.x == b.x ? 0.0f : float(b.y - a.y) / float(b.x - a.x);
}

std::vector<float> literal(const Points& p, int size, int maxValue)
{
    std::vector<float> table(std::size_t(size), 0.0f);
    const int n = int(p.size());
    const auto at = [&](int i) { return p[std::size_t(i)]; };
    for (int i = 0; i + 1 < n; ++i) {
        const auto a = at(i), b = at(i + 1);
        const float dx = float(b.x - a.x);
        int c1 = 0, c2 = 0;
        if (n == 2) {
            c1 = int((b.y - a.y) / 3.0 + a.y);
            c2 = int((b.y - a.y) * 0.6666666666666666 + a.y);
        } else if (i == 0) {
            c2 = int(b.y - slope(a, at(i + 2)) * dx / 3.0);
            c1 = int((c2 - a.y) * 0.5 + a.y);
        } else if (i == n - 2) {
            c1 = int(slope(at(i - 1), b) * dx / 3.0 + a.y);
            c2 = int((c1 - b.y) * 0.5 + b.y);
        } else {
            c1 = int(slope(at(i - 1), b) * dx / 3.0 + a.y);
            c2 = int(b.y - slope(a, at(i + 2)) * dx / 3.0);
        }
        for (int x = a.x; x < b.x && x < size; ++x) {
            const float t = float(x - a.x) / dx, u = 1.0f - t;
            const float v = u * u * u * float(a.y) + 3.0f * (u * u) * t * float(c1) + 3.0f * u * (t * t) * float(c2) +
                            t * t * t * float(b.y);
            table[std::size_t(x)] = std::max(0.0f, std::min(v, float(maxValue)));
        }
    }
    for (int x = 0; x < at(0).x && x < size && at(0).x < size; ++x)
        table[std::size_t(x)] = table[std::size_t(at(0).x)];
    for (int x = at(n - 1).x; x < size; ++x)
        table[std::size_t(x)] = float(at(n - 1).y);
    return table;
}

TEST(Spline, EqualityComparesEveryPoint)
{
    CubicBezierSpline a, b;
    EXPECT_TRUE(a == b);
    a.setPoints({{0, 0}, {1, 2}});
    EXPECT_FALSE(a == b);
    b.setPoints({{0, 0}, {1, 3}});
    EXPECT_FALSE(a == b);
    b.setPoints({{0, 0}, {1, 2}});
    EXPECT_TRUE(a == b);
}

TEST(Spline, NoPointsLeaveTheTableAsItIs)
{
    std::vector<float> table = {1, 2, 3};
    CubicBezierSpline().smoothSpline(table, 10, 5);
    EXPECT_EQ(table, (std::vector<float>{1, 2, 3}));
}

TEST(Spline, TheStraightLineIsTheIdentityWithinRounding)
{
    const auto table = rounded({{0, 0}, {65535, 65535}}, 65536, 65535);
    ASSERT_EQ(table.size(), 65536u);
    for (int v = 0; v < 65536; ++v)
        ASSERT_NEAR(table[std::size_t(v)], v, 1) << v;
    EXPECT_EQ(table[0], 0);
    EXPECT_EQ(table[65535], 65535);
}

TEST(Spline, ASinglePointIsZeroBelowAndConstantFromThere)
{
    const auto table = smooth({{100, 200}}, 300, 65535);
    EXPECT_EQ(table[0], 0.0f);
    EXPECT_EQ(table[99], 0.0f);
    EXPECT_EQ(table[100], 200.0f);
    EXPECT_EQ(table[299], 200.0f);
}

TEST(Spline, IsFlatBelowItsFirstKnot)
{
    const auto table = smooth({{1000, 30000}, {65535, 65535}}, 65536, 65535);
    EXPECT_EQ(table[0], 30000.0f);
    EXPECT_EQ(table[999], 30000.0f);
    EXPECT_EQ(table[1000], 30000.0f);
}

TEST(Spline, TheEndIsNotLimited)
{
    const auto table = smooth({{0, 0}, {10, 500}}, 20, 100);
    EXPECT_EQ(table[9], 100.0f);
    EXPECT_EQ(table[10], 500.0f);
    EXPECT_EQ(table[19], 500.0f);
    EXPECT_EQ(rounded({{0, 0}, {10, 500}}, 20, 100)[19], 100);
}

TEST(Spline, NeverRoundsAboveTheLimit)
{
    std::mt19937 random(2);
    for (int i = 0; i < 200; ++i) {
        Points points;
        for (int k = 0, x = 0; k < 5; ++k)
            points.push_back({x += int(random() % 60) + 1, int(random() % 400)});
        for (const unsigned short v : rounded(points, 256, 250))
            ASSERT_LE(v, 250);
    }
}

TEST(Spline, RoundingResizesTheTableAndRoundsHalvesUp)
{
    CubicBezierSpline spline;
    spline.setPoints({{0, 3}});
    std::vector<unsigned short> table(1000, 9);
    spline.roundedSpline(table, 4, 10);
    EXPECT_EQ(table, (std::vector<unsigned short>{3, 3, 3, 3}));
}

TEST(Spline, KnotsBeyondTheTableAreCut)
{
    const auto table = smooth({{0, 0}, {50, 50}, {1000, 1000}, {2000, 0}}, 100, 65535);
    ASSERT_EQ(table.size(), 100u);
    EXPECT_EQ(table, literal({{0, 0}, {50, 50}, {1000, 1000}, {2000, 0}}, 100, 65535));
}

TEST(Spline, AgreesWithTheLiteralForm)
{
    std::mt19937 random(3);
    for (int i = 0; i < 300; ++i) {
        Points points;
        const int n = 2 + int(random() % 6);
        for (int k = 0, x = int(random() % 30); k < n; ++k, x += 1 + int(random() % 200))
            points.push_back({x, int(random() % 65536)});
        const int maxValue = i % 2 ? 65535 : 30000;
        const auto expected = literal(points, 700, maxValue), table = smooth(points, 700, maxValue);
        ASSERT_EQ(table.size(), expected.size());
        for (std::size_t x = 0; x < table.size(); ++x)
            ASSERT_NEAR(table[x], expected[x], 0.02f) << i << " " << x; // the grouping of the float products is free
    }
}

TEST(Spline, PointsOutOfOrderOrRangeAreHarmless)
{
    for (const Points& points : {Points{{-5, 3}, {10, 4}}, Points{{500, 3}, {10, 4}}, Points{{10, 3}, {10, 4}},
                                 Points{{0, -70000}, {5, -3}}, Points{{2147483647, 1}, {-2147483647 - 1, 2}}}) {
        EXPECT_EQ(smooth(points, 64, 65535).size(), 64u);
        EXPECT_EQ(rounded(points, 64, 65535).size(), 64u);
    }
    EXPECT_TRUE(smooth({{0, 0}, {5, 5}}, 0, 10).empty());
}

TEST(Spline, HalvesRoundUp)
{
    // Controls 2 and 3: in the middle 2.5.
    EXPECT_EQ(smooth({{0, 1}, {2, 4}}, 3, 65535), (std::vector<float>{1.0f, 2.5f, 4.0f}));
    EXPECT_EQ(rounded({{0, 1}, {2, 4}}, 3, 65535), (std::vector<unsigned short>{1, 3, 4}));
}

TEST(Spline, OuterControlsLieHalfWayToTheInnerOnes)
{
    const auto table = smooth({{0, 0}, {10, 100}, {30, 100}}, 40, 65535);
    EXPECT_EQ(table[5], 62.0f);     // controls 44 and 88
    EXPECT_EQ(table[20], 112.375f); // controls 122 and 111
}

TEST(Spline, ControlsAreTruncatedTowardsZero)
{
    const auto table = smooth({{0, 20}, {10, 1}, {20, 120}}, 20, 65535);
    EXPECT_NEAR(table[1], 14.662f, 1e-4f); // controls 2 and -15; rounded down, -16 would give 14.635
}

TEST(Spline, ValuesBetweenKnotsAreLimitedBelowToo)
{
    const auto table = smooth({{0, 20}, {10, 1}, {20, 120}}, 20, 65535);
    EXPECT_EQ(table[5], 0.0f); // -2.25 by the curve
}

} // namespace

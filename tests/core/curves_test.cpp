#include <ondrel/core/curves.h>

#include "tests/support/testimages.h"

#include <gtest/gtest.h>

#include <memory>

namespace
{

using Points = std::vector<Ondrel::CubicBezierSpline::Point>;
using Ondrel::Image;

bool same(const Points& a, const Points& b)
{
    Ondrel::CubicBezierSpline x, y;
    x.setPoints(a);
    y.setPoints(b);
    return x == y;
}

const Points kLinear = {{0, 0}, {65535, 65535}};

TEST(Curves, LinearMeansExactlyTheTwoCorners)
{
    EXPECT_TRUE(Ondrel::IsCurveLinear(kLinear));
    EXPECT_FALSE(Ondrel::IsCurveLinear({}));
    EXPECT_FALSE(Ondrel::IsCurveLinear({{0, 0}}));
    EXPECT_FALSE(Ondrel::IsCurveLinear({{0, 0}, {100, 100}, {65535, 65535}}));
    EXPECT_FALSE(Ondrel::IsCurveLinear({{0, 0}, {65535, 65534}}));
    EXPECT_FALSE(Ondrel::IsCurveLinear({{65535, 65535}, {0, 0}}));
}

TEST(Curves, CanBeSetLinear)
{
    Points points = {{1, 2}};
    Ondrel::SetCurveLinear(points);
    EXPECT_TRUE(same(points, kLinear));
    Ondrel::Curves curves;
    Ondrel::SetCurvesLinear(curves);
    for (const Points* list : {&curves.all, &curves.red, &curves.green, &curves.blue})
        EXPECT_TRUE(same(*list, kLinear));
}

TEST(Curves, FewerThanTwoPointsBecomeLinear)
{
    for (Points points : {Points{}, Points{{7, 9}}}) {
        Ondrel::ValidateCurve(points);
        EXPECT_TRUE(same(points, kLinear));
    }
}

TEST(Curves, AreSortedAndLoseRepeatedPositions)
{
    Points points = {{5, 1}, {5, 2}, {0, 0}};
    Ondrel::ValidateCurve(points);
    ASSERT_EQ(points.size(), 2u);
    EXPECT_EQ(points[0].x, 0);
    EXPECT_EQ(points[1].x, 5);
    EXPECT_TRUE(points[1].y == 1 || points[1].y == 2);
}

TEST(Curves, ARunOfOnePositionLeavesOnePoint)
{
    Points points = {{5, 1}, {5, 2}, {5, 3}};
    Ondrel::ValidateCurve(points);
    ASSERT_EQ(points.size(), 1u);
    EXPECT_EQ(points[0].x, 5);
}

TEST(Curves, ValuesAreNotClamped)
{
    Points points = {{-5, 70000}, {100000, -3}};
    const Points before = points;
    Ondrel::ValidateCurve(points);
    EXPECT_TRUE(same(points, before));
}

TEST(Curves, AllFourListsAreValidated)
{
    Ondrel::Curves curves;
    curves.green = {{9, 9}, {3, 3}};
    Ondrel::ValidateCurves(curves);
    EXPECT_TRUE(same(curves.all, kLinear));
    EXPECT_TRUE(same(curves.red, kLinear));
    EXPECT_TRUE(same(curves.blue, kLinear));
    EXPECT_TRUE(same(curves.green, {{3, 3}, {9, 9}}));
}

TEST(CurvesRGB, ThreeLinearCurvesGiveACopyWithMetadata)
{
    Image source = OndrelTest::randomImage(9, 5, 1);
    source.colorProfile.fill(3);
    source.rawFilters = 4;
    const Image result = CurvesRGB(source, kLinear, kLinear, kLinear);
    EXPECT_TRUE(OndrelTest::samePixels(result, source));
    EXPECT_EQ(result.colorProfile, source.colorProfile);
    EXPECT_EQ(result.rawFilters, 4u);
}

TEST(CurvesRGB, EachChannelGoesThroughItsOwnTableAndAlphaStays)
{
    const Points inverse = {{0, 65535}, {65535, 0}}, bent = {{0, 0}, {20000, 50000}, {65535, 65535}};
    Image source = OndrelTest::randomImage(31, 17, 1);
    source.colorProfile.fill(3);
    const Image result = CurvesRGB(source, inverse, kLinear, bent);
    std::vector<unsigned short> tables[3];
    const Points* const curves[3] = {&inverse, &kLinear, &bent};
    for (int c = 0; c < 3; ++c) {
        Ondrel::CubicBezierSpline spline;
        spline.setPoints(*curves[c]);
        spline.roundedSpline(tables[c], 65536, 65535);
    }
    ASSERT_EQ(result.width, 31u);
    for (unsigned int i = 0; i < 31 * 17; ++i) {
        for (unsigned int c = 0; c < 3; ++c)
            ASSERT_EQ(result.data[i * 4 + c], tables[c][source.data[i * 4 + c]]);
        ASSERT_EQ(result.data[i * 4 + 3], source.data[i * 4 + 3]);
    }
    EXPECT_EQ(result.colorProfile, (std::array<unsigned char, 32>{}));
}

TEST(CurvesRGB, EmptyListsAndImagesAreHarmless)
{
    const Image result = CurvesRGB(OndrelTest::randomImage(3, 3, 1), {}, {}, {});
    EXPECT_EQ(result.width, 3u);
    EXPECT_EQ(CurvesRGB(Image(), {}, kLinear, kLinear).data, nullptr);
}

} // namespace

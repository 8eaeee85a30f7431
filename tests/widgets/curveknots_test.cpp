#include <gtest/gtest.h>

#include <ondrel/widgets/curveknots_p.h>

using namespace Ondrel;

namespace
{

const QSizeF area(65535, 65535); // a pixel a step
using Knots = std::vector<CurveKnots::Point>;

QPointF at(double x, double value)
{
    return {x, 65535 - value};
}

void expectKnots(const CurveKnots& curve, const std::vector<std::pair<int, int>>& expected)
{
    ASSERT_EQ(curve.knots().size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(curve.knots()[i].x, expected[i].first) << i;
        EXPECT_EQ(curve.knots()[i].y, expected[i].second) << i;
    }
}

CurveKnots threeKnots()
{
    CurveKnots curve;
    curve.setKnots({{0, 0}, {30000, 30000}, {65535, 65535}});
    return curve;
}

} // namespace

TEST(CurveKnots, findsTheNearestByXAndPrefersTheEarlier)
{
    CurveKnots curve;
    curve.setKnots({{100, 60000}, {200, 0}, {200, 9}});
    int distance = 0;
    EXPECT_EQ(curve.closest(150, distance), 0);
    EXPECT_EQ(distance, 50);
    EXPECT_EQ(curve.closest(900, distance), 1);
    EXPECT_EQ(distance, 700);
    curve.setKnots({});
    curve.closest(5, distance);
    EXPECT_EQ(distance, 2147483647);
}

TEST(CurveKnots, grabsBelow3277AndInsertsFromThere)
{
    CurveKnots curve = threeKnots();
    EXPECT_EQ(curve.grab(at(33276, 0), area), 1);
    EXPECT_EQ(curve.knots().size(), 3u);
    curve = threeKnots();
    EXPECT_EQ(curve.grab(at(33277, 0), area), 2);
    EXPECT_EQ(curve.knots().size(), 4u);
}

TEST(CurveKnots, dropsAKnotDraggedAcrossItsNeighbourAndBringsItBack)
{
    CurveKnots curve = threeKnots();
    curve.grab(at(30000, 30000), area);
    EXPECT_TRUE(curve.drag(at(65535, 5), area));
    expectKnots(curve, {{0, 0}, {65535, 65535}});
    EXPECT_TRUE(curve.drag(at(65535, 5), area)); // taken in and out again, and said so
    expectKnots(curve, {{0, 0}, {65535, 65535}});
    EXPECT_TRUE(curve.drag(at(20000, 7), area));
    expectKnots(curve, {{0, 0}, {20000, 7}, {65535, 65535}});
    EXPECT_FALSE(curve.drag(at(20000, 7), area));
    curve.drag(at(-4, 7), area);
    curve.endDrag();
    expectKnots(curve, {{0, 0}, {65535, 65535}});
    EXPECT_EQ(curve.dragged(), -1);
    EXPECT_FALSE(curve.drag(at(20000, 7), area));
}

TEST(CurveKnots, keepsTheEndsWhichMayCrossTheirNeighbours)
{
    CurveKnots curve = threeKnots();
    curve.grab(at(0, 0), area);
    EXPECT_TRUE(curve.drag(at(-500, 80000), area));
    expectKnots(curve, {{0, 65535}, {30000, 30000}, {65535, 65535}});
    EXPECT_TRUE(curve.drag(at(40000, 10), area));
    expectKnots(curve, {{40000, 10}, {30000, 30000}, {65535, 65535}});

    curve = threeKnots();
    curve.grab(at(65535, 65535), area);
    EXPECT_TRUE(curve.drag(at(70000, 1), area));
    expectKnots(curve, {{0, 0}, {30000, 30000}, {65535, 1}});
    EXPECT_TRUE(curve.drag(at(50000, 1), area));
    expectKnots(curve, {{0, 0}, {30000, 30000}, {50000, 1}});
    EXPECT_TRUE(curve.drag(at(10000, 1), area));
    expectKnots(curve, {{0, 0}, {30000, 30000}, {10000, 1}});
}

TEST(CurveKnots, removesOnlyFromThreeKnotsOn)
{
    CurveKnots curve = threeKnots();
    EXPECT_FALSE(curve.remove(-1));
    EXPECT_FALSE(curve.remove(3));
    EXPECT_TRUE(curve.remove(1));
    EXPECT_FALSE(curve.remove(0));
    expectKnots(curve, {{0, 0}, {65535, 65535}});
}

TEST(CurveKnots, survivesListsOfAnyKind)
{
    for (const Knots& knots :
         {Knots(), Knots{{9, 9}}, Knots{{60000, 1}, {5, 2}}, Knots{{-2147483647, 3}, {2147483647, 1}}}) {
        for (const QSizeF& size : {area, QSizeF(0, 0), QSizeF(1, 1)}) {
            CurveKnots curve;
            curve.setKnots(knots);
            EXPECT_GE(curve.grab(QPointF(0, 0), size), 0);
            curve.drag(QPointF(1e30, -1e30), size);
            curve.drag(QPointF(0, 0), size);
            EXPECT_LT(curve.dragged(), int(knots.size()) + 1);
        }
    }
}

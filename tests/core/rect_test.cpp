#include <ondrel/core/rect.h>

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>

namespace
{

using IntRect = Ondrel::RectT<int>;
using FloatRect = Ondrel::RectT<float>;

template <typename T>
void expectEdges(const Ondrel::RectT<T>& r, T left, T top, T right, T bottom)
{
    EXPECT_EQ(r.left(), left);
    EXPECT_EQ(r.top(), top);
    EXPECT_EQ(r.right(), right);
    EXPECT_EQ(r.bottom(), bottom);
}

TEST(Rect, DefaultHasAllEdgesAtZero)
{
    expectEdges(IntRect(), 0, 0, 0, 0);
    expectEdges(FloatRect(), 0.0f, 0.0f, 0.0f, 0.0f);
    EXPECT_FALSE(IntRect().isInvalid());
}

TEST(Rect, EdgesAreStoredNotSizes)
{
    const IntRect r(3, 4, 10, 20);
    expectEdges(r, 3, 4, 13, 24);
    EXPECT_EQ(r.x(), 3);
    EXPECT_EQ(r.y(), 4);
    EXPECT_EQ(r.width(), 10);
    EXPECT_EQ(r.height(), 20);
    expectEdges(FloatRect(1.5f, 2.5f, 3.0f, 4.0f), 1.5f, 2.5f, 4.5f, 6.5f);
}

TEST(Rect, FromPointAndSize)
{
    expectEdges(IntRect(QPoint(1, 2), QSize(3, 4)), 1, 2, 4, 6);
    expectEdges(FloatRect(QPoint(1, 2), QSize(3, 4)), 1.0f, 2.0f, 4.0f, 6.0f);
    expectEdges(FloatRect(QPointF(1.5, 2.5), QSizeF(0.5, 0.25)), 1.5f, 2.5f, 2.0f, 2.75f);
}

TEST(Rect, FromFractionsAddsInDoubleThenTruncates)
{
    expectEdges(IntRect(QPointF(1.6, -1.6), QSizeF(1.6, 1.2)), 1, -1, 3, 0); // 3.2 and -0.4
}

TEST(Rect, FromCornersSortsThem)
{
    expectEdges(IntRect(QPoint(7, 2), QPoint(3, 9)), 3, 2, 7, 9);
    EXPECT_EQ(IntRect(QPoint(3, 2), QPoint(7, 9)), IntRect(QPoint(7, 9), QPoint(3, 2)));
    expectEdges(IntRect(QPointF(-0.9, 5.9), QPointF(-3.9, 1.1)), -3, 1, 0, 5);
    expectEdges(FloatRect(QPointF(4.5, 1.0), QPointF(2.5, 3.0)), 2.5f, 1.0f, 4.5f, 3.0f);
}

TEST(Rect, EqualityComparesAllEdges)
{
    EXPECT_TRUE(IntRect(1, 2, 3, 4) == IntRect(1, 2, 3, 4));
    EXPECT_FALSE(IntRect(1, 2, 3, 4) == IntRect(1, 2, 3, 5));
    EXPECT_FALSE(IntRect(1, 2, 3, 4) == IntRect(0, 2, 4, 4));
}

TEST(Rect, InvalidMeansANegativeSide)
{
    expectEdges(IntRect::invalid(), -1, -1, -2, -2);
    expectEdges(FloatRect::invalid(), -1.0f, -1.0f, -2.0f, -2.0f);
    EXPECT_TRUE(IntRect::invalid().isInvalid());
    EXPECT_EQ(IntRect::invalid().width(), -1);
    EXPECT_FALSE(IntRect(0, 0, 0, 0).isInvalid());
    EXPECT_TRUE(IntRect(0, 0, -1, 5).isInvalid());
    EXPECT_TRUE(IntRect(0, 0, 5, -1).isInvalid());
}

TEST(Rect, StartStatesHaveTheLimitsOfTheType)
{
    IntRect i;
    i.initializeBoundingBox();
    expectEdges(i, INT_MAX, INT_MAX, INT_MIN, INT_MIN);
    EXPECT_TRUE(i.isInvalid());
    i.initializeMaxRangeBox();
    expectEdges(i, INT_MIN, INT_MIN, INT_MAX, INT_MAX);
    EXPECT_FALSE(i.isInvalid());
    FloatRect f;
    f.initializeBoundingBox();
    expectEdges(f, FLT_MAX, FLT_MAX, FLT_MIN, FLT_MIN);
    EXPECT_TRUE(f.isInvalid());
    f.initializeMaxRangeBox();
    expectEdges(f, FLT_MIN, FLT_MIN, FLT_MAX, FLT_MAX);
}

TEST(Rect, FloatBoundingBoxOfNegativePointsKeepsTheSmallPositiveEdge)
{
    FloatRect f;
    f.initializeBoundingBox();
    f.addPoint(QPointF(-5, -5));
    expectEdges(f, -5.0f, -5.0f, 1.1754944e-38f, 1.1754944e-38f);
}

TEST(Rect, CornersAndSizesAsPoints)
{
    const IntRect i(1, 2, 10, 20);
    EXPECT_EQ(i.topLeft(), QPoint(1, 2));
    EXPECT_EQ(i.topRight(), QPoint(11, 2));
    EXPECT_EQ(i.bottomRight(), QPoint(11, 22));
    EXPECT_EQ(i.bottomLeft(), QPoint(1, 22));
    EXPECT_EQ(i.bottomRightF(), QPointF(11, 22));
    EXPECT_EQ(i.size(), QSize(10, 20));
    const FloatRect f(-1.75f, 2.75f, 3.5f, 1.5f);
    EXPECT_EQ(f.topLeft(), QPoint(-1, 2));
    EXPECT_EQ(f.bottomRight(), QPoint(1, 4));
    EXPECT_EQ(f.topLeftF(), QPointF(-1.75, 2.75));
    EXPECT_EQ(f.topRightF(), QPointF(1.75, 2.75));
    EXPECT_EQ(f.bottomLeftF(), QPointF(-1.75, 4.25));
    EXPECT_EQ(f.size(), QSize(3, 1));
}

TEST(Rect, CentreIsTruncatedAndCentreFIsNot)
{
    EXPECT_EQ(IntRect(1, 2, 5, 7).center(), QPoint(3, 5));
    EXPECT_EQ(IntRect(1, 2, 5, 7).centerF(), QPointF(3.5, 5.5));
    EXPECT_EQ(IntRect(-4, -4, 3, 3).center(), QPoint(-3, -3));
    EXPECT_EQ(FloatRect(-4.0f, 0.0f, 3.0f, 3.0f).center(), QPoint(-2, 1));
}

TEST(Rect, RadiusIsMeasuredFromTheTruncatedCentre)
{
    EXPECT_EQ(IntRect(0, 0, 6, 8).radius(), 5.0f);
    EXPECT_EQ(IntRect(0, 0, 7, 9).radius(), 5.0f);
    EXPECT_EQ(FloatRect(0.0f, 0.0f, 7.0f, 9.0f).radius(), 5.0f);
}

TEST(Rect, SettersMoveOneEdgeOrOneCorner)
{
    IntRect r(0, 0, 10, 10);
    r.setLeft(1);
    r.setTop(2);
    r.setRight(8);
    r.setBottom(9);
    expectEdges(r, 1, 2, 8, 9);
    r.setTopLeft(QPoint(-1, -2));
    expectEdges(r, -1, -2, 8, 9);
    r.setTopRight(QPoint(20, 3));
    expectEdges(r, -1, 3, 20, 9);
    r.setBottomRight(QPoint(21, 22));
    expectEdges(r, -1, 3, 21, 22);
    r.setBottomLeft(QPoint(5, 30));
    expectEdges(r, 5, 3, 21, 30);
    r.setSize(2, 4);
    expectEdges(r, 5, 3, 7, 7);
}

TEST(Rect, SetTopLeftFromFractionsRoundsTowardsZeroAfterAddingAHalf)
{
    IntRect r(0, 0, 10, 10);
    r.setTopLeft(QPointF(2.5, 2.4));
    EXPECT_EQ(r.topLeft(), QPoint(3, 2));
    r.setTopLeft(QPointF(-0.7, -5.7));
    EXPECT_EQ(r.topLeft(), QPoint(0, -5));
    FloatRect f;
    f.setTopLeft(QPointF(-0.75, 2.5));
    EXPECT_EQ(f.left(), -0.75f);
}

TEST(Rect, AdjustAndTranslate)
{
    IntRect r(0, 0, 10, 10);
    r.adjust(1, 2, 3, -4);
    expectEdges(r, 1, 2, 13, 6);
    r.translate(10, -2);
    expectEdges(r, 11, 0, 23, 4);
}

TEST(Rect, AddPointExtends)
{
    IntRect r(0, 0, 10, 10);
    r.addPoint(QPoint(-3, 5));
    r.addPoint(QPoint(5, 12));
    expectEdges(r, -3, 0, 10, 12);
}

TEST(Rect, AddFractionalPointComparesInDoubleAndTruncates)
{
    IntRect r(0, 0, 10, 10);
    r.addPoint(QPointF(10.9, -0.9));
    expectEdges(r, 0, 0, 10, 10); // -0.9 lies outside, and truncates to 0
    r.addPoint(QPointF(11.9, -1.9));
    expectEdges(r, 0, -1, 11, 10);
}

TEST(Rect, AddFloatPairRoundsForIntegersOnly)
{
    IntRect r(0, 0, 10, 10);
    r.addPoint(10.5f, -0.7f);
    expectEdges(r, 0, 0, 11, 10); // -0.7 + 0.5 truncates to 0
    r.addPoint(5.0f, -5.7f);
    EXPECT_EQ(r.top(), -5);
    FloatRect f(0.0f, 0.0f, 10.0f, 10.0f);
    f.addPoint(10.5f, -0.7f);
    expectEdges(f, 0.0f, -0.7f, 10.5f, 10.0f);
}

TEST(Rect, AddRectIsTheUnion)
{
    IntRect r(0, 0, 10, 10);
    r.addRect(IntRect(5, -5, 20, 3));
    expectEdges(r, 0, -5, 25, 10);
}

TEST(Rect, SubtractRectIsTheIntersection)
{
    IntRect r(0, 0, 10, 10);
    r.subtractRect(IntRect(5, -5, 20, 8));
    expectEdges(r, 5, 0, 10, 3);
}

TEST(Rect, SubtractingADisjointRectCollapsesToTheLowerEdges)
{
    IntRect r(0, 0, 10, 10);
    r.subtractRect(IntRect(20, 20, 5, 5));
    expectEdges(r, 10, 10, 10, 10);
    EXPECT_FALSE(r.isInvalid());
    IntRect below(20, 20, 5, 5);
    below.subtractRect(IntRect(0, 0, 10, 10));
    expectEdges(below, 10, 10, 10, 10);
}

TEST(Rect, ContainsBothEnds)
{
    const IntRect r(0, 0, 10, 10);
    EXPECT_TRUE(r.contains(QPoint(0, 0)));
    EXPECT_TRUE(r.contains(QPoint(10, 10)));
    EXPECT_FALSE(r.contains(QPoint(11, 10)));
    EXPECT_FALSE(r.contains(QPoint(5, -1)));
    EXPECT_TRUE(FloatRect(0.5f, 0.5f, 1.5f, 1.5f).contains(QPoint(2, 2)));
    EXPECT_FALSE(FloatRect(0.5f, 0.5f, 1.5f, 1.5f).contains(QPoint(0, 1)));
}

TEST(Rect, IntersectsByCentres)
{
    const IntRect r(0, 0, 10, 10);
    EXPECT_TRUE(r.intersects(IntRect(8, 8, 10, 10)));
    EXPECT_FALSE(r.intersects(IntRect(10, 0, 10, 10))); // an edge in common
    EXPECT_FALSE(r.intersects(IntRect(0, 10, 10, 10)));
    EXPECT_FALSE(r.intersects(IntRect(30, 0, 4, 4)));
    EXPECT_TRUE(r.intersects(r));
}

TEST(Rect, IntersectsUsesTruncatedCentresAlsoForFloats)
{
    // Touching at x = 4 with one odd side: the truncated centres are 2 and 5, twice their distance is 6, below 7.
    EXPECT_TRUE(IntRect(0, 0, 4, 4).intersects(IntRect(4, 0, 3, 4)));
    EXPECT_TRUE(FloatRect(0.0f, 0.0f, 4.0f, 4.0f).intersects(FloatRect(4.0f, 0.0f, 3.0f, 4.0f)));
    EXPECT_FALSE(FloatRect(0.0f, 0.0f, 4.0f, 4.0f).intersects(FloatRect(4.0f, 0.0f, 4.0f, 4.0f)));
}

TEST(Rect, UnionOfManyAndOfNone)
{
    EXPECT_EQ(IntRect::unionRects({IntRect(0, 0, 2, 2), IntRect(5, -3, 1, 1)}), IntRect(0, -3, 6, 5));
    const IntRect none = IntRect::unionRects({});
    expectEdges(none, INT_MAX, INT_MAX, INT_MIN, INT_MIN);
    EXPECT_TRUE(none.isInvalid());
    EXPECT_TRUE(FloatRect::unionRects({}).isInvalid());
}

TEST(Rect, IntersectionOfManyAndOfNone)
{
    EXPECT_EQ(IntRect::intersectRects({IntRect(0, 0, 9, 9), IntRect(5, -3, 9, 9)}), IntRect(5, 0, 4, 6));
    const IntRect none = IntRect::intersectRects({});
    expectEdges(none, INT_MIN, INT_MIN, INT_MAX, INT_MAX);
    EXPECT_FALSE(none.isInvalid());
    EXPECT_EQ(FloatRect::intersectRects({}).right(), FLT_MAX);
}

TEST(Rect, CentreFIsInSinglePrecisionForIntegersToo)
{
    EXPECT_EQ(IntRect(16777217, 0, 0, 3).centerF(), QPointF(16777216, 1.5));
    EXPECT_EQ(FloatRect(0.1f, 0, 0.5f, 0).centerF().x(), double(0.1f + 0.5f * 0.5f));
}

TEST(Rect, FloatsTakeIntegerPoints)
{
    expectEdges(FloatRect(QPoint(7, 2), QPoint(3, 9)), 3.0f, 2.0f, 7.0f, 9.0f);
    FloatRect r(0.5f, 0.5f, 1.0f, 1.0f);
    r.setTopLeft(QPoint(-1, -2));
    r.setBottomRight(QPoint(3, 4));
    expectEdges(r, -1.0f, -2.0f, 3.0f, 4.0f);
    r.setTopRight(QPoint(5, 1));
    r.setBottomLeft(QPoint(2, 6));
    expectEdges(r, 2.0f, 1.0f, 5.0f, 6.0f);
    r.addPoint(QPoint(-9, 8));
    expectEdges(r, -9.0f, 1.0f, 5.0f, 8.0f);
    EXPECT_EQ(r.bottomRightF(), QPointF(5, 8));
}

TEST(Rect, CoordinatesBeyondTheTypeBecomeTheNearest)
{
    expectEdges(IntRect(QPointF(1e300, -1e300), QPointF(0, 0)), 0, INT_MIN, INT_MAX, 0);
    expectEdges(IntRect(QPointF(NAN, NAN), QSizeF(NAN, 3)), 0, 0, 0, 0);
    EXPECT_EQ(FloatRect(1e30f, -1e30f, 0, 0).topLeft(), QPoint(INT_MAX, INT_MIN));
}

TEST(Rect, IntegerEdgesWrap)
{
    EXPECT_EQ(IntRect(INT_MAX, 0, 1, 0).right(), INT_MIN);
    IntRect r(INT_MAX - 1, INT_MIN, 1, 0);
    r.translate(1, -1);
    expectEdges(r, INT_MAX, INT_MAX, INT_MIN, INT_MAX);
    EXPECT_EQ(r.width(), 1);
    EXPECT_TRUE(r.isInvalid()); // by its edges
}

} // namespace

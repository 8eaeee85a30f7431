// Dragging the edges and corners of a crop rectangle.

#include <ondrel/core/rect.h>

#include <gtest/gtest.h>

namespace
{

using IntRect = Ondrel::RectT<int>;
using FloatRect = Ondrel::RectT<float>;

IntRect edges(int left, int top, int right, int bottom)
{
    return IntRect(left, top, right - left, bottom - top);
}

IntRect topLeft(IntRect r, double dx, double dy, float aw = 0, float ah = 0, int limitX = 100, int limitY = 100)
{
    r.adjustTopLeft(QPointF(dx, dy), limitX, limitY, aw, ah);
    return r;
}

IntRect top(IntRect r, float d, float aw = 0, float ah = 0, int limitX = 100, int limitY = 100)
{
    r.adjustTop(d, limitX, limitY, aw, ah);
    return r;
}

TEST(RectDrag, AFreeCornerMovesInsideTheLimits)
{
    const IntRect r = edges(20, 30, 80, 90);
    EXPECT_EQ(topLeft(r, 5, -7), edges(25, 23, 80, 90));
    EXPECT_EQ(topLeft(r, -50, -50), edges(0, 0, 80, 90));
    EXPECT_EQ(topLeft(r, 500, 500), edges(100, 100, 80, 90));
}

TEST(RectDrag, AZeroDeltaDoesNothingEvenOutsideTheLimits)
{
    const IntRect outside = edges(-20, -30, 80, 90);
    EXPECT_EQ(topLeft(outside, 0, 0), outside);
    EXPECT_EQ(topLeft(outside, 0, 0, 1, 1), outside);
}

TEST(RectDrag, DeltasRoundHalvesUp)
{
    const IntRect r = edges(20, 30, 80, 90);
    EXPECT_EQ(topLeft(r, 0.5, 1.4).topLeft(), QPoint(21, 31));
    EXPECT_EQ(topLeft(r, -0.5, -0.6).topLeft(), QPoint(20, 29));
    EXPECT_EQ(topLeft(r, -1.5, -1.6).topLeft(), QPoint(19, 28));
}

TEST(RectDrag, AnAspectNeedsBothItsNumbers)
{
    const IntRect r = edges(20, 30, 80, 90);
    EXPECT_EQ(topLeft(r, 5, 7, 1, 0), edges(25, 37, 80, 90));
    EXPECT_EQ(topLeft(r, 5, 7, 0, 1), edges(25, 37, 80, 90));
    EXPECT_EQ(topLeft(r, 5, 7, -1, -1), edges(25, 37, 80, 90));
}

TEST(RectDrag, ShrinkingFollowsTheShorterOfTheTwoProjections)
{
    const IntRect r = edges(20, 20, 80, 80);
    // Both positive: left drives if the projection of dy is the longer one.
    EXPECT_EQ(topLeft(r, 10, 20, 1, 1), edges(30, 30, 80, 80));
    EXPECT_EQ(topLeft(r, 20, 10, 1, 1), edges(30, 30, 80, 80));
}

TEST(RectDrag, GrowingFollowsTheLongerProjection)
{
    const IntRect r = edges(40, 40, 80, 80);
    EXPECT_EQ(topLeft(r, -20, -10, 1, 1), edges(20, 20, 80, 80));
    EXPECT_EQ(topLeft(r, -10, -20, 1, 1), edges(20, 20, 80, 80));
}

TEST(RectDrag, MixedDirectionsNameTheDriver)
{
    const IntRect r = edges(40, 40, 80, 80);
    EXPECT_EQ(topLeft(r, -10, 20, 1, 1), edges(30, 30, 80, 80)); // left drives
    EXPECT_EQ(topLeft(r, -10, 0, 1, 1), edges(30, 30, 80, 80));
    EXPECT_EQ(topLeft(r, 10, -20, 1, 1), edges(20, 20, 80, 80)); // top drives
    EXPECT_EQ(topLeft(r, 0, -20, 1, 1), edges(20, 20, 80, 80));
    EXPECT_EQ(topLeft(r, 10, 0, 1, 1), edges(40, 40, 80, 80));  // top drives, and has not moved
    EXPECT_EQ(topLeft(r, 0, 10, 1, 1), edges(40, 40, 80, 80));  // left drives
    EXPECT_EQ(topLeft(r, 10, 10, 1, 1), edges(50, 50, 80, 80)); // equal lengths: top drives
}

TEST(RectDrag, SizesAreTruncatedToTheAspect)
{
    // top drives by -5: the height is 45, three halves of it 67.5.
    EXPECT_EQ(topLeft(edges(40, 40, 100, 80), 1, -5, 3, 2), edges(33, 35, 100, 80));
}

TEST(RectDrag, WhenTheWidthDoesNotFitTheLeftEdgeStaysAsClamped)
{
    // top drives by -30 to 10: the width would be 140, right is 80. newTop = trunc(80 - 80 * 0.5) = 40.
    EXPECT_EQ(topLeft(edges(40, 40, 80, 80), 5, -30, 2, 1), edges(45, 40, 80, 80));
}

TEST(RectDrag, WhenTheHeightDoesNotFitTheTopEdgeStaysAsClamped)
{
    // left drives by -30 to 10: the height would be 140, bottom is 80. newLeft = trunc(80 - 80 * 0.5) = 40.
    EXPECT_EQ(topLeft(edges(40, 40, 80, 80), -30, 5, 1, 2), edges(40, 45, 80, 80));
}

TEST(RectDrag, PastTheOppositeCornerTheRectangleCollapses)
{
    const IntRect r = edges(20, 20, 50, 50);
    EXPECT_EQ(topLeft(r, 40, 45, 1, 1), edges(50, 50, 50, 50));
    EXPECT_EQ(topLeft(r, 45, 40, 1, 1), edges(50, 50, 50, 50));
}

TEST(RectDrag, FloatCornersAreNotRounded)
{
    FloatRect r(20.0f, 30.0f, 60.0f, 60.0f);
    r.adjustTopLeft(QPointF(0.25, -0.75), 100.0f, 100.0f, 0, 0);
    EXPECT_EQ(r, FloatRect(20.25f, 29.25f, 59.75f, 60.75f));
}

TEST(RectDrag, TheOtherCornersMoveFreelyToo)
{
    IntRect r = edges(20, 30, 80, 90);
    r.adjustTopRight(QPointF(5, 6), 100, 100, 0, 0);
    EXPECT_EQ(r, edges(20, 36, 85, 90));
    r.adjustBottomRight(QPointF(500, -6), 100, 100, 0, 0);
    EXPECT_EQ(r, edges(20, 36, 100, 84));
    r.adjustBottomLeft(QPointF(-500, 500), 100, 100, 0, 0);
    EXPECT_EQ(r, edges(0, 36, 100, 100));
}

TEST(RectDrag, TheOtherCornersHoldTheAspect)
{
    IntRect r = edges(0, 0, 40, 40);
    r.adjustBottomRight(QPointF(20, 10), 1000, 1000, 1, 1);
    EXPECT_EQ(r, edges(0, 0, 60, 60)); // growing: the longer projection
    r.adjustBottomRight(QPointF(-20, -10), 1000, 1000, 1, 1);
    EXPECT_EQ(r, edges(0, 0, 50, 50)); // shrinking: the shorter one
}

TEST(RectDrag, AFreeEdgeMovesAlone)
{
    const IntRect r = edges(20, 30, 80, 90);
    EXPECT_EQ(top(r, 7.5f), edges(20, 38, 80, 90));
    EXPECT_EQ(top(r, -0.6f), edges(20, 29, 80, 90));
    EXPECT_EQ(top(r, -100.0f), edges(20, 0, 80, 90));
    IntRect moved = r;
    moved.adjustLeft(-5, 100, 100, 0, 0);
    moved.adjustRight(50, 100, 100, 0, 0);
    moved.adjustBottom(-3, 100, 100, 0, 0);
    EXPECT_EQ(moved, edges(15, 30, 100, 87));
}

TEST(RectDrag, AnEdgeWithAnAspectMeasuresFromTheLimit)
{
    // newTop is 40: the width is that of 100 - 40, not of 90 - 40; it stays centred on 50.
    EXPECT_EQ(top(edges(20, 30, 80, 90), 10, 1, 1), edges(20, 40, 80, 90));
    EXPECT_EQ(top(edges(20, 30, 80, 90), 20, 1, 1), edges(25, 50, 75, 90));
}

TEST(RectDrag, OddWidthsShrinkByOne)
{
    // newTop 49: w = 51, halves of 25 on each side of 50.
    EXPECT_EQ(top(edges(20, 30, 80, 90), 19, 1, 1), edges(25, 49, 75, 90));
}

TEST(RectDrag, AWidthBeyondTheLimitIsLimited)
{
    // newTop 20: w = 160 is limited to 100; newTop = trunc(100 - 0.5 * 100) = 50.
    EXPECT_EQ(top(edges(20, 30, 80, 90), -10, 2, 1), edges(0, 50, 100, 90));
}

TEST(RectDrag, AnOddLimitKeepsItsWidth)
{
    // limitX 101, centre 50: 50 - 50 lowered by one is -1, shifted right by one.
    const IntRect r = top(edges(20, 30, 80, 90), -10, 2, 1, 101, 100);
    EXPECT_EQ(r.width(), 101);
    EXPECT_EQ(r.left(), 0);
}

TEST(RectDrag, ACentredWidthIsShiftedInside)
{
    EXPECT_EQ(top(edges(0, 30, 20, 90), 10, 1, 1), edges(0, 40, 60, 90));
    EXPECT_EQ(top(edges(80, 30, 100, 90), 10, 1, 1), edges(40, 40, 100, 90));
}

// Mirror images in a square of 100, and the exchange of the axes.
IntRect mirroredX(const IntRect& r)
{
    return edges(100 - r.right(), r.top(), 100 - r.left(), r.bottom());
}

IntRect mirroredY(const IntRect& r)
{
    return edges(r.left(), 100 - r.bottom(), r.right(), 100 - r.top());
}

IntRect exchanged(const IntRect& r)
{
    return edges(r.top(), r.left(), r.bottom(), r.right());
}

TEST(RectDrag, TheCornersAreMirrorImages)
{
    const IntRect r = edges(40, 30, 90, 80);
    for (const auto& [aw, ah] : {std::pair(0, 0), std::pair(1, 1), std::pair(2, 1), std::pair(1, 2)})
        for (int dx = -60; dx <= 60; dx += 12)
            for (int dy = -60; dy <= 60; dy += 10) {
                const IntRect expected = topLeft(r, dx, dy, float(aw), float(ah));
                IntRect right = mirroredX(r), bottom = mirroredY(r), both = mirroredX(mirroredY(r));
                right.adjustTopRight(QPointF(-dx, dy), 100, 100, float(aw), float(ah));
                bottom.adjustBottomLeft(QPointF(dx, -dy), 100, 100, float(aw), float(ah));
                both.adjustBottomRight(QPointF(-dx, -dy), 100, 100, float(aw), float(ah));
                EXPECT_EQ(mirroredX(right), expected) << dx << " " << dy << " " << aw << ":" << ah;
                EXPECT_EQ(mirroredY(bottom), expected) << dx << " " << dy << " " << aw << ":" << ah;
                EXPECT_EQ(mirroredX(mirroredY(both)), expected) << dx << " " << dy << " " << aw << ":" << ah;
            }
}

TEST(RectDrag, ALeftEdgeIsATopEdgeWithTheAxesExchanged)
{
    for (const IntRect& r : {edges(20, 30, 80, 90), edges(0, 30, 20, 90), edges(80, 30, 100, 90)})
        for (const auto& [aw, ah] : {std::pair(0, 0), std::pair(1, 1), std::pair(3, 2), std::pair(1, 4)})
            for (const int limitX : {100, 101})
                for (float delta = -40; delta <= 60; delta += 9.5f) {
                    IntRect left = exchanged(r);
                    left.adjustLeft(delta, 100, limitX, float(ah), float(aw));
                    EXPECT_EQ(exchanged(left), top(r, delta, float(aw), float(ah), limitX, 100)) << delta;
                }
}

TEST(RectDrag, RightAndBottomEdgesMeasureFromTheOppositeEdge)
{
    IntRect r = edges(0, 0, 40, 40);
    r.adjustBottom(20, 200, 200, 1, 1); // 60 high: 60 wide around 20, shifted inside
    EXPECT_EQ(r, edges(0, 0, 60, 60));
    r.adjustRight(-20, 200, 200, 2, 1); // 40 wide: 20 high around 30
    EXPECT_EQ(r, edges(0, 20, 40, 40));
    r = edges(0, 0, 40, 40);
    r.adjustBottom(60, 50, 200, 1, 1); // 100 wide do not fit: limited to 50
    EXPECT_EQ(r, edges(0, 0, 50, 50));
}

TEST(RectDrag, FloatEdgesAreNotRounded)
{
    FloatRect r(20.0f, 30.0f, 60.0f, 60.0f);
    r.adjustTop(0.25f, 100.0f, 100.0f, 0, 0);
    EXPECT_EQ(r.top(), 30.25f);
    // The length that belongs to the aspect is whole; it is halved without loss.
    r.adjustTop(18.75f, 100.0f, 100.0f, 1, 1);
    EXPECT_EQ(r.top(), 49.0f);
    EXPECT_EQ(r.left(), 24.5f);
    EXPECT_EQ(r.right(), 75.5f);
}

TEST(RectDrag, FloatCornersHoldTheAspect)
{
    FloatRect r(40.0f, 40.0f, 40.0f, 40.0f);
    r.adjustTopLeft(QPointF(-10.5, 3), 100.0f, 100.0f, 1, 1); // left drives: 50.5 wide, 50 high
    EXPECT_EQ(r, FloatRect(29.5f, 30.0f, 50.5f, 50.0f));
}

TEST(RectDrag, NothingHangsOnAbsurdNumbers)
{
    for (const float aspect : {1e-30f, 1e30f})
        for (const double delta : {1e300, -1e300, 0.1}) {
            IntRect r = edges(20, 30, 80, 90);
            r.adjustTopLeft(QPointF(delta, -delta), 100, 100, aspect, 1);
            r.adjustBottomRight(QPointF(delta, delta), 100, 100, 1, aspect);
            r.adjustTop(float(delta), 100, 100, aspect, 1);
            r.adjustRight(float(-delta), 100, 100, aspect, 1);
        }
    SUCCEED();
}

} // namespace

// Points and areas through the routes of a transform series.

#include <ondrel/nodes/transformseries.h>

#include <gtest/gtest.h>

#include <QPolygon>
#include <QTransform>

#include <cmath>
#include <limits>
#include <optional>
#include <ostream>
#include <random>
#include <vector>

namespace
{

using Ondrel::TransformSeries;
using Node = TransformSeries::Node;
using Route = std::vector<Node>;
using Rect = Ondrel::RectT<int>;

const Rect Everywhere(-1000000, -1000000, 2000000, 2000000);

Eigen::Matrix3d matrix(double m00, double m01, double m02, double m10, double m11, double m12, double m20 = 0,
                       double m21 = 0, double m22 = 1)
{
    Eigen::Matrix3d result;
    result << m00, m01, m02, m10, m11, m12, m20, m21, m22;
    return result;
}

Eigen::Matrix3d moved(double dx, double dy)
{
    return matrix(1, 0, dx, 0, 1, dy);
}

Eigen::Matrix3d scaled(double sx, double sy)
{
    return matrix(sx, 0, 0, 0, sy, 0);
}

// A quarter turn that takes (1, 0) to (0, 1).
Eigen::Matrix3d turned()
{
    return matrix(0, -1, 0, 1, 0, 0);
}

Node node(const Eigen::Matrix3d& transform, const Rect& rect = Everywhere, const QSize& hint = QSize(-1, -1))
{
    Node result;
    result.transform = transform;
    result.rect = rect;
    result.inputSizeHint = hint;
    return result;
}

TransformSeries series(const std::vector<Route>& routes)
{
    TransformSeries result;
    result.setPaths(routes);
    return result;
}

std::vector<QPoint> toChild(const TransformSeries& series, const QPoint& base)
{
    std::vector<QPoint> child{QPoint(77, 77)}; // is cleared
    const bool mapped = series.mapFromBaseToChild(base, child);
    EXPECT_EQ(mapped, !child.empty());
    return child;
}

struct BasePoint {
    QPointF point;
    unsigned int route;
};

bool operator==(const BasePoint& a, const BasePoint& b)
{
    return a.point.x() == b.point.x() && a.point.y() == b.point.y() && a.route == b.route;
}

void PrintTo(const BasePoint& value, std::ostream* stream)
{
    *stream << '(' << value.point.x() << ", " << value.point.y() << ") by route " << value.route;
}

// Without a value where no route lets the point through; then nothing may have been written.
std::optional<BasePoint> toBase(const TransformSeries& series, const QPointF& child)
{
    BasePoint base{QPointF(0.125, 0.25), 99};
    if (series.mapFromChildToBase(child, base.point, &base.route)) {
        return base;
    }
    EXPECT_EQ(base, (BasePoint{QPointF(0.125, 0.25), 99}));
    return std::nullopt;
}

std::optional<BasePoint> at(double x, double y, unsigned int route = 0)
{
    return BasePoint{QPointF(x, y), route};
}

// By the ways that consult no rectangle; without a value where there is no such route.
std::optional<BasePoint> unclippedToChild(const TransformSeries& series, unsigned int route, const QPointF& base)
{
    BasePoint child{QPointF(0.125, 0.25), route};
    if (series.mapFromBaseToChildNoClip(route, base, child.point)) {
        return child;
    }
    EXPECT_EQ(child, (BasePoint{QPointF(0.125, 0.25), route}));
    return std::nullopt;
}

std::optional<BasePoint> unclippedToBase(const TransformSeries& series, unsigned int route, const QPointF& child)
{
    BasePoint base{QPointF(0.125, 0.25), route};
    if (series.mapFromChildToBaseNoClip(route, child, base.point)) {
        return base;
    }
    EXPECT_EQ(base, (BasePoint{QPointF(0.125, 0.25), route}));
    return std::nullopt;
}

using Points = std::vector<QPoint>;

TEST(TransformSeries, AnEmptySeriesAnswersNothing)
{
    const TransformSeries empty;
    EXPECT_TRUE(empty.empty());
    EXPECT_EQ(empty.pathCount(), 0U);
    EXPECT_EQ(empty.baseSize(), QSize(-1, -1));
    EXPECT_EQ(empty.baseInputSizeHint(), QSize(-1, -1));
    EXPECT_EQ(toChild(empty, QPoint(1, 2)), Points());
    EXPECT_EQ(toBase(empty, QPointF(1, 2)), std::nullopt);
    EXPECT_EQ(unclippedToChild(empty, 0, QPointF(1, 2)), std::nullopt);
    EXPECT_EQ(unclippedToBase(empty, 0, QPointF(1, 2)), std::nullopt);
    QTransform transform(2, 3, 4, 5, 6, 7);
    EXPECT_FALSE(empty.transformFromBaseToChild(0, transform));
    EXPECT_EQ(transform, QTransform(2, 3, 4, 5, 6, 7));
    std::vector<QPolygon> polygons{QPolygon(3)};
    empty.calculatePathPolygons(polygons);
    EXPECT_EQ(polygons, std::vector<QPolygon>{QPolygon(3)});
}

TEST(TransformSeries, ANodeStartsAsTheIdentityWithoutAreaOrHint)
{
    const Node fresh;
    EXPECT_TRUE(fresh.transform.isIdentity(0));
    EXPECT_EQ(fresh.rect, Rect(0, 0, 0, 0));
    EXPECT_EQ(fresh.inputSizeHint, QSize(-1, -1));
}

TEST(TransformSeries, TheBaseIsTheFirstNodeOfTheFirstRoute)
{
    const Node first = node(moved(1, 1), Rect(5, 6, 70, 80), QSize(11, 12));
    const Node other = node(moved(2, 2), Rect(1, 2, 30, 40), QSize(21, 22));
    const TransformSeries both = series({{first, other}, {other, first}});
    EXPECT_FALSE(both.empty());
    EXPECT_EQ(both.pathCount(), 2U);
    EXPECT_EQ(both.baseSize(), QSize(70, 80));
    EXPECT_EQ(both.baseInputSizeHint(), QSize(11, 12));
}

TEST(TransformSeries, ARouteOfOneNodeTestsThePointThenUndoesTheNode)
{
    const TransformSeries one = series({{node(moved(100, 50), Rect(100, 50, 10, 20))}});
    EXPECT_EQ(toBase(one, QPointF(100, 50)), at(0, 0));
    EXPECT_EQ(toBase(one, QPointF(110, 70)), at(10, 20));
    EXPECT_EQ(toBase(one, QPointF(110.75, 70.5)), at(10.75, 20.5));
    EXPECT_EQ(toBase(one, QPointF(111, 70)), std::nullopt);
    EXPECT_EQ(toBase(one, QPointF(110, 71)), std::nullopt);
    EXPECT_EQ(toBase(one, QPointF(99.75, 50)), std::nullopt);
    EXPECT_EQ(toBase(one, QPointF(5, 5)), std::nullopt); // inside before the node, not behind it

    EXPECT_EQ(toChild(one, QPoint(0, 0)), Points{QPoint(100, 50)});
    EXPECT_EQ(toChild(one, QPoint(10, 20)), Points{QPoint(110, 70)});
    EXPECT_EQ(toChild(one, QPoint(11, 20)), Points());
    EXPECT_EQ(toChild(one, QPoint(0, -1)), Points());
}

TEST(TransformSeries, MatricesApplyInTheOrderOfTheRoute)
{
    // (3, 4) is doubled to (6, 8), moved to (16, 28), turned to (-28, 16).
    const TransformSeries three = series({{node(scaled(2, 2)), node(moved(10, 20)), node(turned())}});
    EXPECT_EQ(toChild(three, QPoint(3, 4)), Points{QPoint(-28, 16)});
    EXPECT_EQ(toBase(three, QPointF(-28, 16)), at(3, 4));
    EXPECT_EQ(unclippedToChild(three, 0, QPointF(3, 4)), at(-28, 16));
    EXPECT_EQ(unclippedToBase(three, 0, QPointF(-28, 16)), at(3, 4));
    EXPECT_EQ(unclippedToChild(three, 0, QPointF(3.25, 4.5)), at(-29, 16.5));
    EXPECT_EQ(unclippedToBase(three, 0, QPointF(-29, 16.5)), at(3.25, 4.5));
}

TEST(TransformSeries, TheIndexOfTheRouteIsOptional)
{
    const TransformSeries one = series({{node(moved(100, 50))}});
    QPointF base;
    EXPECT_TRUE(one.mapFromChildToBase(QPointF(101, 52), base, nullptr));
    EXPECT_EQ(base.x(), 1);
    EXPECT_EQ(base.y(), 2);
}

TEST(TransformSeries, TheLowestRouteDecidesBackwardsAndAllAnswerForwards)
{
    const TransformSeries both =
        series({{node(moved(1, 0), Rect(0, 0, 20, 20))}, {node(moved(0, 5), Rect(0, 0, 40, 40))}});
    EXPECT_EQ(toBase(both, QPointF(7, 7)), at(6, 7, 0));
    EXPECT_EQ(toBase(both, QPointF(30, 7)), at(30, 2, 1));
    EXPECT_EQ(toBase(both, QPointF(41, 7)), std::nullopt);
    EXPECT_EQ(toChild(both, QPoint(7, 7)), (Points{QPoint(8, 7), QPoint(7, 12)}));
    EXPECT_EQ(toChild(both, QPoint(30, 7)), Points{QPoint(30, 12)});
    EXPECT_EQ(toChild(both, QPoint(20, 35)), Points{QPoint(20, 40)});
    EXPECT_EQ(toChild(both, QPoint(20, 36)), Points());
}

TEST(TransformSeries, EveryNodeClips)
{
    for (std::size_t narrow = 0; narrow < 3; ++narrow) {
        SCOPED_TRACE(narrow);
        Route route{node(moved(10, 0)), node(moved(10, 0)), node(moved(10, 0))};
        const int left = 10 * static_cast<int>(narrow + 1);
        route[narrow].rect = Rect(left, 0, 5, 5);
        const TransformSeries clipped = series({route});
        EXPECT_EQ(toChild(clipped, QPoint(0, 0)), Points{QPoint(30, 0)});
        EXPECT_EQ(toChild(clipped, QPoint(5, 5)), Points{QPoint(35, 5)});
        EXPECT_EQ(toChild(clipped, QPoint(6, 5)), Points());
        EXPECT_EQ(toChild(clipped, QPoint(-1, 0)), Points());
        EXPECT_EQ(toBase(clipped, QPointF(30, 0)), at(0, 0));
        EXPECT_EQ(toBase(clipped, QPointF(35, 5)), at(5, 5));
        EXPECT_EQ(toBase(clipped, QPointF(36, 5)), std::nullopt);
        EXPECT_EQ(toBase(clipped, QPointF(29, 0)), std::nullopt);
        EXPECT_EQ(unclippedToChild(clipped, 0, QPointF(6, 5)), at(36, 5));
        EXPECT_EQ(unclippedToBase(clipped, 0, QPointF(29, 0)), at(-1, 0));
    }
}

TEST(TransformSeries, AClippedRouteGivesWayToTheNext)
{
    const Route blocked{node(moved(0, 0)), node(moved(0, 0), Rect(500, 500, 5, 5)), node(moved(0, 0))};
    const Route open{node(moved(2, 0)), node(moved(3, 0))};
    const TransformSeries both = series({blocked, open});
    EXPECT_EQ(toBase(both, QPointF(15, 10)), at(10, 10, 1));
    EXPECT_EQ(toChild(both, QPoint(10, 10)), Points{QPoint(15, 10)});
    EXPECT_EQ(unclippedToBase(both, 0, QPointF(15, 10)), at(15, 10, 0));
}

TEST(TransformSeries, ThePointBeforeTheFirstNodeIsNotTested)
{
    const TransformSeries far = series({{node(moved(1000, 0), Rect(0, 0, 10, 10))}});
    EXPECT_EQ(toBase(far, QPointF(3, 3)), at(-997, 3));
    EXPECT_EQ(toChild(far, QPoint(-997, 3)), Points{QPoint(3, 3)});
}

TEST(TransformSeries, CoordinatesTruncateTowardsZero)
{
    const TransformSeries one = series({{node(moved(0, 0), Rect(0, 0, 10, 10))}});
    EXPECT_EQ(toBase(one, QPointF(-0.5, -0.875)), at(-0.5, -0.875));
    EXPECT_EQ(toBase(one, QPointF(-1, 0)), std::nullopt);
    EXPECT_EQ(toBase(one, QPointF(0, -1)), std::nullopt);
    EXPECT_EQ(toBase(one, QPointF(10.875, 10.5)), at(10.875, 10.5));
    EXPECT_EQ(toBase(one, QPointF(11, 10)), std::nullopt);

    const TransformSeries halved = series({{node(scaled(0.5, 0.5), Rect(0, 0, 10, 10))}});
    EXPECT_EQ(toChild(halved, QPoint(-1, -1)), Points{QPoint(0, 0)});
    EXPECT_EQ(toChild(halved, QPoint(21, 5)), Points{QPoint(10, 2)});
    EXPECT_EQ(toChild(halved, QPoint(-2, 0)), Points());
    EXPECT_EQ(toChild(halved, QPoint(22, 0)), Points());
}

TEST(TransformSeries, FractionsAreKeptBetweenNodes)
{
    const TransformSeries there = series({{node(scaled(0.25, 0.25)), node(scaled(4, 4))}});
    EXPECT_EQ(toChild(there, QPoint(7, -3)), Points{QPoint(7, -3)});
    EXPECT_EQ(toBase(there, QPointF(7.5, -3)), at(7.5, -3));
}

TEST(TransformSeries, TheThirdCoordinateIsCarriedOn)
{
    // w is 2 behind the first node. Were it divided out there, the second node's move would count twice.
    const TransformSeries halved = series({{node(matrix(1, 0, 0, 0, 1, 0, 0, 0, 2)), node(moved(10, 4))}});
    EXPECT_EQ(toChild(halved, QPoint(6, 8)), Points{QPoint(13, 8)});
    EXPECT_EQ(toBase(halved, QPointF(13, 8)), at(6, 8));
    EXPECT_EQ(unclippedToChild(halved, 0, QPointF(6, 8)), at(13, 8));
    EXPECT_EQ(unclippedToBase(halved, 0, QPointF(13, 8)), at(6, 8));
}

TEST(TransformSeries, ThirdCoordinatesCancelExactly)
{
    // The second node undoes the first. Between them w is 1 - 2y, by which few coordinates divide without a rest, so
    // that a division there would leave a trace in the result.
    const TransformSeries tilted =
        series({{node(matrix(1, 0, 0, 0, 1, 0, 0, -2, 1)), node(matrix(1, 0, 0, 0, 1, 0, 0, 2, 1))}});
    for (int x = 1; x <= 60; ++x) {
        for (int y = 1; y <= 60; ++y) {
            ASSERT_EQ(toChild(tilted, QPoint(x, y)), Points{QPoint(x, y)});
            ASSERT_EQ(toBase(tilted, QPointF(x, y)), at(x, y));
        }
    }
}

TEST(TransformSeries, PerspectiveDividesByTheThirdCoordinate)
{
    // w = 1 + x / 8
    const Eigen::Matrix3d perspective = matrix(1, 0, 0, 0, 1, 0, 0.125, 0, 1);
    const TransformSeries one = series({{node(perspective)}});
    EXPECT_EQ(toChild(one, QPoint(8, 6)), Points{QPoint(4, 3)});
    EXPECT_EQ(toChild(one, QPoint(8, 7)), Points{QPoint(4, 3)});
    EXPECT_EQ(unclippedToChild(one, 0, QPointF(8, 7)), at(4, 3.5));
    EXPECT_EQ(toBase(one, QPointF(4, 3.5)), at(8, 7));
    EXPECT_EQ(unclippedToBase(one, 0, QPointF(4, 3.5)), at(8, 7));

    const TransformSeries two = series({{node(perspective), node(moved(8, 0))}});
    // (8, 6, 2), then (8 + 8 * 2, 6, 2)
    EXPECT_EQ(toChild(two, QPoint(8, 6)), Points{QPoint(12, 3)});
    EXPECT_EQ(toBase(two, QPointF(12, 3)), at(8, 6));
}

TEST(TransformSeries, ARouteWithoutNodesLeavesPointsWhereTheyAre)
{
    const TransformSeries none = series({{}});
    EXPECT_EQ(none.pathCount(), 1U);
    EXPECT_EQ(toChild(none, QPoint(-5, 123456)), Points{QPoint(-5, 123456)});
    EXPECT_EQ(toBase(none, QPointF(-5.5, 123456.25)), at(-5.5, 123456.25));
    EXPECT_EQ(unclippedToChild(none, 0, QPointF(1.5, 2.5)), at(1.5, 2.5));
    EXPECT_EQ(unclippedToBase(none, 0, QPointF(1.5, 2.5)), at(1.5, 2.5));
    QTransform transform(2, 0, 0, 2, 0, 0);
    EXPECT_TRUE(none.transformFromBaseToChild(0, transform));
    EXPECT_EQ(transform, QTransform());
}

TEST(TransformSeries, ARouteWithoutNodesHasNoBaseAndNoArea)
{
    const TransformSeries none = series({{}});
    EXPECT_FALSE(none.empty());
    EXPECT_EQ(none.baseSize(), QSize(-1, -1));
    EXPECT_EQ(none.baseInputSizeHint(), QSize(-1, -1));
    std::vector<QPolygon> polygons;
    none.calculatePathPolygons(polygons);
    EXPECT_EQ(polygons, std::vector<QPolygon>{QPolygon()});
}

TEST(TransformSeries, APointMayBeItsOwnResult)
{
    const TransformSeries both = series({{node(moved(1, 0))}, {node(moved(0, 5))}});
    Points points{QPoint(7, 7)};
    EXPECT_TRUE(both.mapFromBaseToChild(points.front(), points));
    EXPECT_EQ(points, (Points{QPoint(8, 7), QPoint(7, 12)}));

    QPointF point(8, 7);
    EXPECT_TRUE(both.mapFromChildToBase(point, point, nullptr));
    EXPECT_TRUE(both.mapFromBaseToChildNoClip(1, point, point));
    EXPECT_TRUE(both.mapFromChildToBaseNoClip(0, point, point));
    EXPECT_EQ(point.x(), 6);
    EXPECT_EQ(point.y(), 12);
}

TEST(TransformSeries, AnIndexBeyondTheRoutesIsRefused)
{
    const TransformSeries two = series({{node(moved(1, 1))}, {node(moved(2, 2))}});
    const QTransform before(2, 3, 4, 5, 6, 7);
    for (const unsigned int index : {2U, 3U, std::numeric_limits<unsigned int>::max()}) {
        EXPECT_EQ(unclippedToChild(two, index, QPointF(1, 2)), std::nullopt);
        EXPECT_EQ(unclippedToBase(two, index, QPointF(1, 2)), std::nullopt);
        QTransform transform = before;
        EXPECT_FALSE(two.transformFromBaseToChild(index, transform));
        EXPECT_EQ(transform, before);
    }
    EXPECT_EQ(unclippedToChild(two, 1, QPointF(1, 2)), at(3, 4, 1));
    EXPECT_EQ(unclippedToBase(two, 1, QPointF(3, 4)), at(1, 2, 1));
}

TEST(TransformSeries, TheTransformIsTheProductForRowVectors)
{
    const Eigen::Matrix3d one = matrix(2, 3, 5, 7, 11, 13, 17, 19, 23);
    QTransform t;
    ASSERT_TRUE(series({{node(one)}}).transformFromBaseToChild(0, t));
    const std::vector<double> entries{t.m11(), t.m12(), t.m13(), t.m21(), t.m22(), t.m23(), t.m31(), t.m32(), t.m33()};
    EXPECT_EQ(entries, (std::vector<double>{2, 7, 17, 3, 11, 19, 5, 13, 23}));

    const TransformSeries both = series({{}, {node(scaled(2, 4)), node(moved(3, 5)), node(turned())}});
    ASSERT_TRUE(both.transformFromBaseToChild(1, t));
    EXPECT_EQ(t, QTransform(0, 2, -4, 0, -5, 3));
    EXPECT_EQ(unclippedToChild(both, 1, QPointF(1, 2)), at(t.map(QPointF(1, 2)).x(), t.map(QPointF(1, 2)).y(), 1));
}

TEST(TransformSeries, RoutesSetTwiceKeepTheOldMatricesInFront)
{
    TransformSeries twice = series({{node(moved(1, 0), Rect(0, 0, 10, 10), QSize(1, 1))}});
    twice.setPaths({{node(moved(100, 0), Rect(0, 0, 200, 300), QSize(2, 2))}, {node(moved(200, 0))}});
    EXPECT_EQ(twice.pathCount(), 2U);
    EXPECT_EQ(twice.baseSize(), QSize(200, 300));
    EXPECT_EQ(twice.baseInputSizeHint(), QSize(2, 2));
    // The clipped ways use the nodes; the others the matrices, of which the first is an old one.
    EXPECT_EQ(toChild(twice, QPoint(1, 0)), (Points{QPoint(101, 0), QPoint(201, 0)}));
    EXPECT_EQ(toBase(twice, QPointF(101, 0)), at(1, 0));
    EXPECT_EQ(unclippedToChild(twice, 0, QPointF(0, 0)), at(1, 0, 0));
    EXPECT_EQ(unclippedToChild(twice, 1, QPointF(0, 0)), at(100, 0, 1));
    EXPECT_EQ(unclippedToBase(twice, 0, QPointF(0, 0)), at(-1, 0, 0));
    EXPECT_EQ(unclippedToBase(twice, 1, QPointF(0, 0)), at(-100, 0, 1));
    QTransform transform;
    EXPECT_TRUE(twice.transformFromBaseToChild(1, transform));
    EXPECT_EQ(transform, QTransform::fromTranslate(100, 0));
}

TEST(TransformSeries, FewerRoutesSetLaterLimitTheIndex)
{
    TransformSeries twice = series({{node(moved(1, 0))}, {node(moved(2, 0))}});
    twice.setPaths({{node(moved(3, 0))}});
    EXPECT_EQ(twice.pathCount(), 1U);
    EXPECT_EQ(unclippedToChild(twice, 0, QPointF(0, 0)), at(1, 0));
    EXPECT_EQ(unclippedToChild(twice, 1, QPointF(0, 0)), std::nullopt);
    twice.setPaths({});
    EXPECT_TRUE(twice.empty());
    EXPECT_EQ(unclippedToChild(twice, 0, QPointF(0, 0)), std::nullopt);
    EXPECT_EQ(twice.baseSize(), QSize(-1, -1));
}

TEST(TransformSeries, ACopyIsASeriesOfItsOwn)
{
    TransformSeries original = series({{node(moved(1, 0))}});
    const TransformSeries copy = original;
    original.setPaths({{node(moved(5, 0))}, {node(moved(6, 0))}});
    EXPECT_EQ(copy.pathCount(), 1U);
    EXPECT_EQ(toChild(copy, QPoint(0, 0)), Points{QPoint(1, 0)});
}

TEST(TransformSeries, ADegenerateMatrixIsNotRefused)
{
    const TransformSeries flat = series({{node(matrix(1, 0, 0, 0, 0, 0, 0, 0, 1))}});
    EXPECT_EQ(toChild(flat, QPoint(3, 4)), Points{QPoint(3, 0)});
    QPointF base;
    EXPECT_TRUE(flat.mapFromChildToBaseNoClip(0, QPointF(3, 4), base));
    EXPECT_FALSE(std::isfinite(base.x()) && std::isfinite(base.y()));
    EXPECT_TRUE(flat.mapFromChildToBase(QPointF(3, 4), base, nullptr));
    EXPECT_FALSE(std::isfinite(base.x()) && std::isfinite(base.y()));

    const TransformSeries vanishing = series({{node(matrix(1, 0, 0, 0, 1, 0, 1, 0, 0))}});
    QPointF child;
    EXPECT_TRUE(vanishing.mapFromBaseToChildNoClip(0, QPointF(0, 3), child)); // w is 0
    EXPECT_FALSE(std::isfinite(child.y()));
}

TEST(TransformSeries, PointsOutOfRangeAreNotInside)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double huge = std::numeric_limits<double>::infinity();
    const TransformSeries one = series({{node(moved(0, 0), Rect(0, 0, 10, 10))}});
    for (const double far : {nan, huge, -huge, 1e10, -1e10, 4294967296.0}) {
        EXPECT_EQ(toBase(one, QPointF(far, 5)), std::nullopt) << far;
        EXPECT_EQ(toBase(one, QPointF(5, far)), std::nullopt) << far;
    }
    const TransformSeries blown = series({{node(scaled(1e10, 1), Rect(0, 0, 10, 10))}});
    EXPECT_EQ(toChild(blown, QPoint(1, 1)), Points());
}

QPolygon polygon(const std::vector<QPoint>& points)
{
    QPolygon result;
    for (const QPoint& point : points) {
        result << point;
    }
    return result;
}

std::vector<QPolygon> polygonsOf(const TransformSeries& series)
{
    std::vector<QPolygon> polygons;
    series.calculatePathPolygons(polygons);
    return polygons;
}

TEST(TransformSeries, ThePolygonOfOneNodeStartsAtZeroAndStaysOpen)
{
    // Neither the node's matrix nor its left and upper edge counts.
    const TransformSeries one = series({{node(moved(100, 100), Rect(5, 6, 70, 80))}});
    EXPECT_EQ(polygonsOf(one), std::vector<QPolygon>{polygon({{0, 0}, {75, 0}, {75, 86}, {0, 86}})});
}

// The corners of a rectangle in the order of a polygon, closed.
QPolygon closedBox(const QRect& box)
{
    const int right = box.x() + box.width();
    const int bottom = box.y() + box.height();
    return polygon({box.topLeft(), {right, box.y()}, {right, bottom}, {box.x(), bottom}, box.topLeft()});
}

// An intersection starts where it likes and runs round as it likes.
void expectBox(const QPolygon& actual, const QRect& box)
{
    EXPECT_EQ(actual.size(), 5);
    ASSERT_FALSE(actual.isEmpty());
    EXPECT_EQ(actual.first(), actual.last());
    for (const QPoint& corner : closedBox(box)) {
        EXPECT_TRUE(actual.contains(corner)) << corner.x() << ", " << corner.y();
    }
}

TEST(TransformSeries, PolygonsAreMovedAndClippedByTheFurtherNodes)
{
    const Node base = node(moved(100, 100), Rect(0, 0, 40, 30));
    const std::vector<QPolygon> polygons = polygonsOf(
        series({{base, node(moved(10, 20), Rect(0, 0, 45, 100))},
                {base, node(scaled(2, 2), Rect(-5, -5, 500, 500)), node(moved(-10, 5), Rect(0, 0, 60, 60))}}));
    ASSERT_EQ(polygons.size(), 2U);
    expectBox(polygons[0], QRect(10, 20, 35, 30));
    expectBox(polygons[1], QRect(0, 5, 60, 55));
}

TEST(TransformSeries, PolygonsUseTheCornersOfTheClippingRectangle)
{
    const std::vector<QPolygon> polygons =
        polygonsOf(series({{node(moved(0, 0), Rect(0, 0, 100, 100)), node(moved(0, 0), Rect(20, 30, 40, 50))}}));
    ASSERT_EQ(polygons.size(), 1U);
    expectBox(polygons[0], QRect(20, 30, 40, 50));
}

TEST(TransformSeries, PolygonPointsAreProjectedAndTruncated)
{
    // w = 1 + x / 128: (128, 0) comes to (64, 0), (128, 75) to (64, 37.5), and all move by -0.5.
    const Eigen::Matrix3d perspective = moved(-0.5, -0.5) * matrix(1, 0, 0, 0, 1, 0, 1.0 / 128, 0, 1);
    const std::vector<QPolygon> polygons =
        polygonsOf(series({{node(moved(0, 0), Rect(0, 0, 128, 75)), node(perspective)}}));
    ASSERT_EQ(polygons.size(), 1U);
    // -0.5 becomes 0, 63.5 becomes 63, 37.0 stays, 74.5 becomes 74.
    EXPECT_EQ(polygons[0].size(), 5);
    for (const QPoint& corner : {QPoint(0, 0), QPoint(63, 0), QPoint(63, 37), QPoint(0, 74)}) {
        EXPECT_TRUE(polygons[0].contains(corner)) << corner.x() << ", " << corner.y();
    }
}

TEST(TransformSeries, PolygonsAreTruncatedAtEachNode)
{
    // 15 halves to 7 and doubles to 14.
    const std::vector<QPolygon> polygons =
        polygonsOf(series({{node(moved(0, 0), Rect(0, 0, 15, 15)), node(scaled(0.5, 0.5)), node(scaled(2, 2))}}));
    ASSERT_EQ(polygons.size(), 1U);
    expectBox(polygons[0], QRect(0, 0, 14, 14));
}

TEST(TransformSeries, ARouteThatLeavesTheChildHasAnEmptyPolygon)
{
    const Node base = node(moved(0, 0), Rect(0, 0, 40, 30));
    const std::vector<QPolygon> polygons =
        polygonsOf(series({{base, node(moved(100, 0), Rect(0, 0, 50, 50))}, {base}}));
    ASSERT_EQ(polygons.size(), 2U);
    EXPECT_TRUE(polygons[0].isEmpty());
    EXPECT_EQ(polygons[1], polygon({{0, 0}, {40, 0}, {40, 30}, {0, 30}}));
}

TEST(TransformSeries, PolygonsAreAppended)
{
    const TransformSeries one = series({{node(moved(0, 0), Rect(0, 0, 40, 30))}});
    std::vector<QPolygon> polygons{QPolygon(3)};
    one.calculatePathPolygons(polygons);
    one.calculatePathPolygons(polygons);
    const QPolygon box = polygon({{0, 0}, {40, 0}, {40, 30}, {0, 30}});
    EXPECT_EQ(polygons, (std::vector<QPolygon>{QPolygon(3), box, box}));
}

// A second reading of the mappings, entry by entry. On its matrices of small integers with determinant 1 every product,
// and every inverse, is exact in any order of evaluation.
struct Homogeneous {
    double x;
    double y;
    double w;

    QPoint truncated() const { return QPoint(static_cast<int>(x / w), static_cast<int>(y / w)); }
};

Homogeneous applied(const Eigen::Matrix3d& m, const Homogeneous& p)
{
    return {m(0, 0) * p.x + m(0, 1) * p.y + m(0, 2) * p.w, m(1, 0) * p.x + m(1, 1) * p.y + m(1, 2) * p.w,
            m(2, 0) * p.x + m(2, 1) * p.y + m(2, 2) * p.w};
}

Eigen::Matrix3d inverted(const Eigen::Matrix3d& m) // of determinant 1
{
    Eigen::Matrix3d result;
    for (Eigen::Index i = 0; i < 3; ++i) {
        for (Eigen::Index j = 0; j < 3; ++j) {
            const Eigen::Index r1 = (i + 1) % 3;
            const Eigen::Index r2 = (i + 2) % 3;
            const Eigen::Index c1 = (j + 1) % 3;
            const Eigen::Index c2 = (j + 2) % 3;
            result(j, i) = m(r1, c1) * m(r2, c2) - m(r1, c2) * m(r2, c1);
        }
    }
    return result;
}

std::optional<QPoint> literalForward(const Route& route, const QPoint& base)
{
    Homogeneous point{double(base.x()), double(base.y()), 1};
    QPoint last = base;
    for (const Node& step : route) {
        point = applied(step.transform, point);
        last = point.truncated();
        if (!step.rect.contains(last)) {
            return std::nullopt;
        }
    }
    return last;
}

std::optional<QPointF> literalBackward(const Route& route, const QPointF& child)
{
    Homogeneous point{child.x(), child.y(), 1};
    for (auto step = route.rbegin(); step != route.rend(); ++step) {
        if (!step->rect.contains(point.truncated())) {
            return std::nullopt;
        }
        point = applied(inverted(step->transform), point);
    }
    return QPointF(point.x / point.w, point.y / point.w);
}

class RandomRoutes
{
public:
    // A product of three shears: integers, and determinant 1. Third coordinates stay odd, and so never 0.
    Node next()
    {
        const Eigen::Matrix3d upper = matrix(1, number(-2, 2), number(-9, 9), 0, 1, number(-9, 9));
        const Eigen::Matrix3d lower = matrix(1, 0, 0, number(-1, 1), 1, 0);
        const double tilt = number(0, 3) == 0 ? 2 : 0;
        const Eigen::Matrix3d tilted = matrix(1, 0, 0, 0, 1, 0, 0, tilt, 1);
        const int reach = number(20, 120);
        return node(tilted * upper * lower, Rect(-reach, -reach, 2 * reach, 2 * reach + number(0, 3)));
    }

    std::vector<Route> routes()
    {
        std::vector<Route> result(static_cast<std::size_t>(number(1, 4)));
        for (Route& route : result) {
            route.resize(static_cast<std::size_t>(number(0, 4)));
            for (Node& step : route) {
                step = next();
            }
        }
        return result;
    }

    int number(int low, int high)
    {
        return low + static_cast<int>(m_engine() % static_cast<unsigned int>(high - low + 1));
    }

private:
    std::mt19937 m_engine{6080};
};

TEST(TransformSeries, EqualsTheLiteralMappingsOnRandomRoutes)
{
    RandomRoutes random;
    int clipped = 0;
    int passed = 0;
    for (int i = 0; i < 20000; ++i) {
        const std::vector<Route> routes = random.routes();
        const TransformSeries mapped = series(routes);
        const QPoint point(random.number(-30, 30), random.number(-30, 30));
        Points forward;
        std::optional<BasePoint> backward;
        for (std::size_t route = 0; route < routes.size(); ++route) {
            if (const std::optional<QPoint> child = literalForward(routes[route], point)) {
                forward.push_back(*child);
            }
            const std::optional<QPointF> base = literalBackward(routes[route], point);
            if (base && !backward) {
                backward = BasePoint{*base, static_cast<unsigned int>(route)};
            }
        }
        ASSERT_EQ(toChild(mapped, point), forward) << i;
        ASSERT_EQ(toBase(mapped, point), backward) << i;
        passed += !forward.empty();
        clipped += forward.size() < routes.size();
    }
    EXPECT_GT(passed, 2000);
    EXPECT_GT(clipped, 2000);
}

} // namespace

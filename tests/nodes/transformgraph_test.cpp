// The routes of a transform graph. A series doesn't show its routes, so they are told apart by what it answers: every
// map has a matrix of its own, and the product of a route's matrices names the maps that it has gone through.

#include <ondrel/nodes/transformgraph.h>

#include <tests/reference/transformgraph_reference.h>

#include <gtest/gtest.h>

#include <QPolygon>
#include <QTransform>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

namespace
{

using Ondrel::TransformMap;
using Ondrel::TransformSeries;
using OndrelReference::GraphRecords;
using OndrelReference::Route;
using Rect = Ondrel::RectT<int>;

constexpr unsigned long Base = 1;
constexpr unsigned long Child = 2;
constexpr unsigned long A = 10;
constexpr unsigned long B = 11;
constexpr unsigned long C = 12;
constexpr unsigned long Dead = 20;

// The smallest step of a matrix that counts as the identity; several of them still do.
const double Tiny = std::ldexp(1.0, -48);

Eigen::Matrix3d moved(double dx, double dy = 0)
{
    Eigen::Matrix3d matrix = Eigen::Matrix3d::Identity();
    matrix(0, 2) = dx;
    matrix(1, 2) = dy;
    return matrix;
}

TransformMap mapWith(const QString& input, const QString& output, const Eigen::Matrix3d& matrix, const Rect& rect)
{
    TransformMap map;
    map.enabled = true;
    map.inputField = input;
    map.outputField = output;
    map.inputSizeHint = QSize(-1, -1);
    map.transform = matrix;
    map.rect = rect;
    return map;
}

// A map with a matrix, a rectangle and a size of its own. The matrices of two tags do not commute.
TransformMap tagged(const QString& input, const QString& output, int tag)
{
    Eigen::Matrix3d matrix = Eigen::Matrix3d::Identity();
    matrix(0, 1) = tag;
    matrix(0, 2) = tag * tag;
    matrix(1, 2) = 3 * tag + 1;
    TransformMap map = mapWith(input, output, matrix, Rect(-100 * tag, -200 * tag, 100000 + tag, 90000 + tag));
    map.inputSizeHint = QSize(1000 + tag, 2000 + tag);
    return map;
}

// All but the identity in name: `steps` of Tiny.
TransformMap nearlyIdentity(const QString& input, const QString& output, int steps, const Rect& rect = Rect(0, 0, 9, 9))
{
    return mapWith(input, output, moved(steps * Tiny), rect);
}

TransformMap disabled(TransformMap map)
{
    map.enabled = false;
    return map;
}

TransformSeries::Node step(const TransformMap& map)
{
    TransformSeries::Node node;
    node.transform = map.transform;
    node.rect = map.rect;
    node.inputSizeHint = map.inputSizeHint;
    return node;
}

TransformSeries::Node unmapped()
{
    TransformSeries::Node node;
    node.transform = Eigen::Matrix3d::Identity();
    node.rect = Rect(0, 0, 0, 0);
    node.inputSizeHint = QSize(-1, -1);
    return node;
}

struct Records : GraphRecords {
    Records& node(unsigned long id, const std::vector<TransformMap>& maps)
    {
        TransformGraph::Node record;
        record.id = id;
        record.maps = maps;
        nodes.push_back(record);
        return *this;
    }

    Records& edge(unsigned long fromId, const QString& fromField, unsigned long toId, const QString& toField)
    {
        edges.push_back({fromId, fromField, toId, toField});
        return *this;
    }
};

TransformGraph filled(const GraphRecords& records)
{
    TransformGraph graph;
    for (const TransformGraph::Node& node : records.nodes) {
        graph.addNode(node);
    }
    for (const OndrelReference::GraphEdge& edge : records.edges) {
        graph.addEdge(edge.fromId, edge.fromField, edge.toId, edge.toField);
    }
    return graph;
}

using Answers = std::vector<std::uint64_t>;

void append(Answers& answers, double value)
{
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    answers.push_back(bits);
}

void append(Answers& answers, int value)
{
    answers.push_back(static_cast<std::uint64_t>(static_cast<std::int64_t>(value)));
}

void appendTransforms(Answers& answers, const TransformSeries& series)
{
    for (unsigned int route = 0; route < series.pathCount(); ++route) {
        QTransform t;
        answers.push_back(series.transformFromBaseToChild(route, t));
        for (const double value : {t.m11(), t.m12(), t.m13(), t.m21(), t.m22(), t.m23(), t.m31(), t.m32(), t.m33()}) {
            append(answers, value);
        }
    }
}

void appendPoint(Answers& answers, const TransformSeries& series, const QPoint& point)
{
    std::vector<QPoint> children;
    answers.push_back(series.mapFromBaseToChild(point, children));
    for (const QPoint& child : children) {
        append(answers, child.x());
        append(answers, child.y());
    }
    QPointF base;
    unsigned int route = 77;
    answers.push_back(series.mapFromChildToBase(point, base, &route));
    answers.push_back(route);
    append(answers, base.x());
    append(answers, base.y());
}

// All that a series tells of its routes but their polygons, bit by bit.
Answers answersOf(const TransformSeries& series)
{
    Answers answers{series.empty(), series.pathCount()};
    for (const QSize& size : {series.baseSize(), series.baseInputSizeHint()}) {
        append(answers, size.width());
        append(answers, size.height());
    }
    appendTransforms(answers, series);
    for (const QPoint& point : {QPoint(0, 0), QPoint(3, 5), QPoint(-2, 7), QPoint(10, 10), QPoint(400, -300)}) {
        appendPoint(answers, series, point);
    }
    return answers;
}

std::vector<QPolygon> polygonsOf(const TransformSeries& series)
{
    std::vector<QPolygon> polygons;
    series.calculatePathPolygons(polygons);
    return polygons;
}

TransformSeries seriesOf(const std::vector<Route>& routes)
{
    TransformSeries series;
    if (!routes.empty()) {
        series.setPaths(routes);
    }
    return series;
}

void expectSameSeries(const TransformSeries& actual, const TransformSeries& expected)
{
    EXPECT_EQ(actual.pathCount(), expected.pathCount());
    EXPECT_EQ(answersOf(actual), answersOf(expected));
    EXPECT_EQ(polygonsOf(actual), polygonsOf(expected));
}

// Both the library and the literal walk are held to the routes that were worked out by hand.
void expectRoutes(const GraphRecords& records, unsigned long baseId, unsigned long childId,
                  const std::vector<Route>& expected)
{
    TransformSeries series;
    EXPECT_EQ(filled(records).buildTransformSeries(baseId, childId, series), !expected.empty());
    {
        SCOPED_TRACE("library");
        expectSameSeries(series, seriesOf(expected));
    }
    SCOPED_TRACE("literal walk");
    expectSameSeries(seriesOf(OndrelReference::transformRoutes(records, baseId, childId)), seriesOf(expected));
}

TransformSeries someSeries()
{
    return seriesOf({{step(tagged("in", "image", 3)), step(tagged("in", "image", 4))}});
}

void expectUntouched(const GraphRecords& records, unsigned long baseId, unsigned long childId)
{
    TransformSeries series = someSeries();
    EXPECT_FALSE(filled(records).buildTransformSeries(baseId, childId, series));
    expectSameSeries(series, someSeries());
}

const TransformMap BaseMap = tagged("in", "image", 1);
const TransformMap ChildMap = tagged("in", "image", 2);
const TransformMap AMap = tagged("in", "image", 5);
const TransformMap BMap = tagged("in", "image", 6);

// A base and a child without connections.
Records twoEnds()
{
    return Records().node(Base, {BaseMap}).node(Child, {ChildMap});
}

TEST(TransformGraph, ABaseThatIsTheChildGivesItsFirstMapOfTheImage)
{
    const TransformMap first = tagged("other", "image", 7);
    const Records records =
        Records().node(Base, {tagged("in", "mask", 3), tagged("in", "Image", 4), first, tagged("in", "image", 8)});
    expectRoutes(records, Base, Base, {{step(first)}});
}

TEST(TransformGraph, ABaseTakesADisabledMapToo)
{
    const TransformMap first = disabled(tagged("in", "image", 7));
    expectRoutes(Records().node(Base, {first, tagged("in", "image", 8)}), Base, Base, {{step(first)}});
}

TEST(TransformGraph, ANodeWithoutMapsIsTheIdentityWithAnEmptyRectangle)
{
    const TransformGraph graph = filled(Records().node(Base, {}));
    TransformSeries series;
    ASSERT_TRUE(graph.buildTransformSeries(Base, Base, series));
    EXPECT_EQ(series.pathCount(), 1U);
    EXPECT_EQ(series.baseSize(), QSize(0, 0));
    EXPECT_EQ(series.baseInputSizeHint(), QSize(-1, -1));
    QTransform transform(2, 0, 0, 2, 0, 0);
    ASSERT_TRUE(series.transformFromBaseToChild(0, transform));
    EXPECT_EQ(transform, QTransform());
    expectRoutes(Records().node(Base, {}), Base, Base, {{unmapped()}});
    expectRoutes(Records().node(Base, {tagged("in", "mask", 3)}), Base, Base, {{unmapped()}});
}

TEST(TransformGraph, ABaseThatIsTheChildIgnoresEdges)
{
    const Records records = twoEnds().edge(Base, "image", Base, "in").edge(Base, "image", Child, "in");
    expectRoutes(records, Base, Base, {{step(BaseMap)}});
}

TEST(TransformGraph, UnknownEndsLeaveTheSeriesAlone)
{
    const Records records =
        twoEnds().edge(Base, "image", Child, "in").edge(Base, "image", 99, "in").edge(98, "image", Child, "in");
    expectUntouched(records, 98, Child);
    expectUntouched(records, Base, 99);
    expectUntouched(records, 98, 99);
    expectUntouched(records, 98, 98);
    expectUntouched(Records(), 0, 0);
}

TEST(TransformGraph, NoRouteLeavesTheSeriesAlone)
{
    expectUntouched(twoEnds(), Base, Child);
    expectUntouched(twoEnds().edge(Child, "image", Base, "in"), Base, Child);
    expectUntouched(twoEnds().node(A, {AMap}).edge(Base, "image", A, "in"), Base, Child);
    expectUntouched(twoEnds().node(A, {AMap}).edge(A, "image", Child, "in"), Base, Child);
}

TEST(TransformGraph, OnlyTheImageOfTheBaseStartsRoutes)
{
    Records records = Records().node(Base, {BaseMap, tagged("in", "mask", 3)}).node(Child, {ChildMap});
    records.edge(Base, "mask", Child, "in").edge(Base, "Image", Child, "in").edge(Base, "", Child, "in");
    expectUntouched(records, Base, Child);
}

TEST(TransformGraph, AChainTakesTheMapsOfItsFields)
{
    const TransformMap crossing = tagged("in", "out", 5);
    const TransformMap end = tagged("second", "image", 6);
    Records records = Records().node(Base, {tagged("in", "mask", 3), BaseMap});
    records.node(A, {tagged("in", "image", 7), tagged("side", "out", 8), crossing, tagged("in", "out", 9)});
    records.node(Child, {tagged("in", "image", 10), tagged("second", "mask", 11), end, tagged("second", "image", 12)});
    records.edge(Base, "image", A, "in").edge(A, "out", Child, "second");
    expectRoutes(records, Base, Child, {{step(BaseMap), step(crossing), step(end)}});
}

TEST(TransformGraph, AnEdgeFromBaseToChildIsARouteOfTwo)
{
    expectRoutes(twoEnds().edge(Base, "image", Child, "in"), Base, Child, {{step(BaseMap), step(ChildMap)}});
}

TEST(TransformGraph, AChildWithoutAFittingMapIsTheIdentity)
{
    const TransformMap other = tagged("in", "mask", 3);
    const Records records = Records().node(Base, {BaseMap}).node(Child, {other}).edge(Base, "image", Child, "in");
    expectRoutes(records, Base, Child, {{step(BaseMap), unmapped()}});
}

TEST(TransformGraph, AChildTakesADisabledMapToo)
{
    const TransformMap first = disabled(tagged("in", "image", 3));
    const Records records =
        Records().node(Base, {BaseMap}).node(Child, {first, ChildMap}).edge(Base, "image", Child, "in");
    expectRoutes(records, Base, Child, {{step(BaseMap), step(first)}});
}

TEST(TransformGraph, ADiamondGivesTheBranchConnectedFirstFirst)
{
    const auto diamond = [] { return twoEnds().node(A, {AMap}).node(B, {BMap}); };
    const Route throughA{step(BaseMap), step(AMap), step(ChildMap)};
    const Route throughB{step(BaseMap), step(BMap), step(ChildMap)};
    Records aFirst = diamond().edge(Base, "image", A, "in").edge(Base, "image", B, "in");
    expectRoutes(aFirst.edge(A, "image", Child, "in").edge(B, "image", Child, "in"), Base, Child, {throughA, throughB});
    Records bFirst = diamond().edge(Base, "image", B, "in").edge(Base, "image", A, "in");
    expectRoutes(bFirst.edge(A, "image", Child, "in").edge(B, "image", Child, "in"), Base, Child, {throughB, throughA});
}

TEST(TransformGraph, ADisabledMapStopsTheWalk)
{
    Records records = twoEnds().node(A, {disabled(AMap)});
    expectUntouched(records.edge(Base, "image", A, "in").edge(A, "image", Child, "in"), Base, Child);
}

TEST(TransformGraph, TheFirstMapCountsEvenIfALaterOneLetTheWalkPass)
{
    const TransformMap hidden = disabled(tagged("in", "image", 7));
    Records records = twoEnds().node(A, {hidden, AMap});
    records.edge(Base, "image", A, "in").edge(A, "image", Child, "in");
    expectRoutes(records, Base, Child, {{step(BaseMap), step(hidden), step(ChildMap)}});
}

TEST(TransformGraph, FieldNamesAreCaseSensitive)
{
    Records wrongInput = twoEnds().node(A, {AMap}).edge(Base, "image", A, "In").edge(A, "image", Child, "in");
    expectUntouched(wrongInput, Base, Child);
    Records wrongOutput = twoEnds().node(A, {AMap}).edge(Base, "image", A, "in").edge(A, "Image", Child, "in");
    expectUntouched(wrongOutput, Base, Child);
}

TEST(TransformGraph, ANullNameIsAnEmptyName)
{
    const TransformMap nameless = tagged("", "", 5);
    Records records = twoEnds().node(A, {nameless});
    records.edge(Base, "image", A, QString()).edge(A, QString(), Child, "in");
    expectRoutes(records, Base, Child, {{step(BaseMap), step(nameless), step(ChildMap)}});
}

TEST(TransformGraph, AnEdgeAddedTwiceIsTwoRoutes)
{
    const Route route{step(BaseMap), step(AMap), step(ChildMap)};
    Records atBase = twoEnds().node(A, {AMap}).edge(Base, "image", A, "in").edge(Base, "image", A, "in");
    expectRoutes(atBase.edge(A, "image", Child, "in"), Base, Child, {route, route});
    Records behind = twoEnds().node(A, {AMap}).edge(Base, "image", A, "in");
    behind.edge(A, "image", Child, "in").edge(A, "image", Child, "in");
    expectRoutes(behind, Base, Child, {route, route});
}

TEST(TransformGraph, ParallelEdgesToTwoInputsAreTwoRoutes)
{
    const TransformMap first = tagged("first", "image", 7);
    const TransformMap second = tagged("second", "image", 8);
    const Records records = Records().node(Base, {BaseMap}).node(Child, {first, second});
    expectRoutes(Records(records).edge(Base, "image", Child, "second").edge(Base, "image", Child, "first"), Base, Child,
                 {{step(BaseMap), step(second)}, {step(BaseMap), step(first)}});
}

TEST(TransformGraph, TwoOutputsOfANodeAreSiblings)
{
    const TransformMap x = tagged("in", "x", 7);
    const TransformMap y = tagged("in", "y", 8);
    Records records = twoEnds().node(A, {y, x, y}).edge(Base, "image", A, "in");
    // Outputs come in the order of the maps, each once, not in the order of the edges.
    records.edge(A, "x", Child, "in").edge(A, "y", Child, "in");
    expectRoutes(records, Base, Child,
                 {{step(BaseMap), step(y), step(ChildMap)}, {step(BaseMap), step(x), step(ChildMap)}});
}

TEST(TransformGraph, ARouteBacksUpToTheNodeThatItLeftByAnotherOutput)
{
    // The first route runs A.y, B, the second leaves A by x: both B and A.y have to go from the route.
    const TransformMap x = tagged("in", "x", 7);
    const TransformMap y = tagged("in", "y", 8);
    const TransformMap c = tagged("in", "image", 9);
    Records records = twoEnds().node(A, {x, y}).node(B, {BMap}).node(C, {c}).edge(Base, "image", A, "in");
    records.edge(A, "x", C, "in").edge(A, "y", B, "in").edge(B, "image", Child, "in").edge(C, "image", Child, "in");
    expectRoutes(
        records, Base, Child,
        {{step(BaseMap), step(x), step(c), step(ChildMap)}, {step(BaseMap), step(y), step(BMap), step(ChildMap)}});
}

TEST(TransformGraph, TheWalkStopsAtTheChild)
{
    Records records = twoEnds().node(A, {AMap}).edge(Base, "image", Child, "in");
    records.edge(Child, "image", A, "in").edge(A, "image", Child, "in");
    expectRoutes(records, Base, Child, {{step(BaseMap), step(ChildMap)}});
}

TEST(TransformGraph, ADeadEndConnectedFirstDoesNoHarm)
{
    Records records = twoEnds().node(A, {AMap}).node(Dead, {tagged("in", "image", 9)});
    records.edge(Base, "image", A, "in").edge(A, "image", Dead, "in").edge(A, "image", Child, "in");
    expectRoutes(records, Base, Child, {{step(BaseMap), step(AMap), step(ChildMap)}});
}

TEST(TransformGraph, ADeadEndConnectedLastCutsTheRouteAfterItsNode)
{
    Records records = twoEnds().node(A, {AMap}).node(Dead, {tagged("in", "image", 9)});
    records.edge(Base, "image", A, "in").edge(A, "image", Child, "in").edge(A, "image", Dead, "in");
    expectRoutes(records, Base, Child, {{step(BaseMap), step(AMap)}});
}

TEST(TransformGraph, ACutRouteLeavesItsLastNodeByTheDeadEnd)
{
    const TransformMap side = tagged("in", "side", 9);
    Records records = twoEnds().node(A, {AMap, side}).node(Dead, {});
    records.edge(Base, "image", A, "in").edge(A, "image", Child, "in").edge(A, "side", Dead, "in");
    expectRoutes(records, Base, Child, {{step(BaseMap), step(side)}});
}

TEST(TransformGraph, AnyNodeWithoutAWayOnIsADeadEnd)
{
    const auto cutBy = [](unsigned long end, const QString& input) {
        Records records = twoEnds().node(A, {AMap}).node(Dead, {disabled(tagged("in", "image", 9))});
        records.edge(Base, "image", A, "in").edge(A, "image", Child, "in").edge(A, "image", end, input);
        records.edge(Dead, "image", Child, "in").edge(99, "image", Child, "in");
        expectRoutes(records, Base, Child, {{step(BaseMap), step(AMap)}});
    };
    {
        SCOPED_TRACE("a disabled map");
        cutBy(Dead, "in");
    }
    {
        SCOPED_TRACE("an input without a map");
        cutBy(Dead, "other");
    }
    SCOPED_TRACE("a node that was never added");
    cutBy(99, "in");
}

TEST(TransformGraph, ADeadEndAtTheBaseLeavesTheBaseAlone)
{
    Records records = twoEnds().node(A, {AMap}).node(B, {BMap}).node(Dead, {});
    records.edge(Base, "image", A, "in").edge(Base, "image", B, "in").edge(Base, "image", Dead, "in");
    records.edge(A, "image", Child, "in").edge(B, "image", Child, "in");
    // Backing up takes one edge of the base, so that the dead end stays for the second route as well.
    expectRoutes(records, Base, Child, {{step(BaseMap)}, {step(BaseMap)}});
}

TEST(TransformGraph, ADeadEndCutsTheRoutesThatAreWalkedAfterIt)
{
    const TransformMap last = tagged("last", "image", 9);
    Records records = Records().node(Base, {BaseMap}).node(Child, {ChildMap, last}).node(A, {AMap}).node(Dead, {});
    records.edge(Base, "image", A, "in").edge(A, "image", Child, "in").edge(A, "image", Dead, "in");
    records.edge(A, "image", Child, "last");
    expectRoutes(records, Base, Child, {{step(BaseMap), step(AMap)}, {step(BaseMap), step(AMap), step(last)}});
}

TEST(TransformGraph, ADeadEndBehindASiblingCutsTheRouteToo)
{
    Records records = twoEnds().node(A, {AMap}).node(B, {BMap}).node(Dead, {});
    records.edge(Base, "image", A, "in").edge(Base, "image", B, "in");
    records.edge(A, "image", Child, "in").edge(B, "image", Dead, "in");
    // The route goes on from the sibling, and never comes to A.
    expectRoutes(records, Base, Child, {{step(BaseMap), step(BMap)}});
}

TEST(TransformGraph, BackingUpClearsADeadEndAboveTheNextNode)
{
    // Walked: B with its dead end behind C, then C's live edge (cut), then A, for which all of B and C is gone.
    const TransformMap c = tagged("in", "image", 9);
    Records records = twoEnds().node(A, {AMap}).node(B, {BMap}).node(C, {c}).node(Dead, {});
    records.edge(Base, "image", A, "in").edge(Base, "image", B, "in").edge(B, "image", C, "in");
    records.edge(C, "image", Child, "in").edge(C, "image", Dead, "in").edge(A, "image", Child, "in");
    expectRoutes(records, Base, Child,
                 {{step(BaseMap), step(AMap), step(ChildMap)}, {step(BaseMap), step(BMap), step(c)}});
}

TEST(TransformGraph, ANodeAddedAgainIsReplaced)
{
    const TransformMap again = tagged("in", "image", 9);
    Records records = twoEnds().node(A, {AMap, tagged("in", "x", 7)}).edge(Base, "image", A, "in");
    records.edge(A, "image", Child, "in").edge(A, "x", Child, "in").node(A, {again});
    expectRoutes(records, Base, Child, {{step(BaseMap), step(again), step(ChildMap)}});
}

TEST(TransformGraph, IdentifiersAreTakenWhole)
{
    const unsigned long wide = (1UL << 40) + A;
    Records records = twoEnds().node(A, {AMap}).node(wide, {BMap});
    records.edge(Base, "image", wide, "in").edge(A, "image", Child, "in").edge(wide, "image", Child, "in");
    expectRoutes(records, Base, Child, {{step(BaseMap), step(BMap), step(ChildMap)}});
    expectUntouched(records, Base, (1UL << 40) + Child);
}

TEST(TransformGraph, AGraphAnswersAnyNumberOfQuestions)
{
    const TransformGraph graph =
        filled(twoEnds().node(A, {AMap}).edge(Base, "image", A, "in").edge(A, "image", Child, "in"));
    for (int round = 0; round < 3; ++round) {
        TransformSeries whole;
        TransformSeries part;
        TransformSeries none;
        EXPECT_TRUE(graph.buildTransformSeries(Base, Child, whole));
        EXPECT_TRUE(graph.buildTransformSeries(A, Child, part));
        EXPECT_FALSE(graph.buildTransformSeries(Child, Base, none));
        expectSameSeries(whole, seriesOf({{step(BaseMap), step(AMap), step(ChildMap)}}));
        expectSameSeries(part, seriesOf({{step(AMap), step(ChildMap)}}));
        EXPECT_TRUE(none.empty());
    }
}

TEST(TransformGraph, ACopyIsAGraphOfItsOwn)
{
    TransformGraph graph = filled(twoEnds());
    const TransformGraph copy = graph;
    graph.addEdge(Base, "image", Child, "in");
    TransformSeries series;
    EXPECT_FALSE(copy.buildTransformSeries(Base, Child, series));
    EXPECT_TRUE(graph.buildTransformSeries(Base, Child, series));
}

TEST(TransformGraph, EndsAreEqualInBothMembers)
{
    const TransformGraph::NodeEdgeEnd end{5, "image"};
    EXPECT_TRUE(end == (TransformGraph::NodeEdgeEnd{5, "image"}));
    EXPECT_FALSE(end == (TransformGraph::NodeEdgeEnd{6, "image"}));
    EXPECT_FALSE(end == (TransformGraph::NodeEdgeEnd{5, "Image"}));
}

TEST(TransformGraph, TheHashOfAnEndIsTwiceTheIdAndTheHashOfTheName)
{
    const TransformGraph::NodeEdgeEndHash hash;
    const unsigned long id = (1UL << 40) + 12345;
    EXPECT_EQ(hash({id, "image"}), (id * 2) ^ qHash(QString("image"), 0));
    EXPECT_EQ(hash({0, "mask"}), std::size_t(qHash(QString("mask"), 0)));
    EXPECT_EQ(hash({7, ""}), std::size_t(14) ^ qHash(QString(""), 0));
}

// A chain from the base through nodes 100, 101, ... to the child, one for each map after the first.
Records chain(const std::vector<TransformMap>& maps)
{
    Records records;
    records.node(Base, {maps.front()});
    unsigned long previous = Base;
    for (std::size_t i = 1; i < maps.size(); ++i) {
        const unsigned long id = i + 1 == maps.size() ? Child : 99 + i;
        records.node(id, {maps[i]}).edge(previous, "image", id, "in");
        previous = id;
    }
    return records;
}

// The chain of those maps, and the places in it of the nodes that are to be left.
void expectLeft(const std::vector<TransformMap>& maps, const std::vector<std::size_t>& left)
{
    Route route;
    for (const std::size_t place : left) {
        route.push_back(step(maps[place]));
    }
    expectRoutes(chain(maps), Base, Child, {route});
}

std::vector<TransformMap> nearlyIdentities(std::size_t count)
{
    std::vector<TransformMap> maps;
    for (std::size_t i = 0; i < count; ++i) {
        maps.push_back(nearlyIdentity("in", "image", 1 << i));
    }
    return maps;
}

TEST(TransformGraph, EverySecondIdentityOfARunIsLeft)
{
    expectLeft(nearlyIdentities(2), {0});
    expectLeft(nearlyIdentities(3), {0, 2});
    expectLeft(nearlyIdentities(4), {0, 2});
    expectLeft(nearlyIdentities(5), {0, 2, 4});
    expectLeft(nearlyIdentities(6), {0, 2, 4});
}

TEST(TransformGraph, AChainOfTwoIdentitiesBehindAnyBaseGivesTwoNodes)
{
    const TransformMap a = nearlyIdentity("in", "image", 1);
    const TransformMap child = nearlyIdentity("in", "image", 2);
    expectLeft({BaseMap, a, child}, {0, 1});
    expectLeft({nearlyIdentity("in", "image", 4), a, child}, {0, 2});
    expectLeft({nearlyIdentity("in", "image", 4, Rect(0, 0, 8, 9)), a, child}, {0, 1});
}

TEST(TransformGraph, IdentitiesOfUnequalRectanglesStay)
{
    for (const Rect& other : {Rect(0, 0, 10, 9), Rect(0, 0, 9, 10), Rect(1, 0, 8, 9), Rect(0, 1, 9, 8)}) {
        expectLeft({nearlyIdentity("in", "image", 1), nearlyIdentity("in", "image", 2, other)}, {0, 1});
    }
}

TEST(TransformGraph, IdentitiesOfUnequalSizeHintsGo)
{
    TransformMap hinted = nearlyIdentity("in", "image", 2);
    hinted.inputSizeHint = QSize(30, 40);
    expectLeft({nearlyIdentity("in", "image", 1), hinted}, {0});
}

TEST(TransformGraph, EqualMatricesThatAreNotTheIdentityStay)
{
    const TransformMap map = mapWith("in", "image", moved(3, 4), Rect(0, 0, 9, 9));
    expectLeft({map, map}, {0, 1});
    expectLeft({map, nearlyIdentity("in", "image", 1)}, {0, 1});
    expectLeft({nearlyIdentity("in", "image", 1), map}, {0, 1});
    expectLeft({nearlyIdentity("in", "image", 1), map, nearlyIdentity("in", "image", 2)}, {0, 1, 2});
}

TEST(TransformGraph, AnIdentityMayBeOffByTenToTheMinusTwelve)
{
    const double inside = std::ldexp(1.0, -40); // 9.1e-13
    const double outside = std::ldexp(1.0, -39);
    for (Eigen::Index row = 0; row < 3; ++row) {
        for (Eigen::Index column = 0; column < 3; ++column) {
            SCOPED_TRACE(testing::Message() << "entry " << row << ", " << column);
            TransformMap map = nearlyIdentity("in", "image", 0);
            const double exact = map.transform(row, column);
            map.transform(row, column) = exact + inside;
            expectLeft({nearlyIdentity("in", "image", 1), map}, {0});
            map.transform(row, column) = exact - inside;
            expectLeft({nearlyIdentity("in", "image", 1), map}, {0});
            map.transform(row, column) = exact + outside;
            expectLeft({nearlyIdentity("in", "image", 1), map}, {0, 1});
            map.transform(row, column) = exact - outside;
            expectLeft({nearlyIdentity("in", "image", 1), map}, {0, 1});
        }
    }
}

TEST(TransformGraph, EachRouteIsSimplifiedByItself)
{
    const TransformMap base = nearlyIdentity("in", "image", 1);
    const TransformMap child = nearlyIdentity("in", "image", 2);
    const TransformMap a = nearlyIdentity("in", "image", 4);
    Records records = Records().node(Base, {base}).node(Child, {child}).node(A, {a}).node(B, {BMap});
    records.edge(Base, "image", A, "in").edge(Base, "image", B, "in").edge(Base, "image", Child, "in");
    records.edge(A, "image", Child, "in").edge(B, "image", Child, "in");
    expectRoutes(records, Base, Child,
                 {{step(base), step(child)}, {step(base), step(BMap), step(child)}, {step(base)}});
}

TEST(TransformGraph, TenDiamondsGiveTheirRoutesInTheOrderOfConnection)
{
    constexpr unsigned int Diamonds = 10;
    const Rect rect(0, 0, 9, 9);
    Records records = Records().node(Base, {mapWith("in", "image", moved(0), rect)});
    unsigned long previous = Base;
    for (unsigned int i = 0; i < Diamonds; ++i) {
        const unsigned long upper = 100 + 3 * i;
        const unsigned long end = i + 1 == Diamonds ? Child : upper + 2;
        records.node(upper, {mapWith("in", "image", moved(0), rect)});
        records.node(upper + 1, {mapWith("in", "image", moved(1 << (Diamonds - 1 - i)), rect)});
        records.node(end, {mapWith("in", "image", moved(0), rect)});
        records.edge(previous, "image", upper, "in").edge(previous, "image", upper + 1, "in");
        records.edge(upper, "image", end, "in").edge(upper + 1, "image", end, "in");
        previous = end;
    }
    TransformSeries series;
    ASSERT_TRUE(filled(records).buildTransformSeries(Base, Child, series));
    ASSERT_EQ(series.pathCount(), 1U << Diamonds);
    for (unsigned int route = 0; route < series.pathCount(); ++route) {
        QTransform transform;
        ASSERT_TRUE(series.transformFromBaseToChild(route, transform));
        ASSERT_EQ(transform, QTransform::fromTranslate(route, 0));
    }
}

TEST(TransformGraph, DepthHasNoLimit)
{
    constexpr int Length = 50000;
    const std::vector<TransformMap> maps(Length, mapWith("in", "image", moved(1, -2), Rect(0, 0, 9, 9)));
    const TransformGraph graph = filled(chain(maps));
    TransformSeries series;
    ASSERT_TRUE(graph.buildTransformSeries(Base, Child, series));
    ASSERT_EQ(series.pathCount(), 1U);
    QTransform transform;
    ASSERT_TRUE(series.transformFromBaseToChild(0, transform));
    EXPECT_EQ(transform, QTransform::fromTranslate(Length, -2 * Length));
}

TEST(TransformGraph, ACycleOnTheWayGivesNoAnswer)
{
    Records two = twoEnds().node(A, {AMap}).node(B, {BMap}).edge(Base, "image", A, "in");
    two.edge(A, "image", B, "in").edge(B, "image", A, "in").edge(B, "image", Child, "in");
    expectUntouched(two, Base, Child);
    Records one = twoEnds().node(A, {AMap}).edge(Base, "image", A, "in");
    one.edge(A, "image", A, "in").edge(A, "image", Child, "in");
    expectUntouched(one, Base, Child);
    Records throughBase = twoEnds().edge(Base, "image", Base, "in").edge(Base, "image", Child, "in");
    expectUntouched(throughBase, Base, Child);
}

TEST(TransformGraph, ACycleBesideTheWayGivesNoAnswerEither)
{
    Records records = twoEnds().node(A, {AMap}).node(B, {BMap}).edge(Base, "image", Child, "in");
    records.edge(Base, "image", A, "in").edge(A, "image", B, "in").edge(B, "image", A, "in");
    expectUntouched(records, Base, Child);
}

TEST(TransformGraph, ACycleOutOfReachDoesNoHarm)
{
    const Route straight{step(BaseMap), step(AMap), step(ChildMap)};
    const auto start = [] {
        Records records = twoEnds().node(A, {AMap, tagged("side", "image", 7), disabled(tagged("in", "x", 8))});
        return records.node(B, {BMap}).edge(Base, "image", A, "in").edge(A, "image", Child, "in");
    };
    {
        SCOPED_TRACE("behind the child");
        expectRoutes(start().edge(Child, "image", Child, "in").edge(Child, "image", A, "in"), Base, Child, {straight});
    }
    {
        SCOPED_TRACE("behind a disabled map");
        expectRoutes(start().edge(A, "x", B, "in").edge(B, "image", A, "in"), Base, Child, {straight});
    }
    {
        SCOPED_TRACE("before the base");
        expectRoutes(start().edge(B, "image", B, "in").edge(B, "image", Base, "in"), Base, Child, {straight});
    }
    SCOPED_TRACE("behind another output of the base");
    expectRoutes(start().edge(Base, "mask", B, "in").edge(B, "image", B, "in"), Base, Child, {straight});
}

TEST(TransformGraph, ANodeMayBeCrossedTwiceByDifferentFields)
{
    const TransformMap first = tagged("in", "x", 7);
    const TransformMap second = tagged("side", "y", 8);
    Records records = twoEnds().node(A, {first, second}).node(B, {BMap}).edge(Base, "image", A, "in");
    records.edge(A, "x", B, "in").edge(B, "image", A, "side").edge(A, "y", Child, "in");
    expectRoutes(records, Base, Child, {{step(BaseMap), step(first), step(BMap), step(second), step(ChildMap)}});
}

class RandomGraphs
{
public:
    explicit RandomGraphs(unsigned int seed)
        : m_engine(seed)
    {
    }

    // Up to `most` nodes, each with up to four maps, and about twice as many edges. Without `cycles` an edge leads from
    // an earlier node to a later one.
    Records next(int most, bool cycles)
    {
        Records records;
        const int count = number(1, most);
        m_ids.clear();
        for (int i = 0; i < count; ++i) {
            m_ids.push_back(static_cast<unsigned long>(i) * 7919UL + (chance(20) ? 1UL << 40 : 0UL));
            if (!chance(3)) { // a few are never added
                records.node(m_ids.back(), maps());
            }
        }
        const int edges = count < 2 && !cycles ? 0 : number(0, 2 * count + 2);
        for (int i = 0; i < edges; ++i) {
            if (i > 0 && chance(12)) {
                records.edges.push_back(records.edges[static_cast<std::size_t>(number(0, i - 1))]);
                continue;
            }
            const int from = number(0, cycles ? count - 1 : count - 2);
            // Mostly near, so that routes are long.
            const int to =
                cycles ? number(0, count - 1) : std::min(count - 1, from + number(1, chance(70) ? 2 : count));
            records.edge(id(from), output(), id(to), input());
        }
        return records;
    }

    unsigned long id(int place) const { return m_ids[static_cast<std::size_t>(place)]; }
    unsigned long base() { return chance(80) ? m_ids.front() : anyId(); }
    unsigned long child() { return chance(80) ? m_ids.back() : anyId(); }

private:
    int number(int low, int high)
    {
        const auto range = static_cast<unsigned int>(high - low + 1);
        return low + static_cast<int>(m_engine() % range);
    }

    bool chance(int percent) { return number(0, 99) < percent; }
    unsigned long anyId() { return chance(3) ? 12345UL : id(number(0, static_cast<int>(m_ids.size()) - 1)); }
    QString output() { return chance(65) ? "image" : chance(50) ? "x" : "y"; }
    QString input() { return chance(70) ? "in" : "side"; }

    std::vector<TransformMap> maps()
    {
        std::vector<TransformMap> result;
        const int count = chance(10) ? 0 : number(1, 4);
        for (int i = 0; i < count; ++i) {
            result.push_back(mapWith(input(), output(), matrix(), rect()));
            result.back().enabled = chance(85);
            result.back().inputSizeHint = QSize(number(-1, 50), number(-1, 50));
        }
        return result;
    }

    // The entries are sums of powers of two, so that products tell which matrices went into them.
    Eigen::Matrix3d matrix()
    {
        Eigen::Matrix3d result = Eigen::Matrix3d::Identity();
        if (chance(60)) { // the identity, to within its precision
            for (Eigen::Index i = 0; i < 9; ++i) {
                result(i / 3, i % 3) += number(-200, 200) * std::ldexp(1.0, -50);
            }
            return result;
        }
        result(0, 1) = number(-2, 2);
        result(0, 2) = number(-9, 9);
        result(1, 2) = number(-9, 9);
        result(0, 0) = chance(30) ? 2 : 1;
        result(2, 0) = chance(10) ? 0.125 : 0;
        return result;
    }

    Rect rect()
    {
        const int edge = number(-1, 1);
        return Rect(chance(70) ? -20 : -500, -20, chance(70) ? 60 : 1000, 40 + edge);
    }

    std::mt19937 m_engine;
    std::vector<unsigned long> m_ids;
};

struct Counts {
    int answered = 0;
    int severalRoutes = 0;
    int endless = 0;
};

// One question to one graph, answered by both. Polygons take a hundred times as long as the rest, so a few do.
void compareOnce(const Records& records, unsigned long baseId, unsigned long childId, bool polygons, Counts& counts)
{
    const bool endless = OndrelReference::walkIsEndless(records, baseId, childId);
    const std::vector<Route> routes =
        endless ? std::vector<Route>() : OndrelReference::transformRoutes(records, baseId, childId);
    TransformSeries series;
    ASSERT_EQ(filled(records).buildTransformSeries(baseId, childId, series), !routes.empty());
    const TransformSeries expected = seriesOf(routes);
    ASSERT_EQ(answersOf(series), answersOf(expected));
    if (polygons) {
        ASSERT_EQ(polygonsOf(series), polygonsOf(expected));
    }
    counts.endless += endless;
    counts.answered += !routes.empty();
    counts.severalRoutes += routes.size() > 1;
}

TEST(TransformGraph, EqualsTheLiteralWalkOnRandomGraphs)
{
    constexpr int Graphs = 100000;
    RandomGraphs graphs(20260);
    Counts counts;
    for (int i = 0; i < Graphs; ++i) {
        SCOPED_TRACE(i);
        const Records records = graphs.next(8, false);
        const unsigned long baseId = graphs.base();
        compareOnce(records, baseId, graphs.child(), i % 100 == 0, counts);
        ASSERT_FALSE(HasFatalFailure());
    }
    EXPECT_EQ(counts.endless, 0);
    EXPECT_GT(counts.answered, Graphs / 5);
    EXPECT_GT(counts.severalRoutes, Graphs / 20);
}

TEST(TransformGraph, EqualsTheLiteralWalkOnRandomGraphsWithCycles)
{
    constexpr int Graphs = 20000;
    RandomGraphs graphs(906);
    Counts counts;
    for (int i = 0; i < Graphs; ++i) {
        SCOPED_TRACE(i);
        const Records records = graphs.next(6, true);
        const unsigned long baseId = graphs.base();
        compareOnce(records, baseId, graphs.child(), i % 100 == 0, counts);
        ASSERT_FALSE(HasFatalFailure());
    }
    EXPECT_GT(counts.endless, Graphs / 50);
    EXPECT_GT(counts.answered, Graphs / 10);
}

} // namespace

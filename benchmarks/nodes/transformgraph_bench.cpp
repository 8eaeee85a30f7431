// The time to find the routes through a graph of transforms, and to map points along one.

#include "tests/reference/transformgraph_reference.h"

#include <ondrel/nodes/transformgraph.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <string>

namespace
{

constexpr int kDiamonds = 10;

Ondrel::TransformMap turningMap(const QString& input, int step)
{
    Ondrel::TransformMap map;
    map.inputField = input;
    map.outputField = "image";
    const double angle = 0.001 * (step + 1);
    map.transform << std::cos(angle), -std::sin(angle), 3, std::sin(angle), std::cos(angle), -2, 1e-7, 0, 1;
    map.rect = Ondrel::RectT<int>(-100000, -100000, 200000, 200000);
    return map;
}

// Node 0 to the last one, one after the other.
OndrelReference::GraphRecords chain(int nodes)
{
    OndrelReference::GraphRecords records;
    for (int id = 0; id < nodes; ++id)
        records.nodes.push_back({static_cast<unsigned long>(id), {turningMap("image", id)}});
    for (unsigned long id = 1; id < static_cast<unsigned long>(nodes); ++id)
        records.edges.push_back({id - 1, "image", id, "image"});
    return records;
}

// Each diamond forks to two nodes and joins them in the next, so that there are 2^10 routes from node 0 to node 30.
OndrelReference::GraphRecords diamonds()
{
    OndrelReference::GraphRecords records;
    for (int id = 0; id <= 3 * kDiamonds; ++id)
        records.nodes.push_back({static_cast<unsigned long>(id), {turningMap("image", id), turningMap("other", id)}});
    for (unsigned long fork = 0; fork < 3 * kDiamonds; fork += 3) {
        for (unsigned long side = 1; side <= 2; ++side) {
            records.edges.push_back({fork, "image", fork + side, "image"});
            records.edges.push_back({fork + side, "image", fork + 3, side == 1 ? "image" : "other"});
        }
    }
    return records;
}

TransformGraph graphOf(const OndrelReference::GraphRecords& records)
{
    TransformGraph graph;
    for (const TransformGraph::Node& node : records.nodes)
        graph.addNode(node);
    for (const OndrelReference::GraphEdge& edge : records.edges)
        graph.addEdge(edge.fromId, edge.fromField, edge.toId, edge.toField);
    return graph;
}

void build(benchmark::State& state, const OndrelReference::GraphRecords& records)
{
    const TransformGraph graph = graphOf(records);
    for (auto _ : state) {
        Ondrel::TransformSeries series;
        benchmark::DoNotOptimize(graph.buildTransformSeries(0, records.nodes.back().id, series));
    }
}

void buildLiteral(benchmark::State& state, const OndrelReference::GraphRecords& records)
{
    for (auto _ : state) {
        Ondrel::TransformSeries series;
        series.setPaths(OndrelReference::transformRoutes(records, 0, records.nodes.back().id));
        benchmark::DoNotOptimize(series.pathCount());
    }
}

void mapMillion(benchmark::State& state, int nodes)
{
    const OndrelReference::GraphRecords records = chain(nodes);
    Ondrel::TransformSeries series;
    graphOf(records).buildTransformSeries(0, records.nodes.back().id, series);
    QPointF base;
    for (auto _ : state) {
        for (int i = 0; i < 1000000; ++i)
            benchmark::DoNotOptimize(series.mapFromChildToBase(QPointF(i % 4000, i / 4000), base, nullptr));
    }
}

const char* const kChainName = "buildTransformSeries, 50 nodes in a chain";
const char* const kDiamondsName = "buildTransformSeries, 10 diamonds";

BENCHMARK_CAPTURE(build, chain, chain(50))->Name(kChainName)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(buildLiteral, chain, chain(50))
    ->Name(std::string(kChainName) + "/literal")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(build, diamonds, diamonds())->Name(kDiamondsName)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(buildLiteral, diamonds, diamonds())
    ->Name(std::string(kDiamondsName) + "/literal")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(mapMillion, short, 3)
    ->Name("mapFromChildToBase, a million points by 3 nodes")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(mapMillion, long, 50)
    ->Name("mapFromChildToBase, a million points by 50 nodes")
    ->Unit(benchmark::kMillisecond);

} // namespace

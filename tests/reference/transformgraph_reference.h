#pragma once

#include <ondrel/nodes/transformgraph.h>
#include <ondrel/nodes/transformseries.h>

#include <QString>
#include <vector>

namespace OndrelReference
{

using Route = std::vector<Ondrel::TransformSeries::Node>;

struct GraphEdge {
    unsigned long fromId;
    QString fromField;
    unsigned long toId;
    QString toField;
};

// What a graph is told, call by call.
struct GraphRecords {
    std::vector<TransformGraph::Node> nodes; // in the order of addNode()
    std::vector<GraphEdge> edges;            // in the order of addEdge()
};

// The routes from one node to another, walked edge by edge with linear look-ups: what buildTransformSeries() hands to
// setPaths(), and nothing where it returns false. Never returns for a graph with a cycle that the walk can reach.
std::vector<Route> transformRoutes(const GraphRecords& graph, unsigned long baseId, unsigned long childId);

// Whether that walk would go round for ever.
bool walkIsEndless(const GraphRecords& graph, unsigned long baseId, unsigned long childId);

} // namespace OndrelReference

#include "transformgraph_reference.h"

#include <algorithm>

namespace OndrelReference
{
namespace
{

const TransformGraph::Node* findNode(const GraphRecords& graph, unsigned long id)
{
    const TransformGraph::Node* found = nullptr;
    for (const TransformGraph::Node& node : graph.nodes) {
        if (node.id == id) {
            found = &node; // the last record of an id replaces those before it
        }
    }
    return found;
}

// The edges that leave one output end, in the order in which they were connected.
std::vector<GraphEdge> connectedEdges(const GraphRecords& graph, unsigned long id, const QString& field)
{
    std::vector<GraphEdge> connected;
    for (const GraphEdge& edge : graph.edges) {
        if (edge.fromId == id && edge.fromField == field) {
            connected.push_back(edge);
        }
    }
    return connected;
}

std::vector<QString> outputsBehind(const GraphRecords& graph, unsigned long id, const QString& inputField)
{
    std::vector<QString> names;
    const TransformGraph::Node* node = findNode(graph, id);
    if (node == nullptr) {
        return names;
    }
    for (const Ondrel::TransformMap& map : node->maps) {
        if (!map.enabled || map.inputField != inputField) {
            continue;
        }
        if (std::find(names.begin(), names.end(), map.outputField) == names.end()) {
            names.push_back(map.outputField);
        }
    }
    return names;
}

Ondrel::TransformSeries::Node copyOf(const Ondrel::TransformMap& map)
{
    Ondrel::TransformSeries::Node node;
    node.transform = map.transform;
    node.rect = map.rect;
    node.inputSizeHint = map.inputSizeHint;
    return node;
}

Ondrel::TransformSeries::Node emptyNode()
{
    Ondrel::TransformSeries::Node node;
    node.transform = Eigen::Matrix3d::Identity();
    node.rect = Ondrel::RectT<int>();
    node.inputSizeHint = QSize(-1, -1);
    return node;
}

Ondrel::TransformSeries::Node crossedNode(const GraphRecords& graph, unsigned long id, const QString& output,
                                          const QString& input)
{
    const TransformGraph::Node* node = findNode(graph, id);
    if (node == nullptr) {
        return emptyNode();
    }
    for (const Ondrel::TransformMap& map : node->maps) {
        if (map.outputField == output && map.inputField == input) {
            return copyOf(map);
        }
    }
    return emptyNode();
}

Ondrel::TransformSeries::Node baseNode(const GraphRecords& graph, unsigned long id)
{
    const TransformGraph::Node* node = findNode(graph, id);
    if (node == nullptr) {
        return emptyNode();
    }
    for (const Ondrel::TransformMap& map : node->maps) {
        if (map.outputField == QLatin1String("image")) {
            return copyOf(map);
        }
    }
    return emptyNode();
}

Route crossedNodes(const GraphRecords& graph, const std::vector<GraphEdge>& route)
{
    Route nodes;
    if (route.empty()) {
        return nodes;
    }
    GraphEdge previous = route[0];
    for (std::size_t i = 1; i < route.size(); ++i) {
        if (route[i].fromId != previous.toId) {
            continue;
        }
        nodes.push_back(crossedNode(graph, route[i].fromId, route[i].fromField, previous.toField));
        previous = route[i];
    }
    return nodes;
}

// Back to the node that `next` leaves, whichever of its outputs the route took.
void backUp(std::vector<GraphEdge>& route, const GraphEdge& next)
{
    while (!route.empty() && route.back().fromId != next.fromId) {
        route.pop_back();
    }
    if (!route.empty()) {
        route.pop_back();
    }
}

void simplify(Route& route)
{
    std::size_t i = 0;
    while (i < route.size() && i + 1 < route.size()) {
        const bool redundant = route[i].transform.isIdentity(1e-12) && route[i + 1].transform.isIdentity(1e-12) &&
                               route[i].rect == route[i + 1].rect;
        if (redundant) {
            route.erase(route.begin() + static_cast<std::ptrdiff_t>(i + 1));
        }
        ++i;
    }
}

std::vector<Route> walk(const GraphRecords& graph, unsigned long baseId, unsigned long childId)
{
    std::vector<Route> routes;
    std::vector<GraphEdge> route;
    std::vector<GraphEdge> stack = connectedEdges(graph, baseId, "image");
    while (!stack.empty()) {
        const GraphEdge edge = stack.back();
        stack.pop_back();
        route.push_back(edge);
        if (edge.toId == childId) {
            route.push_back(GraphEdge{childId, "image", 0, QString()});
            Route nodes = crossedNodes(graph, route);
            nodes.insert(nodes.begin(), baseNode(graph, baseId));
            routes.push_back(nodes);
            if (!stack.empty()) {
                backUp(route, stack.back());
            }
            continue;
        }
        for (const QString& name : outputsBehind(graph, edge.toId, edge.toField)) {
            for (const GraphEdge& next : connectedEdges(graph, edge.toId, name)) {
                stack.push_back(next);
            }
        }
    }
    return routes;
}

bool sameEdge(const GraphEdge& a, const GraphEdge& b)
{
    return a.fromId == b.fromId && a.fromField == b.fromField && a.toId == b.toId && a.toField == b.toField;
}

// Whether following `edge` leads back to one of the edges that lead to it.
bool comesBack(const GraphRecords& graph, const GraphEdge& edge, unsigned long childId, std::vector<GraphEdge>& trail)
{
    if (edge.toId == childId) {
        return false;
    }
    for (const GraphEdge& passed : trail) {
        if (sameEdge(passed, edge)) {
            return true;
        }
    }
    trail.push_back(edge);
    for (const QString& name : outputsBehind(graph, edge.toId, edge.toField)) {
        for (const GraphEdge& next : connectedEdges(graph, edge.toId, name)) {
            if (comesBack(graph, next, childId, trail)) {
                return true;
            }
        }
    }
    trail.pop_back();
    return false;
}

} // namespace

std::vector<Route> transformRoutes(const GraphRecords& graph, unsigned long baseId, unsigned long childId)
{
    if (findNode(graph, baseId) == nullptr || findNode(graph, childId) == nullptr) {
        return {};
    }
    if (baseId == childId) {
        return {{baseNode(graph, baseId)}};
    }
    std::vector<Route> routes = walk(graph, baseId, childId);
    std::reverse(routes.begin(), routes.end());
    for (Route& route : routes) {
        simplify(route);
    }
    return routes;
}

bool walkIsEndless(const GraphRecords& graph, unsigned long baseId, unsigned long childId)
{
    if (findNode(graph, baseId) == nullptr || findNode(graph, childId) == nullptr || baseId == childId) {
        return false;
    }
    std::vector<GraphEdge> trail;
    for (const GraphEdge& edge : connectedEdges(graph, baseId, "image")) {
        if (comesBack(graph, edge, childId, trail)) {
            return true;
        }
    }
    return false;
}

} // namespace OndrelReference

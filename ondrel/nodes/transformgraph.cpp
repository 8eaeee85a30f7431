#include <ondrel/nodes/transformgraph.h>

#include <QHash>

#include <algorithm>
#include <iterator>
#include <utility>

namespace
{

using SeriesNode = Ondrel::TransformSeries::Node;

const QString& imageField()
{
    static const QString name = QStringLiteral("image");
    return name;
}

SeriesNode seriesNode(const Ondrel::TransformMap& map)
{
    return {map.transform, map.rect, map.inputSizeHint};
}

bool isRedundant(const SeriesNode& node, const SeriesNode& next)
{
    constexpr double precision = 1e-12;
    return node.transform.isIdentity(precision) && next.transform.isIdentity(precision) && node.rect == next.rect;
}

// Goes back to where the edge that is followed next leaves. Only the node decides, not its field.
void backUp(std::list<TransformGraph::Edge>& route, const TransformGraph::Edge& next)
{
    while (!route.empty() && route.back().from.id != next.from.id)
        route.pop_back();
    if (!route.empty())
        route.pop_back();
}

} // namespace

bool TransformGraph::NodeEdgeEnd::operator==(const NodeEdgeEnd& other) const
{
    return id == other.id && name == other.name;
}

std::size_t TransformGraph::NodeEdgeEndHash::operator()(const NodeEdgeEnd& end) const
{
    return (end.id * 2) ^ qHash(end.name, 0);
}

TransformGraph::TransformGraph() = default;

void TransformGraph::addNode(const Node& node)
{
    m_nodes[node.id] = node;
}

void TransformGraph::addEdge(unsigned long fromId, const QString& fromField, unsigned long toId, const QString& toField)
{
    m_edges[{fromId, fromField}].push_back({toId, toField});
}

bool TransformGraph::buildTransformSeries(unsigned long baseId, unsigned long childId,
                                          Ondrel::TransformSeries& series) const
{
    if (m_nodes.count(baseId) == 0 || m_nodes.count(childId) == 0)
        return false;
    if (baseId == childId) {
        series.setPaths({Path{constructBaseSeriesNode(baseId)}});
        return true;
    }
    if (!hasFiniteRoutes(baseId, childId))
        return false;

    std::vector<Path> paths = walkRoutes(baseId, childId);
    // The stack gives back what was connected last first.
    std::reverse(paths.begin(), paths.end());
    simplifyPaths(paths);
    series.setPaths(paths);
    return true;
}

// Depth first, over every sequence of edges. A branch that ends without reaching the child stays in `route`, and what
// constructSeriesPath makes of that is part of the result, so branches may not be skipped or remembered.
std::vector<TransformGraph::Path> TransformGraph::walkRoutes(unsigned long baseId, unsigned long childId) const
{
    const SeriesNode base = constructBaseSeriesNode(baseId);
    std::vector<Path> paths;
    std::list<Edge> route;
    EdgeStack stack;
    addConnectedEdges({baseId, imageField()}, stack);
    while (!stack.empty()) {
        const Edge edge = std::move(stack.top());
        stack.pop();
        route.push_back(edge);
        if (edge.to.id != childId) {
            addOnwardEdges(edge.to, stack);
            continue;
        }
        route.push_back({{childId, imageField()}, {}}); // the route's way out of the child
        Path path = constructSeriesPath(route);
        path.insert(path.begin(), base);
        paths.push_back(std::move(path));
        if (!stack.empty())
            backUp(route, stack.top());
    }
    return paths;
}

// Whether the walk from the base reaches the child and comes to an end, that is, meets no cycle. Follows the same edges
// as the walk, but each input field once.
bool TransformGraph::hasFiniteRoutes(unsigned long baseId, unsigned long childId) const
{
    enum class State { Open, Done };
    std::unordered_map<NodeEdgeEnd, State, NodeEdgeEndHash> states;
    bool reachesChild = false;
    EdgeStack stack;
    addConnectedEdges({baseId, imageField()}, stack);
    while (!stack.empty()) {
        const NodeEdgeEnd end = stack.top().to;
        const auto [state, isNew] = states.try_emplace(end, State::Open);
        if (!isNew) { // everything behind it was above it on the stack
            state->second = State::Done;
            stack.pop();
        } else if (end.id == childId) {
            reachesChild = true;
        } else {
            EdgeStack onward;
            for (addOnwardEdges(end, onward); !onward.empty(); onward.pop()) {
                const auto met = states.find(onward.top().to);
                if (met == states.end())
                    stack.push(onward.top());
                else if (met->second == State::Open)
                    return false;
            }
        }
    }
    return reachesChild;
}

SeriesNode TransformGraph::constructSeriesNode(const Node& node, const NodeEdgeEnd& outputEnd,
                                               const NodeEdgeEnd& inputEnd) const
{
    for (const Ondrel::TransformMap& map : node.maps)
        if (map.outputField == outputEnd.name && map.inputField == inputEnd.name)
            return seriesNode(map);
    return {};
}

SeriesNode TransformGraph::constructBaseSeriesNode(unsigned long id) const
{
    if (const auto node = m_nodes.find(id); node != m_nodes.end())
        for (const Ondrel::TransformMap& map : node->second.maps)
            if (map.outputField == imageField())
                return seriesNode(map);
    return {};
}

std::vector<SeriesNode> TransformGraph::constructSeriesPath(const std::list<Edge>& edges) const
{
    Path path;
    if (edges.empty())
        return path;
    const Edge* previous = &edges.front();
    for (auto edge = std::next(edges.begin()); edge != edges.end(); ++edge) {
        if (edge->from.id != previous->to.id)
            continue;
        const auto node = m_nodes.find(edge->from.id);
        path.push_back(node == m_nodes.end() ? SeriesNode()
                                             : constructSeriesNode(node->second, edge->from, previous->to));
        previous = &*edge;
    }
    return path;
}

// Without duplicates, in the order of first appearance.
std::vector<QString> TransformGraph::findNodeOutputFieldNames(unsigned long id, const QString& inputField) const
{
    std::vector<QString> names;
    const auto node = m_nodes.find(id);
    if (node == m_nodes.end())
        return names;
    for (const Ondrel::TransformMap& map : node->second.maps)
        if (map.enabled && map.inputField == inputField &&
            std::find(names.begin(), names.end(), map.outputField) == names.end())
            names.push_back(map.outputField);
    return names;
}

void TransformGraph::addConnectedEdges(const NodeEdgeEnd& end, std::stack<Edge, std::deque<Edge>>& stack) const
{
    const auto connected = m_edges.find(end);
    if (connected == m_edges.end())
        return;
    for (const NodeEdgeEnd& to : connected->second)
        stack.push({end, to});
}

void TransformGraph::addOnwardEdges(const NodeEdgeEnd& inputEnd, EdgeStack& stack) const
{
    for (const QString& name : findNodeOutputFieldNames(inputEnd.id, inputEnd.name))
        addConnectedEdges({inputEnd.id, name}, stack);
}

void TransformGraph::simplifyPaths(std::vector<std::vector<Ondrel::TransformSeries::Node>>& paths)
{
    for (Path& path : paths) {
        Path kept;
        for (std::size_t i = 0; i < path.size(); ++i) {
            kept.push_back(path[i]);
            // What follows a node that is left out is not compared with the one before it.
            if (i + 1 < path.size() && isRedundant(path[i], path[i + 1]))
                ++i;
        }
        path = std::move(kept);
    }
}

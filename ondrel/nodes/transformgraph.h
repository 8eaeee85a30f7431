#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/nodes/transformmap.h>
#include <ondrel/nodes/transformseries.h>

#include <QString>

#include <cstddef>
#include <deque>
#include <list>
#include <stack>
#include <unordered_map>
#include <vector>

// The geometric relations between the nodes of a processing graph. The host fills it with a record for each node and
// one for each connection, and asks for the routes from a base node to a child node. A route starts at the output
// "image" of the base node and ends at the output "image" of the child node.
//
// A value without locks: any number of threads may ask as long as none adds.
class ONDREL_EXPORT TransformGraph
{
public:
    struct Node {
        unsigned long id = 0; // the host's number for its node
        std::vector<Ondrel::TransformMap> maps;
    };

    // A field of a node.
    struct ONDREL_EXPORT NodeEdgeEnd {
        unsigned long id = 0;
        QString name;
        bool operator==(const NodeEdgeEnd& other) const;
    };

    // (id * 2) XOR qHash(name, 0)
    struct ONDREL_EXPORT NodeEdgeEndHash {
        std::size_t operator()(const NodeEdgeEnd& end) const;
    };

    struct Edge {
        NodeEdgeEnd from; // an output field of the upstream node
        NodeEdgeEnd to;   // an input field of the downstream node
    };

    TransformGraph(); // empty

    // Adds a node or replaces the record of that identifier.
    void addNode(const Node& node);

    // Connects an output field to an input field. A connection that is added twice counts twice. A node that was never
    // added leads nowhere.
    void addEdge(unsigned long fromId, const QString& fromField, unsigned long toId, const QString& toField);

    // Gives `series`, which must be fresh, one route for each distinct sequence of connections that leads from the base
    // to the child through enabled maps, in the order in which the connections were added; true if there is one. With
    // equal identifiers, that is the route of the base node alone. False, with `series` untouched, if a node is
    // unknown, if there is no route, or if the connections that can be followed from the base form a cycle.
    //
    // The first node of a route is the base, with the map for its first output "image"; each later one has the first
    // map, enabled or not, between the fields by which the route crosses it. The matrix is the identity, the rectangle
    // empty and the size hint (-1, -1) where no map fits. Of two neighbours that are both the identity, to 1e-12, with
    // equal rectangles the later is left out; a node behind one that was left out is always kept.
    //
    // Routes behind a dead end: a branch that leads nowhere is followed as far as it goes, the branch connected last
    // first. A route that is completed after it is cut short at the node where that branch left, and goes on with the
    // nodes that the branch passed. A dead end that is followed after the routes does no harm.
    //
    // Time and memory grow with the number of routes, which doubles with each diamond passed on the way.
    bool buildTransformSeries(unsigned long baseId, unsigned long childId, Ondrel::TransformSeries& series) const;

private:
    using Path = std::vector<Ondrel::TransformSeries::Node>;
    using EdgeStack = std::stack<Edge, std::deque<Edge>>;

    std::vector<Path> walkRoutes(unsigned long baseId, unsigned long childId) const;
    bool hasFiniteRoutes(unsigned long baseId, unsigned long childId) const;
    Ondrel::TransformSeries::Node constructSeriesNode(const Node& node, const NodeEdgeEnd& outputEnd,
                                                      const NodeEdgeEnd& inputEnd) const;
    Ondrel::TransformSeries::Node constructBaseSeriesNode(unsigned long id) const;
    std::vector<Ondrel::TransformSeries::Node> constructSeriesPath(const std::list<Edge>& edges) const;
    std::vector<QString> findNodeOutputFieldNames(unsigned long id, const QString& inputField) const;
    void addConnectedEdges(const NodeEdgeEnd& end, std::stack<Edge, std::deque<Edge>>& stack) const;
    void addOnwardEdges(const NodeEdgeEnd& inputEnd, EdgeStack& stack) const;
    static void simplifyPaths(std::vector<std::vector<Ondrel::TransformSeries::Node>>& paths);

    std::unordered_map<unsigned long, Node> m_nodes;
    std::unordered_map<NodeEdgeEnd, std::vector<NodeEdgeEnd>, NodeEdgeEndHash> m_edges; // output to inputs
};

#pragma once

#include "nodetypes.h"

#include <QJsonObject>
#include <QMetaType>
#include <QPointF>
#include <QRectF>

#include <map>
#include <optional>
#include <set>
#include <vector>

namespace Host
{

using NodeId = quint64; // never 0

struct NodeRecord {
    NodeId id = 0;
    QString type; // NodeType::id, also of one that is not loaded
    QString name; // unique in the graph: what a command line names
    QPointF position;
    QVariantMap values; // those that differ from the defaults, by field
    bool bypassed = false;
    QJsonObject unread; // of a node whose type is not loaded: as the project had it, to be saved again
    bool operator==(const NodeRecord& other) const;
};

struct Connection {
    NodeId from = 0;
    QString output;
    NodeId to = 0;
    QString input;
    bool operator==(const Connection& other) const;
};

// A title over an area of the canvas.
struct FrameRecord {
    quint64 id = 0;
    QString title;
    QRectF area;
    bool operator==(const FrameRecord& other) const;
};

// Nodes and connections: a value, cheap to copy, so that an evaluation can have a copy of its own.
struct Graph {
    std::map<NodeId, NodeRecord> nodes;
    std::vector<Connection> connections; // at most one into each input
    std::map<quint64, FrameRecord> frames;
    std::set<std::uint32_t> embedded; // handles of the resources that a project has with their bytes, not by their path

    const NodeRecord* node(NodeId id) const;
    const NodeRecord* nodeByName(const QString& name) const;
    const Connection* into(NodeId id, const QString& input) const;
    std::vector<Connection> touching(NodeId id) const;
    bool operator==(const Graph& other) const;
};

// All values of a node. A default stands where it has none, or one that its input cannot hold.
QVariantMap completeValues(const NodeRecord& node, const NodeType& type);

// Whether both ends exist, and what comes out of one may go into the other. Projects may have connections that do not
// fit, since plug-ins change; nothing flows through them.
bool fits(const Graph& graph, const NodeTypes& types, const Connection& connection);

// Whether the order of a variable node can name one more input: it must stay within kLongestOrder with all inputs that
// have connections, also those that it does not name yet. True for a connection to any other node or input.
bool isRoomFor(const Graph& graph, const NodeTypes& types, const Connection& connection);

// Why the connection may not be made, in a sentence for the user; empty if it may. Replacing the connection that now
// ends at the input is no reason against it.
QString whyNotConnect(const Graph& graph, const NodeTypes& types, const Connection& connection);

// The nodes that the node depends on, itself last, each behind those it depends on.
std::vector<NodeId> dependencies(const Graph& graph, NodeId node);

// The nodes that depend on one of these, and those themselves, each behind those it depends on. Unknown ones are left
// out.
std::vector<NodeId> dependents(const Graph& graph, const std::set<NodeId>& nodes);

// "Blur", or "Blur 2" where that is taken.
QString uniqueName(const Graph& graph, const QString& wanted);

} // namespace Host

Q_DECLARE_METATYPE(Host::Connection)

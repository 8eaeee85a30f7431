#pragma once

#include "graph.h"

#include <ondrel/resources/resourceid.h>
#include <ondrel/work/undoadapter.h>

#include <QObject>

#include <memory>

namespace Host
{

struct GraphChange;

// A graph that is edited, every edit a step of undo. User-interface thread only; evaluation gets copies of graph().
class Document : public QObject
{
    Q_OBJECT
public:
    explicit Document(const NodeTypes& types, QObject* parent = nullptr);
    ~Document() override;

    const NodeTypes& types() const { return m_types; }
    const Graph& graph() const { return m_graph; }
    Ondrel::MemoryBoundedUndoStack& undoStack() { return m_undoStack; }

    void load(const Graph& graph); // no step of undo; clears the stack

    // Several edits as one step: what comes between begin and end, which may be nested.
    void beginStep(const QString& text);
    void endStep(int gesture = 0);            // steps in a row with the same gesture other than 0 are one
    int newGesture() { return ++m_gestures; } // none that steps have had

    NodeId addNode(const QString& type, QPointF position, const QString& name = QString()); // 0 if the type is unknown
    void removeNodes(const std::vector<NodeId>& ids);    // with what is connected to them
    QString addConnection(const Connection& connection); // empty, or why not; replaces what ends at the input
    void removeConnection(const Connection& connection);
    // Empty, or why not: what is too deep could not be saved. Sets of one input with the same gesture other than 0,
    // such as one drag of a slider, are one step.
    QString setValue(NodeId id, const QString& field, const QVariant& value, int gesture = 0);
    void moveNodes(const std::map<NodeId, QPointF>& positions, int gesture = 0);
    bool renameNode(NodeId id, const QString& name); // false if the name is empty or taken
    void setBypassed(NodeId id, bool bypassed);
    // Keeps the wires whose fields have the same names and types in the new one, and values of the same names.
    bool replaceNode(NodeId id, const QString& type);
    std::vector<Connection> wiresKept(NodeId id, const QString& type) const; // by that
    quint64 addFrame(const QString& title, const QRectF& area);
    void changeFrame(const FrameRecord& frame);
    void removeFrame(quint64 id);
    void setEmbedded(const std::vector<Ondrel::ResourceId>& resources, bool embedded); // as in Graph::embedded
    void replaceResource(Ondrel::ResourceId resource, Ondrel::ResourceId by);          // in the values of all nodes
    // Adds the nodes of another graph under new ids and free names, with the wires among them but those that would
    // close a cycle, end at an input that has one or find no room in the order of a variable node, and its frames under
    // new ids; the new ids of nodes by the old.
    std::map<NodeId, NodeId> insert(const Graph& graph, QPointF offset);

Q_SIGNALS:
    // After the change, in an order in which a view can follow: connections go before nodes, nodes come first.
    void nodeAdded(Host::NodeId id);
    void nodeRemoved(Host::NodeId id);
    void nodeChanged(Host::NodeId id); // name, position, type, bypassed
    void valueChanged(Host::NodeId id, QString field);
    void connectionAdded(Host::Connection connection);
    void connectionRemoved(Host::Connection connection);
    void framesChanged();
    void reset();   // everything may be different
    void changed(); // once after each step, undo or redo: pictures may be different

private:
    friend class EditCommand;
    void edit(const QString& text, const GraphChange& change, const QString& mergeKey = QString());
    void editNode(const QString& text, const NodeRecord& next, const QString& mergeKey = QString());
    void finishStep(const QString& mergeKey);
    void apply(const GraphChange& change, bool forwards);
    void tellGone(const GraphChange& change, bool forwards);
    void tellNew(const GraphChange& change, bool forwards);
    void tellOfNode(const NodeRecord& old, const NodeRecord& now);
    NodeId freeId(const Graph& graph) const;

    const NodeTypes& m_types;
    Graph m_graph;
    Ondrel::MemoryBoundedUndoStack m_undoStack;
    int m_depth = 0; // of steps begun
    int m_gestures = 0;
    QString m_stepText;
    std::unique_ptr<GraphChange> m_step; // what it has changed so far
};

} // namespace Host

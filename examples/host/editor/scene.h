#pragma once

#include "document.h"
#include "loosewire.h"
#include "nodedrag.h"
#include "nodeitem.h"
#include "nodepicture.h"
#include "nodevalues.h"
#include "sceneframes.h"
#include "scenewires.h"

#include <QGraphicsScene>

#include <optional>
#include <set>

namespace Host
{

// What lies at a point of the canvas.
struct CanvasThing {
    NodeId node = 0;                // or
    std::optional<Connection> wire; // or
    quint64 frame = 0;              // by its title or its corner
    bool isNothing() const { return node == 0 && !wire && frame == 0; }
};

// The nodes, wires and frames of a document. What the user does to them is handed to the document as edits, and what
// the document says is shown.
class Scene : public QGraphicsScene
{
    Q_OBJECT
public:
    explicit Scene(Document& document, QObject* parent = nullptr);
    ~Scene() override;

    Document& document() { return m_document; }
    SceneWires& wires() { return m_wires; }
    const SceneWires& wires() const { return m_wires; }
    SceneFrames& frames() { return m_frames; }
    const NodeDrag& drag() const { return m_drag; }
    NodePictures& pictures() { return m_pictures; }
    PreviewNode* item(NodeId id) const; // null if there is none
    const std::map<NodeId, PreviewNode*>& nodeItems() const { return m_items; }
    Anchor* anchor(NodeId id, const QString& field, bool output) const; // null if there is none
    std::vector<NodeId> selectedNodes() const;
    void selectNodes(const std::vector<NodeId>& ids);
    QRectF nodesRect(const std::vector<NodeId>& ids) const; // of all nodes for an empty list

    // Which nodes the two views show; 0 for none.
    NodeId primary() const { return m_primary; }
    NodeId secondary() const { return m_secondary; }
    void show(NodeId id, PreviewNode::Emblem emblem);

    void setErrors(const QHash<NodeId, QString>& errors);
    void setBusy(NodeId id, bool busy);

    CanvasThing thingAt(const QPointF& point) const;
    CanvasThing selectedThing() const; // the first of several nodes
    void select(const CanvasThing& thing);
    bool dropLooseWire(); // false if there is none

    // The connection whose wire passes the point; none if there is none near.
    std::optional<Connection> connectionAt(const QPointF& point) const;

    // The Tab key walks through the controls of a node. False if no control has the focus.
    bool moveFocus(bool next);

Q_SIGNALS:
    void shownNodesChanged();
    void thingSelected();         // which wire or frame, if any, may be another one
    void refused(QString reason); // a wire, or a value of a node
    // A wire was let go over the empty canvas.
    void wireDropped(Host::NodeId node, QString field, bool fromOutput, QPointF at);

public Q_SLOTS:
    void nodeUpdated(Node* node);
    void nodeSelected(Node* node);
    void nodeMoved(Node* node, bool movedByUser);
    void nodeMoveComplete(Node* node);
    void emblemChanged(PreviewNode* node, PreviewNode::Emblem emblem);

private Q_SLOTS:
    void addItemFor(Host::NodeId id);
    void removeItemOf(Host::NodeId id);
    void updateItemOf(Host::NodeId id);
    void updateValue(Host::NodeId id, const QString& field);
    void addWire(const Host::Connection& connection);
    void removeWire(const Host::Connection& connection);
    void settleVariableNodes();
    void rebuild();

protected:
    void mousePressEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseMoveEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent* event) override;

private:
    NodeId nodeAt(const QPointF& point) const;
    void selectBesideNodes(const std::optional<Connection>& wire, quint64 frame);
    void watch(PreviewNode& node);
    void showError(NodeId id);
    void store(PreviewNode& node);
    void remakeItem(NodeId id);
    void deleteItems();
    bool hasAllWires(NodeId id) const;
    void tellOfWire(NodeId id, Anchor& anchor, bool connected, const QString& other);

    Document& m_document;
    NodePictures m_pictures;
    std::map<NodeId, PreviewNode*> m_items; // the scene's
    NodeValues m_values;
    SceneWires m_wires;
    LooseWire m_loose;
    SceneFrames m_frames;
    NodeDrag m_drag;
    bool m_snaps = true;
    QHash<NodeId, QString> m_errors;
    NodeId m_primary = 0;
    NodeId m_secondary = 0;
    std::set<NodeId> m_rewired; // nodes whose inputs' wires have changed: variable ones change their inputs by it
};

} // namespace Host

#pragma once

#include "document.h"

#include "../../nodeviewer/wireitem.h"

#include <ondrel/nodes/anchor.h>
#include <ondrel/nodes/previewnode.h>

#include <QGraphicsScene>

#include <memory>
#include <optional>
#include <set>

namespace Host
{

using Ondrel::Anchor; // moc writes the types of slots as they stand here, and the library's signals say no namespace
using Ondrel::Node;
using Ondrel::PreviewNode;

// The nodes and wires of a document. What the user does to them is handed to the document as edits, and what the
// document says is shown.
class Scene : public QGraphicsScene
{
    Q_OBJECT
public:
    explicit Scene(Document& document, QObject* parent = nullptr);
    ~Scene() override;

    Document& document() { return m_document; }
    PreviewNode* item(NodeId id) const; // null if there is none
    std::vector<NodeId> selectedNodes() const;
    void selectNodes(const std::vector<NodeId>& ids);
    QRectF nodesRect(const std::vector<NodeId>& ids) const; // of all nodes for an empty list

    // Which nodes the two views show; 0 for none.
    NodeId primary() const { return m_primary; }
    NodeId secondary() const { return m_secondary; }
    void show(NodeId id, PreviewNode::Emblem emblem);

    void setErrors(const QHash<NodeId, QString>& errors);
    void setBusy(NodeId id, bool busy);

    // The connection whose wire passes the point; none if there is none near.
    std::optional<Connection> connectionAt(const QPointF& point) const;

    // The Tab key walks through the controls of a node. False if no control has the focus.
    bool moveFocus(bool next);

Q_SIGNALS:
    void shownNodesChanged();
    void refused(QString reason); // a wire
    // A wire was let go over the empty canvas.
    void wireDropped(Host::NodeId node, QString field, bool fromOutput, QPointF at);

public Q_SLOTS:
    void nodeUpdated(Node* node);
    void nodeSelected(Node* node);
    void nodeMoved(Node* node, bool movedByUser);
    void nodeMoveComplete(Node* node);
    void emblemChanged(PreviewNode* node, PreviewNode::Emblem emblem);
    void anchorPressed(Node* node, Anchor* anchor, QGraphicsSceneMouseEvent* event);
    void anchorMoved(Node* node, Anchor* anchor, QGraphicsSceneMouseEvent* event);
    void anchorReleased(Node* node, Anchor* anchor, QGraphicsSceneMouseEvent* event);

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
    void mouseReleaseEvent(QGraphicsSceneMouseEvent* event) override;

private:
    struct Wire {
        Connection connection;
        std::unique_ptr<Viewer::WireItem> item;
    };
    struct Grip { // the end of a wire that follows the mouse
        NodeId node = 0;
        QString field;
        bool isOutput = false;
    };

    NodeId idOf(const Node* node) const;
    PreviewNode* makeItem(const NodeRecord& record) const;
    void watch(PreviewNode& node);
    void storeValues(PreviewNode& node);
    void fillValues(PreviewNode& node, const NodeRecord& record);
    Anchor* anchorOf(NodeId node, const QString& field, bool output) const;
    void placeWires(NodeId node);
    std::optional<Grip> gripNear(const QPointF& point, bool outputs) const;
    Connection connectionOf(const Grip& a, const Grip& b) const;
    void clearWire();
    void remakeItem(NodeId id);
    bool hasAllWires(NodeId id) const;
    void telling(PreviewNode& node, Anchor& anchor, bool connected, const QString& other);

    Document& m_document;
    std::map<NodeId, PreviewNode*> m_items; // the scene's
    std::vector<Wire> m_wires;
    std::unique_ptr<Viewer::WireItem> m_loose;
    Grip m_start;
    std::optional<Grip> m_target;
    std::optional<Connection> m_pulled; // the wire that was taken off its input
    std::map<NodeId, QPointF> m_beforeMove;
    NodeId m_primary = 0;
    NodeId m_secondary = 0;
    bool m_filling = false; // values come from the document
    int m_gesture = 1;      // of values: a new one with each press of the mouse, and with each change without one
    bool m_mousePressed = false;
    std::set<NodeId> m_rewired; // variable nodes whose wires have changed, and with them their inputs
};

} // namespace Host

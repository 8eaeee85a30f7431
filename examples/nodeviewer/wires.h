#pragma once

#include "wireitem.h"

#include <ondrel/nodes/anchor.h>
#include <ondrel/nodes/previewnode.h>

#include <QObject>
#include <QString>

#include <list>
#include <memory>
#include <vector>

class QGraphicsScene;
class QGraphicsSceneMouseEvent;

namespace Viewer
{

using Ondrel::Anchor; // moc writes the types of slots as they stand here, and the library's signals say no namespace
using Ondrel::Node;

// The wires of a scene: drawn by the user from anchor to anchor, or made by the host. An output may have many wires, an
// input one. No wire closes a circle.
class Wires : public QObject
{
    Q_OBJECT
public:
    struct Link {
        QString fromNode, output, toNode, input; // names
    };

    explicit Wires(QGraphicsScene& scene);
    ~Wires() override;

    void watch(Ondrel::PreviewNode& node);
    void forget(Ondrel::PreviewNode& node); // cuts all its wires; before it is deleted

    // False if the link names no anchors, or would close a circle.
    bool connectLink(const Link& link);
    std::vector<Link> links() const;

public Q_SLOTS:
    void press(Node* node, Anchor* anchor, QGraphicsSceneMouseEvent* event);
    void move(Node* node, Anchor* anchor, QGraphicsSceneMouseEvent* event);
    void release(Node* node, Anchor* anchor, QGraphicsSceneMouseEvent* event);
    void cut(Node* node, Anchor* anchor);
    void follow(Node* node); // which has moved

private:
    struct End {
        Ondrel::PreviewNode* node = nullptr;
        Anchor* anchor = nullptr;
    };
    struct Wire {
        End output, input;
        std::unique_ptr<WireItem> item;
    };

    Ondrel::PreviewNode* findNode(const QString& name) const;
    End closestTo(const QPointF& point, Anchor::IODirection direction) const;
    bool leadsTo(const Node* from, const Node* to) const;
    bool connectEnds(const End& output, const End& input);
    void cutWire(std::list<Wire>::iterator wire);
    void setTarget(const End& target);
    void stopDrawing();

    QGraphicsScene& m_scene;
    std::vector<Ondrel::PreviewNode*> m_nodes;
    std::list<Wire> m_wires;
    End m_start;  // of the wire that is being drawn
    End m_target; // the anchor that it would snap to
    std::unique_ptr<WireItem> m_loose;
};

} // namespace Viewer

#pragma once

#include "document.h"
#include "nodeitem.h"

#include "../../nodeviewer/wireitem.h"

#include <memory>
#include <optional>

class QGraphicsSceneMouseEvent;

namespace Host
{

class Scene;

// The wire that hangs on the mouse: drawn from an anchor, or taken off an input, until it is let go.
class LooseWire : public QObject
{
    Q_OBJECT
public:
    explicit LooseWire(Scene& scene);
    void watch(PreviewNode& node);
    bool drop(); // the wire that was taken off stays; false if there is no loose one

Q_SIGNALS:
    void refused(QString reason);
    void dropped(Host::NodeId node, QString field, bool fromOutput, QPointF at); // over the empty canvas

public Q_SLOTS:
    void anchorPressed(Node* node, Anchor* anchor, QGraphicsSceneMouseEvent* event);
    void anchorMoved(Node* node, Anchor* anchor, QGraphicsSceneMouseEvent* event);
    void anchorReleased(Node* node, Anchor* anchor, QGraphicsSceneMouseEvent* event);

private:
    struct Grip { // the end of a wire
        NodeId node = 0;
        QString field;
        bool isOutput = false;
    };
    Anchor* anchorOf(const Grip& grip) const;
    std::optional<Grip> gripNear(const QPointF& point, bool outputs) const;
    static Connection connectionOf(const Grip& a, const Grip& b);

    Scene& m_scene;
    std::unique_ptr<Viewer::WireItem> m_item; // null while there is none
    Grip m_start;
    std::optional<Grip> m_target;
    std::optional<Connection> m_pulled; // the wire that was taken off its input
};

} // namespace Host

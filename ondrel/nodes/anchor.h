#pragma once

#include <ondrel/ondrel_export.h>

#include <QGraphicsRectItem>
#include <QObject>

class QGraphicsSceneMouseEvent;

namespace Ondrel
{

// The round connection point of a field, 15 by 15 scene units. It reports the mouse and shows what the host tells it;
// wires and connections are the host's. It keeps the mouse while it is dragged, so that the node below does not move.
// User-interface thread only.
class ONDREL_EXPORT Anchor : public QObject, public QGraphicsRectItem
{
    Q_OBJECT
public:
    enum IODirection { Input = 0, Output = 1 };

    // Owned by its parent item. The FieldBase that is built on the anchor makes it its own child and places it.
    Anchor(QGraphicsItem* parent, IODirection direction);

    IODirection direction() const { return m_direction; }

    // Whether the host has a wire here; false at first.
    bool connected() const { return m_connected; }
    void setConnected(bool connected);

    // Whether a wire is being drawn from or to the anchor, which is shown before all else; false at first.
    void setInteracting(bool interacting);

    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

Q_SIGNALS:
    // Press and release for the left button alone, a move for any. The event is valid during the call.
    void mousePressEvent(Anchor* anchor, QGraphicsSceneMouseEvent* event);
    void mouseReleaseEvent(Anchor* anchor, QGraphicsSceneMouseEvent* event);
    void mouseMoveEvent(Anchor* anchor, QGraphicsSceneMouseEvent* event);

protected:
    // Overloads of the signals; QOverload<Anchor*, QGraphicsSceneMouseEvent*>::of(...) takes a signal's address.
    void mousePressEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseMoveEvent(QGraphicsSceneMouseEvent* event) override;

private:
    IODirection m_direction;
    bool m_connected = false;
    bool m_interacting = false;
};

} // namespace Ondrel

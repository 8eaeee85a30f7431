#include <ondrel/nodes/node.h>

#include <QGraphicsScene>
#include <QGraphicsSceneMouseEvent>

namespace Ondrel
{

void Node::mousePressEvent(QGraphicsSceneMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        QGraphicsRectItem::mousePressEvent(event);
        return;
    }
    const bool wasSelected = isSelected();
    m_toggleSelecting = event->modifiers().testFlag(Qt::ShiftModifier);
    if (m_toggleSelecting && selectionCrossesGroups()) {
        event->accept();
        return;
    }
    // With Control the toolkit leaves the rest of the selection alone.
    event->setModifiers(event->modifiers() | Qt::ControlModifier);
    QGraphicsRectItem::mousePressEvent(event);

    m_deselectOnRelease = false;
    if (m_toggleSelecting) {
        setSelected(!wasSelected);
        m_deselectOnRelease = wasSelected;
    } else if (!wasSelected) {
        setSelected(true);
        deselectOthers();
    }
    if (isSelected())
        Q_EMIT selected(this);
    else
        Q_EMIT deselected(this);
}

void Node::mouseMoveEvent(QGraphicsSceneMouseEvent* event)
{
    // No button has changed, so that the event names none: what counts is what is held.
    if (!event->buttons().testFlag(Qt::LeftButton)) {
        QGraphicsRectItem::mouseMoveEvent(event);
        return;
    }
    if (m_toggleSelecting && selectionCrossesGroups()) {
        event->accept();
        return;
    }
    QGraphicsRectItem::mouseMoveEvent(event);
    Q_EMIT moved(this, true);
}

void Node::mouseReleaseEvent(QGraphicsSceneMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        QGraphicsRectItem::mouseReleaseEvent(event);
        return;
    }
    if (m_toggleSelecting && selectionCrossesGroups()) {
        event->accept();
        return;
    }
    // A release where the press was would be a click to the toolkit, and change the selection.
    event->setModifiers(event->modifiers() | Qt::ControlModifier);
    event->setScenePos(event->scenePos() + QPointF(1, 1));
    QGraphicsRectItem::mouseReleaseEvent(event);

    if (m_deselectOnRelease)
        setSelected(false);
    else
        Q_EMIT moveComplete(this);
}

// A selection is one group's: Shift cannot extend it to a node of another one.
bool Node::selectionCrossesGroups() const
{
    if (!scene())
        return false;
    for (const QGraphicsItem* item : scene()->selectedItems()) {
        const auto* node = dynamic_cast<const Node*>(item);
        if (node && node->groupNode() != groupNode())
            return true;
    }
    return false;
}

void Node::deselectOthers()
{
    if (!scene())
        return;
    for (QGraphicsItem* item : scene()->selectedItems())
        if (item != this)
            item->setSelected(false);
}

} // namespace Ondrel

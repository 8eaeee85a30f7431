#pragma once

#include <QGraphicsPathItem>

namespace Viewer
{

// A curve from an output on its left to an input on its right, below all nodes.
class WireItem : public QGraphicsPathItem
{
public:
    WireItem();
    void setEnds(const QPointF& output, const QPointF& input);
    enum Look { Plain, Lit, Marked }; // as it lies; below the mouse; what is spoken of, such as a wire in the hand
    void setLook(Look look);
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;
    QRectF boundingRect() const override;

private:
    Look m_look = Plain;
};

} // namespace Viewer

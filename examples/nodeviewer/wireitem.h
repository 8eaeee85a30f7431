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
    void setLoose(bool loose); // drawn in another colour while its end follows the mouse
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;
    QRectF boundingRect() const override;

private:
    bool m_loose = false;
};

} // namespace Viewer

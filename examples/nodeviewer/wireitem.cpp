#include "wireitem.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace Viewer
{

WireItem::WireItem()
{
    setZValue(-1);
    setAcceptedMouseButtons(Qt::NoButton);
}

void WireItem::setEnds(const QPointF& output, const QPointF& input)
{
    const qreal reach = std::max(40.0, std::abs(input.x() - output.x()) * 0.5);
    QPainterPath path(output);
    path.cubicTo(output + QPointF(reach, 0), input - QPointF(reach, 0), input);
    setPath(path);
}

void WireItem::setLook(Look look)
{
    if (m_look == look)
        return;
    m_look = look;
    update();
}

void WireItem::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*)
{
    painter->setBrush(Qt::NoBrush);
    painter->setPen(QPen(QColor(14, 14, 14), 5, Qt::SolidLine, Qt::RoundCap));
    painter->drawPath(path());
    const QColor color = m_look == Marked ? QColor(255, 204, 0) : m_look == Lit ? Qt::white : QColor(165, 162, 162);
    painter->setPen(QPen(color, 2.5, Qt::SolidLine, Qt::RoundCap));
    painter->drawPath(path());
}

QRectF WireItem::boundingRect() const
{
    return path().controlPointRect().adjusted(-3, -3, 3, 3);
}

} // namespace Viewer

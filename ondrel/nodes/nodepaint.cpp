#include <ondrel/nodes/node.h>
#include <ondrel/nodes/nodecolors_p.h>
#include <ondrel/nodes/nodefont_p.h>

#include <QLinearGradient>
#include <QPainter>
#include <QPen>
#include <QStyleOptionGraphicsItem>

namespace Ondrel
{
namespace
{

constexpr qreal kCornerRadius = 8;

} // namespace

void Node::paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* /*widget*/)
{
    painter->setClipRect(option->exposedRect);
    painter->setPen(Qt::NoPen);
    painter->setBrush(NodeColors::body());
    painter->drawRoundedRect(rect(), kCornerRadius, kCornerRadius);
    paintHeader(*painter);
    if (m_drawSelection && option->state.testFlag(QStyle::State_Selected)) {
        painter->setBrush(Qt::NoBrush);
        painter->setPen(QPen(NodeColors::selection(), 3, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
        painter->drawRoundedRect(rect(), kCornerRadius, kCornerRadius);
    }
}

void Node::paintHeader(QPainter& painter) const
{
    const bool highlighted = m_firstSelected && m_drawSelection;
    const qreal height = qreal(headerHeight());
    const int x = int(rect().x());
    const int y = int(rect().y());
    const int width = int(rect().width());

    // A gradient although it has one colour: a plain brush blends its soft edges to slightly other values.
    QLinearGradient gradient(x, y, x, y + height);
    gradient.setColorAt(0.0, NodeColors::header());
    gradient.setColorAt(1.0, NodeColors::header());
    // The rectangle squares the lower corners.
    painter.setBrush(highlighted ? QBrush(NodeColors::selection()) : QBrush(gradient));
    painter.drawRoundedRect(QRectF(x, y, width, height - 1), kCornerRadius, kCornerRadius);
    painter.drawRect(x, int(y + height * 0.5), width, int(height * 0.5));

    painter.setFont(plainFont(painter.font(), kHeaderFontSize));
    painter.setPen(highlighted ? NodeColors::header() : NodeColors::text());
    painter.drawText(QRectF(rect().x() + 6, rect().y(), rect().width() - 12, height), Qt::AlignLeft | Qt::AlignVCenter,
                     m_header);
}

} // namespace Ondrel

#include "wipehandle.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace Host
{
namespace
{

constexpr int kReach = 12; // to both sides of the line
constexpr double kGripRadius = 10;

} // namespace

WipeHandle::WipeHandle(QWidget* view)
    : QWidget(view)
{
    setObjectName("wipe");
    setAccessibleName(tr("Wipe between both pictures"));
    setToolTip(tr("Drag to compare"));
    setCursor(Qt::SplitHCursor);
    setFocusPolicy(Qt::TabFocus); // a click leaves the keys with the view
}

void WipeHandle::placeAt(double x, const QRect& picture)
{
    const QRect seen = picture.intersected(parentWidget()->rect());
    const int left = int(std::floor(x)) - kReach;
    m_lineX = x - left;
    setGeometry(left, seen.top(), 2 * kReach + 1, std::max(seen.height(), int(2 * kGripRadius) + 2));
    update();
}

QPointF WipeHandle::grip() const
{
    return QPointF(m_lineX, height() / 2.0);
}

void WipeHandle::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor dark(14, 14, 14, 200), light = hasFocus() ? QColor(255, 204, 0) : QColor(255, 255, 255, 230);
    const QLineF line(m_lineX, 0, m_lineX, height());
    painter.setPen(QPen(dark, 3));
    painter.drawLine(line);
    painter.setPen(QPen(light, 1.5));
    painter.drawLine(line);
    painter.setBrush(dark);
    painter.drawEllipse(grip(), kGripRadius - 1, kGripRadius - 1);
    QPainterPath arrows;
    for (const int side : {-1, 1}) {
        arrows.moveTo(grip() + QPointF(side * 2.5, -3.5));
        arrows.lineTo(grip() + QPointF(side * 6, 0));
        arrows.lineTo(grip() + QPointF(side * 2.5, 3.5));
    }
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(arrows);
}

// Whatever is not taken goes on to the view.
void WipeHandle::mousePressEvent(QMouseEvent* event)
{
    const QPointF apart = event->localPos() - grip();
    const bool onGrip = std::hypot(apart.x(), apart.y()) <= kGripRadius + 2;
    m_dragging = event->button() == Qt::LeftButton && (onGrip || !m_gripOnly);
    m_grabbedAt = apart.x();
    event->setAccepted(m_dragging);
}

void WipeHandle::mouseMoveEvent(QMouseEvent* event)
{
    event->setAccepted(m_dragging);
    if (m_dragging)
        Q_EMIT dragged(x() + event->localPos().x() - m_grabbedAt);
}

void WipeHandle::mouseReleaseEvent(QMouseEvent* event)
{
    event->setAccepted(m_dragging);
    m_dragging = false;
}

void WipeHandle::keyPressEvent(QKeyEvent* event)
{
    const int step = event->modifiers().testFlag(Qt::ShiftModifier) ? 10 : 1;
    if (event->key() == Qt::Key_Left)
        Q_EMIT stepped(-step);
    else if (event->key() == Qt::Key_Right)
        Q_EMIT stepped(step);
    else
        QWidget::keyPressEvent(event);
}

} // namespace Host

#pragma once

#include <ondrel/ondrel_export.h>

#include <QImage>
#include <QPoint>
#include <QPointF>
#include <QRect>
#include <QSize>

namespace Ondrel
{

// Where a colour wheel and its lightness bar lie in a widget, and which colour a point of them stands for. Hue 0 is at
// the bottom, and hues grow clockwise; saturation grows from the middle to the rim.
class ONDREL_EXPORT ColorWheel
{
public:
    explicit ColorWheel(const QSize& widget);

    QRect wheel() const { return m_wheel; }
    QRect bar() const { return m_bar; }
    QRect barReach() const { return QRect(m_bar.left(), m_bar.top(), 11, m_bar.height()); } // where a press takes it

    double hueAt(const QPointF& point) const;        // above 0, up to 360
    double saturationAt(const QPointF& point) const; // at most 1
    double distanceAt(const QPointF& point) const;   // from the middle, 1 at the rim
    double lightnessAt(int y) const;
    QPointF pointOf(double hue, double saturation) const;

    QImage paintWheel(double lightness) const;
    QImage paintBar() const;

private:
    QPointF center() const;

    QRect m_wheel, m_bar;
};

} // namespace Ondrel

#include <ondrel/widgets/precisionrangeslider.h>
#include <ondrel/widgets/precisionslider.h>
#include <ondrel/widgets/slidercolors_p.h>
#include <ondrel/widgets/sliderscale_p.h>

#include <QApplication>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>

#include <cmath>

namespace Ondrel
{
namespace
{

// A range of one number has no place for its markers and its bar.
float finiteOrZero(float v)
{
    return std::isfinite(v) ? v : 0.0f;
}

QPen outlinePen(qreal width, const QColor& color)
{
    return QPen(color, width, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin);
}

} // namespace

void PrecisionRangeSlider::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF bar = barRect();
    if (m_hasGrooveGradient)
        PrecisionSliderDrawRangeGroove(painter, bar, m_grooveGradient);
    else
        PrecisionSliderDrawRangeGroove(painter, bar);

    const float range = float(wrappingDifference(m_maximum, m_minimum));
    const float start = finiteOrZero(float((bar.width() - 1) * double(float(m_leftValue) / range)));
    const float length = finiteOrZero(float(wrappingDifference(m_rightValue, m_leftValue)) / range);
    if (m_hasBarGradient)
        PrecisionSliderDrawRangeBar(painter, bar, start, length, m_barGradient);
    else
        PrecisionSliderDrawRangeBar(painter, bar, start, length, m_hovered);
    PrecisionSliderDrawRangeBorder(painter, bar);
    paintMarker(painter, true);
    paintMarker(painter, false);
}

// One half of a triangle that points down, to the outer side of its end of the interval.
void PrecisionRangeSlider::paintMarker(QPainter& painter, bool left) const
{
    const qreal center = qreal(finiteOrZero(left ? leftArrowHorizontalCenter() : rightArrowHorizontalCenter()));
    const qreal top = barRect().top() - 4;
    QPainterPath marker(QPointF(left ? center - 7.5 : center + 7.5, top));
    marker.lineTo(center, top);
    marker.lineTo(center, top + 10);
    marker.closeSubpath();

    const bool focused = m_keyboardArrow == (left ? 0 : 1);
    painter.setBrush(SliderColors::marker(m_hovered));
    painter.setPen(focused ? QPen(Qt::NoPen) : outlinePen(1.0, SliderColors::outline()));
    painter.drawPath(marker);
    if (!focused)
        return;
    painter.setBrush(Qt::NoBrush);
    painter.save();
    painter.setClipPath(marker);
    painter.setPen(outlinePen(2.0, SliderColors::outline()));
    painter.drawPath(marker);
    painter.restore();
    painter.setPen(outlinePen(1.0, QApplication::palette().color(QPalette::Highlight)));
    painter.drawPath(marker);
}

} // namespace Ondrel

#include <ondrel/widgets/precisionslider.h>
#include <ondrel/widgets/slidercolors_p.h>

#include <QPainter>
#include <QPainterPath>

namespace Ondrel
{
namespace
{

constexpr qreal kRadius = 2;

void fill(QPainter& painter, const QRectF& rect, const QBrush& brush)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(brush);
    painter.drawRoundedRect(rect, kRadius, kRadius);
}

QRectF barRectangle(const QRectF& rect, float start, float length)
{
    return QRectF(rect.left() + qreal(start), rect.top(), qreal(length * float(rect.width() - 1)), rect.height());
}

// The bar keeps inside of the groove's round ends.
void fillClipped(QPainter& painter, const QRectF& rect, const QRectF& bar, const QBrush& brush)
{
    QPainterPath groove;
    groove.addRoundedRect(rect, kRadius, kRadius);
    painter.save();
    painter.setClipPath(groove);
    fill(painter, bar, brush);
    painter.restore();
}

} // namespace

void PrecisionSliderDrawRangeGroove(QPainter& painter, const QRectF& rect)
{
    QLinearGradient gradient(rect.topLeft(), rect.bottomLeft());
    gradient.setColorAt(0.0, SliderColors::outline());
    gradient.setColorAt(1.0, SliderColors::grooveLight());
    fill(painter, rect, gradient);
}

void PrecisionSliderDrawRangeGroove(QPainter& painter, const QRectF& rect, QLinearGradient gradient)
{
    gradient.setStart(rect.topLeft());
    gradient.setFinalStop(rect.topRight());
    fill(painter, rect, gradient);
}

void PrecisionSliderDrawRangeBar(QPainter& painter, const QRectF& rect, float start, float length, bool hovered)
{
    const QRectF bar = barRectangle(rect, start, length);
    QLinearGradient gradient(bar.topLeft(), bar.bottomLeft());
    gradient.setColorAt(0.0, SliderColors::marker(hovered));
    gradient.setColorAt(0.5, SliderColors::marker(hovered));
    fillClipped(painter, rect, bar, gradient);
}

void PrecisionSliderDrawRangeBar(QPainter& painter, const QRectF& rect, float start, float length,
                                 QLinearGradient gradient)
{
    const QRectF bar = barRectangle(rect, start, length);
    gradient.setStart(bar.topLeft());
    gradient.setFinalStop(bar.topRight());
    fillClipped(painter, rect, bar, gradient);
}

void PrecisionSliderDrawRangeBorder(QPainter& painter, const QRectF& rect)
{
    painter.setPen(QPen(SliderColors::outline(), 1.0, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(rect, kRadius, kRadius);
}

} // namespace Ondrel

#include <ondrel/widgets/accessible_p.h>
#include <ondrel/widgets/colorwheel_p.h>
#include <ondrel/widgets/radialcolorpickerwidget.h>

#include <QMouseEvent>
#include <QPainter>

namespace Ondrel
{

RadialColorPickerWidget::RadialColorPickerWidget(QWidget* parent)
    : QWidget(parent)
{
    installAccessibility();
    setMinimumSize(144, 132);
    setAccessibleName(tr("Hue, saturation and lightness"));
    describe();
}

void RadialColorPickerWidget::describe()
{
    setAccessibleDescription(QStringLiteral("%1, %2, %3").arg(m_hue).arg(m_saturation).arg(m_lightness));
}

void RadialColorPickerWidget::setColor(double hue, double saturation, double lightness)
{
    m_hue = hue;
    m_saturation = saturation;
    m_lightness = lightness;
    describe();
    update();
}

void RadialColorPickerWidget::color(double& hue, double& saturation, double& lightness)
{
    hue = m_hue;
    saturation = m_saturation;
    lightness = m_lightness;
}

QSize RadialColorPickerWidget::sizeHint() const
{
    return QSize(204, 192);
}

QSize RadialColorPickerWidget::minimumSizeHint() const
{
    return QSize(144, 132);
}

QPointF RadialColorPickerWidget::hueAndSaturationPoint() const
{
    return ColorWheel(size()).pointOf(m_hue, m_saturation);
}

void RadialColorPickerWidget::mousePressEvent(QMouseEvent* event)
{
    const ColorWheel geometry(size());
    const QPoint position = event->localPos().toPoint();
    if (geometry.wheel().contains(position))
        m_dragPart = DragPart::Wheel;
    else if (geometry.barReach().contains(position))
        m_dragPart = DragPart::Bar;
    else
        return;
    mouseMoveEvent(event);
    event->accept();
}

void RadialColorPickerWidget::mouseMoveEvent(QMouseEvent* event)
{
    if (m_dragPart == DragPart::None)
        return;
    const ColorWheel geometry(size());
    const QPoint position = event->localPos().toPoint();
    if (m_dragPart == DragPart::Wheel) {
        m_hue = geometry.hueAt(position);
        m_saturation = geometry.saturationAt(position);
    } else {
        m_lightness = geometry.lightnessAt(position.y());
    }
    describe();
    update();
    event->accept();
    Q_EMIT changed();
}

void RadialColorPickerWidget::mouseReleaseEvent(QMouseEvent* event)
{
    if (m_dragPart == DragPart::None)
        return;
    mouseMoveEvent(event);
    event->accept();
    m_dragPart = DragPart::None;
}

void RadialColorPickerWidget::paintEvent(QPaintEvent*)
{
    const ColorWheel geometry(size());
    QPainter painter(this);
    painter.drawImage(geometry.wheel().topLeft(), geometry.paintWheel(m_lightness));
    painter.drawImage(geometry.bar().topLeft(), geometry.paintBar());

    const QPointF at = hueAndSaturationPoint();
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setPen(QPen(Qt::black, 2.0));
    painter.drawEllipse(QRectF(at - QPointF(5, 5), at + QPointF(4, 4)));
    painter.setPen(QPen(Qt::white, 1.0));
    painter.drawEllipse(QRectF(at - QPointF(4, 4), at + QPointF(3, 3)));

    const QRect bar = geometry.bar();
    const int x = bar.left(), y = bar.top() + int(bar.height() * (1 - m_lightness));
    const QPoint marker[] = {{x + 10, y - 5}, {x, y}, {x + 10, y + 5}};
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(QPen(QColor(50, 47, 47), 1.0));
    painter.setBrush(QColor(201, 198, 198));
    painter.drawPolygon(marker, 3);
}

} // namespace Ondrel

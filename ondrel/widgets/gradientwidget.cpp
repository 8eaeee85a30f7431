#include <ondrel/color/colormanager.h>
#include <ondrel/color/colortransformer.h>
#include <ondrel/core/color.h>
#include <ondrel/core/image.h>
#include <ondrel/widgets/accessible_p.h>
#include <ondrel/widgets/gradientwidget.h>

#include <QLinearGradient>
#include <QPainter>

#include <algorithm>

namespace Ondrel
{
namespace
{

// From position 0 to position 1, in fractions of the strip.
GradientLinearGeometry geometryOf(GradientWidget::Direction direction)
{
    switch (direction) {
    case GradientWidget::RightToLeft:
        return {1, 0, 0, 0};
    case GradientWidget::TopToBottom:
        return {0, 0, 0, 1};
    case GradientWidget::BottomToTop:
        return {0, 1, 0, 0};
    case GradientWidget::LeftToRight:
        break;
    }
    return {0, 0, 1, 0};
}

QColor colorOf(const GradientStop& stop)
{
    return ColorToQColor(Color(stop.red, stop.green, stop.blue, stop.alpha));
}

} // namespace

GradientWidget::GradientWidget(QWidget* parent)
    : QWidget(parent)
{
    setFocusPolicy(Qt::NoFocus);
    setStyleSheet(QStringLiteral("background-color: rgba(0,0,0,0);"));
    installAccessibility();
    setAccessibleName(tr("Gradient"));
    describe();
}

// The stops, as "0 #ff000000, 1 #ffffffff" with alpha before the colour.
void GradientWidget::describe()
{
    QStringList texts;
    for (const GradientStop& stop : m_stops)
        texts.append(QString::number(double(stop.position), 'g', 4) + QLatin1Char(' ') +
                     colorOf(stop).name(QColor::HexArgb));
    setAccessibleDescription(texts.join(QStringLiteral(", ")));
}

void GradientWidget::setDirection(Direction direction)
{
    if (direction == m_direction)
        return;
    m_direction = direction;
    m_cache = QImage();
    update();
}

void GradientWidget::setColorInterpolation(GradientColorInterpolation interpolation)
{
    if (interpolation == m_colorInterpolation)
        return;
    m_colorInterpolation = interpolation;
    m_cache = QImage();
    update();
}

void GradientWidget::setStops(const std::vector<GradientStop>& stops)
{
    m_stops = stops;
    SanitizeGradientStops(m_stops);
    describe();
    m_cache = QImage();
    update();
}

std::vector<GradientStop> GradientWidget::stops() const
{
    return m_stops;
}

QSize GradientWidget::minimumSizeHint() const
{
    return m_direction < TopToBottom ? QSize(200, 15) : QSize(15, 200);
}

void GradientWidget::paintEvent(QPaintEvent* event)
{
    QWidget::paintEvent(event);
    QPainter painter(this);
    paintGradientBar(painter, QRect(QPoint(0, 0), rect().bottomRight()));
}

bool GradientWidget::isTranslucent() const
{
    return std::any_of(m_stops.begin(), m_stops.end(), [](const GradientStop& stop) { return stop.alpha < 65535; });
}

QImage GradientWidget::rendered(const QSize& size) const
{
    Image image(unsigned(size.width()), unsigned(size.height()));
    image.colorProfile = ColorManager::displayProfileAsHash();
    GradientLinear(image, {0, 0, size.width(), size.height()}, geometryOf(m_direction), m_stops, m_colorInterpolation,
                   {});
    return ColorTransformer::toQImage(image, false);
}

void GradientWidget::paintGradientBar(QPainter& painter, const QRect& rect)
{
    if (rect.isEmpty())
        return;
    if (isTranslucent()) {
        QImage squares(rect.size(), QImage::Format_RGB32);
        Checkerboard(squares, 5, 5, QColor(129, 129, 129), QColor(208, 208, 208));
        painter.drawImage(rect.topLeft(), squares);
    }
    if (m_colorInterpolation != GradientColorInterpolationRGB) {
        if (m_cache.size() != rect.size())
            m_cache = rendered(rect.size());
        painter.drawImage(rect.topLeft(), m_cache);
        return;
    }
    const GradientLinearGeometry ends = geometryOf(m_direction);
    QLinearGradient gradient(qreal(ends.x1), qreal(ends.y1), qreal(ends.x2), qreal(ends.y2));
    gradient.setCoordinateMode(QGradient::ObjectBoundingMode);
    for (const GradientStop& stop : m_stops)
        gradient.setColorAt(qreal(stop.position), colorOf(stop));
    painter.setPen(Qt::NoPen);
    painter.setBrush(gradient);
    painter.drawRect(rect);
}

} // namespace Ondrel

#include <ondrel/widgets/colorwheel_p.h>
#include <ondrel/widgets/hsl_p.h>

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace Ondrel
{
namespace
{

constexpr double kPi = 3.14159265358979323846;

// Premultiplied; the outer fiftieth of the radius fades.
QRgb wheelPixel(const Hsl& color, double distance)
{
    if (distance > 1.0)
        return 0;
    const double share = distance <= 0.98 ? 1.0 : (1.0 - distance) / 0.02;
    const Rgb rgb = toRgb(color);
    const auto byte = [share](double v) { return int(std::lround(std::clamp(v, 0.0, 1.0) * share * 255.0)); };
    return qRgba(byte(rgb.red), byte(rgb.green), byte(rgb.blue), byte(1.0));
}

} // namespace

ColorWheel::ColorWheel(const QSize& widget)
{
    const int diameter = std::max(0, std::min(widget.width() - 24, widget.height() - 12));
    m_wheel = QRect((widget.width() - 1 - diameter - 11) / 2, (widget.height() - diameter) / 2, diameter, diameter);
    m_bar = QRect(m_wheel.right() + 8, m_wheel.top(), 4, diameter);
}

// Between the two pixels in the middle of an even diameter.
QPointF ColorWheel::center() const
{
    return QPointF(m_wheel.left(), m_wheel.top()) + QPointF(m_wheel.width() - 1, m_wheel.height() - 1) * 0.5;
}

double ColorWheel::hueAt(const QPointF& point) const
{
    const QPointF from = point - center();
    double hue = (std::atan2(from.y(), from.x()) + kPi) / (2 * kPi) * 360 + 90;
    while (hue > 360)
        hue -= 360;
    return hue;
}

double ColorWheel::distanceAt(const QPointF& point) const
{
    const QPointF from = point - center();
    return m_wheel.width() > 0 ? std::hypot(from.x(), from.y()) / (m_wheel.width() * 0.5) : 0.0;
}

double ColorWheel::saturationAt(const QPointF& point) const
{
    return std::min(1.0, distanceAt(point));
}

double ColorWheel::lightnessAt(int y) const
{
    if (y <= m_bar.top())
        return 1.0;
    if (y >= m_bar.bottom())
        return 0.0;
    return 1.0 - double(y - m_bar.top()) / m_bar.height();
}

QPointF ColorWheel::pointOf(double hue, double saturation) const
{
    const double radius = m_wheel.width() * 0.5 * saturation;
    const double angle = hue / 360 * 2 * kPi;
    return center() + QPointF(-radius * std::sin(angle), radius * std::cos(angle));
}

QImage ColorWheel::paintWheel(double lightness) const
{
    QImage image(m_wheel.size(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < image.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const QPointF point = m_wheel.topLeft() + QPoint(x, y);
            const double distance = distanceAt(point);
            row[x] = wheelPixel({hueAt(point), distance, lightness}, distance);
        }
    }
    return image;
}

QImage ColorWheel::paintBar() const
{
    QImage image(m_bar.size(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < image.height(); ++y) {
        const int grey = 255 - (image.height() > 1 ? y * 255 / (image.height() - 1) : 0);
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        std::fill(row, row + image.width(), qRgb(grey, grey, grey));
    }
    return image;
}

} // namespace Ondrel

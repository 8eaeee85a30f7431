#include <ondrel/widgets/curveknots_p.h>
#include <ondrel/widgets/curveswidget.h>

#include <QLineF>
#include <QPainter>
#include <QVector>

#include <cmath>

namespace Ondrel
{
namespace
{

QColor colorOf(CurvesWidget::Channel channel)
{
    switch (channel) {
    case CurvesWidget::Red:
        return Qt::red;
    case CurvesWidget::Green:
        return Qt::green;
    case CurvesWidget::Blue:
        return Qt::blue;
    case CurvesWidget::Overall:
        break;
    }
    return Qt::white;
}

} // namespace

void CurvesWidget::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), QColor(28, 28, 28));
    drawHistogram(painter, binsOf(m_channel));
    drawGrid(painter);

    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setBrush(Qt::NoBrush);
    painter.save();
    painter.translate(0, height());
    painter.scale(1, -1); // y upwards from here on
    drawCurves(painter);
    if (isEnabled())
        drawKnots(painter);
    painter.restore();
}

void CurvesWidget::drawGrid(QPainter& painter) const
{
    QPen pen(QColor(56, 56, 56), 1, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin);
    pen.setCosmetic(true);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(pen);
    const float eighthOfWidth = float(width()) / 8.0f, eighthOfHeight = float(height()) / 8.0f;
    for (int i = 1; i < 8; ++i) {
        const int x = int(std::floor(0.5f + float(i) * eighthOfWidth));
        const int y = int(std::floor(0.5f + float(i) * eighthOfHeight));
        painter.drawLine(0, y, width(), y);
        painter.drawLine(x, 0, x, height());
    }
}

// The current channel's comes last, on top, and leaves its pen to the knots.
void CurvesWidget::drawCurves(QPainter& painter)
{
    for (const Channel other : {Blue, Green, Red, Overall}) {
        if (!m_showAllChannels || other == m_channel)
            continue;
        painter.setPen(colorOf(other));
        drawCurve(painter, m_curves[other].knots());
    }
    painter.setPen(colorOf(m_channel));
    drawCurve(painter, m_curves[m_channel].knots());
}

void CurvesWidget::drawKnots(QPainter& painter) const
{
    const std::vector<CubicBezierSpline::Point>& knots = m_curves[m_channel].knots();
    for (std::size_t i = 0; i < knots.size(); ++i) {
        const QPoint at = knotPointToPaintPoint(knots[i]);
        const QRect circle(at - QPoint(3, 3), at + QPoint(2, 2));
        if (hasFocus() && int(i) == m_selectedKnot) {
            painter.save();
            painter.setBrush(painter.pen().color());
            painter.setPen(Qt::NoPen);
            painter.drawEllipse(circle);
            painter.restore();
        } else {
            painter.drawEllipse(circle);
        }
    }
}

QPoint CurvesWidget::knotPointToPaintPoint(const CubicBezierSpline::Point& p) const
{
    return QPoint(int(float(p.x) / 65535.0f * float(width())), int(float(p.y) / 65535.0f * float(height())));
}

void CurvesWidget::drawCurve(QPainter& painter, const std::vector<CubicBezierSpline::Point>& knots)
{
    std::vector<CubicBezierSpline::Point> points;
    points.reserve(knots.size());
    for (const CubicBezierSpline::Point& knot : knots) {
        const QPoint at = knotPointToPaintPoint(knot);
        points.push_back({at.x(), at.y()});
    }
    CubicBezierSpline spline;
    spline.setPoints(points);
    std::vector<float> heights;
    spline.smoothSpline(heights, width(), height());
    QVector<QLineF> lines;
    for (std::size_t i = 1; i < heights.size(); ++i)
        lines.append(QLineF(double(i - 1), double(heights[i - 1]), double(i), double(heights[i])));
    painter.drawLines(lines);
}

void CurvesWidget::drawHistogram(QPainter& painter, const std::vector<unsigned int>& bins)
{
    if (m_histogramHeight == 0 || bins.size() < 2)
        return;
    const double perBin = double(width()) / double(bins.size() - 1);
    const double perPixel = double(height()) / double(m_histogramHeight);
    m_histogramPolygon.clear();
    for (std::size_t i = 0; i < bins.size(); ++i)
        m_histogramPolygon.emplace_back(double(i) * perBin, double(height()) - double(bins[i]) * perPixel);
    m_histogramPolygon.emplace_back(width(), height());
    m_histogramPolygon.emplace_back(0, height());

    QPen transparent(Qt::transparent);
    transparent.setCosmetic(true);
    painter.setPen(transparent);
    painter.setBrush(QColor(2, 2, 2, 186));
    painter.drawPolygon(m_histogramPolygon.data(), int(m_histogramPolygon.size()));
    painter.setPen(QColor(9, 9, 9));
    painter.drawPolyline(m_histogramPolygon.data(), int(bins.size()));
}

} // namespace Ondrel

#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/curves.h>
#include <ondrel/core/image.h>

#include <QPoint>
#include <QPointF>
#include <QWidget>

#include <memory>
#include <vector>

namespace Ondrel
{

class CurveKnots;

// The area in which tone curves are edited, over the histogram of an image. A press takes the knot that is near in x,
// whatever the height, or inserts one; a knot that is dragged past a neighbour leaves the curve until it comes back;
// Delete and Backspace remove the knot that was taken last, but never one of the last two. All keys end here.
// User-interface thread only; setImage() counts on it.
class ONDREL_EXPORT CurvesWidget : public QWidget
{
    Q_OBJECT
public:
    enum Channel { Overall = 0, Red = 1, Green = 2, Blue = 3 };

    explicit CurvesWidget(QWidget* parent);
    ~CurvesWidget() override;

    void setCurves(const Curves& curves); // emits nothing
    std::vector<CubicBezierSpline::Point> cubicSplineKnots(Channel channel) const;
    void setChannel(Channel channel); // ends a drag
    Channel channel() const;
    void showAllChannelCurves(bool show);
    void resetCurrentChannel();

    // Shows the image's lightness, or its red, green or blue, behind the curve. An image without pixels shows none.
    void setImage(const Ondrel::Image& image);

    QSize sizeHint() const override;
    void deleteSelectedKnot();

Q_SIGNALS:
    void knotsChanged();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    int closestKnotIndexToPaintPoint(int x, int& distance) const; // x from 0 to 65535
    void moveKnot(const QPointF& pos);
    QPoint knotPointToPaintPoint(const CubicBezierSpline::Point& p) const; // y upwards
    void drawCurve(QPainter& painter, const std::vector<CubicBezierSpline::Point>& knots);
    void drawHistogram(QPainter& painter, const std::vector<unsigned int>& bins);

private:
    const std::vector<unsigned int>& binsOf(Channel channel) const;
    void measureHistogram();
    void describe();
    void curveChanged();
    void drawGrid(QPainter& painter) const;
    void drawCurves(QPainter& painter);
    void drawKnots(QPainter& painter) const;

    Channel m_channel = Overall;
    std::vector<CurveKnots> m_curves; // by channel
    bool m_showAllChannels = true;
    int m_selectedKnot = -1;
    Image::Histogram m_histogram;
    unsigned int m_histogramHeight = 0;
    std::vector<QPointF> m_histogramPolygon; // kept for the next paint
};

} // namespace Ondrel

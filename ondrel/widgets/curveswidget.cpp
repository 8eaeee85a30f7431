#include <ondrel/widgets/accessible_p.h>
#include <ondrel/widgets/curveknots_p.h>
#include <ondrel/widgets/curveswidget.h>

#include <QKeyEvent>
#include <QMouseEvent>

#include <algorithm>

namespace Ondrel
{

CurvesWidget::CurvesWidget(QWidget* parent)
    : QWidget(parent)
    , m_curves(4)
{
    setFocusPolicy(Qt::ClickFocus);
    setMouseTracking(true);
    installAccessibility();
    setAccessibleName(tr("Tone curve"));
    describe();
}

CurvesWidget::~CurvesWidget() = default;

// The knots of the current channel.
void CurvesWidget::describe()
{
    QStringList knots;
    for (const CubicBezierSpline::Point& knot : m_curves[m_channel].knots())
        knots.append(QStringLiteral("(%1, %2)").arg(knot.x).arg(knot.y));
    setAccessibleDescription(knots.join(QStringLiteral(", ")));
}

void CurvesWidget::curveChanged()
{
    describe();
    Q_EMIT knotsChanged();
    update();
}

void CurvesWidget::setCurves(const Curves& curves)
{
    m_curves[Overall].setKnots(curves.all);
    m_curves[Red].setKnots(curves.red);
    m_curves[Green].setKnots(curves.green);
    m_curves[Blue].setKnots(curves.blue);
    describe();
    update();
}

std::vector<CubicBezierSpline::Point> CurvesWidget::cubicSplineKnots(Channel channel) const
{
    return m_curves[channel].knots();
}

void CurvesWidget::setChannel(Channel channel)
{
    m_curves[m_channel].endDrag();
    m_channel = channel;
    describe();
    measureHistogram();
    update();
}

CurvesWidget::Channel CurvesWidget::channel() const
{
    return m_channel;
}

void CurvesWidget::showAllChannelCurves(bool show)
{
    if (show == m_showAllChannels)
        return;
    m_showAllChannels = show;
    update();
}

void CurvesWidget::resetCurrentChannel()
{
    m_curves[m_channel].reset();
    curveChanged();
}

void CurvesWidget::setImage(const Ondrel::Image& image)
{
    if (image.width > 0 && image.height > 0) {
        image.BuildHistogram(m_histogram, false, true, true, true, true, 256);
        measureHistogram();
    } else {
        m_histogram = Image::Histogram();
    }
    update();
}

QSize CurvesWidget::sizeHint() const
{
    return QSize(320, 320);
}

const std::vector<unsigned int>& CurvesWidget::binsOf(Channel channel) const
{
    switch (channel) {
    case Red:
        return m_histogram.red;
    case Green:
        return m_histogram.green;
    case Blue:
        return m_histogram.blue;
    case Overall:
        break;
    }
    return m_histogram.lightness;
}

void CurvesWidget::measureHistogram()
{
    const std::vector<unsigned int>& bins = binsOf(m_channel);
    m_histogramHeight = bins.empty() ? 0 : *std::max_element(bins.begin(), bins.end());
}

int CurvesWidget::closestKnotIndexToPaintPoint(int x, int& distance) const
{
    return m_curves[m_channel].closest(x, distance);
}

void CurvesWidget::mousePressEvent(QMouseEvent* event)
{
    event->accept();
    const int taken = m_curves[m_channel].grab(event->localPos(), size());
    moveKnot(event->localPos());
    m_selectedKnot = taken;
    describe(); // a knot may be there now that has not moved
    update();
}

void CurvesWidget::mouseMoveEvent(QMouseEvent* event)
{
    event->accept();
    moveKnot(event->localPos());
}

void CurvesWidget::mouseReleaseEvent(QMouseEvent* event)
{
    event->accept();
    moveKnot(event->localPos());
    m_curves[m_channel].endDrag();
}

void CurvesWidget::moveKnot(const QPointF& pos)
{
    if (!m_curves[m_channel].drag(pos, size()))
        return;
    curveChanged();
}

void CurvesWidget::deleteSelectedKnot()
{
    if (!m_curves[m_channel].remove(m_selectedKnot))
        return;
    m_selectedKnot = -1;
    curveChanged();
}

void CurvesWidget::keyPressEvent(QKeyEvent* event)
{
    event->accept();
    if (event->key() == Qt::Key_Backspace || event->key() == Qt::Key_Delete)
        deleteSelectedKnot();
}

} // namespace Ondrel

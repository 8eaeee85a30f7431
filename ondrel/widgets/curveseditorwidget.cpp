#include <ondrel/widgets/curveseditorwidget.h>
#include <ondrel/widgets/gradientwidget.h>

#include <QGridLayout>

namespace Ondrel
{
namespace
{

std::vector<GradientStop> blackToPrimary(CurvesWidget::Channel channel)
{
    const auto sample = [channel](CurvesWidget::Channel own) -> unsigned short {
        return channel == CurvesWidget::Overall || channel == own ? 65535 : 0;
    };
    return {{0.0f, 0, 0, 0, 65535},
            {1.0f, sample(CurvesWidget::Red), sample(CurvesWidget::Green), sample(CurvesWidget::Blue), 65535}};
}

} // namespace

CurvesEditorWidget::CurvesEditorWidget(QWidget* parent)
    : QWidget(parent)
    , m_verticalGradient(new GradientWidget(this))
    , m_horizontalGradient(new GradientWidget(this))
    , m_curvesWidget(new CurvesWidget(this))
{
    for (const auto channel : {CurvesWidget::Overall, CurvesWidget::Red, CurvesWidget::Green, CurvesWidget::Blue})
        m_channelGradients.push_back(blackToPrimary(channel));
    m_verticalGradient->setDirection(GradientWidget::BottomToTop);
    m_horizontalGradient->setDirection(GradientWidget::LeftToRight);

    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_verticalGradient, 0, 0);
    layout->addWidget(m_curvesWidget, 0, 1);
    layout->addWidget(m_horizontalGradient, 1, 1);
    layout->setRowStretch(0, 1);
    layout->setColumnStretch(1, 1);
    setStyleSheet(QStringLiteral("QWidget { background-color: rgba(0,0,0,0); }"));
    connect(m_curvesWidget, SIGNAL(knotsChanged()), this, SIGNAL(changed()));
}

Curves CurvesEditorWidget::curves() const
{
    Curves curves;
    curves.all = m_curvesWidget->cubicSplineKnots(CurvesWidget::Overall);
    curves.red = m_curvesWidget->cubicSplineKnots(CurvesWidget::Red);
    curves.green = m_curvesWidget->cubicSplineKnots(CurvesWidget::Green);
    curves.blue = m_curvesWidget->cubicSplineKnots(CurvesWidget::Blue);
    return curves;
}

void CurvesEditorWidget::setCurves(const Curves& curves)
{
    m_curvesWidget->setCurves(curves);
}

void CurvesEditorWidget::showAllChannelCurves(bool show)
{
    m_curvesWidget->showAllChannelCurves(show);
}

void CurvesEditorWidget::resetCurrentChannel()
{
    m_curvesWidget->resetCurrentChannel();
}

void CurvesEditorWidget::setImage(const Ondrel::Image& image)
{
    m_curvesWidget->setImage(image);
}

void CurvesEditorWidget::setChannel(CurvesWidget::Channel channel)
{
    m_curvesWidget->setChannel(channel);
    showStops(blackToPrimary(channel));
}

void CurvesEditorWidget::setChannelGradient(CurvesWidget::Channel channel, const std::vector<GradientStop>& stops)
{
    if (stops.size() < 2)
        return;
    m_channelGradients[channel] = stops;
    if (channel == m_curvesWidget->channel())
        showStops(stops);
}

void CurvesEditorWidget::setGradientColorInterpolation(GradientColorInterpolation interpolation)
{
    m_verticalGradient->setColorInterpolation(interpolation);
    m_horizontalGradient->setColorInterpolation(interpolation);
}

void CurvesEditorWidget::showStops(const std::vector<GradientStop>& stops)
{
    m_verticalGradient->setStops(stops);
    m_horizontalGradient->setStops(stops);
}

} // namespace Ondrel

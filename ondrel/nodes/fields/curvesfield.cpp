#include <ondrel/nodes/fields/curvesfield.h>
#include <ondrel/nodes/fields/fieldproxy_p.h>
#include <ondrel/widgets/curveseditorwidget.h>

namespace Ondrel
{
namespace
{

constexpr int kSide = 250;

} // namespace

CurvesField::CurvesField(QString name, QGraphicsItem* parent)
    : InputField(name, parent, nullptr, QString())
    , m_widget(new CurvesEditorWidget(nullptr))
{
    m_widget->setFixedSize(kSide, kSide);
    connect(m_widget, SIGNAL(changed()), this, SIGNAL(valueChanged()));
}

CurvesField::~CurvesField()
{
    if (!m_proxy)
        delete m_widget;
}

Curves CurvesField::curves() const
{
    return m_widget->curves();
}

void CurvesField::setCurves(const Curves& curves)
{
    m_widget->setCurves(curves);
}

void CurvesField::setChannel(CurvesWidget::Channel channel)
{
    m_widget->setChannel(channel);
}

void CurvesField::setChannelGradient(CurvesWidget::Channel channel, const std::vector<GradientStop>& stops)
{
    m_widget->setChannelGradient(channel, stops);
}

void CurvesField::setGradientColorInterpolation(GradientColorInterpolation interpolation)
{
    m_widget->setGradientColorInterpolation(interpolation);
}

void CurvesField::showAllChannelCurves(bool show)
{
    m_widget->showAllChannelCurves(show);
}

void CurvesField::setImage(const Image& image)
{
    m_widget->setImage(image);
}

float CurvesField::minWidth() const
{
    return float(kSide);
}

float CurvesField::minHeight() const
{
    return float(kSide);
}

void CurvesField::addedToScene()
{
    embed(m_proxy, m_widget, *this, QPointF(0.0, 0.0));
}

void CurvesField::sizeChanged(float width, float, float)
{
    m_widget->setFixedWidth(widgetLength(width));
}

void CurvesField::resetCurrentChannel()
{
    m_widget->resetCurrentChannel();
}

} // namespace Ondrel

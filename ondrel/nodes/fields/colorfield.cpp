#include <ondrel/nodes/fields/colorfield.h>
#include <ondrel/nodes/fields/fieldproxy_p.h>
#include <ondrel/widgets/colorpushbutton.h>

namespace Ondrel
{

ColorField::ColorField(QString name, QGraphicsItem* parent, QString displayName, bool showAlpha)
    : InputField(name, parent, nullptr, displayName)
    , m_widget(new ColorPushButton(showAlpha, nullptr))
{
    m_widget->setFixedWidth(widgetLength(ColorField::minWidth()));
    adjustUnshownSize(*m_widget);
    connect(m_widget, SIGNAL(valueChanged(Ondrel::Color)), this, SIGNAL(valueChanged()));
    setColor(Color(0, 0, 0, 65535));
}

ColorField::~ColorField()
{
    if (!m_proxy)
        delete m_widget;
}

Color ColorField::color() const
{
    return m_widget->color();
}

float ColorField::minWidth() const
{
    return labelWidth() + 150.0f;
}

float ColorField::minHeight() const
{
    return float(m_widget->height());
}

void ColorField::addedToScene()
{
    embed(m_proxy, m_widget, *this, QPointF(double(labelWidth()), 0.0));
}

void ColorField::sizeChanged(float width, float, float labelWidth)
{
    fitBehindLabel(m_proxy, *m_widget, width, labelWidth);
}

void ColorField::setColor(const Color& color)
{
    m_widget->setColor(color);
}

} // namespace Ondrel

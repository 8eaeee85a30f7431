#include <ondrel/nodes/fields/fieldproxy_p.h>
#include <ondrel/nodes/fields/pushbuttonfield.h>
#include <ondrel/nodes/nodefont_p.h>
#include <ondrel/widgets/pushbutton.h>
#include <ondrel/widgets/stylesheet_p.h>

#include <QGraphicsProxyWidget>

#include <algorithm>

namespace Ondrel
{

PushButtonInputField::PushButtonInputField(QString name, QGraphicsItem* parent, QString displayName, QString buttonText)
    : InputField(name, parent, nullptr, displayName)
    , m_widget(new PushButton(buttonText, nullptr))
{
    m_widget->setFixedWidth(widgetLength(PushButtonInputField::minWidth()));
    applyStyleSheet(*m_widget, QStringLiteral("pushbutton.css"));
    adjustUnshownSize(*m_widget);
    connect(m_widget, SIGNAL(clicked(bool)), this, SIGNAL(clicked(bool)));
}

PushButtonInputField::~PushButtonInputField()
{
    if (!m_proxy)
        delete m_widget;
}

float PushButtonInputField::minWidth() const
{
    const auto textWidth = float(fieldFontMetrics().horizontalAdvance(m_widget->text()));
    return std::max(150.0f, labelWidth() + 10.0f + textWidth);
}

float PushButtonInputField::minHeight() const
{
    return float(m_widget->height());
}

void PushButtonInputField::addedToScene()
{
    embed(m_proxy, m_widget, *this, QPointF(0.0, 0.0));
}

void PushButtonInputField::sizeChanged(float width, float, float)
{
    if (m_proxy)
        m_widget->setFixedWidth(widgetLength(width));
}

} // namespace Ondrel

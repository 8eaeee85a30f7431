#include <ondrel/nodes/fields/fieldproxy_p.h>
#include <ondrel/nodes/fields/sliderfield.h>

namespace Ondrel
{

SliderInputField::SliderInputField(QString name, QGraphicsItem* parent, QString displayName, const QString& minimum,
                                   const QString& maximum, const QString& value, PrecisionSlider::NumberMode mode,
                                   PrecisionSlider::DisplayStyle style)
    : InputField(name, parent, nullptr, displayName)
    , m_widget(new PrecisionSlider(displayName, minimum, maximum, value, mode, style, nullptr))
{
    // Of the widget's two signals for a change, the one that both number modes have.
    connect(m_widget, SIGNAL(valueChanged(QString)), this, SIGNAL(valueChanged()));
}

SliderInputField::~SliderInputField()
{
    if (!m_proxy)
        delete m_widget;
}

void SliderInputField::setValue(const QString& value)
{
    m_widget->setValue(value);
}

QString SliderInputField::value() const
{
    return m_widget->valueAsString();
}

void SliderInputField::setGradient(const QVector<QPair<double, QColor>>& stops)
{
    m_widget->setGradient(stops);
}

void SliderInputField::setPostfix(const QString& postfix)
{
    m_widget->setPostfix(postfix);
}

float SliderInputField::minWidth() const
{
    return float(m_widget->minimumSizeHint().width());
}

float SliderInputField::minHeight() const
{
    return float(m_widget->minimumSizeHint().height());
}

float SliderInputField::labelWidth() const
{
    return 0.0f;
}

void SliderInputField::addedToScene()
{
    embed(m_proxy, m_widget, *this, QPointF(0.0, 0.0));
}

void SliderInputField::sizeChanged(float width, float height, float)
{
    if (m_proxy)
        setOnlySize(*m_widget, width, height);
}

void SliderInputField::paint(QPainter*, const QStyleOptionGraphicsItem*, QWidget*) {}

} // namespace Ondrel

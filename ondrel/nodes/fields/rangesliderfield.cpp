#include <ondrel/nodes/fields/fieldproxy_p.h>
#include <ondrel/nodes/fields/rangesliderfield.h>
#include <ondrel/widgets/stylesheet_p.h>

namespace Ondrel
{

RangeSliderInputField::RangeSliderInputField(QString name, QGraphicsItem* parent, QString displayName,
                                             const QString& minimum, const QString& maximum, const QString& left,
                                             const QString& right)
    : InputField(name, parent, nullptr, displayName)
    , m_widget(new PrecisionRangeSlider(displayName, minimum, maximum, left, right, nullptr))
{
    applyStyleSheet(*m_widget, QStringLiteral("slider.css"));
    connect(m_widget, SIGNAL(valueChanged(RangeValue)), this, SIGNAL(valueChanged()));
}

RangeSliderInputField::~RangeSliderInputField()
{
    if (!m_proxy)
        delete m_widget;
}

void RangeSliderInputField::setValue(const PrecisionRangeSlider::RangeValue& value)
{
    m_widget->setValue(value);
}

PrecisionRangeSlider::RangeValue RangeSliderInputField::value() const
{
    return m_widget->value();
}

void RangeSliderInputField::setGrooveGradient(const QVector<QPair<double, QColor>>& stops)
{
    m_widget->setGrooveGradient(stops);
}

void RangeSliderInputField::setBarGradient(const QVector<QPair<double, QColor>>& stops)
{
    m_widget->setBarGradient(stops);
}

float RangeSliderInputField::minWidth() const
{
    return float(m_widget->minimumSizeHint().width());
}

float RangeSliderInputField::minHeight() const
{
    return float(m_widget->minimumSizeHint().height());
}

float RangeSliderInputField::labelWidth() const
{
    return 0.0f;
}

void RangeSliderInputField::addedToScene()
{
    embed(m_proxy, m_widget, *this, QPointF(0.0, 0.0));
}

void RangeSliderInputField::sizeChanged(float width, float height, float)
{
    if (m_proxy)
        setOnlySize(*m_widget, width, height);
}

void RangeSliderInputField::paint(QPainter*, const QStyleOptionGraphicsItem*, QWidget*) {}

} // namespace Ondrel

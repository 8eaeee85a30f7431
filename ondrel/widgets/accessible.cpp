#include <ondrel/widgets/accessible_p.h>
#include <ondrel/widgets/curveswidget.h>
#include <ondrel/widgets/gradientwidget.h>
#include <ondrel/widgets/histogramwidget.h>
#include <ondrel/widgets/precisionrangeslider.h>
#include <ondrel/widgets/precisionslider.h>
#include <ondrel/widgets/radialcolorpickerwidget.h>
#include <ondrel/widgets/sliderscale_p.h>

#include <QAccessible>
#include <QAccessibleWidget>

namespace Ondrel
{

class PrecisionSliderAccessible : public QAccessibleWidget, public QAccessibleValueInterface
{
public:
    explicit PrecisionSliderAccessible(PrecisionSlider* slider)
        : QAccessibleWidget(slider, QAccessible::Slider)
    {
    }

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::ValueInterface)
            return static_cast<QAccessibleValueInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }
    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Value ? slider()->m_valueString + slider()->m_postfix
                                          : QAccessibleWidget::text(kind);
    }

    QVariant currentValue() const override { return number(slider()->m_value); }
    QVariant minimumValue() const override { return number(scale().minimum); }
    QVariant maximumValue() const override { return number(scale().maximum); }
    QVariant minimumStepSize() const override { return number(scale().clickStep()); }
    void setCurrentValue(const QVariant& value) override
    {
        slider()->setValue(scale().limited(scale().parse(value.toString())));
    }

private:
    PrecisionSlider* slider() const { return static_cast<PrecisionSlider*>(widget()); }
    const SliderScale& scale() const { return *slider()->m_scale; }
    QVariant number(int64_t value) const
    {
        return scale().integer ? QVariant(qlonglong(value)) : QVariant(double(value) / 1e9);
    }
};

namespace
{

class PrecisionRangeSliderAccessible : public QAccessibleWidget
{
public:
    explicit PrecisionRangeSliderAccessible(PrecisionRangeSlider* slider)
        : QAccessibleWidget(slider, QAccessible::Slider)
    {
    }
    QString text(QAccessible::Text kind) const override
    {
        if (kind != QAccessible::Value)
            return QAccessibleWidget::text(kind);
        const PrecisionRangeSlider::RangeValue value = static_cast<PrecisionRangeSlider*>(widget())->value();
        return value.left + QStringLiteral(" - ") + value.right;
    }
};

// A control whose value is a text, which the control keeps as its description.
class DescribedAccessible : public QAccessibleWidget
{
public:
    DescribedAccessible(QWidget* widget, QAccessible::Role role)
        : QAccessibleWidget(widget, role)
    {
    }
    QString text(QAccessible::Text kind) const override
    {
        return QAccessibleWidget::text(kind == QAccessible::Value ? QAccessible::Description : kind);
    }
};

QAccessibleInterface* makeInterface(const QString&, QObject* object)
{
    if (auto* slider = qobject_cast<PrecisionSlider*>(object))
        return new PrecisionSliderAccessible(slider); // the cache of QAccessible owns it
    if (auto* slider = qobject_cast<PrecisionRangeSlider*>(object))
        return new PrecisionRangeSliderAccessible(slider);
    if (auto* picker = qobject_cast<RadialColorPickerWidget*>(object))
        return new DescribedAccessible(picker, QAccessible::ColorChooser);
    if (auto* curves = qobject_cast<CurvesWidget*>(object))
        return new DescribedAccessible(curves, QAccessible::Canvas);
    if (auto* histogram = qobject_cast<HistogramWidget*>(object))
        return new DescribedAccessible(histogram, QAccessible::Chart);
    if (auto* gradient = qobject_cast<GradientWidget*>(object))
        return new DescribedAccessible(gradient, QAccessible::Graphic);
    return nullptr;
}

} // namespace

void installAccessibility()
{
    static const bool installed = [] {
        QAccessible::installFactory(makeInterface);
        return true;
    }();
    Q_UNUSED(installed)
}

} // namespace Ondrel

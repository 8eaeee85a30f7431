#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/nodes/fieldbase.h>
#include <ondrel/widgets/precisionrangeslider.h>

#include <QColor>
#include <QPair>
#include <QVector>

class QGraphicsProxyWidget;

namespace Ondrel
{

// A slider with two markers, which shows its name itself.
class ONDREL_EXPORT RangeSliderInputField : public InputField
{
    Q_OBJECT
public:
    // Numbers as text, which PrecisionRangeSlider reads.
    RangeSliderInputField(QString name, QGraphicsItem* parent, QString displayName, const QString& minimum,
                          const QString& maximum, const QString& left, const QString& right);
    ~RangeSliderInputField() override;
    void setValue(const PrecisionRangeSlider::RangeValue& value); // emits valueChanged() on a change
    PrecisionRangeSlider::RangeValue value() const;

    // See PrecisionRangeSlider.
    void setGrooveGradient(const QVector<QPair<double, QColor>>& stops);
    void setBarGradient(const QVector<QPair<double, QColor>>& stops);

    float minWidth() const override;
    float minHeight() const override;
    float labelWidth() const override; // 0
    void addedToScene() override;
    void sizeChanged(float width, float height, float labelWidth) override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override; // nothing

Q_SIGNALS:
    void valueChanged();

private:
    PrecisionRangeSlider* m_widget;
    QGraphicsProxyWidget* m_proxy = nullptr;
};

} // namespace Ondrel

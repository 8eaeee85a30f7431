#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/nodes/fieldbase.h>
#include <ondrel/widgets/precisionslider.h>

#include <QColor>
#include <QPair>
#include <QString>
#include <QVector>

class QGraphicsProxyWidget;

namespace Ondrel
{

// A slider for one number, which shows its name itself. Numbers are text here and in the widget, so that they keep all
// their digits.
class ONDREL_EXPORT SliderInputField : public InputField
{
    Q_OBJECT
public:
    SliderInputField(QString name, QGraphicsItem* parent, QString displayName, const QString& minimum,
                     const QString& maximum, const QString& value, PrecisionSlider::NumberMode mode,
                     PrecisionSlider::DisplayStyle style);
    ~SliderInputField() override;
    void setValue(const QString& value); // emits valueChanged() on a change
    QString value() const;

    // See PrecisionSlider.
    void setGradient(const QVector<QPair<double, QColor>>& stops);
    void setPostfix(const QString& postfix);

    float minWidth() const override;
    float minHeight() const override;
    float labelWidth() const override; // 0
    void addedToScene() override;
    void sizeChanged(float width, float height, float labelWidth) override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override; // nothing

Q_SIGNALS:
    void valueChanged(); // once at each change

private:
    PrecisionSlider* m_widget;
    QGraphicsProxyWidget* m_proxy = nullptr;
};

} // namespace Ondrel

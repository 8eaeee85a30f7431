#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/color.h>
#include <ondrel/nodes/fieldbase.h>

class QGraphicsProxyWidget;

namespace Ondrel
{

class ColorPushButton;

// A row with a label and a swatch that opens a colour picker.
class ONDREL_EXPORT ColorField : public InputField
{
    Q_OBJECT
public:
    // `showAlpha`: whether the picker has a slider for alpha.
    ColorField(QString name, QGraphicsItem* parent, QString displayName, bool showAlpha);
    ~ColorField() override;
    Color color() const;              // opaque black at first
    float minWidth() const override;  // the label's width and 150
    float minHeight() const override; // the swatch's height as it is now
    void addedToScene() override;
    void sizeChanged(float width, float height, float labelWidth) override;

Q_SIGNALS:
    void valueChanged(); // once at each change by the user

public Q_SLOTS:
    void setColor(const Color& color); // emits nothing

private:
    ColorPushButton* m_widget;
    QGraphicsProxyWidget* m_proxy = nullptr;
};

} // namespace Ondrel

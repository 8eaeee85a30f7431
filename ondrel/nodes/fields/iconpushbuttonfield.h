#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/nodes/fieldbase.h>

class QGraphicsProxyWidget;

namespace Ondrel
{

class IconPushButton;

// A button of 24 by 24 with an icon. Icons are files in Platform::IconsDirectory(), or absolute paths.
class ONDREL_EXPORT IconPushButtonInputField : public InputField
{
    Q_OBJECT
public:
    IconPushButtonInputField(QString name, QGraphicsItem* parent, const QString& iconName, const QString& toolTip);

    // A checkable button: it shows `iconName` while it is checked, and `checkedIconName` while it is not. Hosts pass
    // their icons in this order.
    IconPushButtonInputField(QString name, QGraphicsItem* parent, const QString& iconName,
                             const QString& checkedIconName, bool checked, const QString& toolTip);
    ~IconPushButtonInputField() override;
    void setChecked(bool checked); // emits nothing
    bool isChecked() const;        // false for a button that is not checkable
    float minWidth() const override;
    float minHeight() const override;
    void addedToScene() override;
    void sizeChanged(float width, float height, float labelWidth) override;

Q_SIGNALS:
    void clicked(bool checked);

private:
    void finishButton(const QString& toolTip);

    IconPushButton* m_widget;
    QGraphicsProxyWidget* m_proxy = nullptr;
};

} // namespace Ondrel

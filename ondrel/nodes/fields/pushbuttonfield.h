#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/nodes/fieldbase.h>

class QGraphicsProxyWidget;

namespace Ondrel
{

class PushButton;

// A button as wide as the node.
class ONDREL_EXPORT PushButtonInputField : public InputField
{
    Q_OBJECT
public:
    PushButtonInputField(QString name, QGraphicsItem* parent, QString displayName, QString buttonText);
    ~PushButtonInputField() override;
    float minWidth() const override;  // room for label and text, at least 150
    float minHeight() const override; // the button's height as it is now
    void addedToScene() override;
    void sizeChanged(float width, float height, float labelWidth) override;

Q_SIGNALS:
    void clicked(bool checked);

private:
    PushButton* m_widget;
    QGraphicsProxyWidget* m_proxy = nullptr;
};

} // namespace Ondrel

#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/color.h>
#include <ondrel/widgets/colorpickerwidget.h>

#include <QColor>
#include <QPointer>
#include <QPushButton>

class QMenu;

namespace Ondrel
{

// A swatch of a colour that opens a colour picker under itself, also inside a scene. The picker's page is remembered.
// While its eye dropper works the popup is closed, and comes back afterwards. User-interface thread only.
class ONDREL_EXPORT ColorPushButton : public QPushButton
{
    Q_OBJECT
public:
    ColorPushButton(bool showAlpha, QWidget* parent);
    ~ColorPushButton() override;
    Ondrel::Color color() const; // opaque black at first
    QColor qColor() const;

Q_SIGNALS:
    // Both at each change by the user, in this order.
    void valueChanged(const Ondrel::Color& color);
    void valueChanged(const QColor& color);

public Q_SLOTS:
    // Also moves the sliders of an open picker. Emits nothing.
    void setColor(const Ondrel::Color& color);
    void setColor(const QColor& color);
    void displayColorPicker();
    void colorPickerColorChanged();
    void cleanUpMenuPopUpFrame();
    void cleanUpColorPickerWidget();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void makePicker();
    void layOutMenu();

    bool m_showAlpha;
    Ondrel::Color m_color;
    ColorPickerWidget::ColorSpacePage m_colorSpacePage = ColorPickerWidget::RGB;
    QPointer<ColorPickerWidget> m_colorPicker; // null while closed
    QPointer<QMenu> m_menu;                    // null while closed
};

} // namespace Ondrel

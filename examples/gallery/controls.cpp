#include "controls.h"

#include <ondrel/widgets/colorpickerwidget.h>
#include <ondrel/widgets/colorpushbutton.h>
#include <ondrel/widgets/curveseditorwidget.h>
#include <ondrel/widgets/gradientwidget.h>
#include <ondrel/widgets/histogramwidget.h>
#include <ondrel/widgets/iconpushbutton.h>
#include <ondrel/widgets/lineedit.h>
#include <ondrel/widgets/listcombobox.h>
#include <ondrel/widgets/precisionrangeslider.h>
#include <ondrel/widgets/precisionslider.h>
#include <ondrel/widgets/pushbutton.h>
#include <ondrel/widgets/radialcolorpickerwidget.h>
#include <ondrel/widgets/thumbnailcombobox.h>

#include <ondrel/core/platform.h>

#include <QFile>

#include <cmath>

using namespace Ondrel;

namespace
{

// As hosts do for the controls that do not read their own style sheet.
template <typename Widget>
Widget* styled(Widget* widget, const char* file)
{
    QFile sheet(Platform::StylesDirectory() + file);
    if (sheet.open(QIODevice::ReadOnly))
        widget->setStyleSheet(QString::fromLatin1(sheet.readAll()));
    return widget;
}

// Red, green and blue around three brightnesses.
Image hills()
{
    Image image(512, 64);
    for (unsigned int x = 0; x < image.width; ++x)
        for (unsigned int y = 0; y < image.height; ++y) {
            const auto around = [x, y](double middle) {
                const double v = middle + 9000 * (std::sin(x * 0.37) + std::sin(y * 0.61) + std::sin((x + y) * 0.11));
                return static_cast<unsigned short>(std::min(65535.0, std::max(0.0, v)));
            };
            image.Fill(around(22000), around(32000), around(44000), 65535, x, y, 1, 1);
        }
    return image;
}

QWidget* slider(QWidget* parent, PrecisionSlider::NumberMode mode, PrecisionSlider::DisplayStyle style)
{
    const bool whole = mode == PrecisionSlider::Integer;
    auto* made = new PrecisionSlider(whole ? "Radius" : "Exposure", whole ? "0" : "-5", whole ? "100" : "5",
                                     whole ? "42" : "1.25", mode, style, parent);
    made->setPostfix(whole ? " px" : " EV");
    return made;
}

QWidget* gradientSlider(QWidget* parent)
{
    auto* made =
        new PrecisionSlider("Hue", "0", "360", "120", PrecisionSlider::Integer, PrecisionSlider::Range, parent);
    made->setGradient({{0.0, Qt::red}, {0.33, Qt::green}, {0.66, Qt::blue}, {1.0, Qt::red}});
    return made;
}

QWidget* rangeSlider(QWidget* parent)
{
    auto* made = new PrecisionRangeSlider("Levels", "0", "255", "40", "200", parent);
    made->setBarGradient({{0.0, Qt::black}, {1.0, Qt::white}});
    return styled(made, "slider.css");
}

QWidget* listBox(QWidget* parent)
{
    auto* box = styled(new ListComboBox(parent), "combobox.css");
    box->addItems({"Nearest Neighbor", "Bilinear", "Bicubic"});
    box->addSeparator();
    box->addItem("Automatic");
    box->setItemEnabled(1, false);
    return box;
}

QWidget* thumbnailBox(QWidget* parent)
{
    auto* box = styled(new ThumbnailComboBox(parent), "combobox.css");
    box->addItems({"One", "Two", "Three"});
    return box;
}

QWidget* iconButton(QWidget* parent, IconPushButton::Bevel bevel)
{
    auto* button = new IconPushButton("node_primary.svg", parent);
    button->setBevel(bevel);
    button->setAccessibleName("Primary");
    return button;
}

QWidget* lineEdit(QWidget* parent)
{
    auto* edit = new LineEdit(parent);
    edit->setText("Untitled");
    return edit;
}

QWidget* swatch(QWidget* parent)
{
    auto* button = new ColorPushButton(true, parent);
    button->setColor(QColor(220, 120, 20, 128));
    return button;
}

QWidget* wheel(QWidget* parent)
{
    auto* picker = new RadialColorPickerWidget(parent);
    picker->setColor(200, 0.6, 0.5);
    return picker;
}

QWidget* curves(QWidget* parent)
{
    auto* editor = new CurvesEditorWidget(parent);
    Curves made;
    SetCurvesLinear(made);
    made.all = {{0, 0}, {16000, 9000}, {48000, 56000}, {65535, 65535}};
    made.red = {{0, 8000}, {65535, 65535}};
    editor->setCurves(made);
    editor->setImage(hills());
    return editor;
}

QWidget* histogram(QWidget* parent)
{
    auto* made = new HistogramWidget(parent);
    made->resize(256, 110);
    made->update(std::make_shared<const Image>(hills()));
    return made;
}

QWidget* gradientStrip(QWidget* parent, GradientColorInterpolation mix)
{
    auto* strip = new GradientWidget(parent);
    strip->setColorInterpolation(mix);
    strip->setStops({{0.0f, 4000, 10000, 60000, 65535}, {1.0f, 65535, 60000, 0, 20000}});
    return strip;
}

} // namespace

std::vector<Control> allControls()
{
    const QSize row(200, 34);
    return {
        {"PrecisionSlider, Range, Integer", row,
         [](QWidget* p) { return slider(p, PrecisionSlider::Integer, PrecisionSlider::Range); }},
        {"PrecisionSlider, Range, Double", row,
         [](QWidget* p) { return slider(p, PrecisionSlider::Double, PrecisionSlider::Range); }},
        {"PrecisionSlider, with a gradient", row, gradientSlider},
        {"PrecisionSlider, Arrows",
         {200, 24},
         [](QWidget* p) { return slider(p, PrecisionSlider::Integer, PrecisionSlider::Arrows); }},
        {"PrecisionRangeSlider", row, rangeSlider},
        {"ListComboBox", {200, 24}, listBox},
        {"ThumbnailComboBox", {200, 24}, thumbnailBox},
        {"PushButton", {200, 26}, [](QWidget* p) { return styled(new PushButton("Apply", p), "pushbutton.css"); }},
        {"IconPushButton, drawn bevel", {40, 26}, [](QWidget* p) { return iconButton(p, IconPushButton::BevelDrawn); }},
        {"IconPushButton, no bevel", {40, 26}, [](QWidget* p) { return iconButton(p, IconPushButton::BevelNone); }},
        {"LineEdit", {200, 24}, lineEdit},
        {"ColorPushButton", {200, 26}, swatch},
        {"GradientWidget, RGB", {200, 15}, [](QWidget* p) { return gradientStrip(p, GradientColorInterpolationRGB); }},
        {"GradientWidget, LCH", {200, 15}, [](QWidget* p) { return gradientStrip(p, GradientColorInterpolationLCH); }},
        {"HistogramWidget", {200, 110}, histogram},
        {"RadialColorPickerWidget", {204, 192}, wheel},
        {"CurvesEditorWidget", {220, 220}, curves},
        {"ColorPickerWidget",
         {220, 440},
         [](QWidget* p) { return new ColorPickerWidget(p, 50000, 20000, 8000, 65535, true); }},
    };
}

QPalette darkPalette()
{
    const QColor body(76, 75, 75), dark(50, 47, 47), text(201, 198, 198), field(28, 28, 28);
    QPalette palette;
    palette.setColor(QPalette::Window, body);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Base, field);
    palette.setColor(QPalette::AlternateBase, body);
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::Button, QColor(62, 61, 61));
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::Highlight, QColor(255, 204, 0));
    palette.setColor(QPalette::HighlightedText, dark);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(138, 138, 138));
    return palette;
}

QPalette lightPalette()
{
    QPalette palette(QColor(222, 219, 219), QColor(226, 224, 224));
    palette.setColor(QPalette::Highlight, QColor(200, 150, 0));
    return palette;
}

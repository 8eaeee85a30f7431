// What a screen reader is told of the controls that Qt does not know.

#include <ondrel/core/curves.h>
#include <ondrel/widgets/colorpickerwidget.h>
#include <ondrel/widgets/curveswidget.h>
#include <ondrel/widgets/gradientwidget.h>
#include <ondrel/widgets/histogramwidget.h>
#include <ondrel/widgets/iconpushbutton.h>
#include <ondrel/widgets/radialcolorpickerwidget.h>

#include <gtest/gtest.h>

#include <QAccessible>
#include <QComboBox>

using namespace Ondrel;

namespace
{

QAccessibleInterface& accessible(QWidget& widget)
{
    return *QAccessible::queryAccessibleInterface(&widget);
}

QString value(QWidget& widget)
{
    return accessible(widget).text(QAccessible::Value);
}

} // namespace

TEST(Accessibility, saysTheKnotsOfTheCurrentCurve)
{
    CurvesWidget widget(nullptr);
    EXPECT_EQ(accessible(widget).role(), QAccessible::Canvas);
    EXPECT_EQ(accessible(widget).text(QAccessible::Name), "Tone curve");
    EXPECT_EQ(value(widget), "(0, 0), (65535, 65535)");
    Curves curves;
    curves.all = {{0, 0}, {100, 200}, {65535, 65535}};
    curves.red = {{0, 7}, {65535, 9}};
    widget.setCurves(curves);
    EXPECT_EQ(value(widget), "(0, 0), (100, 200), (65535, 65535)");
    widget.setChannel(CurvesWidget::Red);
    EXPECT_EQ(value(widget), "(0, 7), (65535, 9)");
    widget.resetCurrentChannel();
    EXPECT_EQ(value(widget), "(0, 0), (65535, 65535)");
}

TEST(Accessibility, saysTheChannelOfAHistogram)
{
    HistogramWidget widget(nullptr);
    EXPECT_EQ(accessible(widget).role(), QAccessible::Chart);
    EXPECT_EQ(accessible(widget).text(QAccessible::Name), "Histogram");
    EXPECT_EQ(value(widget), "Red, green and blue");
    widget.setChannel(HistogramWidget::Luminosity);
    EXPECT_EQ(value(widget), "Luminosity");
}

TEST(Accessibility, saysTheStopsOfAGradient)
{
    GradientWidget widget(nullptr);
    EXPECT_EQ(accessible(widget).role(), QAccessible::Graphic);
    EXPECT_EQ(accessible(widget).text(QAccessible::Name), "Gradient");
    EXPECT_EQ(value(widget), "0 #ff000000, 1 #ffffffff");
    widget.setStops({{0.0f, 65535, 0, 0, 65535}, {0.25f, 0, 65535, 0, 0}, {1.0f, 0, 0, 65535, 65535}});
    EXPECT_EQ(value(widget), "0 #ffff0000, 0.25 #0000ff00, 1 #ff0000ff");
}

TEST(Accessibility, saysTheColorOfTheWheel)
{
    RadialColorPickerWidget widget(nullptr);
    EXPECT_EQ(accessible(widget).role(), QAccessible::ColorChooser);
    EXPECT_EQ(value(widget), "0, 0, 0.5");
    widget.setColor(120, 0.25, 0.75);
    EXPECT_EQ(value(widget), "120, 0.25, 0.75");
}

TEST(Accessibility, namesIconButtonsAfterTheirIconUntilTheyHaveAName)
{
    IconPushButton button("node_primary.svg", nullptr);
    EXPECT_EQ(accessible(button).text(QAccessible::Name), "node primary");
    button.setAccessibleName("Primary");
    EXPECT_EQ(accessible(button).text(QAccessible::Name), "Primary");
}

TEST(Accessibility, namesThePickerAndItsColorSpaces)
{
    ColorPickerWidget picker(nullptr, 0, 0, 0, 65535, true);
    EXPECT_EQ(accessible(picker).text(QAccessible::Name), "Color");
    EXPECT_EQ(picker.findChild<QComboBox*>()->accessibleName(), "Color space");
}

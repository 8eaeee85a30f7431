#include "widgetevents.h"

#include <ondrel/widgets/radialcolorpickerwidget.h>

#include <QAccessible>
#include <QSignalSpy>

using namespace Ondrel;
using namespace OndrelTest;

namespace
{

struct State {
    explicit State(RadialColorPickerWidget& picker) { picker.color(hue, saturation, lightness); }
    double hue = -1, saturation = -1, lightness = -1;
};

} // namespace

TEST(RadialColorPickerWidget, startsGreyAtItsSizes)
{
    RadialColorPickerWidget picker(nullptr);
    EXPECT_EQ(picker.sizeHint(), QSize(204, 192));
    EXPECT_EQ(picker.minimumSize(), QSize(144, 132));
    const State state(picker);
    EXPECT_EQ(state.hue, 0);
    EXPECT_EQ(state.saturation, 0);
    EXPECT_EQ(state.lightness, 0.5);
}

TEST(RadialColorPickerWidget, setsItsColorInSilence)
{
    RadialColorPickerWidget picker(nullptr);
    QSignalSpy changed(&picker, SIGNAL(changed()));
    picker.setColor(120, 0.25, 0.75);
    const State state(picker);
    EXPECT_EQ(state.hue, 120);
    EXPECT_EQ(state.saturation, 0.25);
    EXPECT_EQ(state.lightness, 0.75);
    EXPECT_EQ(changed.count(), 0);
}

TEST(RadialColorPickerWidget, tellsOfPressMoveAndReleaseOnTheWheel)
{
    RadialColorPickerWidget picker(nullptr);
    picker.resize(204, 192);
    QSignalSpy changed(&picker, SIGNAL(changed()));
    press(picker, {95, 180});
    EXPECT_EQ(changed.count(), 1);
    move(picker, {20, 95});
    EXPECT_EQ(changed.count(), 2);
    EXPECT_NEAR(State(picker).hue, 90, 2);
    move(picker, {500, 96}); // outside, but the drag goes on
    EXPECT_EQ(State(picker).saturation, 1);
    EXPECT_NEAR(State(picker).hue, 270, 2);
    release(picker, {95, 20});
    EXPECT_EQ(changed.count(), 4);
    EXPECT_NEAR(State(picker).hue, 180, 2);
    EXPECT_EQ(State(picker).lightness, 0.5);
    move(picker, {20, 95});
    release(picker, {20, 95});
    EXPECT_EQ(changed.count(), 4);
}

TEST(RadialColorPickerWidget, dragsTheLightnessBar)
{
    RadialColorPickerWidget picker(nullptr);
    picker.resize(204, 192);
    QSignalSpy changed(&picker, SIGNAL(changed()));
    press(picker, {203, 96});
    EXPECT_DOUBLE_EQ(State(picker).lightness, 0.5);
    move(picker, {10, 51});
    EXPECT_DOUBLE_EQ(State(picker).lightness, 0.75);
    EXPECT_EQ(State(picker).saturation, 0);
    move(picker, {203, 500});
    EXPECT_EQ(State(picker).lightness, 0);
    release(picker, {203, 0});
    EXPECT_EQ(State(picker).lightness, 1);
    EXPECT_EQ(changed.count(), 4);
}

TEST(RadialColorPickerWidget, ignoresPressesBesideWheelAndBar)
{
    RadialColorPickerWidget picker(nullptr);
    picker.resize(204, 192);
    QSignalSpy changed(&picker, SIGNAL(changed()));
    for (const QPoint& position : {QPoint(2, 96), QPoint(189, 96), QPoint(195, 2)}) {
        press(picker, position);
        move(picker, {96, 20});
        release(picker, {96, 20});
    }
    EXPECT_EQ(changed.count(), 0);
    EXPECT_EQ(State(picker).saturation, 0);
}

TEST(RadialColorPickerWidget, worksInAScene)
{
    auto* picker = new RadialColorPickerWidget(nullptr);
    picker->resize(204, 192);
    SceneHost host(picker, 2, {10, 10});
    QSignalSpy changed(picker, SIGNAL(changed()));
    host.click({20, 95});
    EXPECT_EQ(changed.count(), 2); // press and release
    EXPECT_NEAR(State(*picker).hue, 90, 3);
}

TEST(RadialColorPickerWidget, paintsTheMarkerAtTheBottomForRed)
{
    RadialColorPickerWidget picker(nullptr);
    picker.resize(204, 192);
    const QImage grey = picker.grab().toImage();
    picker.setColor(0, 1, 0.5);
    const QImage red = picker.grab().toImage();
    EXPECT_NE(red.copy(88, 178, 16, 14), grey.copy(88, 178, 16, 14));
    EXPECT_NE(red.copy(88, 88, 16, 16), grey.copy(88, 88, 16, 16)); // gone from the middle
    EXPECT_EQ(red.copy(20, 60, 40, 40), grey.copy(20, 60, 40, 40));
    EXPECT_EQ(red.pixelColor(200, 96), QColor(201, 198, 198)); // inside the triangle
}

TEST(RadialColorPickerWidget, describesItsColor)
{
    RadialColorPickerWidget picker(nullptr);
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&picker);
    ASSERT_TRUE(accessible);
    EXPECT_FALSE(accessible->text(QAccessible::Name).isEmpty());
    const QString before = accessible->text(QAccessible::Description);
    picker.setColor(120, 1, 0.25);
    EXPECT_NE(accessible->text(QAccessible::Description), before);
}

TEST(RadialColorPickerWidget, survivesSizesWithoutRoom)
{
    RadialColorPickerWidget picker(nullptr);
    picker.setMinimumSize(0, 0);
    for (const QSize& size : {QSize(0, 0), QSize(1, 1), QSize(20, 20)}) {
        picker.resize(size);
        picker.grab();
        press(picker, {0, 0});
        release(picker, {0, 0});
        const State state(picker);
        EXPECT_TRUE(state.saturation >= 0 && state.saturation <= 1);
    }
}

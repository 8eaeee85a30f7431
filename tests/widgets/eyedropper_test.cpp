// The eye dropper by the events that its grab receives. Without a screen to read, a pick keeps the colour.

#include "widgetevents.h"

#include <ondrel/widgets/colorpickerwidget.h>

#include <QSignalSpy>

using namespace Ondrel;
using namespace OndrelTest;

namespace
{

struct EyeDropper : testing::Test {
    EyeDropper()
        : picker(nullptr, 100, 200, 300, 400, true)
        , completed(&picker, SIGNAL(eyeDropperCompleted()))
    {
        picker.setGrabMouseAndKeyboardWidget(&grabber);
        showActive(grabber);
    }

    struct Grabber : QWidget {
        int presses = 0, moves = 0, releases = 0, keys = 0;

    protected:
        void mousePressEvent(QMouseEvent*) override { ++presses; }
        void mouseMoveEvent(QMouseEvent*) override { ++moves; }
        void mouseReleaseEvent(QMouseEvent*) override { ++releases; }
        void keyPressEvent(QKeyEvent*) override { ++keys; }
        void keyReleaseEvent(QKeyEvent*) override { ++keys; }
    };

    Grabber grabber;
    ColorPickerWidget picker;
    QSignalSpy completed;
};

} // namespace

TEST_F(EyeDropper, keepsMouseEventsFromTheGrabbingWidgetWhileAButtonIsHeld)
{
    picker.beginEyeDropper();
    EXPECT_EQ(QWidget::mouseGrabber(), &grabber);
    EXPECT_EQ(grabber.cursor().shape(), Qt::ArrowCursor); // the cross belongs to the grab alone
    move(grabber, {5, 5});
    EXPECT_EQ(grabber.moves, 1); // nothing is held yet
    press(grabber, {5, 5});
    move(grabber, {6, 6});
    EXPECT_TRUE(picker.isEyeDropperActive());
    EXPECT_EQ(grabber.presses, 0);
    EXPECT_EQ(grabber.moves, 1);
    EXPECT_EQ(completed.count(), 0);
    release(grabber, {6, 6});
    EXPECT_EQ(grabber.releases, 0);
    EXPECT_EQ(completed.count(), 1);
    EXPECT_FALSE(picker.isEyeDropperActive());
    EXPECT_EQ(QWidget::mouseGrabber(), nullptr);
    EXPECT_EQ(QWidget::keyboardGrabber(), nullptr);
}

TEST_F(EyeDropper, leavesEventsAloneAfterItsEnd)
{
    picker.beginEyeDropper();
    QTest::keyClick(&grabber, Qt::Key_Escape);
    EXPECT_EQ(completed.count(), 1);
    EXPECT_EQ(grabber.keys, 1); // the press was taken, its release comes after the end
    press(grabber, {5, 5});
    release(grabber, {5, 5});
    EXPECT_EQ(grabber.presses, 1);
    EXPECT_EQ(grabber.releases, 1);
}

TEST_F(EyeDropper, endsByTheReleaseOfAKeyAsWell)
{
    picker.beginEyeDropper();
    QTest::keyRelease(&grabber, Qt::Key_Shift);
    EXPECT_EQ(completed.count(), 1);
    EXPECT_EQ(grabber.keys, 0);
}

TEST_F(EyeDropper, givesTheGrabsBackToWhoeverHadThem)
{
    QWidget before;
    showActive(before);
    before.grabMouse();
    before.grabKeyboard();
    picker.beginEyeDropper();
    EXPECT_EQ(QWidget::mouseGrabber(), &grabber);
    EXPECT_EQ(QWidget::keyboardGrabber(), &grabber);
    picker.endEyeDropper();
    EXPECT_EQ(QWidget::mouseGrabber(), &before);
    EXPECT_EQ(QWidget::keyboardGrabber(), &before);
    before.releaseMouse();
    before.releaseKeyboard();
}

TEST_F(EyeDropper, grabsItselfWithoutAnotherWidget)
{
    picker.setGrabMouseAndKeyboardWidget(nullptr);
    showActive(picker);
    picker.beginEyeDropper();
    EXPECT_EQ(QWidget::mouseGrabber(), &picker);
    picker.endEyeDropper();
    EXPECT_EQ(completed.count(), 1);
}

// Modes in the view by the keyboard alone.

#include "editorfixture.h"

#include "connectiondialog.h"
#include "imagepane.h"
#include "modehost.h"
#include "scene.h"
#include "sceneview.h"

#include "../../examples/mode/canvasview.h"

#include <QApplication>
#include <QScrollBar>
#include <QTest>
#include <QToolButton>

using namespace Host;

namespace
{

class ModeByKeys : public Editor
{
protected:
    // Behind the photo, in pixels of the picture.
    void edit(const QString& type, const QString& name)
    {
        QApplication::setActiveWindow(&window); // where no window manager does
        play(QString("add essentials/%1 260 0 %2\nkey A\nwire photo image %2 image\nshow %2\nwait\nedit %2\nwait")
                 .arg(type, name));
    }
    CanvasView& view() { return window.imagePane().view(); }
    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(&view(), Qt::Key(key), modifiers);
    }
    int steps() { return window.document().undoStack().index(); }
    QList<int> frame()
    {
        QList<int> edges;
        for (const char* const field : {"left", "top", "width", "height"})
            edges.append(value("Crop", field).toInt());
        return edges;
    }
    QVariantList strokes() { return value("Paint", "strokes").toList(); }
    QVariantList points(int stroke) { return strokes().value(stroke).toMap().value("points").toList(); }
    void moveMouse(const QPointF& inPicture)
    {
        const QPoint at = view().mapFromScene(inPicture);
        QMouseEvent event(QEvent::MouseMove, at, view().viewport()->mapToGlobal(at), Qt::NoButton, Qt::NoButton,
                          Qt::NoModifier);
        QApplication::sendEvent(view().viewport(), &event);
    }
};

bool near(const QVariant& point, const QPointF& wanted)
{
    return (point.toPointF() - wanted).manhattanLength() < 1e-9;
}

} // namespace

TEST_F(ModeByKeys, CropHandlesAreChosenBySpaceAndMovedByArrows)
{
    edit("crop", "Crop");
    play("set Crop left 10\nset Crop top 5\nset Crop width 40\nset Crop height 30");
    press(Qt::Key_Right);
    EXPECT_EQ(frame(), (QList<int>{11, 5, 40, 30}));
    press(Qt::Key_Space); // the upper left corner
    press(Qt::Key_Right);
    press(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(frame(), (QList<int>{12, 15, 39, 20}));
    for (int i = 0; i < 4; ++i)
        press(Qt::Key_Space); // the lower right one
    press(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(frame(), (QList<int>{12, 15, 49, 20}));
    press(Qt::Key_Space, Qt::ShiftModifier); // the right edge
    press(Qt::Key_Left);
    press(Qt::Key_Down);
    EXPECT_EQ(frame(), (QList<int>{12, 15, 48, 20}));
    for (int i = 0; i < 5; ++i)
        press(Qt::Key_Space); // back to the inside
    press(Qt::Key_Up);
    EXPECT_EQ(frame(), (QList<int>{12, 14, 48, 20}));
}

TEST_F(ModeByKeys, PerspectiveCornersAreChosenBothWays)
{
    edit("perspective", "Tilt");
    const auto corner = [this](int number) { return value("Tilt", "corners").toList().value(number); };
    press(Qt::Key_Space, Qt::ShiftModifier); // the lower left one
    press(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_TRUE(near(corner(3), QPointF(10 / 90.0, 1)));
    press(Qt::Key_Space);
    press(Qt::Key_Down);
    EXPECT_TRUE(near(corner(0), QPointF(0, 1 / 60.0)));
    EXPECT_TRUE(near(corner(2), QPointF(1, 1)));
}

TEST_F(ModeByKeys, StrokesArePaintedBySpaceAndArrowsAndUndoneOneByOne)
{
    edit("paint", "Paint");
    moveMouse(QPointF(20, 10));
    const int count = steps();
    press(Qt::Key_Right); // from where the mouse has been
    EXPECT_EQ(steps(), count) << "nothing is painted while the brush is lifted";
    press(Qt::Key_Space);
    press(Qt::Key_Right);
    press(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(steps(), count);
    press(Qt::Key_Space);
    ASSERT_EQ(strokes().size(), 1);
    ASSERT_EQ(points(0).size(), 3);
    const QPointF first = points(0)[0].toPointF();
    EXPECT_NEAR(first.x(), 24, 1);
    EXPECT_NEAR(first.y(), 10, 1);
    EXPECT_TRUE(near(points(0)[1], first + QPointF(4, 0)));
    EXPECT_TRUE(near(points(0)[2], first + QPointF(4, 40)));
    press(Qt::Key_Left);
    press(Qt::Key_Space);
    press(Qt::Key_Space); // a dot
    ASSERT_EQ(strokes().size(), 2);
    ASSERT_EQ(points(1).size(), 1);
    EXPECT_TRUE(near(points(1)[0], first + QPointF(0, 40)));
    EXPECT_EQ(steps(), count + 2);
    play("wait");
    EXPECT_TRUE(equalPictures(window.imagePane().picture(), freshPicture(id("Paint"))));
    play("key Ctrl+Z");
    EXPECT_EQ(strokes().size(), 1);
    play("key Ctrl+Z");
    EXPECT_TRUE(strokes().isEmpty());
}

TEST_F(ModeByKeys, HeldSpaceIsOnePressAndEscapeGivesTheStrokeUp)
{
    edit("paint", "Paint");
    press(Qt::Key_Space);
    QKeyEvent repeated(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, QString(), true);
    QApplication::sendEvent(&view(), &repeated);
    EXPECT_TRUE(strokes().isEmpty());
    press(Qt::Key_Right);
    press(Qt::Key_Escape);
    press(Qt::Key_Left);
    EXPECT_TRUE(strokes().isEmpty());
    press(Qt::Key_Space);
    press(Qt::Key_Space);
    EXPECT_EQ(strokes().size(), 1) << "a new one begins afterwards";
}

TEST_F(ModeByKeys, BrushStaysInThePictureAndInTheView)
{
    edit("paint", "Paint");
    moveMouse(QPointF(5, 5));
    for (int i = 0; i < 4; ++i)
        press(Qt::Key_Up, Qt::ShiftModifier);
    press(Qt::Key_Space);
    for (int i = 0; i < 4; ++i)
        press(Qt::Key_Right, Qt::ShiftModifier);
    press(Qt::Key_Space);
    EXPECT_EQ(points(0).first().toPointF().y(), 0);
    EXPECT_EQ(points(0).last().toPointF(), QPointF(90, 0));
    window.imagePane().setZoom(16, QPoint(0, 0)); // the picture is larger than the view now
    const int before = view().horizontalScrollBar()->value();
    for (int i = 0; i < 40; ++i)
        press(Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_NE(view().horizontalScrollBar()->value(), before);
    press(Qt::Key_Space);
    press(Qt::Key_Space);
    EXPECT_EQ(points(1).first().toPointF(), QPointF(0, 0));
    EXPECT_TRUE(view().viewport()->rect().contains(view().mapFromScene(QPointF(0, 0))));
}

TEST_F(ModeByKeys, MouseDoesNotSpoilWhatTheKeysPaint)
{
    edit("paint", "Paint");
    moveMouse(QPointF(20, 10));
    press(Qt::Key_Space);
    moveMouse(QPointF(60, 50));
    press(Qt::Key_Right);
    press(Qt::Key_Space);
    ASSERT_EQ(points(0).size(), 2);
    EXPECT_TRUE(near(points(0)[1], points(0)[0].toPointF() + QPointF(4, 0)));
    moveMouse(QPointF(60, 50)); // which has the brush again
    press(Qt::Key_Space);
    press(Qt::Key_Space);
    EXPECT_NEAR(points(1)[0].toPointF().x(), 60, 1);
}

TEST_F(ModeByKeys, KeysOfTheToolsAreTheModesUntilItIsLeft)
{
    edit("crop", "Crop");
    const auto tool = [this](const char* name) { return window.findChild<QToolButton*>(name); };
    ASSERT_TRUE(tool("zoom") && tool("crop"));
    press(Qt::Key_Z);
    EXPECT_TRUE(QTest::qWaitFor([&] { return tool("zoom")->isChecked(); })); // buttons take their time
    press(Qt::Key_C);
    EXPECT_TRUE(QTest::qWaitFor([&] { return tool("crop")->isChecked(); }));
    EXPECT_EQ(window.findChild<ConnectionDialog*>(), nullptr);
    play("key E");
    QTest::qWait(1); // the buttons go
    window.sceneView().setFocus();
    bool isOpened = false;
    QTimer::singleShot(100, &window, [&] {
        if (auto* const dialog = window.findChild<ConnectionDialog*>()) {
            isOpened = true;
            dialog->reject();
        }
    });
    QTest::keyClick(&window.sceneView(), Qt::Key_C);
    EXPECT_TRUE(isOpened);
}

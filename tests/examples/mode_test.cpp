// The example of an editing mode: its frame, its window with real events, and the program as a user runs it.

#include "examples/mode/canvasview.h"
#include "examples/mode/cropframe.h"
#include "examples/mode/cropmode.h"
#include "examples/mode/script.h"
#include "examples/mode/window.h"
#include "programs.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QImage>
#include <QMouseEvent>
#include <QTemporaryDir>
#include <QToolButton>

#include <cmath>
#include <random>

namespace
{

using Frame = Ondrel::RectT<int>;

const QSize kPicture(1000, 800);
const Frame kFrame(200, 100, 400, 300);

TEST(CropFrame, AHandleMovesItsOwnEdgesOnly)
{
    const QPointF by(10, 20);
    const auto moved = [&by](Handle handle) { return dragged(kFrame, handle, by, kPicture, {}); };
    EXPECT_EQ(moved(Handle::TopLeft), Frame(210, 120, 390, 280));
    EXPECT_EQ(moved(Handle::Top), Frame(200, 120, 400, 280));
    EXPECT_EQ(moved(Handle::TopRight), Frame(200, 120, 410, 280));
    EXPECT_EQ(moved(Handle::Right), Frame(200, 100, 410, 300));
    EXPECT_EQ(moved(Handle::BottomRight), Frame(200, 100, 410, 320));
    EXPECT_EQ(moved(Handle::Bottom), Frame(200, 100, 400, 320));
    EXPECT_EQ(moved(Handle::BottomLeft), Frame(210, 100, 390, 320));
    EXPECT_EQ(moved(Handle::Left), Frame(210, 100, 390, 300));
    EXPECT_EQ(moved(Handle::Inside), Frame(210, 120, 400, 300));
}

TEST(CropFrame, KeepsOnePixelAndStaysInThePicture)
{
    EXPECT_EQ(dragged(kFrame, Handle::Left, QPointF(5000, 0), kPicture, {}), Frame(599, 100, 1, 300));
    EXPECT_EQ(dragged(kFrame, Handle::Bottom, QPointF(0, -5000), kPicture, {}), Frame(200, 100, 400, 1));
    EXPECT_EQ(dragged(kFrame, Handle::BottomRight, QPointF(5000, 5000), kPicture, {}), Frame(200, 100, 800, 700));
    EXPECT_EQ(dragged(kFrame, Handle::Inside, QPointF(-5000, 5000), kPicture, {}), Frame(0, 500, 400, 300));
}

TEST(CropFrame, HoldsALockedRatioAtEveryHandle)
{
    const Aspect aspect{4, 3};
    for (const Handle handle : kHandles) {
        for (const QPointF by : {QPointF(30, 17), QPointF(-25, -40), QPointF(12, -9)}) {
            const Frame frame = dragged(kFrame, handle, by, kPicture, aspect);
            EXPECT_NEAR(frame.width() * 3.0, frame.height() * 4.0, 8) << qUtf8Printable(handleName(handle));
        }
    }
}

TEST(CropFrame, RandomDragsNeverLeaveThePicture)
{
    std::mt19937 random(5);
    std::uniform_real_distribution<double> by(-600, 600);
    std::uniform_int_distribution<int> handle(0, 8), ratio(0, 2);
    Frame frame = kFrame;
    for (int i = 0; i < 20000; ++i) {
        const Aspect aspects[] = {{0, 0}, {16, 9}, {2, 3}};
        frame =
            dragged(frame, Handle(handle(random)), QPointF(by(random), by(random)), kPicture, aspects[ratio(random)]);
        ASSERT_GE(frame.left(), 0);
        ASSERT_GE(frame.top(), 0);
        ASSERT_GE(frame.width(), 1);
        ASSERT_GE(frame.height(), 1);
        ASSERT_LE(frame.right(), kPicture.width());
        ASSERT_LE(frame.bottom(), kPicture.height());
    }
}

TEST(CropFrame, TheLargestFrameOfARatioStandsInTheMiddle)
{
    EXPECT_EQ(fitted(kFrame, {1, 1}), Frame(250, 100, 300, 300));
    EXPECT_EQ(fitted(kFrame, {4, 1}), Frame(200, 200, 400, 100));
    EXPECT_EQ(fitted(kFrame, {}), kFrame);
}

class CropWindow : public testing::Test
{
protected:
    CropWindow()
    {
        auto picture = std::make_shared<Ondrel::Image>(1000u, 800u);
        picture->FastFill(40000);
        window = std::make_unique<Window>(picture);
        window->resize(900, 700);
        window->setAttribute(Qt::WA_DontShowOnScreen);
        window->show();
        QApplication::processEvents();
    }

    void play(const QString& script)
    {
        Script player(*window, QDir(folder.path()));
        EXPECT_TRUE(player.run(script)) << qUtf8Printable(player.error());
    }

    const Frame& frame() const { return window->frame(); }

    QTemporaryDir folder;
    std::unique_ptr<Window> window;
};

TEST_F(CropWindow, BeginsWithTheWholePicture)
{
    EXPECT_EQ(window->mode().frame(), Frame(0, 0, 1000, 800));
    EXPECT_EQ(window->mode().modeName(), "Crop");
    EXPECT_EQ(window->undoStack().count(), 0);
}

TEST_F(CropWindow, ACornerFollowsThePointerBehindRotationAndPerspective)
{
    play("drag top-left 150 120\ndrag bottom-right -120 -100");
    for (const char* view : {"fit", "wheel 400", "scroll 90 -70", "wheel -200"}) {
        play(view);
        for (const Handle handle : {Handle::TopLeft, Handle::TopRight, Handle::BottomRight, Handle::BottomLeft}) {
            const QPointF target = window->mode().handleInView(handle)->toPoint() + QPointF(-6, 9);
            play("drag " + handleName(handle) + " -6 9");
            const QPointF apart = *window->mode().handleInView(handle) - target;
            EXPECT_LE(std::hypot(apart.x(), apart.y()), 1 + window->zoom()) << view;
        }
    }
}

TEST_F(CropWindow, ADragThatReturnsChangesNothingAndLeavesNoStep)
{
    play("drag top-left 100 80");
    const Frame before = frame();
    play("drag inside 0 0");
    EXPECT_EQ(frame(), before);
    EXPECT_EQ(window->undoStack().count(), 1);
}

TEST_F(CropWindow, EveryStepCanBeUndoneAndDoneAgain)
{
    play("drag top-left 120 60\naspect 16 : 9\ndrag right -50 0\ndrag inside -20 10\nkey Shift+Left\nkey Down");
    const Frame last = frame();
    EXPECT_EQ(window->undoStack().count(), 5); // the keys are one step
    while (window->undoStack().canUndo())
        window->undoStack().undo();
    EXPECT_EQ(frame(), Frame(0, 0, 1000, 800));
    EXPECT_EQ(window->mode().frame(), frame());
    while (window->undoStack().canRedo())
        window->undoStack().redo();
    EXPECT_EQ(frame(), last);
}

TEST_F(CropWindow, ArrowKeysMoveByOneAndWithShiftByTen)
{
    play("drag top-left 120 60");
    const Frame before = frame();
    play("key Left\nkey Shift+Up");
    Frame moved = before;
    moved.translate(-1, -10);
    EXPECT_EQ(frame(), moved);
}

TEST_F(CropWindow, EscapeGivesADragUp)
{
    play("drag top-left 120 60");
    const Frame before = frame();
    const QPoint grip = window->mode().handleInView(Handle::BottomRight)->toPoint();
    QWidget* viewport = window->view().viewport();
    const auto send = [viewport](QEvent::Type type, QPoint position, Qt::MouseButton button) {
        QMouseEvent event(type, position, button, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(viewport, &event);
    };
    send(QEvent::MouseButtonPress, grip, Qt::LeftButton);
    send(QEvent::MouseMove, grip - QPoint(60, 60), Qt::NoButton);
    EXPECT_FALSE(window->mode().frame() == before);
    play("key Esc");
    EXPECT_EQ(window->mode().frame(), before);
    send(QEvent::MouseButtonRelease, grip - QPoint(60, 60), Qt::LeftButton);
    EXPECT_EQ(frame(), before);
    EXPECT_EQ(window->undoStack().count(), 1);
}

TEST_F(CropWindow, ThePanelResetsAndLocks)
{
    play("drag top-left 120 60\naspect 1 : 1");
    EXPECT_EQ(frame().width(), frame().height());
    auto* reset = window->findChild<QAbstractButton*>("reset");
    ASSERT_TRUE(reset);
    reset->click();
    EXPECT_EQ(frame(), Frame(100, 0, 800, 800));
    play("aspect Free");
    reset->click();
    EXPECT_EQ(frame(), Frame(0, 0, 1000, 800));
}

TEST_F(CropWindow, RequestsToTheCanvasAreAnswered)
{
    const double before = window->zoom();
    play("key +");
    EXPECT_DOUBLE_EQ(window->zoom(), before * 1.25);
    play("key -");
    EXPECT_DOUBLE_EQ(window->zoom(), before);

    const QPointF place = *window->mode().handleInView(Handle::TopLeft);
    play("scroll 30 -20");
    EXPECT_EQ(*window->mode().handleInView(Handle::TopLeft), place + QPointF(30, -20));

    play("tool zoom\nsweep 100 100 300 250");
    EXPECT_GT(window->zoom(), before * 2);
    EXPECT_EQ(frame(), Frame(0, 0, 1000, 800)); // the zoom tool leaves the frame alone
}

TEST_F(CropWindow, TheResultIsShownWithoutTheMode)
{
    play("drag top-left 120 60\nedit off\ndrag top-left 50 50\ngrab result");
    const Frame before = frame();
    play("key Left\nedit on");
    EXPECT_EQ(frame(), before);
    EXPECT_EQ(window->undoStack().count(), 1);
    EXPECT_FALSE(QImage(folder.filePath("result.png")).isNull());
}

class ModeProgram : public testing::Test
{
protected:
    Outcome play(const QByteArray& script)
    {
        QFile file(folder.filePath("tour.script"));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(script);
        file.close();
        return runProgram(ONDREL_MODE, {"--script", file.fileName(), "--out", folder.filePath("out")});
    }

    QTemporaryDir folder;
};

TEST_F(ModeProgram, PlaysAScriptAndLeavesPictures)
{
    const Outcome outcome = play("# the painted target\nexpect 0 0 1200 800\ndrag top-left 90 60\ngrab one\n");
    EXPECT_EQ(outcome.status, 0) << qUtf8Printable(outcome.errors);
    EXPECT_EQ(QImage(folder.filePath("out/one.png")).size(), QSize(1280, 860));
}

TEST_F(ModeProgram, NamesTheLineThatIsNotFulfilled)
{
    const Outcome outcome = play("fit\nexpect 1 2 3 4\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.errors.contains("line 2, \"expect 1 2 3 4\": the frame is 0 0 1200 800"))
        << qUtf8Printable(outcome.errors);
    EXPECT_EQ(play("dance").status, 1);
    EXPECT_EQ(play("drag nose 1 2").status, 1);
    EXPECT_EQ(play("grab no/such/folder").status, 1);
}

TEST_F(ModeProgram, RefusesCommandLinesThatMakeNoSense)
{
    EXPECT_EQ(runProgram(ONDREL_MODE, {"--nonsense"}).status, 2);
    EXPECT_EQ(runProgram(ONDREL_MODE, {"a.png", "b.png"}).status, 2);
    EXPECT_EQ(runProgram(ONDREL_MODE, {"--script", folder.filePath("missing")}).status, 1);
}

} // namespace

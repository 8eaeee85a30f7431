// The view, the docks and the values of nodes by the keyboard alone.

#include "editorfixture.h"

#include "exporter.h"
#include "imagepane.h"
#include "modehost.h"
#include "panecursor.h"
#include "scene.h"
#include "sceneview.h"
#include "values.h"
#include "valuesdialog.h"
#include "valuetext.h"
#include "wipehandle.h"

#include "../../examples/mode/canvasview.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>
#include <QTest>

using namespace Host;

namespace
{

class PanesByKeys : public Editor
{
protected:
    PanesByKeys()
    {
        QApplication::setActiveWindow(&window); // where no window manager does
        view().setFocus();
    }

    ImagePane& pane() { return window.imagePane(); }
    CanvasView& view() { return pane().view(); }
    const QLabel& readOut() { return *pane().findChild<QLabel*>("readOut"); }
    const PaneCursor& cursor() { return *view().findChild<PaneCursor*>(); }
    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(&view(), Qt::Key(key), modifiers);
    }
    void expectReadOut(QPoint at)
    {
        const Picture photo = freshPicture(id("photo"));
        const std::uint16_t* const p = photo.image->data + (at.y() * 90 + at.x()) * 4;
        const QString wanted =
            QString("%1, %2   R %3  G %4  B %5 ").arg(at.x()).arg(at.y()).arg(p[0]).arg(p[1]).arg(p[2]);
        EXPECT_TRUE(readOut().text().startsWith(wanted)) << qPrintable(readOut().text()) << qPrintable(wanted);
        EXPECT_EQ(readOut().accessibleName(), "Colour under the pointer: " + readOut().text());
    }

    // Once the values are open.
    void inValues(const std::function<void(ValuesDialog&)>& then)
    {
        QTimer::singleShot(1, &window, [this, then] {
            if (auto* const dialog = window.findChild<ValuesDialog*>())
                then(*dialog);
            else
                inValues(then);
        });
    }
    static void type(ValuesDialog& dialog, const QString& field, const QString& text)
    {
        auto* const line = dialog.findChild<QLineEdit*>(field);
        ASSERT_TRUE(line) << qPrintable(field);
        line->selectAll();
        QTest::keyClicks(line, text);
        QTest::keyClick(line, Qt::Key_Return);
    }
};

} // namespace

TEST_F(PanesByKeys, ArrowsMoveWhatIsReadOut)
{
    EXPECT_FALSE(cursor().isVisible());
    press(Qt::Key_Right); // to the middle
    ASSERT_TRUE(cursor().position());
    const QPoint first = cursor().position()->toPoint() - QPoint(1, 1); // the pixel's corner, rounded up
    EXPECT_LE((first - QPoint(45, 30)).manhattanLength(), 2);
    expectReadOut(first);
    press(Qt::Key_Right);
    expectReadOut(first + QPoint(1, 0));
    press(Qt::Key_Down, Qt::ShiftModifier);
    expectReadOut(first + QPoint(1, 10));
    EXPECT_TRUE(cursor().isVisible());
    EXPECT_EQ(cursor().geometry().center(), view().mapFromScene(*cursor().position()));
    for (int i = 0; i < 10; ++i)
        press(Qt::Key_Left, Qt::ShiftModifier);
    expectReadOut(QPoint(0, first.y() + 10)); // it stays in the picture
    press(Qt::Key_Escape);
    EXPECT_FALSE(cursor().isVisible());
    EXPECT_EQ(readOut().text(), " ");
    EXPECT_EQ(readOut().accessibleName(), "Colour under the pointer");
}

TEST_F(PanesByKeys, ReadOutStepsByPixelsOfTheViewAndStaysInIt)
{
    pane().setZoom(0.25, view().viewport()->rect().center());
    press(Qt::Key_Right);
    const QPointF first = *cursor().position();
    press(Qt::Key_Left);
    EXPECT_EQ(*cursor().position(), first - QPointF(4, 0));
    pane().setZoom(16, view().viewport()->rect().center());
    EXPECT_EQ(*cursor().position(), first - QPointF(4, 0));
    for (int i = 0; i < 4; ++i)
        press(Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_EQ(cursor().position()->y(), 0.5);
    EXPECT_TRUE(view().viewport()->rect().contains(cursor().geometry().center()));
}

TEST_F(PanesByKeys, ModeHasTheArrowsAndControlStillMovesThePicture)
{
    play("add essentials/crop 260 0 Crop\nkey A\nwire photo image Crop image\nset Crop left 10\nshow Crop\nwait\n"
         "edit Crop\nwait");
    pane().setZoom(16, view().viewport()->rect().center());
    press(Qt::Key_Right);
    EXPECT_FALSE(cursor().isVisible());
    const int left = value("Crop", "left").toInt();
    const int across = view().horizontalScrollBar()->value(), down = view().verticalScrollBar()->value();
    press(Qt::Key_Right, Qt::ControlModifier);
    press(Qt::Key_Up, Qt::ControlModifier);
    EXPECT_EQ(view().horizontalScrollBar()->value(), across + 60);
    EXPECT_EQ(view().verticalScrollBar()->value(), down - 60);
    EXPECT_EQ(value("Crop", "left").toInt(), left);
}

TEST_F(PanesByKeys, F6GoesThroughAllThatHasControlsAndBack)
{
    play("add essentials/paint 260 0 Paint\nkey A\nwire photo image Paint image\nshow Paint\nwait\nedit Paint\nwait");
    window.exporter().show();
    QWidget* const color = window.findChild<QWidget*>("color");
    QWidget* const cancel = window.findChild<QWidget*>("cancelExport");
    ASSERT_TRUE(color && cancel);
    EXPECT_TRUE(view().hasFocus());
    play("key F6");
    QWidget* const done = QApplication::focusWidget();
    EXPECT_EQ(window.findChild<QWidget*>("modeBar"), done->parentWidget());
    play("key F6");
    EXPECT_EQ(QApplication::focusWidget(), color);
    play("key F6");
    EXPECT_EQ(QApplication::focusWidget(), cancel);
    play("key F6");
    EXPECT_TRUE(window.sceneView().hasFocus());
    play("key Shift+F6\nkey Shift+F6");
    EXPECT_EQ(QApplication::focusWidget(), color);
    window.exporter().hide();
    play("key F6");
    EXPECT_TRUE(window.sceneView().hasFocus());
    play("key F6\nkey F6");
    EXPECT_EQ(QApplication::focusWidget(), done);
    QTest::keyClick(done, Qt::Key_Space);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !window.modes().mode(); }));
}

TEST_F(PanesByKeys, TabLeadsFromThePictureToTheWipe)
{
    addChain();
    play("select Levels\nkey 2\nkey W\nwait");
    view().setFocus();
    QTest::keyClick(&view(), Qt::Key_Tab);
    auto* const wipe = pane().findChild<WipeHandle*>("wipe");
    ASSERT_TRUE(wipe->hasFocus());
    QTest::keyClick(wipe, Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_NEAR(pane().options().wipe, 0.6, 1e-12);
}

// ---- Values as text

TEST_F(PanesByKeys, CurvesAreTypedAsText)
{
    play("add essentials/curves 260 0 Curves\nselect Curves");
    inValues([](ValuesDialog& dialog) {
        type(dialog, "curves", "0,0 32768,40000 65535,65535 |  | 0,100 65535,65535 | ");
        dialog.reject();
    });
    const int steps = window.document().undoStack().count();
    play("key V");
    EXPECT_EQ(window.document().undoStack().count(), steps + 1);
    const QVariantList curves = value("Curves", "curves").toList();
    ASSERT_EQ(curves.size(), 4);
    EXPECT_EQ(curves[0].toList().value(1).toPointF(), QPointF(32768, 40000));
    EXPECT_EQ(curves[2].toList().value(0).toPointF(), QPointF(0, 100));
}

TEST_F(PanesByKeys, LineThatMakesNoSenseIsNamedAndChangesNothing)
{
    play("add essentials/levels 260 0 Levels\nselect Levels");
    QString message, kept;
    inValues([&](ValuesDialog& dialog) {
        type(dialog, "gamma", "much");
        for (const QLabel* const label : dialog.findChildren<QLabel*>()) {
            if (label->text().contains("much"))
                message = label->text();
        }
        kept = dialog.findChild<QLineEdit*>("gamma")->text();
        dialog.reject();
    });
    const int steps = window.document().undoStack().count();
    play("key V");
    EXPECT_EQ(message, "\"much\" is no value of Gamma.");
    EXPECT_EQ(kept, value("Levels", "gamma").toString());
    EXPECT_EQ(window.document().undoStack().count(), steps);
}

TEST_F(PanesByKeys, LineThatIsTooDeepToBeSavedIsNamedAndChangesNothing)
{
    play("add essentials/paint 260 0 Paint\nselect Paint");
    window.document().setValue(id("Paint"), "strokes", true);
    const QString line =
        QString("{\"list\":[").repeated(int(kDeepestValue) / 2) + "%1" + QString("]}").repeated(int(kDeepestValue) / 2);
    QString message;
    inValues([&](ValuesDialog& dialog) {
        type(dialog, "strokes", line.arg("true"));
        type(dialog, "strokes", line.arg("{\"list\":[]}"));
        for (const QLabel* const label : dialog.findChildren<QLabel*>()) {
            if (label->text().contains("list"))
                message = label->text();
        }
        dialog.reject();
    });
    play("key V");
    EXPECT_EQ(message, '"' + line.arg("{\"list\":[]}") + "\" is no value of strokes.");
    EXPECT_EQ(QString::fromStdString(valueToJson(value("Paint", "strokes")).dump()), line.arg("true"));
}

TEST_F(PanesByKeys, LineThatIsNotFinishedIsLeftByEscapeAndByClosingTheWindow)
{
    play("add essentials/levels 260 0 Levels\nselect Levels");
    const QVariant before = value("Levels", "gamma");
    const int steps = window.document().undoStack().count();
    for (const bool byItsFrame : {false, true}) {
        inValues([&](ValuesDialog& dialog) {
            QApplication::setActiveWindow(&dialog);
            auto* const line = dialog.findChild<QLineEdit*>("gamma");
            line->setFocus();
            EXPECT_TRUE(line->hasFocus());
            line->selectAll();
            QTest::keyClicks(line, "2");
            if (byItsFrame)
                dialog.close();
            else
                QTest::keyClick(line, Qt::Key_Escape);
            EXPECT_FALSE(dialog.isVisible());
        });
        play("key V");
        EXPECT_EQ(value("Levels", "gamma"), before);
        EXPECT_EQ(window.document().undoStack().count(), steps);
    }
}

TEST_F(PanesByKeys, EveryValueOfEveryKindComesBackFromItsLine)
{
    int lines = 0;
    for (const NodeType* const type : nodeTypes().all()) {
        for (const InputInfo& input : type->inputs) {
            if (input.kind.isEmpty() || !input.initial.isValid())
                continue;
            QVariant back = input.initial;
            const QString line = valueToLine(input.initial, input);
            EXPECT_TRUE(valueFromLine(line, input, back)) << qPrintable(type->id + " " + input.name + ": " + line);
            EXPECT_TRUE(sameValue(back, input.initial)) << qPrintable(type->id + " " + input.name + ": " + line);
            ++lines;
        }
    }
    EXPECT_GT(lines, 60);
}

TEST(ValueText, PointsAreReadAndDamagedOnesRefused)
{
    InputInfo input;
    input.kind = "curves";
    const QVariant points = QVariantList{QPointF(0.5, -2), QPointF(1e-3, 65535)};
    EXPECT_EQ(valueToLine(points, input), "0.5,-2 0.001,65535");
    for (const char* const bad : {"1", "1,2,3", "1,2 x,3", "1,nan", "inf,0", "1,2 | 3,4", "1;2"}) {
        QVariant value = points;
        EXPECT_FALSE(valueFromLine(bad, input, value)) << bad;
        EXPECT_TRUE(sameValue(value, points)) << bad;
    }
    QVariant value = points;
    EXPECT_TRUE(valueFromLine(" 3,4   5,6 ", input, value));
    EXPECT_TRUE(sameValue(value, QVariantList{QPointF(3, 4), QPointF(5, 6)}));
}

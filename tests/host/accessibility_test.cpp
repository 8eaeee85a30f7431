#include "editorfixture.h"

#include "accessibleitems.h"
#include "connectiondialog.h"
#include "imagepane.h"
#include "sceneview.h"

#include <ondrel/nodes/fieldbase.h>

#include <QAccessible>
#include <QApplication>
#include <QInputDialog>
#include <QLineEdit>
#include <QTest>

using namespace Host;

namespace
{

class Canvas : public Editor
{
protected:
    QAccessibleInterface* canvas() { return QAccessible::queryAccessibleInterface(&window.sceneView()); }

    QAccessibleInterface* node(const QString& name)
    {
        return QAccessible::queryAccessibleInterface(window.scene().item(id(name)));
    }

    static QAccessibleInterface* childNamed(QAccessibleInterface* parent, const QString& name)
    {
        for (int i = 0; parent && i < parent->childCount(); ++i) {
            if (parent->child(i)->text(QAccessible::Name) == name)
                return parent->child(i);
        }
        return nullptr;
    }

    QAccessibleInterface* anchor(const QString& name, const QString& text)
    {
        for (int i = 0; i < node(name)->childCount(); ++i) {
            if (QAccessibleInterface* const found = childNamed(node(name)->child(i), text))
                return found;
        }
        return nullptr;
    }

    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(&window.sceneView(), Qt::Key(key), modifiers);
    }

    QStringList selected()
    {
        QStringList names;
        for (const NodeId each : window.scene().selectedNodes())
            names.append(graph().node(each)->name);
        return names;
    }

    // Once a dialog of this kind is open.
    template <class Dialog>
    void inDialog(const std::function<void(Dialog&)>& then)
    {
        QTimer::singleShot(1, &window, [this, then] {
            if (auto* const dialog = window.findChild<Dialog*>())
                then(*dialog);
            else
                inDialog<Dialog>(then);
        });
    }
};

} // namespace

TEST_F(Canvas, TellsItsNodesByNameAndKind)
{
    addChain();
    settle();
    ASSERT_TRUE(canvas());
    ASSERT_EQ(canvas()->childCount(), 5); // three nodes, two wires
    EXPECT_EQ(canvas()->child(5), nullptr);
    EXPECT_EQ(canvas()->child(1)->text(QAccessible::Name), "Blur");
    EXPECT_EQ(canvas()->child(1)->text(QAccessible::Description), "Gaussian Blur");
    EXPECT_EQ(canvas()->indexOfChild(node("Levels")), 2);
    EXPECT_EQ(node("Blur")->parent(), canvas());
    EXPECT_EQ(node("photo")->text(QAccessible::Description), "Image, shown in the view");
    play("select Blur\nkey D");
    EXPECT_EQ(node("Blur")->text(QAccessible::Description), "Gaussian Blur, bypassed");
    EXPECT_TRUE(node("Blur")->state().selected);
    EXPECT_FALSE(node("Levels")->state().selected);
}

TEST_F(Canvas, TellsWhyANodeFailed)
{
    play("add essentials/levels 260 0 Levels\nwait");
    window.scene().setErrors({{id("Levels"), "It has no picture."}});
    EXPECT_TRUE(node("Levels")->text(QAccessible::Description).endsWith("It has no picture."));
}

TEST_F(Canvas, FieldsHaveAnchorsAndControlsByName)
{
    addChain();
    QAccessibleInterface* const gamma = childNamed(node("Levels"), "Gamma");
    ASSERT_TRUE(gamma);
    EXPECT_EQ(gamma->parent(), node("Levels"));
    ASSERT_EQ(gamma->childCount(), 1);
    EXPECT_EQ(gamma->child(0)->text(QAccessible::Name), "Gamma");
    EXPECT_EQ(gamma->child(0)->role(), QAccessible::Slider);
}

TEST_F(Canvas, AnchorsTellWhatTheyAreConnectedWith)
{
    addChain();
    QAccessibleInterface* const input = anchor("Levels", "Input Image");
    ASSERT_TRUE(input);
    EXPECT_TRUE(input->state().checked);
    EXPECT_EQ(input->text(QAccessible::Description), "connected with Blur");
    QAccessibleInterface* const output = anchor("Levels", "Output Image");
    ASSERT_TRUE(output);
    EXPECT_FALSE(output->state().checked);
    EXPECT_EQ(output->text(QAccessible::Description), "not connected");
}

TEST_F(Canvas, ItemsLieWhereTheyAreDrawn)
{
    addChain();
    PreviewNode* const item = window.scene().item(id("Blur"));
    const QPoint center =
        window.sceneView().viewport()->mapToGlobal(window.sceneView().mapFromScene(item->sceneBoundingRect().center()));
    EXPECT_TRUE(node("Blur")->rect().contains(center));
    EXPECT_EQ(canvas()->childAt(center.x(), center.y()), node("Blur"));
    const QRect field = childNamed(node("Blur"), "Image")->rect();
    EXPECT_TRUE(node("Blur")->rect().contains(field)) << "a field lies in its node";
}

TEST_F(Canvas, NodesCanBeSelectedAndShownByAssistivePrograms)
{
    addChain();
    QAccessibleActionInterface* const actions = node("Levels")->actionInterface();
    ASSERT_TRUE(actions);
    actions->doAction(QAccessibleActionInterface::setFocusAction());
    EXPECT_EQ(selected(), QStringList{"Levels"});
    actions->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(window.scene().primary(), id("Levels"));
}

TEST_F(Canvas, AnchorOpensTheChoiceOfConnections)
{
    addThree();
    QString title;
    inDialog<ConnectionDialog>([&](ConnectionDialog& dialog) {
        title = dialog.windowTitle();
        dialog.reject();
    });
    ASSERT_TRUE(anchor("Levels", "Input Image"));
    anchor("Levels", "Input Image")->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !title.isEmpty(); }));
    EXPECT_EQ(title, "Connections of Levels");
}

TEST_F(Canvas, ArrowsSelectTheNextNodeInTheirDirection)
{
    addThree();
    play("add essentials/mirror 260 500 Mirror\nselect photo");
    press(Qt::Key_Right);
    EXPECT_EQ(selected(), QStringList{"Blur"});
    press(Qt::Key_Right);
    EXPECT_EQ(selected(), QStringList{"Levels"});
    press(Qt::Key_Right);
    EXPECT_EQ(selected(), QStringList{"Levels"}) << "there is none further";
    press(Qt::Key_Left);
    press(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(selected(), (QStringList{"Blur", "Mirror"}));
}

TEST_F(Canvas, FirstArrowSelectsANode)
{
    addThree();
    window.scene().selectNodes({});
    press(Qt::Key_Right);
    EXPECT_EQ(selected(), QStringList{"photo"});
}

TEST_F(Canvas, HeldAltAndArrowsMoveInOneStep)
{
    addThree();
    play("select Blur");
    const QPointF before = graph().nodeByName("Blur")->position;
    const int steps = window.document().undoStack().index();
    QTest::keyPress(&window.sceneView(), Qt::Key_Right, Qt::AltModifier);
    QTest::keyPress(&window.sceneView(), Qt::Key_Right, Qt::AltModifier);
    QTest::keyRelease(&window.sceneView(), Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(graph().nodeByName("Blur")->position, before + QPointF(20, 0));
    EXPECT_EQ(window.document().undoStack().index(), steps + 1);
    press(Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(window.document().undoStack().index(), steps + 2);
}

TEST_F(Canvas, ReturnGoesIntoTheControlsAndEscapeOut)
{
    addThree();
    play("select Levels");
    QEvent activation(QEvent::WindowActivate); // the scene keeps the focus of an inactive window
    QApplication::sendEvent(&window.scene(), &activation);
    press(Qt::Key_Return);
    EXPECT_TRUE(window.scene().focusItem());
    press(Qt::Key_Escape);
    EXPECT_FALSE(window.scene().focusItem());
    EXPECT_EQ(selected(), QStringList{"Levels"});
}

TEST_F(Canvas, NodesAreWiredByKeysAlone)
{
    addThree();
    play("select Levels");
    const auto chooseBlur = [this] {
        inDialog<ConnectionDialog>([](ConnectionDialog& dialog) {
            auto* const line = dialog.findChild<QLineEdit*>();
            QTest::keyClicks(line, "from blur");
            QTest::keyClick(line, Qt::Key_Return);
            QTest::keyClick(line, Qt::Key_Escape);
        });
        play("key C");
    };
    chooseBlur();
    ASSERT_EQ(graph().connections.size(), 1u);
    EXPECT_EQ(graph().connections[0].from, id("Blur"));
    EXPECT_EQ(graph().connections[0].to, id("Levels"));
    chooseBlur();
    EXPECT_TRUE(graph().connections.empty());
}

TEST_F(Canvas, ChoiceOfConnectionsOffersNoneThatWouldBeRefused)
{
    addChain();
    play("add essentials/merge 780 0 Merge");
    for (const char* const name : {"photo", "Blur", "Levels", "Merge"}) {
        const std::vector<Connection> offered = possibleConnections(window.scene(), id(name));
        EXPECT_FALSE(offered.empty());
        for (const Connection& connection : offered)
            EXPECT_EQ(whyNotConnect(graph(), nodeTypes(), connection), QString());
    }
}

TEST_F(Canvas, RenameKeepsNamesUnique)
{
    addThree();
    play("select Levels");
    inDialog<QInputDialog>([&](QInputDialog& dialog) {
        dialog.setTextValue("Blur");
        dialog.accept();
    });
    play("key F2");
    EXPECT_TRUE(graph().nodeByName("Blur 2"));
    EXPECT_FALSE(graph().nodeByName("Levels"));
}

TEST_F(Canvas, RenameToTheSameOrNoNameIsNoEdit)
{
    addThree();
    play("select Blur");
    const int steps = window.document().undoStack().count();
    for (const char* const name : {"Blur", "  Blur ", "", "   "}) {
        inDialog<QInputDialog>([&](QInputDialog& dialog) {
            dialog.setTextValue(name);
            dialog.accept();
        });
        play("key F2");
        EXPECT_TRUE(graph().nodeByName("Blur")) << name;
    }
    EXPECT_EQ(window.document().undoStack().count(), steps);
}

TEST_F(Canvas, SelectedNodesGoWithTheirProject)
{
    addThree();
    play("save " + path("a.ondrel"));
    for (const char* const name : {"photo", "Blur", "Levels"}) {
        play(QString("select %1\nopen %2").arg(name, path("a.ondrel")));
        EXPECT_TRUE(selected().isEmpty());
    }
}

TEST_F(Canvas, OtherPaneTakesTheFocusAndTheZoom)
{
    addThree();
    QApplication::setActiveWindow(&window);
    window.sceneView().setFocus();
    const double canvasZoom = window.sceneView().transform().m11();
    const double pictureZoom = window.imagePane().zoom();
    play("key Ctrl++");
    EXPECT_NEAR(window.sceneView().transform().m11(), canvasZoom * 1.25, 1e-9);
    EXPECT_EQ(window.imagePane().zoom(), pictureZoom);
    play("key F6\nkey Ctrl+-");
    EXPECT_NEAR(window.sceneView().transform().m11(), canvasZoom * 1.25, 1e-9);
    EXPECT_NEAR(window.imagePane().zoom(), pictureZoom / 1.25, 1e-9);
    play("key F6");
    EXPECT_TRUE(window.sceneView().hasFocus());
}

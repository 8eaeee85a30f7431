// Frames and wires by the keyboard alone.

#include "editorfixture.h"

#include "canvasaccessibility.h"
#include "clipboardgraph.h"
#include "connectiondialog.h"
#include "scene.h"
#include "sceneview.h"
#include "wirekeys.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QTest>

#include <cmath>

using namespace Host;

namespace
{

class CanvasByKeys : public Editor
{
protected:
    CanvasByKeys()
    {
        QApplication::setActiveWindow(&window); // where no window manager does
        window.sceneView().setFocus();
        addThree();
        window.document().moveNodes({{id("photo"), {0, 0}}, {id("Blur"), {320, 60}}, {id("Levels"), {640, 10}}});
    }

    Scene& scene() { return window.scene(); }
    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(&window.sceneView(), Qt::Key(key), modifiers);
    }
    void hold(int key, Qt::KeyboardModifiers modifiers, int times)
    {
        for (int i = 0; i < times; ++i)
            QTest::keyPress(&window.sceneView(), Qt::Key(key), modifiers);
        QTest::keyRelease(&window.sceneView(), Qt::Key(key), modifiers);
    }
    int steps() { return window.document().undoStack().index(); }
    void undo() { window.document().undoStack().undo(); }
    QPointF position(const QString& name) { return graph().nodeByName(name)->position; }
    QRectF area(const QString& name)
    {
        const PreviewNode* const item = scene().item(id(name));
        return item->mapRectToScene(item->rect());
    }
    quint64 addFrame(const QString& title, const QRectF& place) { return window.document().addFrame(title, place); }
    const FrameRecord& frame(quint64 number) { return graph().frames.at(number); }
    Connection wire(const QString& from, const QString& to) { return {id(from), "image", id(to), "image"}; }
    void connectNodes(const QString& from, const QString& to)
    {
        EXPECT_EQ(window.document().addConnection(wire(from, to)), "");
    }
    QStringList selected()
    {
        QStringList names;
        for (const NodeId each : scene().selectedNodes())
            names.append(graph().node(each)->name);
        return names;
    }

    QAccessibleInterface* canvas() { return QAccessible::queryAccessibleInterface(&window.sceneView()); }
    QAccessibleInterface* childNamed(const QString& name)
    {
        for (int i = 0; i < canvas()->childCount(); ++i) {
            if (canvas()->child(i)->text(QAccessible::Name) == name)
                return canvas()->child(i);
        }
        return nullptr;
    }

    // Once the choice of connections is open.
    void inConnections(const std::function<void(ConnectionDialog&)>& then)
    {
        QTimer::singleShot(1, &window, [this, then] {
            if (auto* const dialog = window.findChild<ConnectionDialog*>())
                then(*dialog);
            else
                inConnections(then);
        });
    }
};

// What assistive programs are told has the keys.
class HeardFocus : public QObject
{
public:
    explicit HeardFocus(EditorWindow& window)
    {
        connect(window.findChild<CanvasAccessibility*>(), &CanvasAccessibility::told, this, [this](QObject* object) {
            names.append(QAccessible::queryAccessibleInterface(object)->text(QAccessible::Name));
        });
    }
    QStringList names;
};

} // namespace

// ---- Frames

TEST_F(CanvasByKeys, ArrowsLeadToTheTitleOfAFrameAndOn)
{
    const quint64 sky = addFrame("Sky", area("Blur").adjusted(-30, -60, 30, 30));
    play("select Blur");
    press(Qt::Key_Up);
    EXPECT_EQ(scene().frames().selected(), sky);
    EXPECT_TRUE(selected().isEmpty());
    press(Qt::Key_Down);
    EXPECT_EQ(scene().frames().selected(), 0u);
    EXPECT_EQ(selected(), QStringList{"Blur"});
    press(Qt::Key_Right);
    EXPECT_EQ(selected(), QStringList{"Levels"});
    press(Qt::Key_Left);
    EXPECT_EQ(selected(), QStringList{"Blur"});
    press(Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_EQ(selected(), (QStringList{"photo", "Blur"})) << "frames are not added to nodes";
    EXPECT_EQ(scene().frames().selected(), 0u);
    play("select Blur");
    press(Qt::Key_Up);
    press(Qt::Key_Return);
    EXPECT_EQ(selected(), QStringList{"Blur"});
    press(Qt::Key_Up);
    press(Qt::Key_Escape);
    EXPECT_EQ(scene().frames().selected(), 0u);
}

TEST_F(CanvasByKeys, SelectingNodesEndsTheSelectionOfAFrame)
{
    const quint64 sky = addFrame("Sky", QRectF(-50, -200, 300, 100));
    scene().select({0, std::nullopt, sky});
    play("key Ctrl+A");
    EXPECT_EQ(selected().size(), 3);
    EXPECT_EQ(scene().frames().selected(), 0u);
}

TEST_F(CanvasByKeys, FrameMovesWithItsNodesInOneStepWhileTheKeyIsHeld)
{
    const quint64 sky = addFrame("Sky", area("Blur").adjusted(-30, -60, 60, 30));
    const QRectF before = frame(sky).area;
    const QPointF blur = position("Blur"), levels = position("Levels");
    scene().select({0, std::nullopt, sky});
    const int count = steps();
    hold(Qt::Key_Right, Qt::AltModifier, 4);
    EXPECT_EQ(frame(sky).area, before.translated(40, 0));
    EXPECT_EQ(position("Blur"), blur + QPointF(40, 0));
    EXPECT_EQ(position("Levels"), levels);
    EXPECT_EQ(steps(), count + 1);
    hold(Qt::Key_Up, Qt::AltModifier, 1);
    EXPECT_EQ(frame(sky).area, before.translated(40, -10));
    EXPECT_EQ(steps(), count + 2);
    undo();
    undo();
    EXPECT_EQ(frame(sky).area, before);
    EXPECT_EQ(position("Blur"), blur);
}

TEST_F(CanvasByKeys, HeldFrameLeavesNodesThatItPassesOver)
{
    const quint64 sky = addFrame("Sky", area("photo").adjusted(-100, -250, 100, 150).translated(0, 20));
    const quint64 small = addFrame("Small", QRectF(-600, -600, 200, 150));
    scene().select({0, std::nullopt, small});
    window.document().moveNodes({{id("Blur"), {-2000, 0}}});
    const QPointF photo = position("photo");
    scene().frames().moveBy(sky, {-600, 0}, window.document().newGesture());
    EXPECT_EQ(position("photo"), photo + QPointF(-600, 0));
    undo();
    window.document().moveNodes({{id("Blur"), {-600, 0}}});
    const int held = window.document().newGesture();
    scene().frames().moveBy(sky, {-600, 0}, held); // now over the other one
    scene().frames().moveBy(sky, {-10, 0}, held);
    EXPECT_EQ(position("Blur"), QPointF(-600, 0));
    EXPECT_EQ(position("photo"), photo + QPointF(-610, 0));
}

TEST_F(CanvasByKeys, FrameIsResizedByShiftAltAndArrowsButNotToNothing)
{
    const quint64 sky = addFrame("Sky", QRectF(-400, -400, 200, 100));
    scene().select({0, std::nullopt, sky});
    const int count = steps();
    hold(Qt::Key_Right, Qt::AltModifier | Qt::ShiftModifier, 3);
    hold(Qt::Key_Down, Qt::AltModifier | Qt::ShiftModifier, 2);
    EXPECT_EQ(frame(sky).area, QRectF(-400, -400, 230, 120));
    EXPECT_EQ(steps(), count + 2);
    hold(Qt::Key_Left, Qt::AltModifier | Qt::ShiftModifier, 30);
    hold(Qt::Key_Up, Qt::AltModifier | Qt::ShiftModifier, 30);
    EXPECT_EQ(frame(sky).area, QRectF(QPointF(-400, -400), FrameItem::leastSize()));
    undo();
    undo();
    undo();
    undo();
    EXPECT_EQ(frame(sky).area, QRectF(-400, -400, 200, 100));
}

TEST_F(CanvasByKeys, FrameIsMadeRetitledAndDeleted)
{
    play("select photo Blur\nkey Ctrl+G");
    QTest::keyClicks(&window.sceneView(), "Skin");
    press(Qt::Key_Return);
    ASSERT_EQ(graph().frames.size(), 1u);
    const quint64 made = graph().frames.begin()->first;
    EXPECT_EQ(scene().frames().selected(), made);
    play("key F2");
    QTest::keyClicks(&window.sceneView(), "Hair");
    press(Qt::Key_Return);
    EXPECT_EQ(frame(made).title, "Hair");
    undo();
    EXPECT_EQ(frame(made).title, "Skin");
    const int count = steps();
    play("key Delete\nexpect nodes 3");
    EXPECT_TRUE(graph().frames.empty());
    EXPECT_EQ(steps(), count + 1);
}

TEST_F(CanvasByKeys, AssistiveProgramsSeeFrames)
{
    const quint64 sky = addFrame("Sky", area("Blur").adjusted(-30, -60, 30, 30));
    QAccessibleInterface* const frame = childNamed("Sky");
    ASSERT_TRUE(frame);
    EXPECT_EQ(canvas()->indexOfChild(frame), 3); // after the nodes
    EXPECT_EQ(frame->parent(), canvas());
    EXPECT_EQ(frame->role(), QAccessible::Grouping);
    EXPECT_EQ(frame->text(QAccessible::Description), "frame around Blur");
    const SceneView& view = window.sceneView();
    const QPoint title = view.viewport()->mapToGlobal(
        view.mapFromScene(scene().frames().item(sky)->titleArea().topLeft() + QPointF(20, 10)));
    EXPECT_TRUE(frame->rect().contains(title));
    EXPECT_EQ(canvas()->childAt(title.x(), title.y()), frame);
    EXPECT_FALSE(frame->state().selected);
    HeardFocus heard(window);
    frame->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
    EXPECT_EQ(scene().frames().selected(), sky);
    EXPECT_TRUE(frame->state().selected);
    EXPECT_TRUE(frame->state().focused);
    EXPECT_EQ(canvas()->focusChild(), frame);
    EXPECT_EQ(heard.names, QStringList{"Sky"});
    frame->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    QTest::keyClicks(&window.sceneView(), "Sea");
    press(Qt::Key_Return);
    EXPECT_EQ(frame->text(QAccessible::Name), "Sea");
}

// ---- Wires

TEST_F(CanvasByKeys, WiresOfANodeAreSelectedOneAfterTheOther)
{
    connectNodes("photo", "Blur");
    connectNodes("Blur", "Levels");
    play("select Blur\nkey X");
    EXPECT_EQ(scene().wires().selected(), wire("photo", "Blur"));
    EXPECT_TRUE(selected().isEmpty());
    play("key X");
    EXPECT_EQ(scene().wires().selected(), wire("Blur", "Levels"));
    play("key X");
    EXPECT_EQ(scene().wires().selected(), wire("photo", "Blur")) << "round and round";
    play("key Shift+X");
    EXPECT_EQ(scene().wires().selected(), wire("Blur", "Levels"));
    press(Qt::Key_Up);
    EXPECT_EQ(scene().wires().selected(), wire("photo", "Blur"));
    press(Qt::Key_Down);
    EXPECT_EQ(scene().wires().selected(), wire("Blur", "Levels"));
    press(Qt::Key_Right);
    EXPECT_EQ(selected(), QStringList{"Levels"});
    EXPECT_EQ(scene().wires().selected(), std::nullopt);
    play("key X");
    press(Qt::Key_Left);
    EXPECT_EQ(selected(), QStringList{"Blur"});
    press(Qt::Key_Left);
    EXPECT_EQ(selected(), QStringList{"photo"});
}

TEST_F(CanvasByKeys, WiresThatEndAtANodeComeBeforeThoseThatLeaveIt)
{
    play("add essentials/merge 640 400 Merge\nadd essentials/merge 960 400 Other");
    const std::vector<Connection> wanted = {{id("Levels"), "image", id("Merge"), "layer0"},
                                            {id("photo"), "image", id("Merge"), "layer1"},
                                            {id("Merge"), "image", id("Other"), "layer0"}};
    EXPECT_EQ(window.document().addConnection(wanted[0]), "");
    EXPECT_EQ(window.document().addConnection(wanted[2]), "");
    EXPECT_EQ(window.document().addConnection(wanted[1]), "");
    EXPECT_EQ(wiresOf(scene(), id("Merge")), wanted);
    EXPECT_TRUE(wiresOf(scene(), 12345).empty());
}

TEST_F(CanvasByKeys, WithoutAWireNothingIsSelected)
{
    play("select Blur\nkey X");
    EXPECT_EQ(scene().wires().selected(), std::nullopt);
    EXPECT_EQ(selected(), QStringList{"Blur"});
}

TEST_F(CanvasByKeys, SelectedWireIsDeletedAndTheArrowsGoOnFromItsEnd)
{
    connectNodes("photo", "Blur");
    connectNodes("Blur", "Levels");
    play("select Blur\nkey Shift+X");
    ASSERT_EQ(scene().wires().selected(), wire("Blur", "Levels"));
    play("key Delete");
    EXPECT_EQ(graph().connections, std::vector<Connection>{wire("photo", "Blur")});
    press(Qt::Key_Left);
    EXPECT_EQ(selected(), QStringList{"Blur"});
    undo();
    EXPECT_EQ(graph().connections.size(), 2u);
}

TEST_F(CanvasByKeys, NodeIsInsertedIntoTheSelectedWireThroughTheSearch)
{
    connectNodes("photo", "Blur");
    play("select photo\nkey X");
    inSearch([](NodeSearch& search) {
        QTest::keyClicks(search.findChild<QLineEdit*>(), "mirror");
        QTest::keyClick(search.findChild<QLineEdit*>(), Qt::Key_Return);
    });
    const int count = steps();
    play("key I");
    ASSERT_NE(id("Mirror"), 0u);
    EXPECT_EQ(*graph().into(id("Blur"), "image"), wire("Mirror", "Blur"));
    EXPECT_EQ(*graph().into(id("Mirror"), "image"), wire("photo", "Mirror"));
    EXPECT_EQ(selected(), QStringList{"Mirror"});
    EXPECT_EQ(steps(), count + 1);
}

TEST_F(CanvasByKeys, SelectedWireIsPluggedElsewhereByTheChoiceOfConnections)
{
    connectNodes("photo", "Blur");
    connectNodes("Blur", "Levels");
    play("select Levels\nkey X");
    QStringList offered, marked;
    inConnections([&](ConnectionDialog& dialog) {
        auto* const list = dialog.findChild<QListWidget*>();
        for (int i = 0; i < list->count(); ++i)
            offered.append(list->item(i)->text());
        marked.append(list->currentItem()->text());
        auto* const line = dialog.findChild<QLineEdit*>();
        QTest::keyClick(line, Qt::Key_Down);
        QTest::keyClick(line, Qt::Key_Return);
        QTest::keyClick(line, Qt::Key_Escape);
    });
    play("key C");
    EXPECT_EQ(offered, (QStringList{"Image from Blur: Image", "Image from photo: Image"}));
    EXPECT_EQ(marked, QStringList{"Image from Blur: Image"});
    EXPECT_EQ(*graph().into(id("Levels"), "image"), wire("photo", "Levels"));
    undo();
    EXPECT_EQ(*graph().into(id("Levels"), "image"), wire("Blur", "Levels"));
}

TEST_F(CanvasByKeys, AssistiveProgramsSeeWires)
{
    connectNodes("photo", "Blur");
    connectNodes("Blur", "Levels");
    QAccessibleInterface* const link = childNamed("Wire from Blur to Levels");
    ASSERT_TRUE(link);
    EXPECT_EQ(link->role(), QAccessible::Link);
    EXPECT_EQ(link->text(QAccessible::Description), "Image to Image");
    EXPECT_EQ(link->parent(), canvas());
    EXPECT_EQ(canvas()->indexOfChild(link), 4);
    EXPECT_FALSE(link->state().selected);
    HeardFocus heard(window);
    play("select Blur\nkey X\nkey X");
    EXPECT_EQ(heard.names, (QStringList{"Blur", "Wire from photo to Blur", "Wire from Blur to Levels"}));
    EXPECT_TRUE(link->state().selected);
    EXPECT_EQ(canvas()->focusChild(), link);
    scene().select({});
    link->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
    EXPECT_EQ(scene().wires().selected(), wire("Blur", "Levels"));
    bool isOpened = false;
    inConnections([&](ConnectionDialog& dialog) {
        isOpened = true;
        dialog.reject();
    });
    link->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(QTest::qWaitFor([&] { return isOpened; }));
    window.document().removeConnection(wire("Blur", "Levels"));
    EXPECT_EQ(childNamed("Wire from Blur to Levels"), nullptr);
}

// ---- Frames and the clipboard

TEST_F(CanvasByKeys, SelectedFrameIsCopiedWithWhatLiesInIt)
{
    connectNodes("photo", "Blur");
    const quint64 sky = addFrame("Sky", (area("photo") | area("Blur")).adjusted(-30, -60, 30, 30));
    const QRectF place = frame(sky).area;
    scene().select({0, std::nullopt, sky});
    const int count = steps();
    play("key Ctrl+C\nkey Ctrl+V\nexpect nodes 5\nexpect wires 2");
    EXPECT_EQ(steps(), count + 1);
    ASSERT_EQ(graph().frames.size(), 2u);
    EXPECT_EQ(graph().frames.rbegin()->second.title, "Sky");
    EXPECT_EQ(graph().frames.rbegin()->second.area, place.translated(40, 40));
    EXPECT_EQ(position("Blur 2"), position("Blur") + QPointF(40, 40));
    undo();
    EXPECT_EQ(graph().frames.size(), 1u);
    play("expect nodes 3");
}

TEST_F(CanvasByKeys, FrameGoesWithAllOfItsNodesButNotWithSome)
{
    addFrame("Sky", (area("photo") | area("Blur")).adjusted(-30, -60, 30, 30));
    addFrame("Empty", QRectF(-900, -900, 200, 100));
    play("select photo\nkey Ctrl+D\nexpect nodes 4");
    EXPECT_EQ(graph().frames.size(), 2u);
    undo();
    play("select photo Blur\nkey Ctrl+D\nexpect nodes 5");
    ASSERT_EQ(graph().frames.size(), 3u);
    EXPECT_EQ(graph().frames.rbegin()->second.title, "Sky");
}

TEST_F(CanvasByKeys, FrameIsCutWithItsNodesInOneStep)
{
    const quint64 sky = addFrame("Sky", (area("photo") | area("Blur")).adjusted(-30, -60, 30, 30));
    scene().select({0, std::nullopt, sky});
    const int count = steps();
    play("key Ctrl+X\nexpect nodes 1");
    EXPECT_TRUE(graph().frames.empty());
    EXPECT_EQ(steps(), count + 1);
    play("key Ctrl+V\nexpect nodes 3");
    EXPECT_EQ(graph().frames.size(), 1u);
    undo();
    undo();
    play("expect nodes 3");
    EXPECT_EQ(frame(sky).title, "Sky");
}

TEST_F(CanvasByKeys, EmptyFrameIsDuplicatedAndSelected)
{
    const quint64 sky = addFrame("Sky", QRectF(-900, -900, 400, 300));
    addFrame("Inner", QRectF(-850, -850, 150, 100));
    scene().select({0, std::nullopt, sky});
    play("key Ctrl+D\nexpect nodes 3");
    ASSERT_EQ(graph().frames.size(), 4u) << "with the frame inside";
    EXPECT_EQ(scene().frames().selected(), graph().frames.rbegin()->first);
}

TEST_F(CanvasByKeys, HostileFramesOnTheClipboardAreRefused)
{
    Graph graph;
    graph.frames[7] = {7, "Sky", QRectF(10, 20, 300, 200)};
    const QByteArray text = graphToText(graph);
    ASSERT_TRUE(graphFromText(text));
    EXPECT_EQ(graphFromText(text)->frames, graph.frames);
    const auto with = [&](const QRectF& place) {
        graph.frames[7].area = place;
        return graphFromText(graphToText(graph));
    };
    EXPECT_FALSE(with(QRectF(10, 20, 1e300, 200)));
    EXPECT_FALSE(with(QRectF(10, 20, 2, 200)));
    EXPECT_FALSE(with(QRectF(10, 20, -300, 200)));
    EXPECT_FALSE(with(QRectF(-5e6, 20, 300, 200)));
    EXPECT_FALSE(with(QRectF(std::nan(""), 20, 300, 200)));
    Graph far;
    far.nodes[1].id = 1;
    far.nodes[1].type = far.nodes[1].name = "essentials/levels";
    EXPECT_TRUE(graphFromText(graphToText(far)));
    far.nodes[1].position = QPointF(0, std::nan(""));
    EXPECT_FALSE(graphFromText(graphToText(far)));
    far.nodes[1].position = QPointF(-1e300, 0);
    EXPECT_FALSE(graphFromText(graphToText(far)));
    EXPECT_FALSE(graphFromText(QByteArray(text).replace("\"id\": \"7\"", "\"id\": 7")));
    EXPECT_FALSE(graphFromText(QByteArray(text).replace("\"size\"", "\"girth\"")));
    EXPECT_FALSE(graphFromText(QByteArray(text).replace("\"frames\": [", "\"frames\": [3, ")));
    const QByteArray older = QByteArray(text).replace("\"frames\"", "\"other\"");
    ASSERT_TRUE(graphFromText(older));
    EXPECT_TRUE(graphFromText(older)->frames.empty());
    graph.frames[7] = {7, QString("long\n").repeated(1000), QRectF(10, 20, 300, 200)};
    EXPECT_EQ(graphFromText(graphToText(graph))->frames[7].title.size(), 1000);
    QApplication::clipboard()->setText(older);
    play("key Ctrl+V\nexpect nodes 3");
    EXPECT_EQ(status(), "There are no nodes on the clipboard.");
}

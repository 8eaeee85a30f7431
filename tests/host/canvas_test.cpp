// What a user does on the canvas of the editor.

#include "editorfixture.h"

#include "minimap.h"
#include "project.h"
#include "projectfiles.h"
#include "scene.h"
#include "sceneview.h"
#include "snapping.h"

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QGraphicsEffect>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QTest>

#include <algorithm>
#include <cstdlib>

using namespace Host;

namespace
{

class CanvasByMouse : public Editor
{
protected:
    CanvasByMouse()
    {
        QApplication::setActiveWindow(&window); // where no window manager does
        view().setFocus();
    }

    SceneView& view() { return window.sceneView(); }
    Scene& scene() { return window.scene(); }
    PreviewNode& item(const QString& name) { return *scene().item(id(name)); }

    QPoint at(const QPointF& scenePoint) { return view().mapFromScene(scenePoint); }
    void mouse(QEvent::Type type, const QPointF& point, Qt::MouseButton button, Qt::MouseButtons held,
               Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QMouseEvent event(type, at(point), view().viewport()->mapToGlobal(at(point)), button, held, modifiers);
        QApplication::sendEvent(view().viewport(), &event);
    }
    void press(const QPointF& point)
    {
        mouse(QEvent::MouseMove, point, Qt::NoButton, Qt::NoButton);
        mouse(QEvent::MouseButtonPress, point, Qt::LeftButton, Qt::LeftButton);
    }
    void moveTo(const QPointF& point, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        mouse(QEvent::MouseMove, point, Qt::NoButton, Qt::LeftButton, modifiers);
    }
    void release(const QPointF& point) { mouse(QEvent::MouseButtonRelease, point, Qt::LeftButton, Qt::NoButton); }
    void click(const QPointF& point)
    {
        press(point);
        release(point);
    }
    void drag(const QPointF& from, const QPointF& to, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        press(from);
        moveTo((from + to) / 2, modifiers);
        moveTo(to, modifiers);
        release(to);
    }
    void doubleClick(const QPointF& point)
    {
        click(point);
        mouse(QEvent::MouseButtonDblClick, point, Qt::LeftButton, Qt::LeftButton);
        release(point);
    }
    void openMenu(const QPointF& point, QContextMenuEvent::Reason reason = QContextMenuEvent::Mouse)
    {
        QContextMenuEvent event(reason, at(point), view().viewport()->mapToGlobal(at(point)));
        QApplication::sendEvent(view().viewport(), &event);
    }
    QMenu* menu() { return window.findChild<QMenu*>("canvasMenu"); }
    QStringList menuTexts()
    {
        QStringList texts;
        for (const QAction* action : menu() ? menu()->actions() : QList<QAction*>())
            texts.append(action->text().remove('&'));
        return texts;
    }
    void choose(const QString& text)
    {
        ASSERT_TRUE(menu());
        for (QAction* action : menu()->actions()) {
            if (action->text().remove('&') == text) {
                menu()->close(); // as a click does, before it acts
                QApplication::setActiveWindow(&window);
                action->trigger();
                return;
            }
        }
        FAIL() << "the menu has no " << qPrintable(text);
    }

    // Nodes in a row with room between them, at zoom 1.
    void spread()
    {
        addThree();
        window.document().moveNodes({{id("photo"), {0, 0}}, {id("Blur"), {320, 60}}, {id("Levels"), {640, 10}}});
        view().resetTransform();
        view().centerOn(430, 60);
    }
    QPointF position(const QString& name) { return graph().nodeByName(name)->position; }
    QPointF grip(const QString& name) { return item(name).scenePos() + QPointF(40, 10); }
    QRectF area(const QString& name) { return item(name).mapRectToScene(item(name).rect()); }
    QPointF anchorCenter(const QString& name, const QString& field, bool output)
    {
        return scene().anchor(id(name), field, output)->sceneBoundingRect().center();
    }
    Connection wire(const QString& from, const QString& to) { return {id(from), "image", id(to), "image"}; }
    void connectNodes(const QString& from, const QString& to)
    {
        EXPECT_EQ(window.document().addConnection(wire(from, to)), "");
    }
    int steps() { return window.document().undoStack().count(); }
    void undo() { window.document().undoStack().undo(); }
    const FrameRecord& onlyFrame() { return graph().frames.begin()->second; }

    // The canvas when nothing is left to be drawn.
    QImage shown()
    {
        QImage last;
        for (int i = 0; i < 50; ++i) {
            QApplication::processEvents();
            const QImage now = view().viewport()->grab().toImage();
            if (now == last && !scene().pictures().isUnfinished())
                return last;
            last = now;
        }
        ADD_FAILURE() << "something is left to be drawn after 50 frames";
        return last;
    }

    // The same with every item drawn for itself.
    QImage withoutPictures()
    {
        for (const auto& [node, each] : scene().nodeItems())
            each->graphicsEffect()->setEnabled(false);
        const QImage image = shown();
        for (const auto& [node, each] : scene().nodeItems())
            each->graphicsEffect()->setEnabled(true);
        return image;
    }
};

// The largest difference of a channel. Layers that are blended one by one round once more than their picture.
int difference(const QImage& a, const QImage& b)
{
    if (a.size() != b.size())
        return 255;
    int most = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
            most = std::max(
                {most, std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)), std::abs(qBlue(p) - qBlue(q))});
        }
    }
    return most;
}

} // namespace

TEST_F(CanvasByMouse, PicturesOfNodesShowWhatTheNodesShow)
{
    addChain();
    play("wait");
    view().resetTransform();
    view().centerOn(300, 150);
    play("wait"); // the nodes' pictures are of the new zoom
    const QImage first = shown();
    EXPECT_LE(difference(first, withoutPictures()), 3);
    play("slide Blur radiusx 0.7\nselect Levels\nwait");
    const QImage second = shown();
    EXPECT_NE(second, first);
    EXPECT_LE(difference(second, withoutPictures()), 3);
    play("set Blur radiusx 3\nselect Levels\nkey D\nwait");
    const QImage third = shown();
    EXPECT_NE(third, second);
    EXPECT_LE(difference(third, withoutPictures()), 3);
}

TEST_F(CanvasByMouse, PicturesOfNodesLoseAReasonThatIsNoMore)
{
    addChain();
    settle();
    view().resetTransform();
    view().centerOn(300, 150);
    settle();
    const QImage before = shown();
    scene().setErrors({{id("Blur"), "It is too dark."}});
    const QImage failed = shown();
    EXPECT_GT(difference(failed, before), 100);
    EXPECT_LE(difference(failed, withoutPictures()), 3);
    shown();
    scene().setErrors({});
    EXPECT_EQ(shown(), before);
}

// A picture is whole even if it was made while only a part of its node was to be seen.
TEST_F(CanvasByMouse, PicturesOfNodesThatComeIntoViewAreWhole)
{
    spread();
    play("wait");
    const QImage whole = shown();
    view().resetTransform();
    view().scale(0.5, 0.5);
    shown();
    view().resetTransform();
    view().centerOn(430 - 640, 60); // a strip of the last one
    shown();
    view().centerOn(430, 60);
    view().viewport()->repaint();
    EXPECT_LE(difference(shown(), whole), 3);
}

// ---- Wires

TEST_F(CanvasByMouse, WireIsDrawnFromAnInputToo)
{
    spread();
    drag(anchorCenter("Blur", "image", false), anchorCenter("photo", "image", true));
    ASSERT_EQ(graph().connections.size(), 1u);
    EXPECT_EQ(graph().connections[0], wire("photo", "Blur"));
}

TEST_F(CanvasByMouse, WireBelowTheMouseIsLit)
{
    spread();
    connectNodes("photo", "Blur");
    play("wait");
    const QPointF middle = scene().wires().middleOf(wire("photo", "Blur"));
    const QImage before = shown();
    mouse(QEvent::MouseMove, middle, Qt::NoButton, Qt::NoButton);
    const QImage lit = shown();
    EXPECT_NE(lit, before);
    EXPECT_EQ(lit.pixelColor(at(middle)), QColor(Qt::white));
    mouse(QEvent::MouseMove, middle + QPointF(0, 200), Qt::NoButton, Qt::NoButton);
    EXPECT_EQ(shown(), before);
    mouse(QEvent::MouseMove, middle, Qt::NoButton, Qt::NoButton);
    EXPECT_EQ(shown(), lit);
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(view().viewport(), &leave);
    EXPECT_EQ(shown(), before);
}

TEST_F(CanvasByMouse, ClickedWireIsDeletedByTheKeyAndComesBack)
{
    spread();
    connectNodes("photo", "Blur");
    play("select Levels");
    click(scene().wires().middleOf(wire("photo", "Blur")));
    EXPECT_EQ(scene().wires().selected(), wire("photo", "Blur"));
    EXPECT_TRUE(scene().selectedNodes().empty());
    play("key Delete\nexpect wires 0\nexpect nodes 3\nkey Ctrl+Z\nexpect wires 1");
    click(scene().wires().middleOf(wire("photo", "Blur")));
    click(grip("Levels"));
    EXPECT_EQ(scene().wires().selected(), std::nullopt);
    play("key Delete\nexpect wires 1\nexpect nodes 2");
}

TEST_F(CanvasByMouse, EscapeDropsTheLooseWire)
{
    spread();
    connectNodes("photo", "Blur");
    const int before = steps();
    press(anchorCenter("Blur", "image", false)); // takes the wire off
    moveTo(QPointF(300, 300));
    const QImage loose = shown();
    QTest::keyClick(&view(), Qt::Key_Escape);
    EXPECT_NE(shown(), loose);
    moveTo(anchorCenter("Levels", "image", false));
    release(anchorCenter("Levels", "image", false));
    EXPECT_EQ(steps(), before);
    ASSERT_EQ(graph().connections.size(), 1u);
    EXPECT_EQ(graph().connections[0], wire("photo", "Blur"));
}

// ---- Frames

TEST_F(CanvasByMouse, FrameIsMadeAroundTheSelectionAndItsTitleTyped)
{
    spread();
    play("select photo Blur\nkey Ctrl+G");
    ASSERT_EQ(graph().frames.size(), 1u);
    EXPECT_TRUE(onlyFrame().area.contains(area("photo") | area("Blur")));
    EXPECT_FALSE(onlyFrame().area.contains(area("Levels")));
    QTest::keyClicks(&view(), "Skin tones");
    QTest::keyClick(&view(), Qt::Key_Return);
    EXPECT_EQ(onlyFrame().title, "Skin tones");
    EXPECT_EQ(scene().focusItem(), nullptr);
    play("key Ctrl+Z\nkey Ctrl+Z");
    EXPECT_TRUE(graph().frames.empty());
}

TEST_F(CanvasByMouse, TitleIsEditedByADoubleClickAndEscapeKeepsTheOldOne)
{
    spread();
    window.document().addFrame("Sky", QRectF(-40, -60, 300, 260));
    const QPointF title(60, -50);
    doubleClick(title);
    QTest::keyClicks(&view(), "Sea");
    QTest::keyClick(&view(), Qt::Key_Escape);
    EXPECT_EQ(onlyFrame().title, "Sky");
    EXPECT_EQ(scene().focusItem(), nullptr);
    doubleClick(title);
    QTest::keyClicks(&view(), "Sea");
    click(QPointF(280, 20)); // elsewhere
    EXPECT_EQ(onlyFrame().title, "Sea");
    doubleClick(title);
    QTest::keyClicks(&view(), "  ");
    QTest::keyClick(&view(), Qt::Key_Return);
    EXPECT_EQ(onlyFrame().title, "Sea");
}

TEST_F(CanvasByMouse, FrameTakesAlongTheNodesThatAreWhollyInside)
{
    spread();
    connectNodes("photo", "Blur");
    window.document().addFrame("Sky", (area("photo")).adjusted(-30, -50, 150, 30)); // Blur only in part
    const QRectF before = onlyFrame().area;
    const QPointF photo = position("photo"), blur = position("Blur");
    const int count = steps();
    drag(before.topLeft() + QPointF(50, 12), before.topLeft() + QPointF(30, 52));
    EXPECT_EQ(onlyFrame().area, before.translated(-20, 40));
    EXPECT_EQ(position("photo"), photo + QPointF(-20, 40));
    EXPECT_EQ(position("Blur"), blur);
    EXPECT_EQ(steps(), count + 1);
    EXPECT_EQ(scene().connectionAt(scene().wires().middleOf(wire("photo", "Blur"))), wire("photo", "Blur"));
    play("key Ctrl+Z");
    EXPECT_EQ(onlyFrame().area, before);
    EXPECT_EQ(position("photo"), photo);
    EXPECT_EQ(item("photo").pos(), photo);
}

TEST_F(CanvasByMouse, FrameIsResizedAtItsCornerButNotToNothing)
{
    spread();
    window.document().addFrame("Sky", QRectF(20, -80, 300, 200));
    drag(QPointF(315, 115), QPointF(365, 135));
    EXPECT_EQ(onlyFrame().area, QRectF(20, -80, 350, 220));
    EXPECT_EQ(position("photo"), QPointF(0, 0));
    drag(QPointF(365, 135), QPointF(-200, -200));
    EXPECT_EQ(onlyFrame().area.topLeft(), QPointF(20, -80));
    EXPECT_GE(onlyFrame().area.width(), 100);
    EXPECT_GE(onlyFrame().area.height(), 50);
    play("key Ctrl+Z\nkey Ctrl+Z");
    EXPECT_EQ(onlyFrame().area, QRectF(20, -80, 300, 200));
}

TEST_F(CanvasByMouse, ClickedFrameIsDeletedAloneAndItsInsideIsTheCanvas)
{
    spread();
    window.document().addFrame("Sky", area("photo").adjusted(-30, -50, 30, 300));
    click(area("photo").bottomLeft() + QPointF(20, 60)); // inside, beside the node
    EXPECT_EQ(scene().frames().selected(), 0u);
    click(onlyFrame().area.topLeft() + QPointF(50, 12));
    EXPECT_EQ(scene().frames().selected(), onlyFrame().id);
    play("key Delete\nexpect nodes 3");
    EXPECT_TRUE(graph().frames.empty());
    EXPECT_TRUE(scene().frames().items().empty());
    play("key Ctrl+Z");
    EXPECT_EQ(scene().frames().items().size(), 1u);
}

TEST_F(CanvasByMouse, FramesAreSavedWithTheProject)
{
    spread();
    window.document().addFrame("Sky", QRectF(20.5, -80, 300, 200));
    const FrameRecord frame = onlyFrame();
    play("save " + path("a.ondrel") + "\nkey Ctrl+G\nopen " + path("a.ondrel"));
    ASSERT_EQ(graph().frames.size(), 1u);
    EXPECT_TRUE(onlyFrame() == frame);
    EXPECT_EQ(scene().frames().items().size(), 1u);
}

TEST_F(CanvasByMouse, AllThatIsFittedIntoTheViewHasTheFramesToo)
{
    spread();
    window.document().addFrame("Sky", QRectF(-900, -700, 300, 200));
    play("key A");
    const QRectF inView = view().mapToScene(view().viewport()->rect()).boundingRect();
    EXPECT_TRUE(inView.contains(QRectF(-900, -700, 300, 200)));
    EXPECT_TRUE(inView.contains(area("Levels")));
}

// ---- Lines

TEST(Snapping, NearestLineWithinTheRadiusWins)
{
    const std::vector<QRectF> others{{100, 100, 50, 20}, {300, 40, 80, 80}};
    const Snap both = snapTo(QRectF(103, 300, 50, 20), others, 8);
    EXPECT_EQ(both.offset, QPointF(-3, 0));
    EXPECT_EQ(both.guides.size(), 3u); // left edges, centres, right edges
    EXPECT_EQ(snapTo(QRectF(110, 300, 50, 20), others, 8).offset, QPointF());
    EXPECT_TRUE(snapTo(QRectF(110, 300, 50, 20), others, 8).guides.empty());
    EXPECT_EQ(snapTo(QRectF(500, 74, 10, 10), others, 8).offset, QPointF(0, 1));  // the middles
    EXPECT_EQ(snapTo(QRectF(154, 60, 10, 10), others, 8).offset, QPointF(-4, 0)); // side by side
    EXPECT_EQ(snapTo(QRectF(0, 0, 10, 10), {}, 8).offset, QPointF());
}

TEST(Snapping, RectanglesAreLinedUpAndSpread)
{
    const std::vector<QRectF> areas{{0, 0, 10, 10}, {100, 50, 30, 20}, {40, 7, 20, 40}};
    using Points = std::vector<QPointF>;
    EXPECT_EQ(aligned(areas, Alignment::Left), (Points{{0, 0}, {0, 50}, {0, 7}}));
    EXPECT_EQ(aligned(areas, Alignment::Right), (Points{{120, 0}, {100, 50}, {110, 7}}));
    EXPECT_EQ(aligned(areas, Alignment::Top), (Points{{0, 0}, {100, 0}, {40, 0}}));
    EXPECT_EQ(aligned(areas, Alignment::Bottom), (Points{{0, 60}, {100, 50}, {40, 30}}));
    EXPECT_EQ(aligned(areas, Alignment::CentersAcross), (Points{{60, 0}, {50, 50}, {55, 7}}));
    EXPECT_EQ(aligned(areas, Alignment::CentersDown), (Points{{0, 30}, {100, 25}, {40, 15}}));
    EXPECT_EQ(distributed(areas, Qt::Horizontal), (Points{{0, 0}, {100, 50}, {45, 7}})); // gaps of 35
    EXPECT_EQ(distributed(areas, Qt::Vertical), (Points{{0, 0}, {100, 50}, {40, 10}}));  // of 0
    EXPECT_EQ(distributed({areas[0], areas[1]}, Qt::Horizontal), (Points{{0, 0}, {100, 50}}));
    EXPECT_TRUE(aligned({}, Alignment::Left).empty());
}

TEST_F(CanvasByMouse, ArrangingIsOneStepEach)
{
    spread();
    play("select photo Blur Levels");
    const int count = steps();
    play("key Shift+T");
    EXPECT_EQ(area("photo").top(), area("Blur").top());
    EXPECT_EQ(area("photo").top(), area("Levels").top());
    EXPECT_EQ(steps(), count + 1);
    play("key Shift+B");
    EXPECT_EQ(area("photo").bottom(), area("Levels").bottom());
    play("key Shift+H");
    EXPECT_NEAR(area("Blur").left() - area("photo").right(), area("Levels").left() - area("Blur").right(), 1e-9);
    play("key Ctrl+Z\nkey Ctrl+Z\nkey Ctrl+Z");
    EXPECT_EQ(position("Blur"), QPointF(320, 60));
    EXPECT_EQ(item("Blur").pos(), QPointF(320, 60));
}

TEST_F(CanvasByMouse, DraggedNodeSnapsAndAltSwitchesThatOff)
{
    spread();
    press(grip("Blur"));
    moveTo(grip("Blur") + QPointF(0, -30));
    moveTo(QPointF(360, 70) + QPointF(0, -55)); // 5 below the top of the first
    EXPECT_EQ(item("Blur").pos(), QPointF(320, 0));
    EXPECT_FALSE(scene().drag().guides().empty());
    moveTo(QPointF(360, 70) + QPointF(0, -55), Qt::AltModifier);
    EXPECT_EQ(item("Blur").pos(), QPointF(320, 5));
    EXPECT_TRUE(scene().drag().guides().empty());
    moveTo(QPointF(360, 70) + QPointF(3, -55));
    release(QPointF(360, 70) + QPointF(3, -55));
    EXPECT_EQ(position("Blur"), QPointF(323, 0));
    EXPECT_TRUE(scene().drag().guides().empty());
    play("key Ctrl+Z");
    EXPECT_EQ(position("Blur"), QPointF(320, 60));
}

// ---- Wires below nodes

TEST_F(CanvasByMouse, NodeDroppedOnAWireIsSplicedIntoItInOneStep)
{
    spread();
    window.document().moveNodes({{id("Blur"), {320, 300}}});
    connectNodes("photo", "Levels");
    view().centerOn(430, 250);
    const QPointF middle = scene().wires().middleOf(wire("photo", "Levels"));
    const QPointF from = grip("Blur"), to = from + (middle - area("Blur").center());
    const Graph before = graph();
    press(from);
    moveTo((from + to) / 2, Qt::AltModifier);
    EXPECT_EQ(scene().wires().target(), std::nullopt);
    moveTo(to, Qt::AltModifier);
    EXPECT_EQ(scene().wires().target(), wire("photo", "Levels"));
    release(to);
    EXPECT_EQ(scene().wires().target(), std::nullopt);
    ASSERT_EQ(graph().connections.size(), 2u);
    EXPECT_EQ(*graph().into(id("Blur"), "image"), wire("photo", "Blur"));
    EXPECT_EQ(*graph().into(id("Levels"), "image"), wire("Blur", "Levels"));
    EXPECT_NE(position("Blur"), QPointF(320, 300));
    play("key Ctrl+Z");
    EXPECT_TRUE(graph() == before);
    EXPECT_EQ(item("Blur").pos(), QPointF(320, 300));
    play("key Ctrl+Shift+Z\nexpect wires 2");
}

TEST_F(CanvasByMouse, NodeThatDoesNotFitIsNotSpliced)
{
    spread();
    connectNodes("photo", "Levels");
    play("add essentials/image 320 300 Other\nadd essentials/gaussianblur 900 300 Used");
    window.document().addConnection({id("photo"), "image", id("Used"), "image"});
    for (const QString name : {"Other", "Used"}) {
        view().centerOn(area(name).center() + QPointF(-100, -50));
        const QPointF way = scene().wires().middleOf(wire("photo", "Levels")) - area(name).center();
        drag(grip(name), grip(name) + way, Qt::AltModifier);
        EXPECT_LT((area(name).center() - scene().wires().middleOf(wire("photo", "Levels"))).manhattanLength(), 3);
        EXPECT_EQ(graph().into(id("Levels"), "image")->from, id("photo")) << qPrintable(name);
    }
}

TEST_F(CanvasByMouse, NodeIsSplicedBeforeAVariableInput)
{
    spread();
    play("add essentials/merge 640 300 Merge\nwire photo image Merge layer0\nexpect wires 1");
    const Connection into = graph().connections[0];
    view().centerOn(430, 250);
    const QPointF way = scene().wires().middleOf(into) - area("Blur").center();
    drag(grip("Blur"), grip("Blur") + way, Qt::AltModifier);
    ASSERT_EQ(graph().connections.size(), 2u);
    EXPECT_EQ(*graph().into(id("Merge"), into.input), (Connection{id("Blur"), "image", id("Merge"), into.input}));
    EXPECT_TRUE(scene().anchor(id("Merge"), into.input, false)->connected());
    const Graph spliced = graph();
    play("key Ctrl+Z\nexpect wires 1\nkey Ctrl+Shift+Z\nexpect wires 2");
    EXPECT_TRUE(graph() == spliced);
    EXPECT_TRUE(scene().anchor(id("Merge"), into.input, false)->connected());
}

// ---- Replacing, menus

TEST_F(CanvasByMouse, ReplacedNodeKeepsItsWiresAndTheSearchOffersWhatDoes)
{
    spread();
    connectNodes("photo", "Blur");
    connectNodes("Blur", "Levels");
    QStringList types;
    inSearch([&](NodeSearch& search) {
        types = offered(search);
        QTest::keyClicks(search.findChild<QLineEdit*>(), "median");
        QTest::keyClick(search.findChild<QLineEdit*>(), Qt::Key_Return);
    });
    play("select Blur\nkey R");
    EXPECT_TRUE(types.contains("essentials/crop"));
    EXPECT_TRUE(types.contains("essentials/image")); // by its output
    EXPECT_FALSE(types.contains("essentials/gaussianblur"));
    EXPECT_EQ(graph().nodes.size(), 3u);
    const NodeRecord* const made = graph().nodeByName("Median");
    ASSERT_TRUE(made);
    EXPECT_EQ(made->type, "essentials/median");
    EXPECT_EQ(made->position, QPointF(320, 60));
    EXPECT_EQ(graph().connections.size(), 2u);
    EXPECT_TRUE(scene().anchor(made->id, "image", false)->connected());
    EXPECT_EQ(scene().selectedNodes(), std::vector<NodeId>{made->id});
    play("key Ctrl+Z");
    EXPECT_NE(id("Blur"), 0u);
    EXPECT_EQ(graph().connections.size(), 2u);
}

TEST_F(CanvasByMouse, ReplacingNeedsOneNode)
{
    spread();
    play("select Blur Levels\nkey R");
    EXPECT_FALSE(status().isEmpty());
    EXPECT_EQ(graph().nodes.size(), 3u);
}

TEST_F(CanvasByMouse, EachThingHasItsMenu)
{
    spread();
    connectNodes("photo", "Blur");
    window.document().addFrame("Sky", QRectF(-40, -100, 200, 80));
    openMenu(grip("Levels"));
    EXPECT_TRUE(menuTexts().contains("Replace node...")) << qPrintable(menuTexts().join(", "));
    EXPECT_TRUE(menuTexts().contains("Bypass"));
    EXPECT_TRUE(menuTexts().contains("Rename..."));
    EXPECT_EQ(scene().selectedNodes(), std::vector<NodeId>{id("Levels")});
    choose("Show in view");
    EXPECT_EQ(scene().primary(), id("Levels"));
    EXPECT_TRUE(QTest::qWaitFor([this] { return !menu(); }));

    openMenu(scene().wires().middleOf(wire("photo", "Blur")));
    EXPECT_EQ(menuTexts().value(0), "Insert node...");
    EXPECT_TRUE(scene().selectedNodes().empty());
    choose("Delete");
    EXPECT_TRUE(graph().connections.empty());
    EXPECT_TRUE(QTest::qWaitFor([this] { return !menu(); }));

    openMenu(QPointF(0, -90));
    choose("Edit title");
    QTest::keyClicks(&view(), "Hair");
    QTest::keyClick(&view(), Qt::Key_Return);
    EXPECT_EQ(onlyFrame().title, "Hair");
    EXPECT_TRUE(QTest::qWaitFor([this] { return !menu(); }));

    openMenu(QPointF(280, -60));
    EXPECT_TRUE(menuTexts().contains("Paste"));
    EXPECT_EQ(scene().frames().selected(), 0u);
    choose("Frame nodes");
    EXPECT_EQ(graph().frames.size(), 2u);
}

TEST_F(CanvasByMouse, NoTwoActionsHaveTheSameKeys)
{
    QMap<QString, QString> holders;
    for (const QAction* action : window.findChildren<QAction*>()) {
        for (const QKeySequence& keys : action->shortcuts()) {
            EXPECT_FALSE(holders.contains(keys.toString()))
                << qPrintable(keys.toString() + ": " + action->text() + ", " + holders.value(keys.toString()));
            holders[keys.toString()] = action->text();
        }
    }
    EXPECT_EQ(holders["Shift+L"], "Align &left edges");
}

TEST_F(CanvasByMouse, MenuOfSeveralNodesKeepsTheSelection)
{
    spread();
    play("select photo Blur");
    openMenu(grip("Blur"));
    EXPECT_EQ(scene().selectedNodes().size(), 2u);
    EXPECT_TRUE(menuTexts().contains("Arrange nodes"));
    choose("Delete");
    EXPECT_EQ(graph().nodes.size(), 1u);
}

TEST_F(CanvasByMouse, MenuKeyOpensTheMenuOfWhatIsSelected)
{
    spread();
    play("select Levels");
    openMenu(QPointF(0, 0), QContextMenuEvent::Keyboard);
    EXPECT_TRUE(menuTexts().contains("Replace node..."));
    EXPECT_EQ(scene().selectedNodes(), std::vector<NodeId>{id("Levels")});
}

TEST_F(CanvasByMouse, NodeIsInsertedIntoAWireByItsMenu)
{
    spread();
    connectNodes("photo", "Blur");
    inSearch([](NodeSearch& search) {
        EXPECT_FALSE(offered(search).contains("essentials/image"));
        EXPECT_FALSE(offered(search).contains("essentials/histogram"));
        QTest::keyClicks(search.findChild<QLineEdit*>(), "mirror");
        QTest::keyClick(search.findChild<QLineEdit*>(), Qt::Key_Return);
    });
    openMenu(scene().wires().middleOf(wire("photo", "Blur")));
    choose("Insert node...");
    ASSERT_NE(id("Mirror"), 0u);
    EXPECT_EQ(*graph().into(id("Blur"), "image"), wire("Mirror", "Blur"));
    EXPECT_EQ(*graph().into(id("Mirror"), "image"), wire("photo", "Mirror"));
    play("key Ctrl+Z\nexpect nodes 3\nexpect wires 1");
}

// ---- The overview

TEST_F(CanvasByMouse, OverviewMovesTheCanvasAndCanBeHidden)
{
    spread();
    auto* const map = view().findChild<MiniMap*>();
    ASSERT_TRUE(map && map->isVisible());
    EXPECT_TRUE(view().rect().contains(map->geometry()));
    shown();
    EXPECT_TRUE(QTest::qWaitFor([&] { return map->rect().contains(map->toMap(position("Levels")).toPoint()); }));
    const auto center = [this] { return view().mapToScene(view().viewport()->rect().center()); };
    QTest::mouseClick(map, Qt::LeftButton, Qt::NoModifier, map->toMap(area("Levels").center()).toPoint());
    EXPECT_LT((center() - area("Levels").center()).manhattanLength(), 40);
    const QPointF there = center();
    QTest::mousePress(map, Qt::LeftButton, Qt::NoModifier, map->toMap(there).toPoint());
    QMouseEvent move(QEvent::MouseMove, map->toMap(area("photo").center()).toPoint(), Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    QApplication::sendEvent(map, &move);
    EXPECT_LT(center().x(), there.x() - 200);
    play("key N");
    EXPECT_FALSE(map->isVisible());
    play("key N");
    EXPECT_TRUE(map->isVisible());
}

TEST_F(CanvasByMouse, OverviewShowsNodesFramesAndWhatIsInView)
{
    spread();
    window.document().addFrame("Sky", QRectF(-900, -900, 400, 300));
    auto* const map = view().findChild<MiniMap*>();
    shown();
    EXPECT_TRUE(QTest::qWaitFor([&] { return map->rect().contains(map->toMap(QPointF(-900, -900)).toPoint()); }));
    const QImage picture = map->grab().toImage();
    const QColor empty = picture.pixelColor(map->toMap(QPointF(-200, -800)).toPoint());
    EXPECT_NE(picture.pixelColor(map->toMap(QPointF(-700, -700)).toPoint()), empty);
    EXPECT_NE(picture.pixelColor(map->toMap(area("Levels").center()).toPoint()), empty);
}

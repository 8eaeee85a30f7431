#include "nodesupport.h"

namespace
{

using namespace OndrelTest;

// Three nodes side by side in one scene.
class NodeMouse : public testing::Test
{
protected:
    NodeMouse()
    {
        a = add("a", {20, 20});
        b = add("b", {240, 20});
        c = add("c", {20, 120});
        log.take();
    }
    TestNode* add(const QString& name, const QPointF& position)
    {
        auto* node = graph.add(new TestNode(name), position);
        log.listen(*node);
        return node;
    }
    static QPointF header(const TestNode* node) { return node->pos() + QPointF(100, 8); }

    void select(std::initializer_list<TestNode*> nodes)
    {
        for (TestNode* node : nodes)
            node->setSelected(true);
        EXPECT_EQ(log.take(), QStringList()) << "selecting by program is silent";
    }
    // The names of the selected nodes.
    QString selection() const
    {
        QString names;
        for (const TestNode* node : {a, b, c})
            if (node->isSelected())
                names += node->name();
        return names;
    }

    SignalLog log; // outlives the nodes
    GraphView graph;
    TestNode *a = nullptr, *b = nullptr, *c = nullptr;
};

TEST_F(NodeMouse, APlainClickOnAnUnselectedNodeSelectsItAlone)
{
    select({b, c});
    graph.press(header(a));
    EXPECT_EQ(selection(), "a");
    EXPECT_EQ(log.take(), QStringList({"a: selected"})) << "the others go without a signal";
    graph.release(header(a));
    EXPECT_EQ(selection(), "a");
    EXPECT_EQ(log.take(), QStringList({"a: moveComplete"}));
}

TEST_F(NodeMouse, APlainClickOnASelectedNodeKeepsTheSelection)
{
    select({a, b, c});
    graph.press(header(b));
    EXPECT_EQ(log.take(), QStringList({"b: selected"}));
    graph.release(header(b));
    EXPECT_EQ(selection(), "abc");
    EXPECT_EQ(log.take(), QStringList({"b: moveComplete"}));
}

TEST_F(NodeMouse, ControlDoesNotToggle)
{
    select({a, b});
    graph.click(header(b), Qt::ControlModifier);
    EXPECT_EQ(selection(), "ab");
    EXPECT_EQ(log.take(), QStringList({"b: selected", "b: moveComplete"}));
    graph.click(header(c), Qt::ControlModifier);
    EXPECT_EQ(selection(), "c");
}

TEST_F(NodeMouse, ShiftAddsAnUnselectedNode)
{
    select({a});
    graph.click(header(b), Qt::ShiftModifier);
    EXPECT_EQ(selection(), "ab");
    EXPECT_EQ(log.take(), QStringList({"b: selected", "b: moveComplete"}));
}

TEST_F(NodeMouse, ShiftTakesASelectedNodeOutWithoutMoveComplete)
{
    select({a, b});
    graph.press(header(b), Qt::ShiftModifier);
    EXPECT_EQ(selection(), "a");
    EXPECT_EQ(log.take(), QStringList({"b: deselected"}));
    graph.release(header(b), Qt::ShiftModifier);
    EXPECT_EQ(selection(), "a");
    EXPECT_EQ(log.take(), QStringList());
    // The next press starts anew.
    graph.click(header(b));
    EXPECT_EQ(selection(), "b");
    EXPECT_EQ(log.take(), QStringList({"b: selected", "b: moveComplete"}));
}

TEST_F(NodeMouse, LettingShiftGoDuringThePressChangesNothing)
{
    select({a, b});
    graph.press(header(b), Qt::ShiftModifier);
    graph.release(header(b));
    EXPECT_EQ(selection(), "a");
    EXPECT_EQ(log.take(), QStringList({"b: deselected"}));
    graph.press(header(b));
    graph.release(header(b), Qt::ShiftModifier);
    EXPECT_EQ(selection(), "b");
    EXPECT_EQ(log.take(), QStringList({"b: selected", "b: moveComplete"}));
}

TEST_F(NodeMouse, ADragMovesTheNode)
{
    const QPointF start = a->pos(), grip = header(a);
    graph.press(grip);
    log.take();
    graph.move(grip + QPointF(10, 5));
    EXPECT_EQ(a->pos(), start + QPointF(10, 5));
    EXPECT_EQ(log.take(), QStringList({"a: moved by user"}));
    graph.move(grip + QPointF(30, 25));
    EXPECT_EQ(a->pos(), start + QPointF(30, 25));
    EXPECT_EQ(log.take(), QStringList({"a: moved by user"}));
    graph.release(grip + QPointF(30, 25));
    EXPECT_EQ(a->pos(), start + QPointF(30, 25));
    EXPECT_EQ(selection(), "a");
    EXPECT_EQ(log.take(), QStringList({"a: moveComplete"}));
}

TEST_F(NodeMouse, ADragTakesTheSelectionAlongInSilence)
{
    select({a, b});
    const QPointF startA = a->pos(), startB = b->pos(), startC = c->pos(), grip = header(a);
    graph.press(grip);
    graph.move(grip + QPointF(7, 9));
    graph.release(grip + QPointF(7, 9));
    EXPECT_EQ(a->pos(), startA + QPointF(7, 9));
    EXPECT_EQ(b->pos(), startB + QPointF(7, 9));
    EXPECT_EQ(c->pos(), startC);
    EXPECT_EQ(log.take(), QStringList({"a: selected", "a: moved by user", "a: moveComplete"}));
}

TEST_F(NodeMouse, ADragOfANodeThatShiftTookOutEndsWithoutMoveComplete)
{
    select({a, b});
    const QPointF grip = header(a);
    graph.press(grip, Qt::ShiftModifier);
    graph.move(grip + QPointF(7, 9), Qt::ShiftModifier);
    graph.release(grip + QPointF(7, 9), Qt::ShiftModifier);
    EXPECT_EQ(log.take(), QStringList({"a: deselected", "a: moved by user"}));
    EXPECT_EQ(selection(), "b");
}

TEST_F(NodeMouse, AReleaseOneUnitUpAndLeftOfThePressLooksLikeAClickToTheToolkit)
{
    const QPointF grip = header(a);
    graph.press(grip);
    graph.release(grip - QPointF(1, 1));
    EXPECT_EQ(selection(), "") << "with Control such a click toggles";
    EXPECT_EQ(log.take(), QStringList({"a: selected", "a: moveComplete"})) << "and nobody is told";
}

TEST_F(NodeMouse, ADragOfOneUnitUpAndLeftDeselectsToo)
{
    const QPointF start = a->pos(), grip = header(a);
    graph.press(grip);
    graph.move(grip - QPointF(1, 1));
    graph.release(grip - QPointF(1, 1));
    EXPECT_EQ(a->pos(), start - QPointF(1, 1));
    EXPECT_EQ(selection(), "");
    EXPECT_EQ(log.take(), QStringList({"a: selected", "a: moved by user", "a: moveComplete"}));
}

TEST_F(NodeMouse, OtherButtonsRaiseNothing)
{
    select({a});
    for (const Qt::MouseButton button : {Qt::RightButton, Qt::MiddleButton}) {
        for (TestNode* node : {a, b}) {
            const QPointF start = node->pos();
            graph.press(header(node), {}, button);
            graph.move(header(node) + QPointF(20, 20), {}, button);
            graph.release(header(node) + QPointF(20, 20), {}, button);
            EXPECT_EQ(node->pos(), start);
        }
        EXPECT_EQ(selection(), "a");
        EXPECT_EQ(log.take(), QStringList());
    }
}

TEST_F(NodeMouse, AClickOnTheEmptySceneDeselectsInSilence)
{
    select({a, b});
    graph.click({500, 350});
    EXPECT_EQ(selection(), "");
    EXPECT_EQ(log.take(), QStringList());
}

TEST_F(NodeMouse, APressOnAFieldReachesTheNode)
{
    a->addControl("label", "Label");
    a->layout();
    log.take();
    graph.click(a->inputFields[0]->sceneBoundingRect().center());
    EXPECT_EQ(selection(), "a");
    EXPECT_EQ(log.take(), QStringList({"a: selected", "a: moveComplete"}));
}

// --- Groups: a selection is not extended across their borders ------------------------------------------------------

TEST_F(NodeMouse, ShiftOnANodeOfAnotherGroupDoesNothing)
{
    TestNode group;
    b->setGroupNode(&group);
    select({a});
    const QPointF start = b->pos(), grip = header(b);
    graph.press(grip, Qt::ShiftModifier);
    EXPECT_EQ(graph.scene.mouseGrabberItem(), b) << "the press is accepted";
    graph.move(grip + QPointF(20, 20), Qt::ShiftModifier);
    graph.release(grip + QPointF(20, 20), Qt::ShiftModifier);
    EXPECT_EQ(selection(), "a");
    EXPECT_EQ(b->pos(), start);
    EXPECT_EQ(log.take(), QStringList());
}

TEST_F(NodeMouse, ShiftWithinAGroupAddsAsEver)
{
    TestNode group;
    a->setGroupNode(&group);
    b->setGroupNode(&group);
    select({a});
    graph.click(header(b), Qt::ShiftModifier);
    EXPECT_EQ(selection(), "ab");
    EXPECT_EQ(log.take(), QStringList({"b: selected", "b: moveComplete"}));
}

TEST_F(NodeMouse, APlainClickCrossesGroups)
{
    TestNode group;
    b->setGroupNode(&group);
    select({a});
    graph.click(header(b));
    EXPECT_EQ(selection(), "b");
    EXPECT_EQ(log.take(), QStringList({"b: selected", "b: moveComplete"}));
}

TEST_F(NodeMouse, TheGroupIsLookedAtAgainInMoveAndRelease)
{
    TestNode group;
    select({a});
    const QPointF start = b->pos(), grip = header(b);
    graph.press(grip, Qt::ShiftModifier);
    EXPECT_EQ(log.take(), QStringList({"b: selected"}));
    c->setGroupNode(&group);
    c->setSelected(true);
    graph.move(grip + QPointF(20, 20), Qt::ShiftModifier);
    EXPECT_EQ(b->pos(), start);
    graph.release(grip + QPointF(20, 20), Qt::ShiftModifier);
    EXPECT_EQ(log.take(), QStringList());
    EXPECT_EQ(selection(), "abc");
}

TEST_F(NodeMouse, APressThatTheGroupStopsKeepsTheMarkOfTheLastShiftClick)
{
    TestNode group;
    select({a});
    graph.click(header(a), Qt::ShiftModifier);
    EXPECT_EQ(log.take(), QStringList({"a: deselected"}));
    b->setGroupNode(&group);
    b->setSelected(true);
    graph.press(header(a), Qt::ShiftModifier);
    EXPECT_EQ(log.take(), QStringList());
    b->setSelected(false); // now nothing stops the release
    graph.release(header(a), Qt::ShiftModifier);
    EXPECT_EQ(log.take(), QStringList()) << "it ends as the release of a Shift click that deselects";
    EXPECT_EQ(selection(), "");
}

} // namespace

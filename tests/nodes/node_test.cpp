#include "nodesupport.h"

#include <ondrel/nodes/anchor.h>
#include <ondrel/nodes/layouts.h>
#include <ondrel/nodes/nodebackdrop.h>

#include <QGraphicsEffect>
#include <QGraphicsTextItem>
#include <QPointer>
#include <QTextDocument>

#include <cmath>
#include <limits>

namespace
{

using namespace OndrelTest;
using Ondrel::Anchor;
using Ondrel::InputField;
using Ondrel::Node;
using Ondrel::OutputField;

constexpr auto kMinusOne = std::numeric_limits<unsigned long>::max();

float expectedHeaderHeight()
{
    return static_cast<float>(QFontMetrics(headerFont()).height() + 12);
}

TEST(Node, IsBuiltMovableAndSelectableWithAShadowBehindIt)
{
    TestNode node;
    EXPECT_EQ(node.type(), 65538);
    EXPECT_EQ(static_cast<void*>(static_cast<Node*>(&node)), static_cast<void*>(static_cast<QObject*>(&node)));
    EXPECT_TRUE(node.flags() & QGraphicsItem::ItemIsMovable);
    EXPECT_TRUE(node.flags() & QGraphicsItem::ItemIsSelectable);
    EXPECT_TRUE(node.flags() & QGraphicsItem::ItemSendsGeometryChanges);
    EXPECT_EQ(node.cursor().shape(), Qt::ArrowCursor);
    EXPECT_TRUE(node.hasCursor());
    ASSERT_EQ(node.childItems().size(), 1);
    QGraphicsItem* const backdrop = node.childItems().front();
    EXPECT_EQ(backdrop->type(), 65539);
    EXPECT_TRUE(backdrop->flags() & QGraphicsItem::ItemStacksBehindParent);
}

TEST(Node, StartsWithoutNumberNameGroupOrFields)
{
    TestNode node, group;
    EXPECT_EQ(node.id(), 0U);
    EXPECT_EQ(node.name(), QString());
    EXPECT_EQ(node.groupNode(), nullptr);
    EXPECT_FALSE(node.isInGroupNode());
    EXPECT_FALSE(node.isGroupNode());
    EXPECT_EQ(node.inputFieldCount(), 0U);
    EXPECT_EQ(node.outputFieldCount(), 0U);
    node.setId(4000000000UL);
    node.setName("blur");
    node.setGroupNode(&group);
    EXPECT_EQ(node.id(), 4000000000UL);
    EXPECT_EQ(node.name(), "blur");
    EXPECT_EQ(node.groupNode(), &group);
    EXPECT_TRUE(node.isInGroupNode());
    node.setGroupNode(nullptr);
    EXPECT_FALSE(node.isInGroupNode());
    SignalLog log(node);
    node.setInputValue(kMinusOne, 5);
    EXPECT_EQ(log.take(), QStringList()) << "the default does nothing";
}

TEST(Node, MeasuresItsHeader)
{
    TestNode node;
    EXPECT_EQ(Node::headerHeight(), expectedHeaderHeight());
    EXPECT_EQ(node.headerSize(), QSizeF(12, expectedHeaderHeight() + 5));
    const QString header = "A rather long header with W and i in it, wider than any node";
    node.setHeader(header);
    const int width = QFontMetrics(headerFont()).horizontalAdvance(header);
    EXPECT_EQ(node.headerSize(), QSizeF(width + 12, expectedHeaderHeight() + 5));
    node.layout();
    EXPECT_GT(width + 12, 200);
    EXPECT_EQ(node.rect(), QRectF(0, 0, width + 12, expectedHeaderHeight() + 5));
}

TEST(Node, WithoutFieldsAndHeaderIs200Wide)
{
    TestNode node;
    node.layout();
    EXPECT_EQ(node.rect(), QRectF(0, 0, 200, expectedHeaderHeight() + 5));
    EXPECT_EQ(node.boundingRect(), QRectF(-2, -2, 204, expectedHeaderHeight() + 9));
}

TEST(Node, KeepsThePlaceOfItsRectangle)
{
    TestNode node;
    node.setRect(-7, 9, 1, 1);
    node.layout();
    EXPECT_EQ(node.rect(), QRectF(-7, 9, 200, expectedHeaderHeight() + 5));
    EXPECT_EQ(node.boundingRect(), QRectF(-9, 7, 204, expectedHeaderHeight() + 9));
    // The shadow: 1 below the top edge, 17 further out on each side.
    const auto* backdrop = static_cast<NodeBackdrop*>(node.childItems().front());
    EXPECT_EQ(backdrop->rect(), QRectF(-7 - 17, 10 - 17, 234, expectedHeaderHeight() + 4 + 34));
    EXPECT_EQ(backdrop->pos(), QPointF());
}

// Two anchored inputs, one control and two outputs, of which one has no anchor.
struct LookupNode : TestNode {
    LookupNode()
    {
        first = addInput("first", "First");
        control = addControl("control", "Control");
        last = addInput("last", "Last");
        out = addOutput("out", "Out");
        bare = add(new OutputField("bare", this, nullptr, "Bare"));
    }
    InputField *first, *control, *last;
    OutputField *out, *bare;
};

TEST(Node, FindsInputs)
{
    LookupNode node;
    EXPECT_EQ(node.inputFieldCount(), 3U);
    EXPECT_EQ(node.inputIndexOfFieldByName("first"), 0);
    EXPECT_EQ(node.inputIndexOfFieldByName("control"), 1);
    EXPECT_EQ(node.inputIndexOfFieldByName("last"), 2);
    EXPECT_EQ(node.inputIndexOfFieldByName("Last"), -1) << "names are compared exactly";
    EXPECT_EQ(node.inputIndexOfFieldByName("out"), -1);
    EXPECT_EQ(node.inputIndexOfFieldByAnchor(node.last->anchor()), 2);
    EXPECT_EQ(node.inputIndexOfFieldByAnchor(node.out->anchor()), -1);
    EXPECT_EQ(node.inputNameOfFieldByIndex(2), "last");
    EXPECT_EQ(node.inputNameOfFieldByIndex(3), QString());
    EXPECT_EQ(node.inputNameOfFieldByIndex(kMinusOne), QString());
    EXPECT_EQ(node.inputNameOfFieldByAnchor(node.last->anchor()), "last");
    EXPECT_EQ(node.inputNameOfFieldByAnchor(node.out->anchor()), QString());
    EXPECT_EQ(node.inputDisplayNameOfFieldByIndex(1), "Control");
    EXPECT_EQ(node.inputDisplayNameOfFieldByIndex(3), QString());
    EXPECT_EQ(node.inputDisplayNameOfFieldByIndex(kMinusOne), QString());
    EXPECT_EQ(node.inputDisplayNameOfFieldByAnchor(node.first->anchor()), "First");
    EXPECT_EQ(node.inputDisplayNameOfFieldByAnchor(node.out->anchor()), QString());
    EXPECT_EQ(node.inputAnchorOfFieldByIndex(0), node.first->anchor());
    EXPECT_EQ(node.inputAnchorOfFieldByIndex(1), nullptr) << "a control has no anchor";
    EXPECT_EQ(node.inputAnchorOfFieldByIndex(3), nullptr);
    EXPECT_EQ(node.inputAnchorOfFieldByIndex(kMinusOne), nullptr);
    EXPECT_EQ(node.inputAnchorOfFieldByIndex(1UL << 32), nullptr) << "the index is not cut to an int";
    EXPECT_EQ(node.inputAnchorOfFieldByName("last"), node.last->anchor());
    EXPECT_EQ(node.inputAnchorOfFieldByName("control"), nullptr);
    EXPECT_EQ(node.inputAnchorOfFieldByName("unknown"), nullptr);
}

TEST(Node, FindsOutputs)
{
    LookupNode node;
    EXPECT_EQ(node.outputFieldCount(), 2U);
    EXPECT_EQ(node.outputIndexOfFieldByName("bare"), 1);
    EXPECT_EQ(node.outputIndexOfFieldByName("first"), -1);
    EXPECT_EQ(node.outputIndexOfFieldByAnchor(node.out->anchor()), 0);
    EXPECT_EQ(node.outputIndexOfFieldByAnchor(node.first->anchor()), -1);
    EXPECT_EQ(node.outputNameOfFieldByIndex(1), "bare");
    EXPECT_EQ(node.outputNameOfFieldByIndex(2), QString());
    EXPECT_EQ(node.outputNameOfFieldByIndex(kMinusOne), QString());
    EXPECT_EQ(node.outputNameOfFieldByAnchor(node.out->anchor()), "out");
    EXPECT_EQ(node.outputNameOfFieldByAnchor(node.first->anchor()), QString());
    EXPECT_EQ(node.outputDisplayNameOfFieldByIndex(1), "Bare");
    EXPECT_EQ(node.outputDisplayNameOfFieldByIndex(kMinusOne), QString());
    EXPECT_EQ(node.outputDisplayNameOfFieldByAnchor(node.out->anchor()), "Out");
    EXPECT_EQ(node.outputDisplayNameOfFieldByAnchor(node.first->anchor()), QString());
    EXPECT_EQ(node.outputAnchorOfFieldByIndex(0), node.out->anchor());
    EXPECT_EQ(node.outputAnchorOfFieldByIndex(1), nullptr);
    EXPECT_EQ(node.outputAnchorOfFieldByIndex(2), nullptr);
    EXPECT_EQ(node.outputAnchorOfFieldByIndex(kMinusOne), nullptr);
    EXPECT_EQ(node.outputAnchorOfFieldByName("out"), node.out->anchor());
    EXPECT_EQ(node.outputAnchorOfFieldByName("unknown"), nullptr);
}

TEST(Node, OfTwoFieldsOfOneNameFindsTheFirst)
{
    TestNode node;
    node.addInput("twin", "One");
    node.addInput("twin", "Two");
    EXPECT_EQ(node.inputIndexOfFieldByName("twin"), 0);
    EXPECT_EQ(node.inputAnchorOfFieldByName("twin"), node.inputFields[0]->anchor());
}

TEST(Node, LookupsGoThroughTheOverridableDisplayNames)
{
    struct Renamed : TestNode {
        QString inputDisplayNameOfFieldByIndex(unsigned long) const override { return "by index"; }
        QString inputDisplayNameOfFieldByAnchor(Anchor*) const override { return "by anchor"; }
        QString outputDisplayNameOfFieldByIndex(unsigned long) const override { return "out by index"; }
        QString outputDisplayNameOfFieldByAnchor(Anchor*) const override { return "out by anchor"; }
    };
    Renamed renamed;
    const Node& node = renamed;
    EXPECT_EQ(node.inputDisplayNameOfFieldByIndex(0), "by index");
    EXPECT_EQ(node.inputDisplayNameOfFieldByAnchor(nullptr), "by anchor");
    EXPECT_EQ(node.outputDisplayNameOfFieldByIndex(0), "out by index");
    EXPECT_EQ(node.outputDisplayNameOfFieldByAnchor(nullptr), "out by anchor");
}

TEST(Node, CreatesAnchorsThatBelongToNoField)
{
    TestNode node;
    Anchor* const anchor = node.createAnchor(Anchor::Output);
    EXPECT_EQ(anchor->parentItem(), &node);
    EXPECT_EQ(anchor->direction(), Anchor::Output);
    EXPECT_EQ(node.outputFieldCount(), 0U);
    EXPECT_EQ(node.outputIndexOfFieldByAnchor(anchor), -1);
}

TEST(Node, LaysItselfOutWhenItEntersASceneAndWhenItIsShownThere)
{
    QGraphicsScene scene;
    auto* node = new TestNode;
    SignalLog log(*node);
    node->setVisible(false);
    node->setVisible(true);
    EXPECT_EQ(log.take(), QStringList()) << "outside a scene visibility changes nothing";
    scene.addItem(node);
    EXPECT_EQ(log.take(), QStringList({"moved"}));
    EXPECT_EQ(node->rect().width(), 200);
    node->setVisible(false);
    EXPECT_EQ(log.take(), QStringList());
    node->setVisible(true);
    EXPECT_EQ(log.take(), QStringList({"moved"}));
    scene.removeItem(node);
    EXPECT_EQ(log.take(), QStringList());
    scene.addItem(node);
    EXPECT_EQ(log.take(), QStringList({"moved"}));
    node->setPos(40, 40);
    EXPECT_EQ(log.take(), QStringList()) << "a move by program is silent";
}

TEST(Node, LayoutOutsideASceneIsReportedToo)
{
    TestNode node;
    SignalLog log(node);
    node.layout();
    EXPECT_EQ(log.take(), QStringList({"moved"}));
    QMetaObject::invokeMethod(&node, "layout");
    EXPECT_EQ(log.take(), QStringList({"moved"})) << "it is a slot";
}

TEST(Node, CallsTheVirtualLayoutFromItemChange)
{
    struct Counting : TestNode {
        void layout() override { ++layouts; }
        int layouts = 0;
    };
    QGraphicsScene scene;
    auto* node = new Counting;
    scene.addItem(node);
    EXPECT_EQ(node->layouts, 1);
    node->setVisible(false);
    node->setVisible(true);
    EXPECT_EQ(node->layouts, 2);
    node->setNodeLayout(nullptr);
    EXPECT_EQ(node->layouts, 3);
}

TEST(Node, LayoutStacksUpperInputsOverLowerOnes)
{
    TestNode node;
    for (const char* name : {"a", "b", "c"})
        node.addInput(name);
    OutputField* const output = node.addOutput("out");
    output->setZValue(7);
    node.layout();
    EXPECT_EQ(node.inputFields[0]->zValue(), 3);
    EXPECT_EQ(node.inputFields[1]->zValue(), 2);
    EXPECT_EQ(node.inputFields[2]->zValue(), 1);
    EXPECT_EQ(output->zValue(), 7) << "outputs keep theirs";
}

// Reports a made-up size, and notes in which order and with what it is called.
struct ScriptedLayout final : Ondrel::Layout {
    QSizeF calculateSize(float* outputLabelWidth, float* inputLabelWidth) override
    {
        EXPECT_EQ(*outputLabelWidth, 0);
        EXPECT_EQ(*inputLabelWidth, 0);
        *outputLabelWidth = 11;
        *inputLabelWidth = 22;
        calls << "measure";
        return size;
    }
    void layout(float width, float outputLabelWidth, float inputLabelWidth, float y) override
    {
        calls << QString("place %1 %2 %3 %4").arg(width).arg(outputLabelWidth).arg(inputLabelWidth).arg(y);
    }
    QSizeF size{310, 45};
    QStringList calls;
};

TEST(Node, LaysItselfOutWithALayoutObject)
{
    ScriptedLayout layout;
    TestNode node;
    auto* field = node.add(new RecordingField("key", &node, nullptr, "Label"));
    SignalLog log(node);
    node.setNodeLayout(&layout);
    const QString y = QString::number(expectedHeaderHeight() + 5);
    EXPECT_EQ(layout.calls, QStringList({"measure", "place 310 11 22 " + y}));
    EXPECT_EQ(log.take(), QStringList({"moved"}));
    EXPECT_EQ(node.rect(), QRectF(0, 0, 310, expectedHeaderHeight() + 5 + 45));
    EXPECT_EQ(field->resized, 0) << "the fields are the layout's business";
    EXPECT_EQ(field->zValue(), 1);

    layout.size = {199, 10};
    layout.calls.clear();
    node.layout();
    EXPECT_EQ(node.rect().width(), 200);
    EXPECT_EQ(layout.calls.last(), "place 200 11 22 " + y);

    node.setNodeLayout(nullptr);
    EXPECT_EQ(layout.calls.size(), 2);
    EXPECT_EQ(field->resized, 1);
}

TEST(Node, ShowsDebugTextAboveItselfUntilItIsEmpty)
{
    TestNode node;
    node.layout();
    const int children = node.childItems().size();
    node.setDebugText("");
    EXPECT_EQ(node.childItems().size(), children);
    node.setDebugText("id <b>7</b>");
    ASSERT_EQ(node.childItems().size(), children + 1);
    auto* item = qgraphicsitem_cast<QGraphicsTextItem*>(node.childItems().last());
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->pos(), QPointF(0, -item->boundingRect().height()));
    QGraphicsTextItem expected;
    expected.setHtml("<div style=\"background-color: rgba(0,0,0,0.5);\">id <b>7</b></div>");
    EXPECT_EQ(item->toHtml(), expected.toHtml());
    EXPECT_EQ(item->toPlainText(), "id 7");

    node.setDebugText("one<br>two");
    EXPECT_EQ(node.childItems().size(), children + 1) << "the item is used again";
    EXPECT_EQ(node.childItems().last(), item);
    EXPECT_EQ(item->toPlainText(), "one\ntwo");
    EXPECT_EQ(item->pos(), QPointF(0, -item->boundingRect().height()));

    const QPointer<QGraphicsTextItem> guard(item);
    node.setDebugText("");
    EXPECT_TRUE(guard.isNull());
    EXPECT_EQ(node.childItems().size(), children);
    node.setDebugText("again");
    EXPECT_EQ(node.childItems().size(), children + 1);
}

// Such an effect may draw a picture of the node that it keeps.
TEST(Node, EndOfTheDebugTextIsToldToGraphicsEffects)
{
    class Effect : public QGraphicsEffect
    {
    public:
        int changes = 0;

    protected:
        void draw(QPainter* painter) override { drawSource(painter); }
        void sourceChanged(ChangeFlags) override { ++changes; }
    };
    GraphView graph;
    TestNode* const node = graph.add(new TestNode, {50, 50});
    auto* const effect = new Effect;
    node->setGraphicsEffect(effect);
    node->setDebugText("late");
    PaintCounter repaints(graph.scene);
    const int before = effect->changes;
    node->setDebugText("");
    EXPECT_TRUE(repaints.changed());
    EXPECT_GT(effect->changes, before);
    const int after = effect->changes;
    node->setDebugText("");
    EXPECT_FALSE(repaints.changed());
    EXPECT_EQ(effect->changes, after) << "there was none";
}

TEST(Node, RepaintsForHeaderAndFirstSelectedButNotForDrawSelection)
{
    GraphView graph;
    TestNode* const node = graph.add(new TestNode, {50, 50});
    PaintCounter repaints(graph.scene);
    node->setHeader("Blur");
    EXPECT_TRUE(repaints.changed());
    node->setFirstSelected(false);
    EXPECT_FALSE(repaints.changed());
    node->setFirstSelected(true);
    EXPECT_TRUE(repaints.changed());
    node->setFirstSelected(true);
    EXPECT_FALSE(repaints.changed());
    node->setDrawSelection(false);
    EXPECT_FALSE(repaints.changed());
    node->setDrawSelection(true);
    EXPECT_FALSE(repaints.changed());
}

TEST(Node, SignalsAndSlotsHaveTheirSignatures)
{
    const QMetaObject& meta = Node::staticMetaObject;
    for (const char* signature :
         {"selected(Node*)", "deselected(Node*)", "moved(Node*,bool)", "moveComplete(Node*)", "updated(Node*)",
          "beginFieldsMadeUnavailable()", "fieldMadeUnavailable(Node*,Anchor*)", "endFieldsMadeUnavailable()",
          "fieldAnchorPressEvent(Node*,Anchor*,QGraphicsSceneMouseEvent*)",
          "fieldAnchorReleaseEvent(Node*,Anchor*,QGraphicsSceneMouseEvent*)",
          "fieldAnchorMoveEvent(Node*,Anchor*,QGraphicsSceneMouseEvent*)"})
        EXPECT_GE(meta.indexOfSignal(signature), 0) << signature;
    for (const char* signature :
         {"anchorMousePressEvent(Anchor*,QGraphicsSceneMouseEvent*)",
          "anchorMouseReleaseEvent(Anchor*,QGraphicsSceneMouseEvent*)",
          "anchorMouseMoveEvent(Anchor*,QGraphicsSceneMouseEvent*)", "setNodeLayout(Layout*)", "layout()"})
        EXPECT_GE(meta.indexOfSlot(signature), 0) << signature;
}

// --- The closest anchor --------------------------------------------------------------------------------------------

// Two inputs and an output whose anchors have known centres.
class ClosestAnchor : public testing::Test
{
protected:
    ClosestAnchor()
    {
        scene.addItem(&node);
        node.setPos(1000, 2000);
        place(left = node.addInput("left"), {10, 50});
        node.addControl("between");
        place(right = node.addInput("right"), {30, 50});
        place(out = node.addOutput("out"), {100, 50});
    }
    ~ClosestAnchor() override { scene.removeItem(&node); }

    // Puts the centre of the field's anchor at a point of the node.
    static void place(Ondrel::FieldBase* field, const QPointF& center)
    {
        field->setPos(0, 0);
        field->anchor()->setRect(0, 0, 15, 15);
        field->anchor()->setPos(center - field->anchor()->boundingRect().center());
    }

    void find(const QPoint& point, Anchor::IODirection direction, const Anchor* exclude = nullptr)
    {
        anchor = reinterpret_cast<Anchor*>(this);
        distance = -5;
        node.findClosestAnchor(point, direction, exclude, &anchor, distance);
    }

    QGraphicsScene scene;
    TestNode node;
    Ondrel::InputField *left = nullptr, *right = nullptr;
    Ondrel::OutputField* out = nullptr;
    Anchor* anchor = nullptr;
    float distance = -1;
};

TEST_F(ClosestAnchor, IsFoundByTheDistanceOfItsCentreInTheScene)
{
    find({1013, 2054}, Anchor::Input);
    EXPECT_EQ(anchor, left->anchor());
    EXPECT_FLOAT_EQ(distance, 5);
    find({1030, 2050}, Anchor::Input);
    EXPECT_EQ(anchor, right->anchor());
    EXPECT_FLOAT_EQ(distance, 0);
}

TEST_F(ClosestAnchor, IsOfTheAskedDirection)
{
    find({1013, 2050}, Anchor::Output);
    EXPECT_EQ(anchor, out->anchor());
    EXPECT_FLOAT_EQ(distance, 87);
}

TEST_F(ClosestAnchor, OfTwoEquallyNearOnesIsTheFirst)
{
    find({1020, 2050}, Anchor::Input);
    EXPECT_EQ(anchor, left->anchor());
    EXPECT_FLOAT_EQ(distance, 10);
}

TEST_F(ClosestAnchor, IgnoresTheOneToExclude)
{
    find({1010, 2050}, Anchor::Input, left->anchor());
    EXPECT_EQ(anchor, left->anchor());
}

TEST_F(ClosestAnchor, CountsHiddenFields)
{
    left->setVisible(false);
    find({1010, 2050}, Anchor::Input);
    EXPECT_EQ(anchor, left->anchor());
}

TEST_F(ClosestAnchor, IsNearerThanTenThousand)
{
    find({1010, 2050 + 9999}, Anchor::Input);
    EXPECT_EQ(anchor, left->anchor());
    EXPECT_FLOAT_EQ(distance, 9999);
    find({1010, 2050 + 10000}, Anchor::Input);
    EXPECT_EQ(anchor, nullptr);
    EXPECT_EQ(distance, 10000);
    find({std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}, Anchor::Input);
    EXPECT_EQ(anchor, nullptr);
    EXPECT_EQ(distance, 10000);
}

TEST_F(ClosestAnchor, OfANodeWithoutAnchoredInputsIsNone)
{
    TestNode bare;
    bare.addControl("control");
    bare.addOutput("out");
    anchor = left->anchor();
    distance = -1;
    bare.findClosestAnchor({0, 0}, Anchor::Input, nullptr, &anchor, distance);
    EXPECT_EQ(anchor, nullptr);
    EXPECT_EQ(distance, 10000);
}

} // namespace

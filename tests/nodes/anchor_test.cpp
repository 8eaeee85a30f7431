#include "nodesupport.h"

#include <ondrel/core/platform.h>
#include <ondrel/nodes/anchor.h>

#include <QSvgRenderer>

namespace
{

using namespace OndrelTest;
using Ondrel::Anchor;

const QString kDisconnected = "node_anchor_disconnected.svg";
const QString kConnected = "node_anchor_connected.svg";
const QString kInteracting = "node_anchor_connected_selected.svg";

QImage icon(const QString& fileName, const QRectF& rect)
{
    return painted({40, 40}, [&](QPainter& painter) {
        QSvgRenderer renderer(Ondrel::Platform::IconsDirectory() + fileName);
        EXPECT_TRUE(renderer.isValid());
        renderer.render(&painter, rect);
    });
}

TEST(Anchor, StartsDisconnectedAndKeepsItsDirection)
{
    Anchor input(nullptr, Anchor::Input), output(nullptr, Anchor::Output);
    EXPECT_EQ(static_cast<int>(input.direction()), 0);
    EXPECT_EQ(static_cast<int>(output.direction()), 1);
    EXPECT_FALSE(input.connected());
    input.setConnected(true);
    EXPECT_TRUE(input.connected());
    input.setConnected(false);
    EXPECT_FALSE(input.connected());
}

TEST(Anchor, IsARectangleItemWithAnArrowCursorThatAcceptsHovering)
{
    Anchor anchor(nullptr, Anchor::Input);
    EXPECT_EQ(anchor.type(), static_cast<int>(QGraphicsRectItem::Type));
    EXPECT_TRUE(anchor.hasCursor());
    EXPECT_EQ(anchor.cursor().shape(), Qt::ArrowCursor);
    EXPECT_TRUE(anchor.acceptHoverEvents());
    EXPECT_EQ(anchor.rect(), QRectF());
    EXPECT_EQ(static_cast<void*>(&anchor), static_cast<void*>(static_cast<QObject*>(&anchor)))
        << "QObject is the first base";
}

TEST(Anchor, BecomesAChildOfItsParent)
{
    QGraphicsRectItem parent;
    auto* anchor = new Anchor(&parent, Anchor::Output);
    EXPECT_EQ(anchor->parentItem(), &parent);
}

TEST(Anchor, PaintsOneOfThreePicturesIntoItsRectangle)
{
    Anchor anchor(nullptr, Anchor::Input);
    const QRectF rect(4, 7, 15, 15);
    anchor.setRect(rect);
    EXPECT_EQ(paintedItem(anchor, {40, 40}), icon(kDisconnected, rect));
    anchor.setConnected(true);
    EXPECT_EQ(paintedItem(anchor, {40, 40}), icon(kConnected, rect));
    anchor.setInteracting(true);
    EXPECT_EQ(paintedItem(anchor, {40, 40}), icon(kInteracting, rect)) << "this one goes before the connection";
    anchor.setConnected(false);
    EXPECT_EQ(paintedItem(anchor, {40, 40}), icon(kInteracting, rect));
    anchor.setInteracting(false);
    EXPECT_EQ(paintedItem(anchor, {40, 40}), icon(kDisconnected, rect));
}

TEST(Anchor, ThreePicturesAreTold)
{
    const QRectF rect(0, 0, 15, 15);
    EXPECT_NE(icon(kDisconnected, rect), icon(kConnected, rect));
    EXPECT_NE(icon(kConnected, rect), icon(kInteracting, rect));
}

TEST(Anchor, RepaintsOnEverySetConnectedButOnlyOnAChangeOfInteracting)
{
    GraphView graph;
    auto* anchor = graph.add(new Anchor(nullptr, Anchor::Input), {50, 50});
    anchor->setRect(0, 0, 15, 15);
    PaintCounter repaints(graph.scene);
    anchor->setConnected(false);
    EXPECT_TRUE(repaints.changed());
    anchor->setInteracting(false);
    EXPECT_FALSE(repaints.changed());
    anchor->setInteracting(true);
    EXPECT_TRUE(repaints.changed());
    anchor->setInteracting(true);
    EXPECT_FALSE(repaints.changed());
    anchor->setInteracting(false);
    EXPECT_TRUE(repaints.changed());
}

// A node with one anchored input, and what the anchor raises.
class AnchorEvents : public testing::Test, public QObject
{
protected:
    AnchorEvents()
    {
        node = graph.add(new TestNode, {100, 100});
        field = node->addInput("in");
        node->layout();
        connect(field->anchor(), QOverload<Anchor*, QGraphicsSceneMouseEvent*>::of(&Anchor::mousePressEvent), this,
                [this](Anchor* sender, QGraphicsSceneMouseEvent* event) { note("press", sender, event); });
        connect(field->anchor(), QOverload<Anchor*, QGraphicsSceneMouseEvent*>::of(&Anchor::mouseReleaseEvent), this,
                [this](Anchor* sender, QGraphicsSceneMouseEvent* event) { note("release", sender, event); });
        connect(field->anchor(), QOverload<Anchor*, QGraphicsSceneMouseEvent*>::of(&Anchor::mouseMoveEvent), this,
                [this](Anchor* sender, QGraphicsSceneMouseEvent* event) { note("move", sender, event); });
        nodeSignals.listen(*node);
    }

    void note(const char* what, Anchor* sender, QGraphicsSceneMouseEvent* event)
    {
        EXPECT_EQ(sender, field->anchor());
        events << QString("%1 %2,%3").arg(what).arg(event->scenePos().x()).arg(event->scenePos().y());
    }
    QPointF center() const { return field->anchor()->sceneBoundingRect().center().toPoint(); }

    GraphView graph;
    TestNode* node = nullptr;
    Ondrel::InputField* field = nullptr;
    QStringList events;
    SignalLog nodeSignals;
};

TEST_F(AnchorEvents, ALeftDragRaisesThreeSignalsWhichTheNodePassesOn)
{
    const QPointF start = center(), end = start + QPointF(200, 30);
    nodeSignals.take();
    graph.press(start);
    graph.move(end);
    graph.release(end);
    const auto at = [](const QPointF& p) { return QString(" %1,%2").arg(p.x()).arg(p.y()); };
    EXPECT_EQ(events, QStringList({"press" + at(start), "move" + at(end), "release" + at(end)}));
    EXPECT_EQ(nodeSignals.take(), QStringList({"anchor press in", "anchor move in", "anchor release in"}));
    EXPECT_EQ(node->pos(), QPointF(100, 100)) << "the node stays where it is";
    EXPECT_FALSE(node->isSelected());
}

TEST_F(AnchorEvents, OtherButtonsRaiseNothingButTheirMovesDo)
{
    nodeSignals.take();
    for (const Qt::MouseButton button : {Qt::RightButton, Qt::MiddleButton}) {
        graph.press(center(), {}, button);
        EXPECT_EQ(nodeSignals.take(), QStringList());
        graph.move(center() + QPointF(40, 0), {}, button);
        EXPECT_EQ(nodeSignals.take(), QStringList({"anchor move in"}));
        graph.release(center() + QPointF(40, 0), {}, button);
        EXPECT_EQ(nodeSignals.take(), QStringList());
    }
    EXPECT_EQ(node->pos(), QPointF(100, 100));
    EXPECT_EQ(events.size(), 2);
}

TEST_F(AnchorEvents, SignalsCarryTheEventItself)
{
    Qt::KeyboardModifiers modifiers;
    Qt::MouseButton button = Qt::NoButton;
    connect(node, &Ondrel::Node::fieldAnchorPressEvent, this,
            [&](Ondrel::Node* sender, Anchor* anchor, QGraphicsSceneMouseEvent* event) {
                EXPECT_EQ(sender, node);
                EXPECT_EQ(anchor, field->anchor());
                modifiers = event->modifiers();
                button = event->button();
            });
    graph.click(center(), Qt::AltModifier);
    EXPECT_EQ(modifiers, Qt::AltModifier);
    EXPECT_EQ(button, Qt::LeftButton);
}

TEST(Anchor, SignalsHaveTheirSignatures)
{
    const QMetaObject& meta = Anchor::staticMetaObject;
    for (const char* name : {"mousePressEvent", "mouseReleaseEvent", "mouseMoveEvent"}) {
        const QByteArray signature = QByteArray(name) + "(Anchor*,QGraphicsSceneMouseEvent*)";
        EXPECT_GE(meta.indexOfSignal(signature), 0) << signature.constData();
    }
}

} // namespace

#include "nodesupport.h"

#include <ondrel/nodes/anchor.h>

namespace
{

using namespace OndrelTest;
using Ondrel::Anchor;
using Ondrel::FieldBase;
using Ondrel::InputField;
using Ondrel::OutputField;

constexpr QColor kText(201, 198, 198, 255);

TEST(FieldBase, KeepsNameDisplayNameAndAnchor)
{
    QGraphicsRectItem parent;
    auto* anchor = new Anchor(nullptr, Anchor::Input);
    auto* field = new InputField("key", &parent, anchor, "Label");
    EXPECT_EQ(field->name(), "key");
    EXPECT_EQ(field->displayName(), "Label");
    EXPECT_EQ(field->anchor(), anchor);
    EXPECT_EQ(static_cast<const FieldBase*>(field)->anchor(), anchor);
    EXPECT_EQ(field->parentItem(), &parent);
    EXPECT_EQ(field->type(), 65540);
    EXPECT_EQ(static_cast<void*>(field), static_cast<void*>(static_cast<QObject*>(field)));
    field->setDisplayName("Other");
    EXPECT_EQ(field->displayName(), "Other");
    EXPECT_EQ(field->name(), "key");
}

TEST(FieldBase, TakesItsAnchorOverAndPlacesItAtTheLeftEdge)
{
    QGraphicsRectItem parent;
    auto* anchor = new Anchor(&parent, Anchor::Input);
    auto* field = new InputField("key", &parent, anchor, "Label");
    EXPECT_EQ(anchor->parentItem(), field);
    EXPECT_EQ(anchor->pos(), QPointF(0, (plainFieldHeight() - 15) * 0.5));
    EXPECT_EQ(anchor->rect(), QRectF(0, 0, 15, 15));
}

TEST(FieldBase, LayoutPutsTheAnchorBack)
{
    auto* anchor = new Anchor(nullptr, Anchor::Input);
    InputField field("key", nullptr, anchor, "Label");
    anchor->setPos(70, 70);
    anchor->setRect(1, 2, 3, 4);
    anchor->setParentItem(nullptr);
    field.layout();
    EXPECT_EQ(anchor->parentItem(), &field);
    EXPECT_EQ(anchor->pos(), QPointF(0, (plainFieldHeight() - 15) * 0.5));
    EXPECT_EQ(anchor->rect(), QRectF(0, 0, 15, 15));
}

TEST(FieldBase, MeasuresTheDisplayNameInTheFieldFont)
{
    const QString text = "A label with W and i";
    InputField plain("a", nullptr, nullptr, text);
    InputField anchored("b", nullptr, new Anchor(nullptr, Anchor::Input), text);
    EXPECT_EQ(plain.labelWidth(), fieldTextWidth(text));
    EXPECT_EQ(plain.minWidth(), fieldTextWidth(text));
    EXPECT_EQ(anchored.labelWidth(), fieldTextWidth(text));
    EXPECT_EQ(anchored.minWidth(), fieldTextWidth(text) + 19);
    EXPECT_EQ(plain.minHeight(), plainFieldHeight());
    EXPECT_GE(plain.minHeight(), 15);

    InputField empty("c", nullptr, nullptr, "");
    EXPECT_EQ(empty.labelWidth(), 0);
    EXPECT_EQ(empty.minWidth(), 0);
    EXPECT_EQ(empty.minHeight(), plainFieldHeight());
}

TEST(FieldBase, SetSizeSetsTheRectangleAndThenTellsTheField)
{
    RecordingField field("key", nullptr, nullptr, "Label");
    field.setRect(3, 4, 5, 6);
    EXPECT_EQ(field.rect(), QRectF(3, 4, 5, 6));
    field.setRect(QRectF(7, 8, 9, 10));
    EXPECT_EQ(field.rect(), QRectF(7, 8, 9, 10));
    EXPECT_EQ(field.resized, 0);
    field.setSize(120.5F, 20.25F, 33.5F);
    EXPECT_EQ(field.rect(), QRectF(0, 0, 120.5, 20.25));
    EXPECT_EQ(field.resized, 1);
    EXPECT_EQ(field.lastWidth, 120.5F);
    EXPECT_EQ(field.lastHeight, 20.25F);
    EXPECT_EQ(field.lastLabelWidth, 33.5F);
}

TEST(FieldBase, RepaintsWhenItsDisplayNameIsSet)
{
    GraphView graph;
    auto* field = graph.add(new InputField("key", nullptr, nullptr, "Label"), {50, 50});
    field->setSize(100, 20, 0);
    PaintCounter repaints(graph.scene);
    field->setDisplayName("Other");
    EXPECT_TRUE(repaints.changed());
}

TEST(FieldBase, IsToldOnceOfItsScene)
{
    QGraphicsScene scene;
    auto* field = new RecordingField("key", nullptr, nullptr, "Label");
    EXPECT_EQ(field->added, 0);
    field->setVisible(false);
    field->setVisible(true);
    EXPECT_EQ(field->added, 0) << "there is no scene yet";
    scene.addItem(field);
    EXPECT_EQ(field->added, 1);
    for (int i = 0; i < 5; ++i) {
        field->setVisible(false);
        field->setVisible(true);
    }
    scene.removeItem(field);
    scene.addItem(field);
    EXPECT_EQ(field->added, 1);
}

TEST(FieldBase, IsToldOfItsSceneWhenItsNodeEntersIt)
{
    QGraphicsScene scene;
    auto* node = new TestNode;
    auto* field = node->add(new RecordingField("key", node, nullptr, "Label"));
    EXPECT_EQ(field->added, 0);
    scene.addItem(node);
    EXPECT_EQ(field->added, 1);
    node->setVisible(false);
    node->setVisible(true);
    EXPECT_EQ(field->added, 1);
}

TEST(FieldBase, IsToldOfItsSceneWhenItIsHiddenOrShownThereFirst)
{
    QGraphicsScene scene;
    auto* node = new TestNode;
    scene.addItem(node);
    // Built as a child of a node in a scene, the base class sees the scene before the override is in force.
    auto* field = new RecordingField("key", node, nullptr, "Label");
    field->setVisible(false);
    EXPECT_EQ(field->added, 1);
    field->setVisible(true);
    EXPECT_EQ(field->added, 1);

    auto* late = new RecordingField("late", nullptr, nullptr, "Label");
    late->setParentItem(node);
    EXPECT_EQ(late->added, 1);
}

TEST(FieldBase, IsToldOfItsSceneAtTheLatestWhenItIsSized)
{
    QGraphicsScene scene;
    auto* node = new TestNode;
    scene.addItem(node);
    auto* field = node->add(new RecordingField("key", node, nullptr, "Label"));
    node->layout();
    EXPECT_EQ(field->added, 1);
    node->layout();
    EXPECT_EQ(field->added, 1);
}

TEST(OutputField, KeepsItsAnchorAtTheRightEdge)
{
    auto* anchor = new Anchor(nullptr, Anchor::Output);
    OutputField field("key", nullptr, anchor, "Label");
    EXPECT_EQ(anchor->pos(), QPointF(0, (plainFieldHeight() - 15) * 0.5)) << "until it has a size";
    anchor->setRect(0, 0, 1, 1);
    field.setSize(150, 40, 0);
    EXPECT_EQ(anchor->pos(), QPointF(135, (plainFieldHeight() - 15) * 0.5));
    EXPECT_EQ(anchor->rect(), QRectF(0, 0, 15, 15));
    EXPECT_EQ(field.rect(), QRectF(0, 0, 150, 40));

    OutputField bare("bare", nullptr, nullptr, "Label");
    bare.setSize(150, 40, 0);
    EXPECT_EQ(bare.rect(), QRectF(0, 0, 150, 40));
}

TEST(InputField, LeavesItsAnchorWhereItIsWhenItIsSized)
{
    auto* anchor = new Anchor(nullptr, Anchor::Input);
    InputField field("key", nullptr, anchor, "Label");
    anchor->setPos(3, 3);
    field.setSize(150, 40, 10);
    EXPECT_EQ(anchor->pos(), QPointF(3, 3));
}

// What a text looks like in a rectangle.
QImage text(const QFont& font, const QRectF& rect, int flags, const QString& content)
{
    return painted({240, 40}, [&](QPainter& painter) {
        painter.setFont(font);
        painter.setPen(kText);
        painter.drawText(rect, flags, content);
    });
}

QImage paintedField(FieldBase& field, bool bold)
{
    field.setSize(200, 30, 0);
    return painted({240, 40}, [&](QPainter& painter) {
        QFont font = painter.font();
        font.setBold(bold);
        painter.setFont(font);
        QStyleOptionGraphicsItem option;
        option.exposedRect = field.boundingRect();
        field.paint(&painter, &option, nullptr);
    });
}

TEST(InputField, DrawsItsLabelAtTheLeftInTheFontOfThePainter)
{
    InputField plain("a", nullptr, nullptr, "Radius");
    InputField anchored("b", nullptr, new Anchor(nullptr, Anchor::Input), "Radius");
    QFont font = fieldFont();
    const int flags = Qt::AlignLeft | Qt::AlignVCenter;
    const QImage expected = text(font, {0, 0, 200, plainFieldHeight()}, flags, "Radius");
    EXPECT_EQ(paintedField(plain, false), expected);
    EXPECT_EQ(paintedField(anchored, false), text(font, {19, 0, 181, plainFieldHeight()}, flags, "Radius"));
    font.setBold(true);
    const QImage bold = text(font, {0, 0, 200, plainFieldHeight()}, flags, "Radius");
    EXPECT_NE(bold, expected);
    EXPECT_EQ(paintedField(plain, true), bold);
}

TEST(OutputField, DrawsItsLabelAtTheRightInAPlainFont)
{
    OutputField bare("a", nullptr, nullptr, "Image");
    OutputField anchored("b", nullptr, new Anchor(nullptr, Anchor::Output), "Image");
    const QImage expected =
        text(fieldFont(), {0, 0, 181, plainFieldHeight()}, Qt::AlignRight | Qt::AlignVCenter, "Image");
    EXPECT_EQ(paintedField(anchored, false), expected);
    EXPECT_EQ(paintedField(bare, false), expected) << "the anchor's room is kept without an anchor too";
    EXPECT_EQ(paintedField(bare, true), expected) << "only the family is the painter's";
}

} // namespace

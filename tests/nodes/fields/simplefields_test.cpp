// The fields without a widget of their own: hidden values, resources and labels.

#include "fieldsupport.h"

#include <ondrel/nodes/fields/hiddenfield.h>
#include <ondrel/nodes/fields/labelfield.h>
#include <ondrel/nodes/fields/resourcefield.h>
#include <ondrel/nodes/layouts.h>
#include <ondrel/resources/resourceengine.h>

namespace
{

using namespace OndrelTest;
using Ondrel::HiddenField;
using Ondrel::LabelField;
using Ondrel::ResourceField;
using Ondrel::ResourceId;

TEST(HiddenField, HoldsAnyValue)
{
    HiddenField field("order", nullptr);
    EXPECT_EQ(field.name(), "order");
    EXPECT_EQ(field.displayName(), "");
    EXPECT_EQ(field.anchor(), nullptr);
    EXPECT_FALSE(field.value().isValid());
    field.setValue("0,3,1");
    EXPECT_EQ(field.value(), QVariant(QString("0,3,1")));
    QMetaObject::invokeMethod(&field, "setValue", Q_ARG(QVariant, QVariant(QSize(2, 3))));
    EXPECT_EQ(field.value(), QVariant(QSize(2, 3)));
    field.setValue({});
    EXPECT_FALSE(field.value().isValid());
}

TEST(HiddenField, TakesNoRoom)
{
    HiddenField field("order", nullptr);
    EXPECT_EQ(field.minWidth(), 0);
    EXPECT_EQ(field.minHeight(), 0);
    EXPECT_EQ(field.labelWidth(), 0);
    field.setDisplayName("Order");
    EXPECT_EQ(field.labelWidth(), fieldTextWidth("Order")) << "its own text";

    QGraphicsScene scene;
    auto* node = new TestNode;
    node->addControl("control", "Control");
    scene.addItem(node);
    const QRectF before = node->rect();
    node->add(new HiddenField("hidden", node));
    node->layout();
    EXPECT_EQ(node->rect(), before);
    EXPECT_EQ(proxyOf(*node->inputFields[1]), nullptr);
}

TEST(LabelField, DoesNotWidenItsNode)
{
    const QString text = "A remark that is a good deal longer than two hundred pixels are wide";
    LabelField field("remark", nullptr, text);
    EXPECT_EQ(field.name(), "remark");
    EXPECT_EQ(field.displayName(), text);
    EXPECT_EQ(field.anchor(), nullptr);
    EXPECT_EQ(field.minWidth(), 0);
    EXPECT_EQ(field.labelWidth(), 0);
    EXPECT_EQ(field.minHeight(), plainFieldHeight());

    TestNode node;
    node.add(new LabelField("remark", &node, text));
    node.layout();
    EXPECT_EQ(node.rect().width(), 200);
    EXPECT_EQ(node.rect().height(), node.headerSize().height() + plainFieldHeight() + 5);
}

TEST(LabelField, DrawsItsText)
{
    LabelField label("remark", nullptr, "Remark");
    Ondrel::InputField plain("remark", nullptr, nullptr, "Remark");
    label.setSize(182, 20, 0);
    plain.setSize(182, 20, 0);
    EXPECT_EQ(paintedItem(label, {200, 30}), paintedItem(plain, {200, 30}));
    EXPECT_NE(paintedItem(label, {200, 30}), painted({200, 30}, [](QPainter&) {}));
}

// Whether the store knows the id, and as a picture without pixels.
bool isEmptyResource(ResourceId id)
{
    std::shared_ptr<const Ondrel::Image> image;
    return ResourceEngine::Get().CopyImage(id, image, {}, Ondrel::RunStatus()) && image && image->width == 0 &&
           image->height == 0;
}

TEST(ResourceField, HasAnEmptyResourceFromTheStart)
{
    ResourceField first("mask", nullptr), second("mask", nullptr);
    EXPECT_EQ(first.name(), "mask");
    EXPECT_EQ(first.anchor(), nullptr);
    EXPECT_NE(first.resource(), ResourceId());
    EXPECT_NE(first.resource(), second.resource());
    EXPECT_TRUE(isEmptyResource(first.resource()));
    EXPECT_EQ(first.minWidth(), 0);
    EXPECT_EQ(first.minHeight(), 0);
    EXPECT_EQ(first.labelWidth(), 0);
    ResourceEngine::Get().RemoveResource(first.resource());
    ResourceEngine::Get().RemoveResource(second.resource());
}

TEST(ResourceField, LeavesTheOldResourceInTheStore)
{
    ResourceId old;
    {
        ResourceField field("mask", nullptr);
        old = field.resource();
        field.setResource(ResourceId(4000000000U));
        EXPECT_EQ(field.resource(), ResourceId(4000000000U));
        EXPECT_TRUE(isEmptyResource(old));
        field.setResource(ResourceId());
        EXPECT_EQ(field.resource(), ResourceId());
    }
    EXPECT_TRUE(isEmptyResource(old)) << "nor does the field take it along";
    EXPECT_TRUE(ResourceEngine::Get().RemoveResource(old));
}

} // namespace

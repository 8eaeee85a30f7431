#include "nodesupport.h"

#include <ondrel/nodes/anchor.h>
#include <ondrel/nodes/layouts.h>

namespace
{

using namespace OndrelTest;
using Ondrel::Anchor;
using Ondrel::InputField;
using Ondrel::Layout;
using Ondrel::OutputField;
using Ondrel::VerticalLayout;

Anchor* anchor(Anchor::IODirection direction = Anchor::Input)
{
    return new Anchor(nullptr, direction);
}

// Fields without a node, and what a layout reports of them.
class Vertical : public testing::Test
{
protected:
    SizedInput* input(bool anchored, float width, float height, float label)
    {
        auto* field = new SizedInput(&parent, anchored ? anchor() : nullptr, width, height, label);
        inputs.push_back(field);
        return field;
    }
    SizedOutput* output(bool anchored, float width, float height, float label)
    {
        auto* field = new SizedOutput(&parent, anchored ? anchor(Anchor::Output) : nullptr, width, height, label);
        outputs.push_back(field);
        return field;
    }
    QSizeF measure() { return VerticalLayout::calculateSize(inputs, outputs, &outputLabel, &inputLabel); }

    QGraphicsRectItem parent;
    std::vector<InputField*> inputs;
    std::vector<OutputField*> outputs;
    float outputLabel = -1, inputLabel = -1;
};

TEST(Layout, PadsAnchoredFieldsLess)
{
    InputField anchored("a", nullptr, anchor(), ""), plain("b", nullptr, nullptr, "");
    EXPECT_EQ(Layout::fieldHorizontalPadding(&anchored), 2);
    EXPECT_EQ(Layout::fieldHorizontalPadding(&plain), 9);
}

TEST(VerticalLayout, EmptyMeasuresNothing)
{
    VerticalLayout layout;
    float outputLabel = 7, inputLabel = 8;
    EXPECT_EQ(layout.calculateSize(&outputLabel, &inputLabel), QSizeF(0, 0));
    EXPECT_EQ(outputLabel, 0);
    EXPECT_EQ(inputLabel, 0);
    EXPECT_EQ(layout.calculateSize(nullptr, nullptr), QSizeF(0, 0));
    layout.layout(300, 1, 2, 3);
}

TEST_F(Vertical, MeasuresTheWidestFieldAndTheSumOfTheRows)
{
    input(false, 100, 20, 30); // 118 wide
    input(true, 115, 16, 90);  // 119 wide
    output(true, 110, 10, 70); // 114 wide
    EXPECT_EQ(measure(), QSizeF(119, 25 + 21 + 15));
    EXPECT_EQ(inputLabel, 30) << "an anchored field does not count";
    EXPECT_EQ(outputLabel, 0);
    EXPECT_EQ(VerticalLayout::calculateSize(inputs, outputs, nullptr, nullptr), QSizeF(119, 61));
    output(true, 150, 10, 0);
    EXPECT_EQ(measure(), QSizeF(154, 76));
}

TEST_F(Vertical, TakesTheWidestLabelOfTheControls)
{
    input(false, 10, 10, 30);
    input(false, 10, 10, 50.5F);
    input(false, 10, 10, 40);
    measure();
    EXPECT_EQ(inputLabel, 50.5F);
}

TEST_F(Vertical, LabelsOfOutputsAreComparedWithTheInputsOnly)
{
    input(false, 10, 10, 30);
    output(false, 10, 10, 80);
    measure();
    EXPECT_EQ(outputLabel, 80);
    EXPECT_EQ(inputLabel, 30);
    output(false, 10, 10, 40);
    measure();
    EXPECT_EQ(outputLabel, 40) << "the last one decides";
    output(false, 10, 10, 20);
    measure();
    EXPECT_EQ(outputLabel, 30) << "but for the inputs";
    output(true, 10, 10, 90);
    measure();
    EXPECT_EQ(outputLabel, 30);
}

TEST_F(Vertical, AFieldWithoutHeightTakesNoRoom)
{
    input(false, 100, 0, 0);
    EXPECT_EQ(measure(), QSizeF(118, 0));
    input(false, 20, 10, 0);
    EXPECT_EQ(measure(), QSizeF(118, 15));
    VerticalLayout::layout(200, 0, 0, 50, inputs, outputs);
    EXPECT_EQ(inputs[0]->pos(), QPointF(9, 50));
    EXPECT_EQ(inputs[0]->rect(), QRectF(0, 0, 182, 0));
    EXPECT_EQ(inputs[1]->pos(), QPointF(9, 50));
}

TEST_F(Vertical, PlacesOutputsAboveInputs)
{
    SizedInput* const control = input(false, 100, 20, 30);
    SizedInput* const anchored = input(true, 100, 16, 90);
    SizedOutput* const out = output(true, 110, 10, 70);
    SizedOutput* const bare = output(false, 110, 12.5F, 70);
    VerticalLayout::layout(300, 41, 42, 33, inputs, outputs);
    EXPECT_EQ(out->pos(), QPointF(2, 33));
    EXPECT_EQ(out->rect(), QRectF(0, 0, 296, 10));
    EXPECT_EQ(out->lastLabelWidth, 41);
    EXPECT_EQ(bare->pos(), QPointF(9, 48));
    EXPECT_EQ(bare->rect(), QRectF(0, 0, 282, 12.5));
    EXPECT_EQ(bare->lastLabelWidth, 41);
    EXPECT_EQ(control->pos(), QPointF(9, 65.5));
    EXPECT_EQ(control->rect(), QRectF(0, 0, 282, 20));
    EXPECT_EQ(control->lastLabelWidth, 42);
    EXPECT_EQ(anchored->pos(), QPointF(2, 90.5));
    EXPECT_EQ(anchored->rect(), QRectF(0, 0, 296, 16));
    EXPECT_EQ(anchored->lastLabelWidth, 42) << "it gets the label width though it does not count";
}

TEST_F(Vertical, HiddenInputsKeepTheirPlaceAndHiddenOutputsDoNot)
{
    SizedInput* const hidden = input(false, 500, 20, 300);
    SizedInput* const shown = input(false, 100, 20, 30);
    SizedOutput* const out = output(true, 400, 10, 0);
    hidden->setPos(-5, -6);
    hidden->setVisible(false);
    out->setVisible(false);
    EXPECT_EQ(measure(), QSizeF(404, 25 + 15));
    EXPECT_EQ(inputLabel, 30);
    VerticalLayout::layout(404, 0, 30, 10, inputs, outputs);
    EXPECT_EQ(hidden->pos(), QPointF(-5, -6));
    EXPECT_EQ(hidden->resized, 0);
    EXPECT_EQ(out->pos(), QPointF(2, 10));
    EXPECT_EQ(out->resized, 1);
    EXPECT_EQ(shown->pos(), QPointF(9, 25));
}

TEST_F(Vertical, WhileTheNodeIsHiddenAllInputsAre)
{
    input(false, 100, 20, 30);
    output(true, 10, 10, 0);
    parent.setVisible(false);
    EXPECT_EQ(measure(), QSizeF(14, 15));
    EXPECT_EQ(inputLabel, 0);
}

TEST_F(Vertical, ObjectsWorkOnTheirOwnLists)
{
    SizedInput* const control = input(false, 100, 20, 30);
    SizedOutput* const out = output(true, 110, 10, 70);
    VerticalLayout layout;
    layout.addInputField(control);
    layout.addOutputField(out);
    EXPECT_EQ(layout.calculateSize(&outputLabel, &inputLabel), QSizeF(118, 40));
    EXPECT_EQ(outputLabel, 0);
    EXPECT_EQ(inputLabel, 30);
    layout.layout(200, 0, 30, 5);
    EXPECT_EQ(out->pos(), QPointF(2, 5));
    EXPECT_EQ(control->pos(), QPointF(9, 20));
    EXPECT_EQ(control->lastLabelWidth, 30);
}

TEST(NodeLayout, ANodeWithOnlyAHiddenFieldIsAsHighAsItsHeader)
{
    QGraphicsScene scene;
    auto* node = new TestNode;
    node->addControl("hidden", "A label as wide as it takes to make a node wider than two hundred");
    node->inputFields[0]->setVisible(false);
    scene.addItem(node);
    EXPECT_EQ(node->rect(), QRectF(QPointF(), QSizeF(200, node->headerSize().height())));
    node->inputFields[0]->setVisible(true);
    node->layout();
    EXPECT_EQ(node->rect().width(), node->inputFields[0]->minWidth() + 18);
    EXPECT_EQ(node->rect().height(), node->headerSize().height() + plainFieldHeight() + 5);
}

TEST(NodeLayout, RowsBeginFiveBelowTheHeader)
{
    TestNode node;
    node.addOutput("out", "Out");
    node.addInput("in", "In");
    node.layout();
    const double y = Ondrel::Node::headerHeight() + 5;
    EXPECT_EQ(node.outputFields[0]->pos(), QPointF(2, y));
    EXPECT_EQ(node.outputFields[0]->rect(), QRectF(0, 0, 196, plainFieldHeight()));
    EXPECT_EQ(node.inputFields[0]->pos(), QPointF(2, y + plainFieldHeight() + 5));
    EXPECT_EQ(node.rect().height(), y + 2 * (plainFieldHeight() + 5));
    EXPECT_EQ(node.outputFields[0]->anchor()->pos().x(), 181);
    EXPECT_EQ(node.inputFields[0]->anchor()->pos().x(), 0);
}

TEST(NodeLayout, OfAHiddenNodeCountsNoInputs)
{
    QGraphicsScene scene;
    auto* node = new TestNode;
    node->addInput("in", "In");
    node->setVisible(false);
    scene.addItem(node);
    EXPECT_EQ(node->rect().height(), node->headerSize().height());
    node->setVisible(true);
    EXPECT_EQ(node->rect().height(), node->headerSize().height() + plainFieldHeight() + 5);
}

} // namespace

#include "fields/fieldsupport.h"

#include <ondrel/nodes/anchor.h>
#include <ondrel/nodes/fields/hiddenfield.h>
#include <ondrel/nodes/fields/imagepreviewfield.h>
#include <ondrel/nodes/fields/sliderfield.h>
#include <ondrel/nodes/variableinputnode.h>

#include <limits>

namespace
{

using namespace OndrelTest;
using Ondrel::Anchor;
using Ondrel::HiddenField;
using Ondrel::InputField;
using Ondrel::VariableInputNode;

// A node of layers; with children, each layer has a slider and a second anchored input.
struct Layers : VariableInputNode {
    explicit Layers(InsertPosition position = InsertAtEnd, bool children = false, bool createOutput = false)
        : VariableInputNode(nullptr, createOutput, "layer", "Free", "Layer", position)
        , withChildren(children)
    {
        log.listen(*this);
    }

    using Node::inputFields;
    using VariableInputNode::addVariableFieldSet;
    using VariableInputNode::createNewVariableInputField;
    using VariableInputNode::createVariableInputField;
    using VariableInputNode::deleteVariableFieldSet;
    using VariableInputNode::generateUniqueVariableFieldSetId;
    using VariableInputNode::newVariableInputFieldIndex;
    using VariableInputNode::setupVariableFieldSets;

    void createVariableInputFieldChildFields(const QString& id, std::vector<InputField*>& fields) override
    {
        ids << id;
        if (!withChildren)
            return;
        auto* slider = new Ondrel::SliderInputField("opacity" + id, nullptr, "Opacity", "0", "100", "100",
                                                    Ondrel::PrecisionSlider::Integer, Ondrel::PrecisionSlider::Range);
        slider->setParentItem(this);
        fields.push_back(slider);
        fields.push_back(new InputField("mask" + id, this, createAnchor(Anchor::Input), "Mask"));
    }

    // As a host does: marks the anchor, then tells the node.
    void connectInput(const QString& fieldName)
    {
        Anchor* const anchor = inputAnchorOfFieldByName(fieldName);
        ASSERT_NE(anchor, nullptr) << qPrintable(fieldName);
        anchor->setConnected(true);
        anchorHasBeenConnected(anchor, "image");
    }
    void disconnectInput(const QString& fieldName)
    {
        Anchor* const anchor = inputAnchorOfFieldByName(fieldName);
        ASSERT_NE(anchor, nullptr) << qPrintable(fieldName);
        anchor->setConnected(false);
        anchorHasBeenDisconnected(anchor);
    }

    // The names of the inputs behind the order field.
    QString inputs() const
    {
        QStringList names;
        for (std::size_t i = 2; i < inputFields.size(); ++i)
            names << inputFields[i]->name();
        return names.join(' ');
    }
    QString order() { return inputValue(1).toString(); }

    bool withChildren;
    QStringList ids;
    SignalLog log;
};

TEST(VariableInputNode, StartsWithAPlaceholder)
{
    for (const auto position : {VariableInputNode::InsertAtEnd, VariableInputNode::InsertAtStart}) {
        Layers node(position);
        ASSERT_EQ(node.inputFieldCount(), 3U);
        EXPECT_EQ(node.outputFieldCount(), 0U);
        EXPECT_EQ(node.inputNameOfFieldByIndex(0), "preview");
        EXPECT_EQ(node.inputNameOfFieldByIndex(1), "layer_order");
        EXPECT_EQ(node.inputNameOfFieldByIndex(2), "layer0");
        EXPECT_EQ(node.inputDisplayNameOfFieldByIndex(2), "Free");
        EXPECT_EQ(node.inputFields[2]->parentItem(), &node);
        ASSERT_NE(node.inputAnchorOfFieldByIndex(2), nullptr);
        EXPECT_EQ(node.inputAnchorOfFieldByIndex(2)->direction(), Anchor::Input);
        EXPECT_NE(dynamic_cast<HiddenField*>(node.inputFields[1]), nullptr);
        EXPECT_EQ(node.inputFields[1]->parentItem(), nullptr);
        EXPECT_EQ(node.order(), "");
        EXPECT_EQ(node.variableFieldSetCount(), 0U);
        EXPECT_TRUE(node.ids.isEmpty()) << "the placeholder has no children";
    }
    EXPECT_EQ(Layers(VariableInputNode::InsertAtEnd, false, true).outputFieldCount(), 1U);
    EXPECT_EQ(static_cast<int>(VariableInputNode::InsertAtStart), 0);
    EXPECT_EQ(static_cast<int>(VariableInputNode::InsertAtEnd), 1);
}

TEST(VariableInputNode, GrowsAtTheEnd)
{
    Layers node;
    InputField* const first = node.inputFields[2];
    node.connectInput("layer0");
    EXPECT_EQ(node.inputs(), "layer0 layer1");
    EXPECT_EQ(node.inputFields[2], first) << "the placeholder itself turns into the input";
    EXPECT_EQ(first->displayName(), "Layer");
    EXPECT_EQ(node.inputDisplayNameOfFieldByIndex(3), "Free");
    EXPECT_EQ(node.order(), "0");
    EXPECT_EQ(node.variableFieldSetCount(), 1U);
    EXPECT_EQ(node.ids, QStringList{"0"});
    node.connectInput("layer1");
    EXPECT_EQ(node.inputs(), "layer0 layer1 layer2");
    EXPECT_EQ(node.order(), "0,1");
    EXPECT_EQ(node.inputValue(1).type(), QVariant::String);
}

TEST(VariableInputNode, GrowsAtTheStart)
{
    Layers node(VariableInputNode::InsertAtStart);
    node.connectInput("layer0");
    EXPECT_EQ(node.inputs(), "layer1 layer0") << "the placeholder stays at index 2";
    EXPECT_EQ(node.order(), "0");
    node.connectInput("layer1");
    EXPECT_EQ(node.inputs(), "layer2 layer1 layer0");
    EXPECT_EQ(node.order(), "1,0");
    node.connectInput("layer2");
    EXPECT_EQ(node.inputs(), "layer3 layer2 layer1 layer0");
    EXPECT_EQ(node.order(), "2,1,0");
}

TEST(VariableInputNode, GrowsOnlyByThePlaceholder)
{
    Layers node(VariableInputNode::InsertAtEnd, false, true);
    node.connectInput("layer0");
    node.anchorHasBeenConnected(node.inputAnchorOfFieldByName("layer0"), "image");
    node.anchorHasBeenConnected(node.outputAnchorOfFieldByIndex(0), "image");
    node.anchorHasBeenConnected(nullptr, "image");
    EXPECT_EQ(node.inputs(), "layer0 layer1");
    EXPECT_EQ(node.order(), "0");
}

TEST(VariableInputNode, ShrinksAndUsesIdsAgain)
{
    Layers node;
    node.connectInput("layer0");
    node.connectInput("layer1");
    const QPointer<InputField> gone(node.inputFields[3]);
    const QPointer<Anchor> goneAnchor(node.inputAnchorOfFieldByIndex(3));
    node.disconnectInput("layer1");
    EXPECT_TRUE(gone.isNull()) << "at once";
    EXPECT_TRUE(goneAnchor.isNull());
    EXPECT_EQ(node.inputs(), "layer0 layer2");
    EXPECT_EQ(node.order(), "0");
    node.connectInput("layer2");
    EXPECT_EQ(node.order(), "0,2");
    EXPECT_EQ(node.inputs(), "layer0 layer2 layer1") << "1 is the lowest free id";
}

TEST(VariableInputNode, GivesTheIdZeroOnce)
{
    Layers node;
    node.connectInput("layer0");
    node.connectInput("layer1");
    node.disconnectInput("layer0");
    EXPECT_EQ(node.inputs(), "layer1 layer2");
    EXPECT_EQ(node.order(), "1");
    node.connectInput("layer2");
    EXPECT_EQ(node.inputs(), "layer1 layer2 layer3");
    EXPECT_EQ(node.order(), "1,2");
}

TEST(VariableInputNode, ShrinksOnlyWithTheLastConnectionOfASet)
{
    Layers node(VariableInputNode::InsertAtEnd, true);
    node.connectInput("layer0");
    EXPECT_EQ(node.inputs(), "layer0 opacity0 mask0 layer1");
    node.connectInput("mask0");
    EXPECT_EQ(node.inputs(), "layer0 opacity0 mask0 layer1");
    node.disconnectInput("layer0");
    EXPECT_EQ(node.inputs(), "layer0 opacity0 mask0 layer1") << "the mask is still connected";
    EXPECT_EQ(node.inputDisplayNameOfFieldByIndex(2), "Layer");
    node.disconnectInput("mask0");
    EXPECT_EQ(node.inputs(), "layer1");
    EXPECT_EQ(node.order(), "");
    EXPECT_EQ(node.variableFieldSetCount(), 0U);
}

TEST(VariableInputNode, NeedsTheAnchorMarkedBeforeADisconnection)
{
    Layers node;
    node.connectInput("layer0");
    node.anchorHasBeenDisconnected(node.inputAnchorOfFieldByName("layer0"));
    EXPECT_EQ(node.inputs(), "layer0 layer1") << "it still counts as connected";
    node.disconnectInput("layer1");
    EXPECT_EQ(node.inputs(), "layer0 layer1") << "the placeholder belongs to no set";
    node.anchorHasBeenDisconnected(nullptr);
    EXPECT_EQ(node.inputs(), "layer0 layer1");
}

TEST(VariableInputNode, ShrinksOnlyTheSetOfTheAnchor)
{
    Layers node;
    node.setInputValue(1, "0,1,2"); // none of them connected
    EXPECT_EQ(node.inputs(), "layer0 layer1 layer2 layer3");
    node.disconnectInput("layer1");
    EXPECT_EQ(node.inputs(), "layer0 layer2 layer3");
    EXPECT_EQ(node.order(), "0,2");
}

TEST(VariableInputNode, KeepsChildrenBehindTheirInput)
{
    Layers node(VariableInputNode::InsertAtStart, true);
    node.connectInput("layer0");
    node.connectInput("layer1");
    EXPECT_EQ(node.inputs(), "layer2 layer1 opacity1 mask1 layer0 opacity0 mask0");
    EXPECT_EQ(node.order(), "1,0");
    Layers end(VariableInputNode::InsertAtEnd, true);
    end.connectInput("layer0");
    end.connectInput("layer1");
    EXPECT_EQ(end.inputs(), "layer0 opacity0 mask0 layer1 opacity1 mask1 layer2");
    end.disconnectInput("layer1");
    EXPECT_EQ(end.inputs(), "layer0 opacity0 mask0 layer2");
    end.connectInput("layer2");
    EXPECT_EQ(end.inputs(), "layer0 opacity0 mask0 layer2 opacity2 mask2 layer1");
}

TEST(VariableInputNode, NeverLaysItselfOut)
{
    QGraphicsScene scene;
    auto* node = new Layers;
    scene.addItem(node);
    node->log.take();
    const QRectF before = node->rect();
    node->connectInput("layer0");
    node->setInputValue(1, "");
    node->disconnectInput("layer0");
    EXPECT_EQ(node->log.take(), QStringList());
    EXPECT_EQ(node->rect(), before);
}

TEST(VariableInputNode, BringsControlsOfNewInputsIntoTheScene)
{
    QGraphicsScene scene;
    auto* node = new Layers(VariableInputNode::InsertAtEnd, true);
    scene.addItem(node);
    node->connectInput("layer0");
    EXPECT_NE(proxyOf(*node->inputFields[3]), nullptr);
}

// --- Restoring -----------------------------------------------------------------------------------------------------

TEST(VariableInputNode, RestoresItsInputsFromTheOrder)
{
    Layers node;
    node.setInputValue(1, "0,1");
    EXPECT_EQ(node.inputs(), "layer0 layer1 layer2") << "the placeholder moves out of the way";
    EXPECT_EQ(node.order(), "0,1");
    EXPECT_EQ(node.variableFieldSetCount(), 2U);
    EXPECT_EQ(node.ids, QStringList({"0", "1"}));
    EXPECT_EQ(node.inputDisplayNameOfFieldByIndex(2), "Layer");
    EXPECT_EQ(node.inputDisplayNameOfFieldByIndex(3), "Layer");
    EXPECT_EQ(node.inputDisplayNameOfFieldByIndex(4), "Free");
    EXPECT_EQ(node.log.take(), QStringList());
}

TEST(VariableInputNode, KeepsItsPlaceholderIfItsIdIsFree)
{
    Layers node;
    InputField* const placeholder = node.inputFields[2];
    node.setInputValue(1, "3,1");
    EXPECT_EQ(node.inputs(), "layer3 layer1 layer0");
    EXPECT_EQ(node.inputFields[4], placeholder);
    EXPECT_EQ(node.order(), "3,1");
    node.connectInput("layer0");
    EXPECT_EQ(node.order(), "3,1,0");
    EXPECT_EQ(node.inputs(), "layer3 layer1 layer0 layer2");
}

TEST(VariableInputNode, RestoresBehindThePlaceholderAtTheStart)
{
    Layers node(VariableInputNode::InsertAtStart, true);
    node.setInputValue(1, "1,0");
    EXPECT_EQ(node.inputs(), "layer2 layer1 opacity1 mask1 layer0 opacity0 mask0");
    EXPECT_EQ(node.order(), "1,0");
    node.connectInput("layer2");
    EXPECT_EQ(node.inputs(), "layer3 layer2 opacity2 mask2 layer1 opacity1 mask1 layer0 opacity0 mask0");
    EXPECT_EQ(node.order(), "2,1,0");
}

TEST(VariableInputNode, SetsAreCountedInTheOrderInWhichTheyWereMade)
{
    // Before saving: the newest input stands first, the oldest set is set 0.
    Layers saved(VariableInputNode::InsertAtStart), restored(VariableInputNode::InsertAtStart);
    saved.connectInput("layer0");
    saved.connectInput("layer1");
    unsigned long index = 99;
    EXPECT_TRUE(saved.variableFieldSetIndexToFieldIndex(0, 0, index));
    EXPECT_EQ(index, 4U);
    // After restoring the sets are made in the order of the inputs.
    restored.setInputValue(1, saved.order());
    EXPECT_EQ(restored.inputs(), saved.inputs());
    EXPECT_TRUE(restored.variableFieldSetIndexToFieldIndex(0, 0, index));
    EXPECT_EQ(index, 3U);
}

TEST(VariableInputNode, NormalisesTheOrder)
{
    const struct {
        const char* text;
        const char* order;
        const char* inputs;
    } cases[] = {{"a,2", "2", "layer2 layer0"},
                 {"007", "7", "layer7 layer0"},
                 {" 4", "4", "layer4 layer0"},
                 {"4 ", "4", "layer4 layer0"},
                 {"-1", "", "layer0"},
                 {"4.0", "", "layer0"},
                 {"0x10", "", "layer0"},
                 {",,5,,6,", "5,6", "layer5 layer6 layer0"},
                 {"", "", "layer0"},
                 {"18446744073709551616", "", "layer0"},
                 {"5,5", "5,5", "layer5 layer5 layer0"},
                 {"+8", "8", "layer8 layer0"}};
    for (const auto& c : cases) {
        Layers node;
        node.setInputValue(1, c.text);
        EXPECT_EQ(node.order(), c.order) << c.text;
        EXPECT_EQ(node.inputs(), c.inputs) << c.text;
        EXPECT_EQ(node.inputValue(1).type(), QVariant::String);
    }
    Layers large;
    large.setInputValue(1, "18446744073709551615");
    EXPECT_EQ(large.order(), "18446744073709551615");
    EXPECT_EQ(large.inputs(), "layer18446744073709551615 layer0");
    Layers number;
    number.setInputValue(1, 3);
    EXPECT_EQ(number.order(), "3");
    Layers nothing;
    nothing.setInputValue(1, {});
    EXPECT_EQ(nothing.inputs(), "layer0");
}

TEST(VariableInputNode, OfAnOrderWithAnIdTwiceLosesBothEntriesWithTheFirst)
{
    Layers node;
    node.setInputValue(1, "5,5,6");
    EXPECT_EQ(node.variableFieldSetCount(), 3U);
    node.disconnectInput("layer5"); // the first of that name
    EXPECT_EQ(node.inputs(), "layer5 layer6 layer0");
    EXPECT_EQ(node.order(), "6");
}

TEST(VariableInputNode, HasNoOtherValues)
{
    Layers node(VariableInputNode::InsertAtEnd, true);
    node.setInputValue(1, "0");
    for (const int index : {-1, 0, 2, 3, 4, 5, 100})
        EXPECT_FALSE(node.inputValue(index).isValid()) << index;
    for (const unsigned long index : {0UL, 2UL, 3UL, 100UL, std::numeric_limits<unsigned long>::max()})
        node.setInputValue(index, "1,2,3");
    EXPECT_EQ(node.inputs(), "layer0 opacity0 mask0 layer1");
    EXPECT_EQ(node.order(), "0");
    EXPECT_EQ(node.log.take(), QStringList());
}

// --- Index translation ---------------------------------------------------------------------------------------------

TEST(VariableInputNode, TranslatesIndices)
{
    Layers node(VariableInputNode::InsertAtEnd, true);
    unsigned long field = 99, set = 99, child = 99;
    EXPECT_FALSE(node.fieldIndexToVariableFieldSetIndex(2, set, child)) << "there are no sets";
    EXPECT_FALSE(node.variableFieldSetIndexToFieldIndex(0, 0, field));
    node.connectInput("layer0");
    node.connectInput("layer1");
    // layer0 opacity0 mask0 layer1 opacity1 mask1 layer2
    for (unsigned long s = 0; s < 2; ++s)
        for (unsigned long c = 0; c < 3; ++c) {
            ASSERT_TRUE(node.variableFieldSetIndexToFieldIndex(s, c, field));
            EXPECT_EQ(field, 2 + 3 * s + c);
            ASSERT_TRUE(node.fieldIndexToVariableFieldSetIndex(field, set, child));
            EXPECT_EQ(set, s);
            EXPECT_EQ(child, c);
        }
    constexpr auto kMax = std::numeric_limits<unsigned long>::max();
    for (const unsigned long s : {2UL, 100UL, kMax})
        EXPECT_FALSE(node.variableFieldSetIndexToFieldIndex(s, 0, field));
    for (const unsigned long c : {3UL, 100UL, kMax})
        EXPECT_FALSE(node.variableFieldSetIndexToFieldIndex(1, c, field));
    for (const unsigned long f : {0UL, 1UL, 8UL, 9UL, 100UL, kMax}) // 8 is the placeholder
        EXPECT_FALSE(node.fieldIndexToVariableFieldSetIndex(f, set, child)) << f;
}

TEST(VariableInputNode, AFieldThatIsNotListedStandsAtTheEnd)
{
    Layers node;
    node.connectInput("layer0");
    node.inputFields.erase(node.inputFields.begin() + 2);
    unsigned long field = 99;
    EXPECT_TRUE(node.variableFieldSetIndexToFieldIndex(0, 0, field));
    EXPECT_EQ(field, node.inputFields.size());
}

// --- The parts from which derived nodes are made -------------------------------------------------------------------

TEST(VariableInputNode, CreatesFieldsThatAreInNoList)
{
    Layers node;
    InputField* const field = node.createVariableInputField("17");
    EXPECT_EQ(field->name(), "layer17");
    EXPECT_EQ(field->displayName(), "Free");
    EXPECT_EQ(field->parentItem(), &node);
    ASSERT_NE(field->anchor(), nullptr);
    EXPECT_EQ(field->anchor()->direction(), Anchor::Input);
    EXPECT_EQ(node.inputs(), "layer0");
}

TEST(VariableInputNode, FindsFreeIds)
{
    Layers node;
    EXPECT_EQ(node.generateUniqueVariableFieldSetId(), 1U);
    node.setInputValue(1, "1,2,4");
    EXPECT_EQ(node.generateUniqueVariableFieldSetId(), 3U);
}

TEST(VariableInputNode, FindsThePlaceOfANewInput)
{
    Layers start(VariableInputNode::InsertAtStart), end, full(VariableInputNode::InsertAtEnd, true);
    EXPECT_EQ(start.newVariableInputFieldIndex(), 2U);
    EXPECT_EQ(end.newVariableInputFieldIndex(), 2U);
    end.connectInput("layer0");
    EXPECT_EQ(end.newVariableInputFieldIndex(), 3U);
    start.connectInput("layer0");
    EXPECT_EQ(start.newVariableInputFieldIndex(), 2U);
    full.connectInput("layer0");
    EXPECT_EQ(full.newVariableInputFieldIndex(), 5U);
}

TEST(VariableInputNode, ReplacesItsPlaceholder)
{
    Layers node;
    const QPointer<InputField> old(node.inputFields[2]);
    node.createNewVariableInputField(true);
    EXPECT_TRUE(old.isNull());
    EXPECT_EQ(node.inputs(), "layer1");
    node.createNewVariableInputField(true);
    EXPECT_EQ(node.inputs(), "layer1") << "its own id is free again by then";
}

TEST(VariableInputNode, AddsAndDeletesSets)
{
    Layers node;
    node.addVariableFieldSet();
    node.addVariableFieldSet();
    EXPECT_EQ(node.inputs(), "layer0 layer1 layer2");
    EXPECT_EQ(node.order(), "0,1");
    node.deleteVariableFieldSet(0);
    EXPECT_EQ(node.inputs(), "layer1 layer2");
    EXPECT_EQ(node.order(), "1");
}

TEST(VariableInputNode, DeletesItsOrderField)
{
    QPointer<InputField> order;
    {
        Layers node;
        order = node.inputFields[1];
    }
    EXPECT_TRUE(order.isNull());
    {
        QGraphicsScene scene;
        auto* node = new Layers;
        scene.addItem(node);
        order = node->inputFields[1];
        EXPECT_EQ(order->scene(), nullptr);
    }
    EXPECT_TRUE(order.isNull());
}

} // namespace

// Text as the order of variable inputs: what a node makes of it, it makes again of its own text.

#include "checks.h"

#include <ondrel/nodes/variableinputnode.h>

#include <QApplication>

namespace
{

constexpr unsigned long kOrderInput = 1;

class LayersNode : public Ondrel::VariableInputNode
{
public:
    explicit LayersNode(InsertPosition position)
        : VariableInputNode(nullptr, true, "layer", "Add", "Layer", position)
    {
    }

protected:
    void createVariableInputFieldChildFields(const QString& id, std::vector<Ondrel::InputField*>& fields) override
    {
        fields.push_back(new Ondrel::InputField("mask" + id, this, createAnchor(Ondrel::Anchor::Input), "Mask"));
    }
};

void connectAndCut(LayersNode& node)
{
    const unsigned long count = node.variableFieldSetCount();
    const unsigned long free = node.inputFieldCount() - 1;
    Ondrel::Anchor* anchor = node.inputAnchorOfFieldByIndex(free);
    anchor->setConnected(true);
    node.anchorHasBeenConnected(anchor, "image");
    OndrelFuzz::require(node.variableFieldSetCount() == count + 1, "a connection to the free input adds an input");
    anchor->setConnected(false);
    node.anchorHasBeenDisconnected(anchor);
    OndrelFuzz::require(node.variableFieldSetCount() == count, "an input goes with its last connection");
}

void restore(const QString& text, Ondrel::VariableInputNode::InsertPosition position)
{
    LayersNode node(position);
    node.setInputValue(kOrderInput, text);
    const QString order = node.inputValue(kOrderInput).toString();
    LayersNode again(position);
    again.setInputValue(kOrderInput, order);
    OndrelFuzz::require(again.inputValue(kOrderInput).toString() == order, "an order text restores itself");
    OndrelFuzz::require(again.inputFieldCount() == node.inputFieldCount(), "an order text restores all inputs");
    if (position == Ondrel::VariableInputNode::InsertAtEnd)
        connectAndCut(node);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    new QApplication(*argc, *argv); // for as long as the process lives
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size > 2048) // a longer text makes more inputs, not other ones
        return -1;
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), int(size));
    restore(text, Ondrel::VariableInputNode::InsertAtStart);
    restore(text, Ondrel::VariableInputNode::InsertAtEnd);
    return 0;
}

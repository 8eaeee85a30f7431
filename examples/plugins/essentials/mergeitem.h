#pragma once

#include <ondrel/nodes/variableinputnode.h>

namespace Ondrel
{
class SliderInputField;
}

namespace Essentials
{

// The scene item of a node with as many layers as are connected, the lowest first, and a slider for the opacity of
// each.
class MergeItem : public Ondrel::VariableInputNode
{
    Q_OBJECT
public:
    explicit MergeItem(const QString& prefix);

    QVariant inputValue(int index) override;
    void setInputValue(unsigned long index, QVariant value) override;

public Q_SLOTS:
    void opacityChanged();

protected:
    void createVariableInputFieldChildFields(const QString& id, std::vector<Ondrel::InputField*>& fields) override;

private:
    Ondrel::SliderInputField* sliderAt(std::size_t index) const; // null if there is none
};

} // namespace Essentials

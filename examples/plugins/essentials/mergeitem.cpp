#include "mergeitem.h"

#include "filter.h"

#include <ondrel/nodes/fields/sliderfield.h>

namespace Essentials
{

using Ondrel::PrecisionSlider;
using Ondrel::SliderInputField;

MergeItem::MergeItem(const QString& prefix)
    : VariableInputNode(nullptr, true, prefix, Text::tr("Add a layer"), Text::tr("Layer"), InsertAtEnd)
{
    setHeader(Text::tr("Merge"));
}

SliderInputField* MergeItem::sliderAt(std::size_t index) const
{
    return index < inputFields.size() ? qobject_cast<SliderInputField*>(inputFields[index]) : nullptr;
}

QVariant MergeItem::inputValue(int index)
{
    const SliderInputField* const slider = index >= 0 ? sliderAt(std::size_t(index)) : nullptr;
    return slider ? QVariant(slider->value()) : VariableInputNode::inputValue(index);
}

void MergeItem::setInputValue(unsigned long index, QVariant value)
{
    if (SliderInputField* const slider = sliderAt(index))
        slider->setValue(value.toString());
    else
        VariableInputNode::setInputValue(index, value);
}

void MergeItem::opacityChanged()
{
    Q_EMIT updated(this);
}

void MergeItem::createVariableInputFieldChildFields(const QString& id, std::vector<Ondrel::InputField*>& fields)
{
    auto* const slider = new SliderInputField("opacity" + id, nullptr, Text::tr("Opacity"), "0", "100", "100",
                                              PrecisionSlider::Integer, PrecisionSlider::Range);
    slider->setPostfix(" %");
    slider->setParentItem(this); // now that it is whole, so that it notices the scene
    connect(slider, SIGNAL(valueChanged()), this, SLOT(opacityChanged()));
    fields.push_back(slider);
}

} // namespace Essentials

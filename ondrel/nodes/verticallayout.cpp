#include <ondrel/nodes/fieldbase.h>
#include <ondrel/nodes/layouts.h>
#include <ondrel/nodes/layoutspacing_p.h>

#include <algorithm>

namespace Ondrel
{
namespace
{

void addRow(const FieldBase& field, float& width, float& height)
{
    width = std::max(width, field.minWidth() + 2 * Layout::fieldHorizontalPadding(&field));
    if (const float rowHeight = field.minHeight(); rowHeight > 0)
        height += rowHeight + kRowSpacing;
}

void placeRow(FieldBase& field, float width, float labelWidth, float& y)
{
    const float padding = Layout::fieldHorizontalPadding(&field);
    const float height = field.minHeight();
    field.setPos(qreal(padding), qreal(y));
    field.setSize(width - 2 * padding, height, labelWidth);
    if (height > 0)
        y += height + kRowSpacing;
}

} // namespace

float Layout::fieldHorizontalPadding(const FieldBase* field)
{
    return field->anchor() ? 2 : 9;
}

void VerticalLayout::addInputField(InputField* field)
{
    m_inputFields.push_back(field);
}

void VerticalLayout::addOutputField(OutputField* field)
{
    m_outputFields.push_back(field);
}

QSizeF VerticalLayout::calculateSize(float* outputLabelWidth, float* inputLabelWidth)
{
    return calculateSize(m_inputFields, m_outputFields, outputLabelWidth, inputLabelWidth);
}

void VerticalLayout::layout(float width, float outputLabelWidth, float inputLabelWidth, float y)
{
    layout(width, outputLabelWidth, inputLabelWidth, y, m_inputFields, m_outputFields);
}

QSizeF VerticalLayout::calculateSize(const std::vector<InputField*>& inputs, const std::vector<OutputField*>& outputs,
                                     float* outputLabelWidth, float* inputLabelWidth)
{
    float width = 0;
    float height = 0;
    float inputLabel = 0;
    float outputLabel = 0;
    for (const InputField* field : inputs) {
        if (!field->isVisible())
            continue;
        addRow(*field, width, height);
        if (!field->anchor())
            inputLabel = std::max(inputLabel, field->labelWidth());
    }
    for (const OutputField* field : outputs) {
        addRow(*field, width, height);
        if (!field->anchor())
            outputLabel = std::max(field->labelWidth(), inputLabel); // the last one decides
    }
    if (outputLabelWidth)
        *outputLabelWidth = outputLabel;
    if (inputLabelWidth)
        *inputLabelWidth = inputLabel;
    return QSizeF(qreal(width), qreal(height));
}

void VerticalLayout::layout(float width, float outputLabelWidth, float inputLabelWidth, float y,
                            std::vector<InputField*>& inputs, std::vector<OutputField*>& outputs)
{
    for (OutputField* field : outputs)
        placeRow(*field, width, outputLabelWidth, y);
    for (InputField* field : inputs)
        if (field->isVisible())
            placeRow(*field, width, inputLabelWidth, y);
}

} // namespace Ondrel

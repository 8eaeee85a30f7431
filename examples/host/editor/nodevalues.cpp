#include "nodevalues.h"

#include "values.h"

namespace Host
{

namespace
{

// An order that is too long to be used stays in the document as the project has it, and none is made too long.
bool isLeftAlone(const InputInfo& input, const QVariant& value, const QVariant& kept)
{
    const auto isTooLong = [](const QVariant& order) { return order.toString().size() > kLongestOrder; };
    return input.kind == kOrderKind && (isTooLong(value) || isTooLong(kept));
}

} // namespace

NodeValues::NodeValues(Document& document)
    : m_document(document)
{
}

const NodeType* NodeValues::typeOf(const PreviewNode& node) const
{
    const NodeRecord* const record = m_document.graph().node(node.id());
    return record ? m_document.types().find(record->type) : nullptr;
}

void NodeValues::fill(PreviewNode& node)
{
    const NodeRecord* const record = m_document.graph().node(node.id());
    const NodeType* const type = typeOf(node);
    if (!record)
        return;
    const QVariantMap values = type ? completeValues(*record, *type) : record->values;
    whileFilling([&] {
        for (unsigned long i = 0; i < node.inputFieldCount(); ++i) {
            const QString name = node.inputNameOfFieldByIndex(i);
            if (values.contains(name))
                node.setInputValue(i, values.value(name));
        }
    });
}

void NodeValues::update(PreviewNode& node, const QString& field)
{
    const NodeType* const type = typeOf(node);
    const int index = node.inputIndexOfFieldByName(field);
    if (index < 0 || !type)
        return;
    const QVariant value = completeValues(*m_document.graph().node(node.id()), *type).value(field);
    if (sameValue(node.inputValue(index), value) || field == type->entry.variablePrefix + "_order")
        return; // it came from there, or its wires say it
    whileFilling([&] { node.setInputValue(static_cast<unsigned long>(index), value); });
}

QString NodeValues::store(PreviewNode& node)
{
    QString refusal;
    const NodeType* const type = typeOf(node);
    if (!type)
        return refusal;
    if (!m_mousePressed)
        ++m_gesture;
    const QVariantMap stored = completeValues(*m_document.graph().node(node.id()), *type);
    for (unsigned long i = 0; i < node.inputFieldCount(); ++i) {
        const QString field = node.inputNameOfFieldByIndex(i);
        const QVariant value = node.inputValue(int(i));
        const InputInfo* const input = type->input(field);
        if (!value.isValid() || !input || (!isTooDeep(value) && sameValue(value, stored.value(field))))
            continue;
        if (isLeftAlone(*input, value, m_document.graph().node(node.id())->values.value(field)))
            continue;
        const QString reason = m_document.setValue(node.id(), field, value, m_gesture);
        if (reason.isEmpty())
            continue;
        refusal = reason;
        whileFilling([&] { node.setInputValue(i, stored.value(field)); });
    }
    return refusal;
}

void NodeValues::press()
{
    m_mousePressed = true;
    ++m_gesture;
}

void NodeValues::release()
{
    m_mousePressed = false;
}

} // namespace Host

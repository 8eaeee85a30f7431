#include <ondrel/nodes/fields/hiddenfield.h>
#include <ondrel/nodes/variableinputnode.h>

#include <algorithm>
#include <set>

namespace Ondrel
{
namespace
{

constexpr unsigned long kOrderInput = 1;
constexpr unsigned long kFirstVariableInput = 2;

using FieldSet = VariableInputNode::VariableFieldSet;

std::vector<InputField*> fieldsOf(const FieldSet& set)
{
    std::vector<InputField*> fields = set.childFields;
    fields.push_back(set.field);
    return fields;
}

bool hasAnchor(const std::vector<InputField*>& fields, const Anchor* anchor)
{
    return anchor && std::any_of(fields.begin(), fields.end(),
                                 [=](const InputField* field) { return field->anchor() == anchor; });
}

bool isConnected(const InputField* field)
{
    return field->anchor() && field->anchor()->connected();
}

} // namespace

VariableInputNode::VariableInputNode(QGraphicsItem* parent, bool createOutput, const QString& namePrefix,
                                     const QString& placeholderDisplayName, const QString& connectedDisplayName,
                                     InsertPosition position)
    : PreviewNode(parent, createOutput)
    , m_insertPosition(position)
    , m_namePrefix(namePrefix)
    , m_placeholderDisplayName(placeholderDisplayName)
    , m_connectedDisplayName(connectedDisplayName)
    , m_orderField(new HiddenField(namePrefix + QStringLiteral("_order"), nullptr))
    , m_placeholderField(createVariableInputField(QStringLiteral("0")))
{
    inputFields.push_back(m_orderField);
    inputFields.push_back(m_placeholderField);
}

VariableInputNode::~VariableInputNode()
{
    delete m_orderField; // which has no parent item
}

unsigned long VariableInputNode::variableFieldSetCount() const
{
    return m_variableFieldSets.size();
}

bool VariableInputNode::variableFieldSetIndexToFieldIndex(unsigned long setIndex, unsigned long childIndex,
                                                          unsigned long& fieldIndex) const
{
    if (setIndex >= m_variableFieldSets.size() || childIndex > m_variableFieldSets[setIndex].childFields.size())
        return false;
    const VariableFieldSet& set = m_variableFieldSets[setIndex];
    fieldIndex = inputIndexOf(childIndex == 0 ? set.field : set.childFields[childIndex - 1]);
    return true;
}

bool VariableInputNode::fieldIndexToVariableFieldSetIndex(unsigned long fieldIndex, unsigned long& setIndex,
                                                          unsigned long& childIndex) const
{
    if (fieldIndex < kFirstVariableInput || fieldIndex >= inputFields.size())
        return false;
    const InputField* field = inputFields[fieldIndex];
    for (std::size_t i = 0; i < m_variableFieldSets.size(); ++i) {
        const VariableFieldSet& set = m_variableFieldSets[i];
        const auto child = std::find(set.childFields.begin(), set.childFields.end(), field);
        if (set.field != field && child == set.childFields.end())
            continue;
        setIndex = i;
        childIndex = set.field == field ? 0 : static_cast<unsigned long>(child - set.childFields.begin()) + 1;
        return true;
    }
    return false;
}

QVariant VariableInputNode::inputValue(int index)
{
    return index == int(kOrderInput) ? m_orderField->value() : QVariant();
}

void VariableInputNode::setInputValue(unsigned long index, QVariant value)
{
    if (index != kOrderInput) {
        Node::setInputValue(index, value);
        return;
    }
    QStringList ids = value.toString().split(QLatin1Char(','), Qt::SkipEmptyParts);
    setupVariableFieldSets(ids);
    m_orderField->setValue(ids.join(QLatin1Char(',')));
}

void VariableInputNode::anchorHasBeenConnected(const Anchor* anchor, const QString& /*name*/)
{
    if (anchor && anchor == m_placeholderField->anchor())
        addVariableFieldSet();
}

void VariableInputNode::anchorHasBeenDisconnected(const Anchor* anchor)
{
    for (std::size_t i = 0; i < m_variableFieldSets.size(); ++i) {
        const std::vector<InputField*> fields = fieldsOf(m_variableFieldSets[i]);
        if (!hasAnchor(fields, anchor) || std::any_of(fields.begin(), fields.end(), isConnected))
            continue;
        deleteVariableFieldSet(i);
        return;
    }
}

void VariableInputNode::createVariableInputFieldChildFields(const QString& /*id*/, std::vector<InputField*>& /*fields*/)
{
}

// Its place among the inputs, or their number if it is not one of them.
std::size_t VariableInputNode::inputIndexOf(const InputField* field) const
{
    return static_cast<std::size_t>(std::find(inputFields.begin(), inputFields.end(), field) - inputFields.begin());
}

void VariableInputNode::insertInputs(std::size_t index, const std::vector<InputField*>& fields)
{
    const auto place = inputFields.begin() + static_cast<std::ptrdiff_t>(std::min(index, inputFields.size()));
    inputFields.insert(place, fields.begin(), fields.end());
}

unsigned long VariableInputNode::newVariableInputFieldIndex() const
{
    if (m_insertPosition == InsertAtStart)
        return inputIndexOf(m_orderField) + 1;
    if (m_variableFieldSets.empty())
        return inputIndexOf(m_placeholderField);
    const VariableFieldSet& last = m_variableFieldSets.back();
    return inputIndexOf(last.childFields.empty() ? last.field : last.childFields.back()) + 1;
}

unsigned long VariableInputNode::generateUniqueVariableFieldSetId() const
{
    std::set<unsigned long> taken = {m_placeholderId};
    for (const VariableFieldSet& set : m_variableFieldSets)
        taken.insert(set.id);
    unsigned long id = 0;
    for (auto next = taken.begin(); next != taken.end() && *next == id; ++next)
        ++id;
    return id;
}

InputField* VariableInputNode::createVariableInputField(const QString& id)
{
    return new InputField(m_namePrefix + id, this, createAnchor(Anchor::Input), m_placeholderDisplayName);
}

void VariableInputNode::createNewVariableInputField(bool replace)
{
    const std::size_t formerIndex = inputIndexOf(m_placeholderField);
    if (replace)
        delete m_placeholderField;
    m_placeholderId = 0; // so that 0 counts as taken: it is the first placeholder's alone
    m_placeholderId = generateUniqueVariableFieldSetId();
    m_placeholderField = createVariableInputField(QString::number(m_placeholderId));
    if (replace && formerIndex < inputFields.size())
        inputFields[formerIndex] = m_placeholderField;
    else
        insertInputs(newVariableInputFieldIndex(), {m_placeholderField});
}

void VariableInputNode::addVariableFieldSet()
{
    const QString id = QString::number(m_placeholderId);
    VariableFieldSet set = {m_placeholderId, m_placeholderField, {}};
    m_placeholderField->setDisplayName(m_connectedDisplayName);
    createVariableInputFieldChildFields(id, set.childFields);
    m_variableFieldSets.push_back(set);
    insertInputs(inputIndexOf(set.field) + 1, set.childFields);

    const QString order = m_orderField->value().toString();
    if (order.isEmpty())
        m_orderField->setValue(id);
    else if (m_insertPosition == InsertAtEnd)
        m_orderField->setValue(order + QLatin1Char(',') + id);
    else
        m_orderField->setValue(id + QLatin1Char(',') + order);
    createNewVariableInputField(false);
}

void VariableInputNode::deleteVariableFieldSet(unsigned long setIndex)
{
    if (setIndex >= m_variableFieldSets.size())
        return;
    const VariableFieldSet set = m_variableFieldSets[setIndex];
    m_variableFieldSets.erase(m_variableFieldSets.begin() + static_cast<std::ptrdiff_t>(setIndex));
    for (InputField* field : fieldsOf(set)) {
        inputFields.erase(std::remove(inputFields.begin(), inputFields.end(), field), inputFields.end());
        delete field;
    }
    QStringList ids = m_orderField->value().toString().split(QLatin1Char(','), Qt::SkipEmptyParts);
    ids.removeAll(QString::number(set.id));
    m_orderField->setValue(ids.join(QLatin1Char(',')));
}

void VariableInputNode::setupVariableFieldSets(QStringList& ids)
{
    std::vector<unsigned long> numbers;
    for (const QString& id : ids) {
        bool ok = false;
        const unsigned long number = id.toULong(&ok);
        if (ok)
            numbers.push_back(number);
    }
    ids.clear();
    std::size_t index = newVariableInputFieldIndex() + (m_insertPosition == InsertAtStart ? 1 : 0);
    for (const unsigned long number : numbers) {
        const QString id = QString::number(number);
        ids.push_back(id);
        VariableFieldSet set = {number, createVariableInputField(id), {}};
        set.field->setDisplayName(m_connectedDisplayName);
        createVariableInputFieldChildFields(id, set.childFields);
        m_variableFieldSets.push_back(set);
        insertInputs(index, {set.field});
        insertInputs(index + 1, set.childFields);
        index += 1 + set.childFields.size();
    }
    if (std::find(numbers.begin(), numbers.end(), m_placeholderId) != numbers.end())
        createNewVariableInputField(true);
}

} // namespace Ondrel

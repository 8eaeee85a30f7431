#include "valuesdialog.h"

#include "valuetext.h"

#include <ondrel/resources/resourceid.h>

#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QVBoxLayout>

namespace Host
{
namespace
{

const NodeType* typeOf(const Document& document, NodeId node)
{
    const NodeRecord* const record = document.graph().node(node);
    return record ? document.types().find(record->type) : nullptr;
}

} // namespace

std::vector<InputInfo> typedInputs(const Document& document, NodeId node)
{
    std::vector<InputInfo> typed;
    const NodeType* const type = typeOf(document, node);
    if (!type)
        return typed;
    const QVariantMap values = completeValues(*document.graph().node(node), *type);
    for (const InputInfo& input : type->inputs) {
        const bool isHandle = values.value(input.name).userType() == qMetaTypeId<Ondrel::ResourceId>();
        const bool isOrder =
            !type->entry.variablePrefix.isEmpty() && input.name == type->entry.variablePrefix + "_order";
        if (!input.kind.isEmpty() && input.kind != "preview" && !isHandle && !isOrder && values.contains(input.name))
            typed.push_back(input);
    }
    return typed;
}

ValuesDialog::ValuesDialog(Document& document, NodeId node, QWidget* parent)
    : QDialog(parent)
    , m_document(document)
    , m_node(node)
    , m_message(new QLabel(this))
{
    setWindowTitle(tr("Values of %1").arg(document.graph().node(node)->name));
    auto* const area = new QScrollArea(this);
    auto* const panel = new QWidget(area);
    auto* const form = new QFormLayout(panel);
    for (const InputInfo& input : typedInputs(document, node))
        addLine(input, *form);
    area->setWidget(panel);
    area->setWidgetResizable(true);
    area->setFocusPolicy(Qt::NoFocus);
    m_message->setWordWrap(true);
    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(area);
    layout->addWidget(m_message);
    layout->addWidget(new QLabel(tr("Return or Tab takes a line, Escape closes."), this));
    resize(520, 440);
}

void ValuesDialog::addLine(const InputInfo& input, QFormLayout& form)
{
    auto* const line = new QLineEdit(valueToLine(valueOf(input), input));
    line->setObjectName(input.name);
    line->setAccessibleName(input.label.isEmpty() ? input.name : input.label);
    line->setToolTip(input.choices.join(", "));
    form.addRow(line->accessibleName(), line);
    connect(line, SIGNAL(editingFinished()), this, SLOT(finishLine()));
}

QVariant ValuesDialog::valueOf(const InputInfo& input) const
{
    return completeValues(*m_document.graph().node(m_node), *typeOf(m_document, m_node)).value(input.name);
}

// The line with the keys loses them when the dialog hides.
void ValuesDialog::reject()
{
    for (QLineEdit* const line : findChildren<QLineEdit*>())
        line->setModified(false);
    QDialog::reject();
}

// Focus that goes finishes a line too, so only one that was typed in is an edit.
void ValuesDialog::finishLine()
{
    auto* const line = qobject_cast<QLineEdit*>(sender());
    const NodeType* const type = typeOf(m_document, m_node);
    const InputInfo* const input = line && type ? type->input(line->objectName()) : nullptr;
    if (!input || !line->isModified())
        return;
    QVariant value = valueOf(*input);
    const bool makesSense = valueFromLine(line->text(), *input, value);
    m_message->setText(makesSense ? QString()
                                  : tr("\"%1\" is no value of %2.").arg(line->text(), line->accessibleName()));
    m_message->setAccessibleName(m_message->text());
    if (makesSense)
        m_document.setValue(m_node, input->name, value);
    line->setText(valueToLine(valueOf(*input), *input));
}

} // namespace Host

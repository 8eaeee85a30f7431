#include "nodesearch.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace Host
{
namespace
{

enum Rank { Begins, Holds, Related, Unrelated };

Rank rankOf(const NodeType& type, const QString& word)
{
    if (type.title.startsWith(word, Qt::CaseInsensitive))
        return Begins;
    if (type.title.contains(word, Qt::CaseInsensitive))
        return Holds;
    const bool related = type.category.contains(word, Qt::CaseInsensitive) ||
                         std::any_of(type.keywords.begin(), type.keywords.end(), [&word](const QString& keyword) {
                             return keyword.startsWith(word, Qt::CaseInsensitive);
                         });
    return related ? Related : Unrelated;
}

} // namespace

std::vector<const NodeType*> findTypes(const NodeTypes& types, const QString& word)
{
    std::vector<const NodeType*> found;
    for (const Rank rank : {Begins, Holds, Related}) {
        for (const NodeType* type : types.all()) {
            if (rankOf(*type, word) == rank)
                found.push_back(type);
        }
    }
    return found;
}

bool takes(const NodeType& type, const QString& dataType)
{
    return dataType.isEmpty() || type.entry.variableInput.dataType == dataType ||
           std::any_of(type.inputs.begin(), type.inputs.end(),
                       [&dataType](const InputInfo& input) { return input.dataType == dataType; });
}

bool gives(const NodeType& type, const QString& dataType)
{
    return dataType.isEmpty() ||
           std::any_of(type.outputs.begin(), type.outputs.end(),
                       [&dataType](const OutputInfo& output) { return output.dataType == dataType; });
}

NodeSearch::NodeSearch(const NodeTypes& types, std::function<bool(const NodeType&)> isOffered, QWidget* parent)
    : QDialog(parent, Qt::Popup)
    , m_types(types)
    , m_isOffered(std::move(isOffered))
    , m_line(new QLineEdit(this))
    , m_list(new QListWidget(this))
{
    setAccessibleName(tr("Add a node"));
    m_line->setPlaceholderText(tr("Search nodes"));
    m_line->setAccessibleName(tr("Search nodes"));
    m_line->installEventFilter(this);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->addWidget(m_line);
    layout->addWidget(m_list);
    resize(300, 360);
    connect(m_line, SIGNAL(textChanged(QString)), this, SLOT(fill(QString)));
    connect(m_line, SIGNAL(returnPressed()), this, SLOT(accept()));
    connect(m_list, SIGNAL(itemActivated(QListWidgetItem*)), this, SLOT(accept()));
    connect(m_list, SIGNAL(itemClicked(QListWidgetItem*)), this, SLOT(accept()));
    fill(QString());
    m_line->setFocus();
}

void NodeSearch::fill(const QString& word)
{
    m_list->clear();
    for (const NodeType* type : findTypes(m_types, word.trimmed())) {
        if (!m_isOffered(*type))
            continue;
        auto* entry = new QListWidgetItem(QString("%1   %2").arg(type->title, type->category), m_list);
        entry->setData(Qt::UserRole, type->id);
        entry->setToolTip(type->help);
    }
    m_list->setCurrentRow(0);
}

QString NodeSearch::chosenType() const
{
    const QListWidgetItem* const entry = m_list->currentItem();
    return entry ? entry->data(Qt::UserRole).toString() : QString();
}

// Up and down move in the list while one types.
bool NodeSearch::eventFilter(QObject* object, QEvent* event)
{
    if (object != m_line || event->type() != QEvent::KeyPress)
        return QDialog::eventFilter(object, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key != Qt::Key_Up && key != Qt::Key_Down)
        return false;
    const int row = m_list->currentRow() + (key == Qt::Key_Down ? 1 : -1);
    m_list->setCurrentRow(qBound(0, row, m_list->count() - 1));
    return true;
}

} // namespace Host

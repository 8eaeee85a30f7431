#include "connectiondialog.h"

#include "scene.h"

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <set>

namespace Host
{
namespace
{

// By the fields that the items have now: a node may have more than its file says.
void addBetween(Scene& scene, NodeId from, NodeId to, std::vector<Connection>& connections)
{
    const Graph& graph = scene.document().graph();
    const NodeType* const fromType = scene.document().types().find(graph.node(from)->type);
    const NodeType* const toType = scene.document().types().find(graph.node(to)->type);
    const PreviewNode* const item = scene.item(to);
    if (!fromType || !toType || !item)
        return;
    for (unsigned long i = 0; i < item->inputFieldCount(); ++i) {
        const QString field = item->inputNameOfFieldByIndex(i);
        const InputInfo* const input = toType->input(field);
        if (!input || input->dataType.isEmpty())
            continue;
        for (const OutputInfo& output : fromType->outputs) {
            if (output.dataType == input->dataType)
                connections.push_back({from, output.name, to, field});
        }
    }
}

bool has(const Graph& graph, const Connection& connection)
{
    return std::find(graph.connections.begin(), graph.connections.end(), connection) != graph.connections.end();
}

} // namespace

std::vector<Connection> possibleConnections(Scene& scene, NodeId node)
{
    const Graph& graph = scene.document().graph();
    const std::vector<NodeId> later = dependents(graph, {node}), needed = dependencies(graph, node);
    const std::set<NodeId> after(later.begin(), later.end()), before(needed.begin(), needed.end());
    std::vector<const NodeRecord*> others;
    for (const auto& [id, record] : graph.nodes)
        others.push_back(&record);
    std::stable_sort(others.begin(), others.end(),
                     [](const NodeRecord* a, const NodeRecord* b) { return a->name < b->name; });
    std::vector<Connection> connections;
    for (const NodeRecord* const other : others) {
        if (after.count(other->id) == 0)
            addBetween(scene, other->id, node, connections);
    }
    for (const NodeRecord* const other : others) {
        if (before.count(other->id) == 0)
            addBetween(scene, node, other->id, connections);
    }
    return connections;
}

ConnectionDialog::ConnectionDialog(Scene& scene, NodeId node, const std::optional<Connection>& wire, QWidget* parent)
    : QDialog(parent)
    , m_scene(scene)
    , m_node(node)
    , m_wire(wire)
    , m_line(new QLineEdit(this))
    , m_list(new QListWidget(this))
{
    setWindowTitle(tr("Connections of %1").arg(scene.document().graph().node(node)->name));
    m_line->setPlaceholderText(tr("Search connections"));
    m_line->setAccessibleName(tr("Search connections"));
    m_line->installEventFilter(this);
    m_list->setAccessibleName(tr("Connections"));
    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(m_line);
    layout->addWidget(m_list);
    layout->addWidget(new QLabel(tr("Return connects or disconnects what is marked, Escape closes."), this));
    resize(420, 420);
    connect(m_line, SIGNAL(textChanged(QString)), this, SLOT(fill()));
    connect(m_list, SIGNAL(itemChanged(QListWidgetItem*)), this, SLOT(apply(QListWidgetItem*)));
    find();
    m_list->setCurrentRow(0);
    if (wire)
        mark(*wire);
    m_line->setFocus();
}

void ConnectionDialog::mark(const Connection& connection)
{
    for (int row = 0; row < m_list->count(); ++row) {
        if (m_list->item(row)->data(Qt::UserRole).value<Connection>() == connection)
            m_list->setCurrentRow(row);
    }
}

void ConnectionDialog::find()
{
    m_choices = possibleConnections(m_scene, m_node);
    const auto isElsewhere = [this](const Connection& each) {
        return m_wire && (each.to != m_wire->to || each.input != m_wire->input);
    };
    m_choices.erase(std::remove_if(m_choices.begin(), m_choices.end(), isElsewhere), m_choices.end());
    fill();
}

void ConnectionDialog::fill()
{
    const int row = std::max(0, m_list->currentRow());
    m_filling = true;
    m_list->clear();
    for (const Connection& connection : m_choices)
        add(connection);
    m_filling = false;
    m_list->setCurrentRow(std::min(row, m_list->count() - 1));
}

void ConnectionDialog::add(const Connection& connection)
{
    const Graph& graph = m_scene.document().graph();
    const NodeRecord& from = *graph.node(connection.from);
    const NodeRecord& to = *graph.node(connection.to);
    const NodeTypes& types = m_scene.document().types();
    const QString output = types.find(from.type)->output(connection.output)->label;
    const QString input = types.find(to.type)->input(connection.input)->label;
    const QString text = connection.to == m_node ? tr("%1 from %2: %3").arg(input, from.name, output)
                                                 : tr("%1 to %2: %3").arg(output, to.name, input);
    if (!text.contains(m_line->text().trimmed(), Qt::CaseInsensitive))
        return;
    auto* const entry = new QListWidgetItem(text, m_list);
    entry->setData(Qt::UserRole, QVariant::fromValue(connection));
    entry->setCheckState(has(graph, connection) ? Qt::Checked : Qt::Unchecked);
}

void ConnectionDialog::make(const Connection& connection)
{
    const QString refusal = m_scene.document().addConnection(connection);
    if (!refusal.isEmpty())
        Q_EMIT m_scene.refused(refusal);
}

void ConnectionDialog::apply(QListWidgetItem* entry)
{
    if (m_filling)
        return;
    const auto connection = entry->data(Qt::UserRole).value<Connection>();
    if (entry->checkState() == Qt::Checked)
        make(connection);
    else
        m_scene.document().removeConnection(connection);
    // Another one may have gone, and variable nodes have other inputs now. The entry is in use until this returns.
    QMetaObject::invokeMethod(
        this, [this] { find(); }, Qt::QueuedConnection);
}

// The list follows while one types.
bool ConnectionDialog::eventFilter(QObject* object, QEvent* event)
{
    if (object != m_line || event->type() != QEvent::KeyPress)
        return QDialog::eventFilter(object, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    QListWidgetItem* const marked = m_list->currentItem();
    if (key == Qt::Key_Up || key == Qt::Key_Down)
        m_list->setCurrentRow(qBound(0, m_list->currentRow() + (key == Qt::Key_Down ? 1 : -1), m_list->count() - 1));
    else if ((key == Qt::Key_Return || key == Qt::Key_Enter) && marked)
        marked->setCheckState(marked->checkState() == Qt::Checked ? Qt::Unchecked : Qt::Checked);
    else
        return key == Qt::Key_Return || key == Qt::Key_Enter;
    return true;
}

} // namespace Host

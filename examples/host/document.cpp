#include "document.h"

#include "editcommand.h"
#include "values.h"

#include <algorithm>
#include <set>

namespace Host
{
namespace
{

constexpr std::size_t kUndoBytes = std::size_t(64) << 20;

void eraseTouching(Graph& graph, NodeId id)
{
    auto& all = graph.connections;
    all.erase(std::remove_if(all.begin(), all.end(), [id](const Connection& c) { return c.from == id || c.to == id; }),
              all.end());
}

void eraseInto(Graph& graph, NodeId id, const QString& input)
{
    auto& all = graph.connections;
    all.erase(
        std::remove_if(all.begin(), all.end(), [&](const Connection& c) { return c.to == id && c.input == input; }),
        all.end());
}

bool contains(const Graph& graph, const Connection& connection)
{
    return std::find(graph.connections.begin(), graph.connections.end(), connection) != graph.connections.end();
}

// What stands in the way of a wire when its node becomes one of another kind.
bool fits(const Graph& graph, const NodeTypes& types, const Connection& connection)
{
    const NodeRecord* const from = graph.node(connection.from);
    const NodeRecord* const to = graph.node(connection.to);
    const NodeType* const fromType = from ? types.find(from->type) : nullptr;
    const NodeType* const toType = to ? types.find(to->type) : nullptr;
    const OutputInfo* const output = fromType ? fromType->output(connection.output) : nullptr;
    const InputInfo* const input = toType ? toType->input(connection.input) : nullptr;
    return output && input && output->dataType == input->dataType;
}

} // namespace

Document::Document(const NodeTypes& types, QObject* parent)
    : QObject(parent)
    , m_types(types)
    , m_undoStack(kUndoBytes)
{
    qRegisterMetaType<Host::NodeId>("Host::NodeId");
    qRegisterMetaType<Host::Connection>("Host::Connection");
}

void Document::load(const Graph& graph)
{
    m_undoStack.clear();
    m_depth = 0;
    m_graph = graph;
    Q_EMIT reset();
    Q_EMIT changed();
}

void Document::beginStep(const QString& text)
{
    if (m_depth++ == 0) {
        m_stepText = text;
        m_stepStart = m_graph;
    }
}

void Document::endStep()
{
    if (m_depth == 0 || --m_depth > 0)
        return;
    finishStep(m_stepText, m_stepStart, QString());
}

void Document::edit(const QString& text, const Graph& next, const QString& mergeKey)
{
    const Graph before = m_graph;
    ++m_depth; // edits by those who are told belong to this step
    transition(next);
    if (--m_depth == 0)
        finishStep(text, before, mergeKey);
}

void Document::finishStep(const QString& text, const Graph& before, const QString& mergeKey)
{
    const GraphChange change = GraphChange::between(before, m_graph);
    if (!change.empty())
        m_undoStack.push(std::make_unique<EditCommand>(*this, text, change, mergeKey));
}

void Document::transition(const Graph& next)
{
    const Graph before = m_graph;
    tellGone(next);
    m_graph = next;
    tellNew(before);
    Q_EMIT changed();
}

// Views let go of what goes while it is still there to be asked.
void Document::tellGone(const Graph& next)
{
    for (const Connection& connection : std::vector<Connection>(m_graph.connections)) {
        if (!contains(next, connection))
            Q_EMIT connectionRemoved(connection);
    }
    for (const auto& [id, record] : Graph(m_graph).nodes) {
        if (next.nodes.count(id) == 0)
            Q_EMIT nodeRemoved(id);
    }
}

void Document::tellNew(const Graph& before)
{
    const Graph now = m_graph;
    for (const auto& [id, record] : now.nodes) {
        const NodeRecord* const old = before.node(id);
        if (!old) {
            Q_EMIT nodeAdded(id);
            continue;
        }
        std::set<QString> fields;
        for (const QString& field : old->values.keys() + record.values.keys())
            fields.insert(field);
        for (const QString& field : fields) {
            if (!sameValue(old->values.value(field), record.values.value(field)))
                Q_EMIT valueChanged(id, field);
        }
        NodeRecord rest = *old;
        rest.values = record.values;
        if (!(rest == record))
            Q_EMIT nodeChanged(id);
    }
    for (const Connection& connection : now.connections) {
        if (!contains(before, connection))
            Q_EMIT connectionAdded(connection);
    }
    if (!(before.frames == now.frames))
        Q_EMIT framesChanged();
}

NodeId Document::freeId(const Graph& graph) const
{
    return graph.nodes.empty() ? 1 : graph.nodes.rbegin()->first + 1;
}

NodeId Document::addNode(const QString& type, QPointF position, const QString& name)
{
    const NodeType* const known = m_types.find(type);
    if (!known)
        return 0;
    Graph next = m_graph;
    NodeRecord record;
    record.id = freeId(next);
    record.type = type;
    record.name = uniqueName(next, name.isEmpty() ? known->title : name);
    record.position = position;
    next.nodes[record.id] = record;
    edit(tr("Add %1").arg(known->title), next);
    return record.id;
}

void Document::removeNodes(const std::vector<NodeId>& ids)
{
    Graph next = m_graph;
    for (const NodeId id : ids) {
        eraseTouching(next, id);
        next.nodes.erase(id);
    }
    edit(ids.size() == 1 ? tr("Delete node") : tr("Delete nodes"), next);
}

QString Document::addConnection(const Connection& connection)
{
    const QString reason = whyNotConnect(m_graph, m_types, connection);
    if (!reason.isEmpty() || contains(m_graph, connection))
        return reason;
    Graph next = m_graph;
    eraseInto(next, connection.to, connection.input);
    next.connections.push_back(connection);
    edit(tr("Connect"), next);
    return QString();
}

void Document::removeConnection(const Connection& connection)
{
    Graph next = m_graph;
    next.connections.erase(std::remove(next.connections.begin(), next.connections.end(), connection),
                           next.connections.end());
    edit(tr("Disconnect"), next);
}

void Document::setValue(NodeId id, const QString& field, const QVariant& value, int gesture)
{
    const NodeRecord* const record = m_graph.node(id);
    if (!record)
        return;
    const NodeType* const type = m_types.find(record->type);
    const InputInfo* const input = type ? type->input(field) : nullptr;
    Graph next = m_graph;
    QVariantMap& values = next.nodes[id].values;
    if (input && sameValue(input->initial, value))
        values.remove(field);
    else
        values.insert(field, value);
    edit(tr("Change %1").arg(input && !input->label.isEmpty() ? input->label : field), next,
         gesture == 0 ? QString() : QString("value %1 %2 %3").arg(gesture).arg(id).arg(field));
}

void Document::moveNodes(const std::map<NodeId, QPointF>& positions, int gesture)
{
    Graph next = m_graph;
    for (const auto& [id, position] : positions) {
        if (next.nodes.count(id) != 0)
            next.nodes[id].position = position;
    }
    edit(tr("Move"), next, gesture == 0 ? QString() : QString("move %1").arg(gesture));
}

bool Document::renameNode(NodeId id, const QString& name)
{
    const NodeRecord* const holder = m_graph.nodeByName(name);
    if (name.isEmpty() || !m_graph.node(id) || (holder && holder->id != id))
        return false;
    Graph next = m_graph;
    next.nodes[id].name = name;
    edit(tr("Rename"), next);
    return true;
}

void Document::setBypassed(NodeId id, bool bypassed)
{
    if (!m_graph.node(id))
        return;
    Graph next = m_graph;
    next.nodes[id].bypassed = bypassed;
    edit(bypassed ? tr("Bypass") : tr("Use again"), next);
}

bool Document::replaceNode(NodeId id, const QString& typeId)
{
    const NodeType* const type = m_types.find(typeId);
    if (!type || !m_graph.node(id))
        return false;
    Graph next = m_graph;
    NodeRecord& record = next.nodes[id];
    record.type = typeId;
    record.unread = QJsonObject();
    for (const QString& field : record.values.keys()) {
        if (!type->input(field))
            record.values.remove(field);
    }
    for (const Connection& connection : m_graph.touching(id)) {
        if (!fits(next, m_types, connection))
            next.connections.erase(std::find(next.connections.begin(), next.connections.end(), connection));
    }
    record.name = uniqueName(next, type->title);
    // The item is made anew: it goes and comes back.
    Graph without = m_graph;
    eraseTouching(without, id);
    without.nodes.erase(id);
    beginStep(tr("Replace by %1").arg(type->title));
    transition(without);
    transition(next);
    endStep();
    return true;
}

quint64 Document::addFrame(const QString& title, const QRectF& area)
{
    Graph next = m_graph;
    const quint64 id = next.frames.empty() ? 1 : next.frames.rbegin()->first + 1;
    next.frames[id] = {id, title, area};
    edit(tr("Add frame"), next);
    return id;
}

void Document::changeFrame(const FrameRecord& frame)
{
    Graph next = m_graph;
    if (next.frames.count(frame.id) == 0)
        return;
    next.frames[frame.id] = frame;
    edit(tr("Change frame"), next);
}

void Document::removeFrame(quint64 id)
{
    Graph next = m_graph;
    next.frames.erase(id);
    edit(tr("Delete frame"), next);
}

std::map<NodeId, NodeId> Document::insert(const Graph& graph, QPointF offset)
{
    Graph next = m_graph;
    std::map<NodeId, NodeId> ids;
    for (const auto& [id, record] : graph.nodes) {
        NodeRecord copy = record;
        copy.id = freeId(next);
        copy.name = uniqueName(next, record.name);
        copy.position += offset;
        ids[id] = copy.id;
        next.nodes[copy.id] = copy;
    }
    for (const Connection& connection : graph.connections) {
        if (ids.count(connection.from) != 0 && ids.count(connection.to) != 0)
            next.connections.push_back({ids[connection.from], connection.output, ids[connection.to], connection.input});
    }
    edit(tr("Insert"), next);
    return ids;
}

} // namespace Host

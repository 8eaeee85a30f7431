#include "document.h"

#include "editcommand.h"
#include "project.h"
#include "projectform.h"
#include "text.h"
#include "values.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <set>
#include <tuple>

namespace Host
{
namespace
{

constexpr std::size_t kUndoBytes = std::size_t(64) << 20;

// The graph's connections but for some.
template <class Predicate>
std::vector<Connection> connectionsWithout(const Graph& graph, Predicate goes)
{
    std::vector<Connection> kept;
    std::remove_copy_if(graph.connections.begin(), graph.connections.end(), std::back_inserter(kept), goes);
    return kept;
}

// One above all others, so that ids are not used again soon; a file may have the very last, then it is the first gap.
template <class Records>
quint64 freeIdIn(const Records& records)
{
    const quint64 last = records.empty() ? 0 : records.rbegin()->first;
    if (last < std::numeric_limits<quint64>::max())
        return last + 1;
    quint64 gap = 1;
    for (auto record = records.begin(); record->first == gap; ++record)
        ++gap;
    return gap;
}

bool contains(const Graph& graph, const Connection& connection)
{
    return std::find(graph.connections.begin(), graph.connections.end(), connection) != graph.connections.end();
}

bool comesBefore(const Connection& a, const Connection& b)
{
    return std::tie(a.from, a.to, a.output, a.input) < std::tie(b.from, b.to, b.output, b.input);
}

// Those of the first list that are not in the second, in the order of the first.
std::vector<Connection> missing(const std::vector<Connection>& wanted, std::vector<Connection> there)
{
    std::sort(there.begin(), there.end(), comesBefore);
    std::vector<Connection> result;
    std::remove_copy_if(wanted.begin(), wanted.end(), std::back_inserter(result), [&there](const Connection& each) {
        return std::binary_search(there.begin(), there.end(), each, comesBefore);
    });
    return result;
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

Document::~Document() = default;

void Document::load(const Graph& graph)
{
    m_undoStack.clear();
    m_depth = 0;
    m_step.reset();
    m_graph = graph;
    Q_EMIT reset();
    Q_EMIT changed();
}

void Document::beginStep(const QString& text)
{
    if (m_depth++ == 0) {
        m_stepText = text;
        m_step = std::make_unique<GraphChange>();
    }
}

void Document::endStep(int gesture)
{
    if (m_depth == 0 || --m_depth > 0)
        return;
    finishStep(gesture == 0 ? QString() : QString("step %1").arg(gesture));
}

void Document::edit(const QString& text, const GraphChange& change, const QString& mergeKey)
{
    beginStep(text); // edits by those who are told belong to this step
    m_step->append(change);
    apply(change, true);
    if (--m_depth == 0)
        finishStep(mergeKey);
}

void Document::finishStep(const QString& mergeKey)
{
    const std::unique_ptr<GraphChange> step = std::move(m_step);
    step->dropUnchanged();
    if (!step->empty())
        m_undoStack.push(std::make_unique<EditCommand>(*this, m_stepText, *step, mergeKey));
}

void Document::apply(const GraphChange& change, bool forwards)
{
    tellGone(change, forwards);
    change.apply(m_graph, forwards);
    tellNew(change, forwards);
    Q_EMIT changed();
}

// Views let go of what goes while it is still there to be asked.
void Document::tellGone(const GraphChange& change, bool forwards)
{
    if (change.connections) {
        const auto& [before, after] = *change.connections;
        for (const Connection& connection : missing(forwards ? before : after, forwards ? after : before))
            Q_EMIT connectionRemoved(connection);
    }
    for (const auto& [id, pair] : change.nodes) {
        if ((forwards ? pair.before : pair.after) && !(forwards ? pair.after : pair.before))
            Q_EMIT nodeRemoved(id);
    }
}

void Document::tellNew(const GraphChange& change, bool forwards)
{
    for (const auto& [id, pair] : change.nodes) {
        const auto& old = forwards ? pair.before : pair.after;
        const auto& now = forwards ? pair.after : pair.before;
        if (now && old)
            tellOfNode(*old, *now);
        else if (now)
            Q_EMIT nodeAdded(id);
    }
    if (change.connections) {
        const auto& [before, after] = *change.connections;
        for (const Connection& connection : missing(forwards ? after : before, forwards ? before : after))
            Q_EMIT connectionAdded(connection);
    }
    if (!change.frames.empty())
        Q_EMIT framesChanged();
}

void Document::tellOfNode(const NodeRecord& old, const NodeRecord& now)
{
    std::set<QString> fields;
    for (const QString& field : old.values.keys() + now.values.keys())
        fields.insert(field);
    for (const QString& field : fields) {
        if (!sameValue(old.values.value(field), now.values.value(field)))
            Q_EMIT valueChanged(now.id, field);
    }
    NodeRecord rest = old;
    rest.values = now.values;
    if (!(rest == now))
        Q_EMIT nodeChanged(now.id);
}

NodeId Document::freeId(const Graph& graph) const
{
    return freeIdIn(graph.nodes);
}

NodeId Document::addNode(const QString& type, QPointF position, const QString& name)
{
    const NodeType* const known = m_types.find(type);
    if (!known)
        return 0;
    NodeRecord record;
    record.id = freeId(m_graph);
    record.type = type;
    record.name = uniqueName(m_graph, name.isEmpty() ? known->title : name);
    record.position = position;
    GraphChange change;
    change.nodes[record.id] = {std::nullopt, record};
    edit(tr("Add %1").arg(known->title), change);
    return record.id;
}

void Document::removeNodes(const std::vector<NodeId>& ids)
{
    GraphChange change;
    for (const NodeId id : ids) {
        if (const NodeRecord* const record = m_graph.node(id))
            change.nodes[id] = {*record, std::nullopt};
    }
    change.setConnections(m_graph.connections, connectionsWithout(m_graph, [&change](const Connection& each) {
                              return change.nodes.count(each.from) != 0 || change.nodes.count(each.to) != 0;
                          }));
    edit(ids.size() == 1 ? tr("Delete node") : tr("Delete nodes"), change);
}

QString Document::addConnection(const Connection& connection)
{
    const QString reason = whyNotConnect(m_graph, m_types, connection);
    if (!reason.isEmpty() || contains(m_graph, connection))
        return reason;
    std::vector<Connection> next = connectionsWithout(m_graph, [&connection](const Connection& each) {
        return each.to == connection.to && each.input == connection.input;
    });
    next.push_back(connection);
    GraphChange change;
    change.setConnections(m_graph.connections, next);
    edit(tr("Connect"), change);
    return QString();
}

void Document::removeConnection(const Connection& connection)
{
    GraphChange change;
    change.setConnections(m_graph.connections, connectionsWithout(m_graph, [&connection](const Connection& each) {
                              return each == connection;
                          }));
    edit(tr("Disconnect"), change);
}

QString Document::setValue(NodeId id, const QString& field, const QVariant& value, int gesture)
{
    const NodeRecord* const record = m_graph.node(id);
    if (!record)
        return Text::tr("The node does not exist.");
    const NodeType* const type = m_types.find(record->type);
    const InputInfo* const input = type ? type->input(field) : nullptr;
    const QString label = input && !input->label.isEmpty() ? input->label : field;
    if (isTooDeep(value))
        return Text::tr("The value for \"%1\" of \"%2\" is nested too deeply to be saved. The old one stays.")
            .arg(label, record->name);
    NodeRecord next = *record;
    if (input && sameValue(input->initial, value))
        next.values.remove(field);
    else
        next.values.insert(field, value);
    editNode(tr("Change %1").arg(label), next,
             gesture == 0 ? QString() : QString("value %1 %2 %3").arg(gesture).arg(id).arg(field));
    return QString();
}

// Of a node that exists.
void Document::editNode(const QString& text, const NodeRecord& next, const QString& mergeKey)
{
    GraphChange change;
    change.nodes[next.id] = {m_graph.nodes.at(next.id), next};
    edit(text, change, mergeKey);
}

void Document::moveNodes(const std::map<NodeId, QPointF>& positions, int gesture)
{
    GraphChange change;
    for (const auto& [id, position] : positions) {
        const NodeRecord* const record = m_graph.node(id);
        if (!record)
            continue;
        NodeRecord next = *record;
        next.position = position;
        change.nodes[id] = {*record, next};
    }
    edit(tr("Move"), change, gesture == 0 ? QString() : QString("move %1").arg(gesture));
}

bool Document::renameNode(NodeId id, const QString& name)
{
    const NodeRecord* const record = m_graph.node(id);
    const NodeRecord* const holder = m_graph.nodeByName(name);
    if (name.isEmpty() || !record || (holder && holder->id != id))
        return false;
    NodeRecord next = *record;
    next.name = name;
    editNode(tr("Rename"), next);
    return true;
}

void Document::setBypassed(NodeId id, bool bypassed)
{
    const NodeRecord* const record = m_graph.node(id);
    if (!record)
        return;
    NodeRecord next = *record;
    next.bypassed = bypassed;
    editNode(bypassed ? tr("Bypass") : tr("Use again"), next);
}

std::vector<Connection> Document::wiresKept(NodeId id, const QString& type) const
{
    Graph next;
    std::vector<Connection> wires = m_graph.touching(id);
    for (const Connection& wire : wires) {
        for (const NodeId end : {wire.from, wire.to})
            next.nodes[end] = m_graph.nodes.at(end);
    }
    next.nodes[id].type = type;
    wires.erase(
        std::remove_if(wires.begin(), wires.end(), [&](const Connection& wire) { return !fits(next, m_types, wire); }),
        wires.end());
    return wires;
}

bool Document::replaceNode(NodeId id, const QString& typeId)
{
    const NodeType* const type = m_types.find(typeId);
    const NodeRecord* const record = m_graph.node(id);
    if (!type || !record)
        return false;
    NodeRecord made = *record;
    made.type = typeId;
    made.unread = QJsonObject();
    for (const QString& field : made.values.keys()) {
        if (!type->input(field))
            made.values.remove(field);
    }
    made.name = uniqueName(m_graph, type->title);
    const auto touches = [id](const Connection& each) { return each.from == id || each.to == id; };
    const std::vector<Connection> others = connectionsWithout(m_graph, touches);
    const std::vector<Connection> fitting = wiresKept(id, typeId);
    const std::vector<Connection> kept = connectionsWithout(m_graph, [&](const Connection& each) {
        return touches(each) && std::find(fitting.begin(), fitting.end(), each) == fitting.end();
    });
    // The item is made anew: it goes and comes back.
    GraphChange going, coming;
    going.nodes[id] = {*record, std::nullopt};
    going.setConnections(m_graph.connections, others);
    coming.nodes[id] = {std::nullopt, made};
    coming.setConnections(others, kept);
    beginStep(tr("Replace by %1").arg(type->title));
    edit(QString(), going);
    edit(QString(), coming);
    endStep();
    return true;
}

quint64 Document::addFrame(const QString& title, const QRectF& area)
{
    const quint64 id = freeIdIn(m_graph.frames);
    GraphChange change;
    change.frames[id] = {std::nullopt, FrameRecord{id, title, area}};
    edit(tr("Add frame"), change);
    return id;
}

void Document::changeFrame(const FrameRecord& frame)
{
    const auto known = m_graph.frames.find(frame.id);
    if (known == m_graph.frames.end())
        return;
    GraphChange change;
    change.frames[frame.id] = {known->second, frame};
    edit(tr("Change frame"), change);
}

void Document::removeFrame(quint64 id)
{
    const auto known = m_graph.frames.find(id);
    if (known == m_graph.frames.end())
        return;
    GraphChange change;
    change.frames[id] = {known->second, std::nullopt};
    edit(tr("Delete frame"), change);
}

void Document::setEmbedded(const std::vector<Ondrel::ResourceId>& resources, bool embedded)
{
    std::set<std::uint32_t> next = m_graph.embedded;
    for (const Ondrel::ResourceId resource : resources) {
        if (embedded)
            next.insert(resource.id);
        else
            next.erase(resource.id);
    }
    GraphChange change;
    change.setEmbedded(m_graph.embedded, next);
    edit(embedded ? tr("Embed picture") : tr("Link to file"), change);
}

void Document::replaceResource(Ondrel::ResourceId resource, Ondrel::ResourceId by)
{
    std::map<std::uint32_t, std::uint32_t> handles;
    for (const Ondrel::ResourceId each : resourcesOf(m_graph))
        handles[each.id] = each.id == resource.id ? by.id : each.id;
    GraphChange change;
    for (const auto& [id, record] : m_graph.nodes) {
        NodeRecord next = record;
        next.values = withHandles(record.values, handles);
        if (!(next == record))
            change.nodes[id] = {record, next};
    }
    edit(tr("Replace picture"), change);
}

std::map<NodeId, NodeId> Document::insert(const Graph& graph, QPointF offset)
{
    Graph next = m_graph;
    GraphChange change;
    std::map<NodeId, NodeId> ids;
    for (const auto& [id, record] : graph.nodes) {
        NodeRecord copy = record;
        copy.id = freeId(next);
        copy.name = uniqueName(next, record.name);
        copy.position += offset;
        ids[id] = copy.id;
        next.nodes[copy.id] = copy;
        change.nodes[copy.id] = {std::nullopt, copy};
    }
    for (const Connection& connection : graph.connections) {
        if (ids.count(connection.from) == 0 || ids.count(connection.to) == 0)
            continue;
        const Connection copy{ids[connection.from], connection.output, ids[connection.to], connection.input};
        // What comes from a clipboard may say anything; kinds need not be known.
        const std::vector<NodeId> before = dependencies(next, copy.from);
        if (!next.into(copy.to, copy.input) && std::find(before.begin(), before.end(), copy.to) == before.end() &&
            isRoomFor(next, m_types, copy))
            next.connections.push_back(copy);
    }
    change.setConnections(m_graph.connections, next.connections);
    for (const Ondrel::ResourceId resource : resourcesOf(graph)) {
        if (graph.embedded.count(resource.id) != 0)
            next.embedded.insert(resource.id);
    }
    change.setEmbedded(m_graph.embedded, next.embedded);
    for (const auto& [id, record] : graph.frames) {
        const FrameRecord copy{freeIdIn(next.frames), record.title, record.area.translated(offset)};
        next.frames[copy.id] = copy;
        change.frames[copy.id] = {std::nullopt, copy};
    }
    edit(tr("Insert"), change);
    return ids;
}

} // namespace Host

#include "editcommand.h"

#include "document.h"
#include "values.h"

#include <QJsonDocument>

#include <iterator>

namespace Host
{
namespace
{

template <class Pairs, class Records>
void applyPairs(const Pairs& pairs, Records& records, bool forwards)
{
    for (const auto& [id, pair] : pairs) {
        const auto& wanted = forwards ? pair.after : pair.before;
        if (wanted)
            records[id] = *wanted;
        else
            records.erase(id);
    }
}

template <class Pairs>
void appendPairs(Pairs& pairs, const Pairs& later)
{
    for (const auto& [id, pair] : later) {
        const auto [known, isNew] = pairs.try_emplace(id, pair);
        if (!isNew)
            known->second.after = pair.after;
    }
}

template <class Pairs>
void dropUnchangedPairs(Pairs& pairs)
{
    for (auto pair = pairs.begin(); pair != pairs.end();)
        pair = pair->second.before == pair->second.after ? pairs.erase(pair) : std::next(pair);
}

template <class Pair>
void appendPair(std::optional<Pair>& pair, const std::optional<Pair>& later)
{
    if (!later)
        return;
    if (pair)
        pair->second = later->second;
    else
        pair = later;
}

std::size_t bytesOf(const std::optional<NodeRecord>& record)
{
    if (!record)
        return 0;
    const int unread = QJsonDocument(record->unread).toJson(QJsonDocument::Compact).size();
    return sizeof(NodeRecord) + valueToJson(QVariant(record->values)).dump().size() + std::size_t(unread);
}

} // namespace

void GraphChange::setConnections(const std::vector<Connection>& before, const std::vector<Connection>& after)
{
    if (before != after)
        connections = {before, after};
}

void GraphChange::setEmbedded(const std::set<std::uint32_t>& before, const std::set<std::uint32_t>& after)
{
    if (before != after)
        embedded = {before, after};
}

bool GraphChange::empty() const
{
    return nodes.empty() && frames.empty() && !connections && !embedded;
}

void GraphChange::apply(Graph& graph, bool forwards) const
{
    applyPairs(nodes, graph.nodes, forwards);
    applyPairs(frames, graph.frames, forwards);
    if (connections)
        graph.connections = forwards ? connections->second : connections->first;
    if (embedded)
        graph.embedded = forwards ? embedded->second : embedded->first;
}

void GraphChange::append(const GraphChange& later)
{
    appendPairs(nodes, later.nodes);
    appendPairs(frames, later.frames);
    appendPair(connections, later.connections);
    appendPair(embedded, later.embedded);
}

void GraphChange::dropUnchanged()
{
    dropUnchangedPairs(nodes);
    dropUnchangedPairs(frames);
    if (connections && connections->first == connections->second)
        connections.reset();
    if (embedded && embedded->first == embedded->second)
        embedded.reset();
}

std::size_t GraphChange::bytes() const
{
    std::size_t sum = sizeof(*this) + frames.size() * 2 * sizeof(FrameRecord);
    for (const auto& [id, pair] : nodes)
        sum += bytesOf(pair.before) + bytesOf(pair.after);
    if (connections)
        sum += (connections->first.size() + connections->second.size()) * sizeof(Connection);
    if (embedded)
        sum += (embedded->first.size() + embedded->second.size()) * sizeof(std::uint32_t);
    return sum;
}

EditCommand::EditCommand(Document& document, const QString& text, const GraphChange& change, const QString& mergeKey)
    : MemoryAwareUndoCommand(text)
    , m_document(&document)
    , m_change(change)
    , m_mergeKey(mergeKey)
    , m_bytes(sizeof(*this) + change.bytes())
{
}

int EditCommand::id() const
{
    return m_mergeKey.isEmpty() ? -1 : 1;
}

bool EditCommand::mergeWith(const Ondrel::MemoryAwareUndoCommand* other)
{
    const auto* const later = qobject_cast<const EditCommand*>(other);
    if (!later || later->m_mergeKey != m_mergeKey)
        return false;
    m_change.append(later->m_change);
    m_bytes = sizeof(*this) + m_change.bytes();
    return true;
}

std::size_t EditCommand::memoryUsage() const
{
    return m_bytes;
}

void EditCommand::performUndo()
{
    apply(false);
}

void EditCommand::performRedo()
{
    apply(true);
}

void EditCommand::apply(bool forwards)
{
    if (m_document)
        m_document->apply(m_change, forwards);
}

} // namespace Host

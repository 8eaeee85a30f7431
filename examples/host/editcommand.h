#pragma once

#include "graph.h"

#include <ondrel/work/memoryawareundocommand.h>

#include <QPointer>

namespace Host
{

class Document;

// What one step changed: records as they were and as they are, missing ones for those that did not or do not exist.
struct GraphChange {
    template <class Record>
    struct Pair {
        std::optional<Record> before;
        std::optional<Record> after;
    };
    std::map<NodeId, Pair<NodeRecord>> nodes;
    std::map<quint64, Pair<FrameRecord>> frames;
    std::optional<std::pair<std::vector<Connection>, std::vector<Connection>>> connections; // before, after
    std::optional<std::pair<std::set<std::uint32_t>, std::set<std::uint32_t>>> embedded;    // resources, likewise

    void setConnections(const std::vector<Connection>& before, const std::vector<Connection>& after);
    void setEmbedded(const std::set<std::uint32_t>& before, const std::set<std::uint32_t>& after);
    bool empty() const;
    void apply(Graph& graph, bool forwards) const;
    void append(const GraphChange& later); // both as one
    void dropUnchanged();                  // what is as it was
    std::size_t bytes() const;             // about
};

class EditCommand : public Ondrel::MemoryAwareUndoCommand
{
    Q_OBJECT
public:
    // Steps with the same merge key, unless it is empty, become one.
    EditCommand(Document& document, const QString& text, const GraphChange& change, const QString& mergeKey);

    int id() const override;
    bool mergeWith(const Ondrel::MemoryAwareUndoCommand* other) override;
    std::size_t memoryUsage() const override;
    void performUndo() override;
    void performRedo() override;

private:
    void apply(bool forwards);

    QPointer<Document> m_document;
    GraphChange m_change;
    QString m_mergeKey;
    std::size_t m_bytes; // known beforehand: the stack asks every command at each push
};

} // namespace Host

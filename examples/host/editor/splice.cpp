#include "splice.h"

#include <algorithm>

namespace Host
{

std::optional<Splice> findSplice(const Document& document, const PreviewNode& node, const Connection& wire)
{
    const NodeId id = node.id();
    if (wire.from == id || wire.to == id)
        return std::nullopt;
    Graph graph = document.graph();
    graph.connections.erase(std::remove(graph.connections.begin(), graph.connections.end(), wire),
                            graph.connections.end());
    const auto mayConnect = [&](const Connection& connection) {
        return whyNotConnect(graph, document.types(), connection).isEmpty();
    };
    Splice result;
    for (unsigned long i = 0; i < node.inputFieldCount() && result.before.to == 0; ++i) {
        const Connection before{wire.from, wire.output, id, node.inputNameOfFieldByIndex(i)};
        if (!graph.into(id, before.input) && mayConnect(before))
            result.before = before;
    }
    if (result.before.to == 0)
        return std::nullopt;
    graph.connections.push_back(result.before);
    for (unsigned long i = 0; i < node.outputFieldCount(); ++i) {
        result.after = {id, node.outputNameOfFieldByIndex(i), wire.to, wire.input};
        if (mayConnect(result.after))
            return result;
    }
    return std::nullopt;
}

// The second connection takes the place of the wire.
void splice(Document& document, const Splice& splice)
{
    document.beginStep(Document::tr("Insert into wire"));
    document.addConnection(splice.before);
    document.addConnection(splice.after);
    document.endStep();
}

} // namespace Host

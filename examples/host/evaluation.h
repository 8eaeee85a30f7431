#pragma once

#include "graph.h"

#include <ondrel/core/runstatus.h>

#include <ondrel/nodes/transformgraph.h>

#include <functional>
#include <memory>

namespace Host
{

class ResultCache;

// What is wanted of a graph. With an empty output, the node's first output; for a node without outputs, such as a
// histogram, its first input.
struct Target {
    NodeId node = 0;
    QString output;
    double scale = 1;
};

struct Outcome {
    Picture picture;
    QHash<NodeId, QString> errors; // of all nodes behind the picture that could not do their work
    bool cancelled = false;
};

// Called from worker threads, several at once, when a node begins and ends to be computed, or to be waited for while
// another evaluation computes it. Not called for results from the cache.
struct Progress {
    std::function<void(NodeId)> begin;
    std::function<void(NodeId)> end;
};

// Computes a target on the calling thread and TBB's workers, independent nodes beside each other. Results are kept
// under a key of all that they depend on (kinds, values, resources, scale), so that only what has changed is computed
// again, and what is equal in two places of a graph is computed once. A bypassed node hands the picture of its first
// input to its outputs. The same graph gives the same bytes at any number of threads.
//
// Blocks; not for the user-interface thread (asserted in debug builds). Any number of threads may evaluate at once with
// one cache: what one of them computes, the others wait for, and compute themselves if that one is cancelled. A node
// that fails is tried anew by the next evaluation, not by those that waited, and with it all that is made from what it
// gave nevertheless, so that whoever gets a picture gets the errors behind it. If the cache begins a new generation,
// all is computed again, so that a picture is of one generation as a whole.
Outcome evaluate(const Graph& graph, const NodeTypes& types, const Target& target, ResultCache& cache,
                 const Ondrel::RunStatus& status, const Progress& progress = {});

// The size of a node's picture at full size, without computing it; empty if that is unknown.
QSize fullSize(const Graph& graph, const NodeTypes& types, const Target& target);

// The sizes of all outputs at full size, by node and field, for those who ask for many and often.
using OutputSizes = std::map<NodeId, QHash<QString, QSize>>;

// Computes the sizes of these nodes anew, each of which comes behind those it depends on; those of all others are to be
// right.
void updateSizes(const Graph& graph, const NodeTypes& types, const std::vector<NodeId>& nodes, OutputSizes& sizes);

// What fullSize() says, looked up.
QSize knownSize(const Graph& graph, const NodeTypes& types, const Target& target, const OutputSizes& sizes);

// Whether anything flows through the connection. Of kinds that are not loaded nothing is known: what waits for them
// waits for their pictures.
bool carries(const Graph& graph, const NodeTypes& types, const Connection& connection);

// The relations between the nodes' pictures, for modes.
TransformGraph transformGraph(const Graph& graph, const NodeTypes& types);

} // namespace Host

#pragma once

#include "graph.h"

#include <cstddef>

namespace Host
{

class ResultCache;

// In bytes.
struct MemoryUse {
    std::size_t results = 0;   // in the cache of results
    std::size_t resources = 0; // in the store, for the graph's resources: their data and their decoded pictures
    std::size_t images = 0;    // of all pictures in this process, those above and those in use among them
};

// The two functions ask the store and may wait for a decoder: not for the user-interface thread.

MemoryUse memoryUse(const Graph& graph, const ResultCache& cache);

// The store keeps every decoded picture until it is told otherwise. Lets it drop them if they, with the results, take
// more than the cache's budget; true if so. They are decoded again when they are needed.
bool keepStoreWithinBudget(const Graph& graph, const ResultCache& cache);

} // namespace Host

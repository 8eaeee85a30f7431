#pragma once

#include <ondrel/ondrel_export.h>

#include <cstddef>
#include <functional>

// The one way in which this library spreads work on rows or pixels over several threads. Tests swap the engine behind
// it: plain threads, whose synchronisation a thread checker can see, or pieces in random order on one thread.

namespace Ondrel
{

enum class ParallelEngine {
    Tbb,      // tbb::parallel_for with the automatic partitioner; the default
    Threads,  // equal shares on four std::threads made for the call
    Shuffled, // pieces of at most `grain` in random order on the calling thread
};

// Chooses the engine of every later loop in the process. For tests; not to be called while a loop runs.
ONDREL_EXPORT void setParallelEngine(ParallelEngine engine);
ONDREL_EXPORT ParallelEngine parallelEngine();

// Calls body(first, last) for disjoint ranges that together are [0, count), possibly at the same time on several
// threads, and returns when all calls have returned. `grain` is the smallest range worth a task of its own (at least
// 1); ranges may be longer. The body must not throw and must give the same result for every partition.
ONDREL_EXPORT void parallelRanges(std::size_t count, std::size_t grain,
                                  const std::function<void(std::size_t first, std::size_t last)>& body);

// Runs `beside` on another thread if one is free, while `own` runs on the calling thread, and returns when both have
// returned. `beside` must not throw, and neither may wait for the other; what `own` throws is passed on. `beside` may
// call parallelRanges(), in which the calling thread joins when `own` is done.
ONDREL_EXPORT void runBeside(const std::function<void()>& beside, const std::function<void()>& own);

} // namespace Ondrel

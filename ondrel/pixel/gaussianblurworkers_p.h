#pragma once

#pragma push_macro("emit")
#undef emit
#include <tbb/enumerable_thread_specific.h>
#pragma pop_macro("emit")

#include <atomic>
#include <memory>
#include <new>
#include <ondrel/core/parallel_p.h>

namespace Ondrel
{

// parallelRanges with a worker, made by make(), for each thread: body(worker, first, last). Both may allocate:
// std::bad_alloc is kept back until all ranges have ended.
template <typename Make, typename Body>
void parallelWorkers(std::size_t count, std::size_t grain, Make make, Body body)
{
    using Worker = decltype(make());
    // Of the memory that TBB's own allocator hands from call to call, the thread sanitizer sees nothing.
    tbb::enumerable_thread_specific<Worker, std::allocator<Worker>> workers(make);
    std::atomic<bool> shortOfMemory{false};
    parallelRanges(count, grain, [&](std::size_t first, std::size_t last) {
        try {
            body(workers.local(), first, last);
        } catch (std::bad_alloc const&) {
            shortOfMemory = true;
        }
    });
    if (shortOfMemory)
        throw std::bad_alloc();
}

} // namespace Ondrel

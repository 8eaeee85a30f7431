#pragma once

#include <atomic>
#include <new>
#include <ondrel/core/parallel_p.h>

namespace Ondrel
{

// parallelRanges for bodies that allocate: std::bad_alloc is kept back until all of them have ended.
template <typename Body>
void parallelWorkers(std::size_t count, std::size_t grain, Body body)
{
    std::atomic<bool> shortOfMemory{false};
    parallelRanges(count, grain, [&](std::size_t first, std::size_t last) {
        try {
            body(first, last);
        } catch (std::bad_alloc const&) {
            shortOfMemory = true;
        }
    });
    if (shortOfMemory)
        throw std::bad_alloc();
}

} // namespace Ondrel

#pragma once

// oneTBB has a member named emit, which Qt makes a macro of.
#pragma push_macro("emit")
#undef emit
#include <tbb/blocked_range.h>
#include <tbb/enumerable_thread_specific.h>
#include <tbb/parallel_for.h>
#pragma pop_macro("emit")

#include "filter.h"

namespace Essentials
{

// Calls body(y) for every row, on several threads. After a cancel the rest is left out. `grain` is the least number of
// rows that are worth a thread of their own.
template <class Body>
void forRows(unsigned int height, const Ondrel::RunStatus& status, const Body& body, unsigned int grain = 8)
{
    tbb::parallel_for(tbb::blocked_range<unsigned int>(0, height, grain), [&](const auto& range) {
        for (unsigned int y = range.begin(); y != range.end() && !isCancelled(status); ++y)
            body(y);
    });
}

} // namespace Essentials

#pragma once

// oneTBB has a member named emit, which Qt makes a macro of.
#pragma push_macro("emit")
#undef emit
#include <tbb/blocked_range.h>
#include <tbb/enumerable_thread_specific.h>
#include <tbb/parallel_for.h>
#pragma pop_macro("emit")

#include "cancel.h"

namespace Examples
{

// Calls body(y) for every row from `first` up to `end`, which it leaves out, on several threads. After a cancel the
// rest is left out.
template <class Body>
void forRows(unsigned int first, unsigned int end, const Ondrel::RunStatus& status, const Body& body)
{
    constexpr unsigned int fewestRows = 8; // that are worth a task of their own
    if (first >= end)
        return;
    tbb::parallel_for(tbb::blocked_range<unsigned int>(first, end, fewestRows), [&](const auto& range) {
        for (unsigned int y = range.begin(); y != range.end() && !isCancelled(status); ++y)
            body(y);
    });
}

} // namespace Examples

#pragma once

#include <ondrel/core/runstatus.h>

// The word of a RunStatus. Whoever works on it looks at any time, on any thread and without a lock.

namespace Host
{

inline void stop(int& word)
{
    __atomic_store_n(&word, 1, __ATOMIC_RELAXED);
}

inline bool isStopped(const Ondrel::RunStatus& status)
{
    return status.state && __atomic_load_n(status.state, __ATOMIC_RELAXED) == 1;
}

} // namespace Host

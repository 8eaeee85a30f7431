#pragma once

#include <ondrel/core/runstatus.h>

namespace Examples
{

// Whether the owner of the work asks to stop. It may change its word at any time.
inline bool isCancelled(const Ondrel::RunStatus& status)
{
    return status.state && *const_cast<const volatile int*>(status.state) == 1;
}

} // namespace Examples

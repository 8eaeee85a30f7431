#pragma once

#include <ondrel/ondrel_export.h>

#include <libraw/libraw.h>

#include <memory>
#include <vector>

namespace Ondrel
{

// A LibRaw object with the file opened from memory, or null if the file is refused. `data` must outlive its use. The
// object is on the heap: its 750 kilobytes do not fit the stacks of many threads. It writes nothing to standard error.
ONDREL_EXPORT std::unique_ptr<LibRaw> openRaw(const std::vector<unsigned char>& data);

// Whether a call of LibRaw succeeded. It may throw types of its own, which nobody outside can name.
template <class Call>
bool librawSucceeds(Call&& call)
{
    try {
        return call() == LIBRAW_SUCCESS;
    } catch (...) {
        return false;
    }
}

} // namespace Ondrel

#include <ondrel/resources/tiffmemory_p.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <exception>
#include <limits>

namespace Ondrel
{
namespace
{

constexpr toff_t kSeekFailed = toff_t(-1);

TiffMemory& self(thandle_t handle)
{
    return *static_cast<TiffMemory*>(handle);
}

} // namespace

OwnedTiff TiffMemory::open(const char* mode)
{
    return OwnedTiff(TIFFClientOpen("memory", mode, this, &read, &write, &seek, &close, &size, &map, &unmap));
}

tmsize_t TiffMemory::read(thandle_t handle, void* out, tmsize_t count)
{
    TiffMemory& memory = self(handle);
    const std::uint64_t size = memory.bytes->size();
    if (count <= 0 || memory.position >= size)
        return 0;
    const std::uint64_t available = std::min(std::uint64_t(count), size - memory.position);
    std::memcpy(out, memory.bytes->data() + memory.position, std::size_t(available));
    memory.position += available;
    return tmsize_t(available);
}

tmsize_t TiffMemory::write(thandle_t handle, void* in, tmsize_t count)
{
    TiffMemory& memory = self(handle);
    constexpr std::uint64_t most = std::uint64_t(std::numeric_limits<tmsize_t>::max());
    if (!memory.target || count < 0 || memory.position > most - std::uint64_t(count))
        return -1;
    const std::uint64_t end = memory.position + std::uint64_t(count);
    try {
        if (end > memory.target->size())
            memory.target->resize(std::size_t(end));
    } catch (const std::exception&) {
        return -1;
    }
    if (count > 0)
        std::memcpy(memory.target->data() + memory.position, in, std::size_t(count));
    memory.position = end;
    return count;
}

// Negative offsets come as large unsigned ones; the sum then wraps to the right place, or past the end.
toff_t TiffMemory::seek(thandle_t handle, toff_t offset, int whence)
{
    TiffMemory& memory = self(handle);
    const std::uint64_t size = memory.bytes->size();
    std::uint64_t target = offset;
    if (whence == SEEK_CUR) {
        target = memory.position + offset;
        if (target > size)
            return kSeekFailed;
    } else if (whence == SEEK_END) {
        target = size + offset;
    } else if (whence != SEEK_SET) {
        return kSeekFailed;
    }
    if (target > std::uint64_t(std::numeric_limits<std::int64_t>::max()))
        return kSeekFailed;
    memory.position = target;
    return target;
}

int TiffMemory::close(thandle_t)
{
    return 0;
}

toff_t TiffMemory::size(thandle_t handle)
{
    return self(handle).bytes->size();
}

// Not mapped: libtiff then checks each read against the size of the stream.
int TiffMemory::map(thandle_t, void**, toff_t*)
{
    return 0;
}

void TiffMemory::unmap(thandle_t, void*, toff_t) {}

} // namespace Ondrel

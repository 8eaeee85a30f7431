#pragma once

#include <ondrel/ondrel_export.h>

#include <tiffio.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace Ondrel
{

struct CloseTiff {
    void operator()(TIFF* tiff) const noexcept { TIFFClose(tiff); }
};
using OwnedTiff = std::unique_ptr<TIFF, CloseTiff>;

// A TIFF stream over bytes in memory. It must stay in place, and its bytes must live, for as long as the TIFF that was
// opened on it. Sizes and positions are 64-bit and unsigned; no exception leaves a callback, a write that finds no
// memory is a failed write.
class ONDREL_EXPORT TiffMemory
{
public:
    explicit TiffMemory(const std::vector<unsigned char>& data) // read only
        : bytes(&data)
    {
    }
    explicit TiffMemory(std::vector<unsigned char>& data) // grows as needed
        : bytes(&data)
        , target(&data)
    {
    }
    TiffMemory(const TiffMemory&) = delete;
    TiffMemory& operator=(const TiffMemory&) = delete;

    // Null if libtiff refuses the stream.
    OwnedTiff open(const char* mode);

private:
    static tmsize_t read(thandle_t handle, void* out, tmsize_t count);
    static tmsize_t write(thandle_t handle, void* in, tmsize_t count);
    static toff_t seek(thandle_t handle, toff_t offset, int whence);
    static int close(thandle_t handle);
    static toff_t size(thandle_t handle);
    static int map(thandle_t handle, void** base, toff_t* size);
    static void unmap(thandle_t handle, void* base, toff_t size);

    const std::vector<unsigned char>* bytes;
    std::vector<unsigned char>* target = nullptr;
    std::uint64_t position = 0;
};

} // namespace Ondrel

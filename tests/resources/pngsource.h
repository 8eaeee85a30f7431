#pragma once

#include "testfiles.h"

#include <cstddef>
#include <cstring>

#include <png.h>

namespace OndrelTest
{

// What libpng reads from, for png_set_read_fn(png, &source, &takeFromBytes).
struct PngSource {
    const Bytes& file;
    std::size_t position;
};

inline void takeFromBytes(png_struct* png, png_byte* data, std::size_t size)
{
    PngSource& source = *static_cast<PngSource*>(png_get_io_ptr(png));
    if (size > source.file.size() - source.position)
        png_error(png, "no more data");
    std::memcpy(data, source.file.data() + source.position, size);
    source.position += size;
}

} // namespace OndrelTest

#pragma once

#include <ondrel/ondrel_export.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Ondrel
{

struct PngChunks {
    bool inBounds;            // no chunk states more bytes than the file has left
    std::uint64_t imageBytes; // in all IDAT chunks
};

// Walks over the chunk lengths of a PNG file up to its IEND chunk or its end. libpng asks for the memory that a chunk's
// length states before it reads the chunk: 44 bytes can cost 2 GiB.
ONDREL_EXPORT PngChunks walkPngChunks(const std::vector<unsigned char>& data);

// False if compressed data of this size cannot hold the samples of an image: Deflate codes at most 258 bytes in two
// bits.
bool canPngDataHold(std::uint64_t imageBytes, std::uint64_t width, std::uint64_t height, unsigned int bitsPerPixel);

} // namespace Ondrel

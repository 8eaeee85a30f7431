#pragma once

#include <ondrel/core/image.h>

#include <cstddef>
#include <cstdint>

// What a decoder checks before it asks for memory on the word of a file.

namespace Ondrel
{

// Image computes its size in 32 bits, which wraps at this number of pixels.
constexpr std::uint64_t kPixelLimit = std::uint64_t(1) << 30;

// True for a size that has pixels, but fewer than the limit.
constexpr bool isDecodableSize(std::uint64_t width, std::uint64_t height)
{
    return width > 0 && height > 0 && width < kPixelLimit && height < kPixelLimit && width * height < kPixelLimit;
}

// Up to this many pixels for each byte of the file, memory for the image is taken before the data have been seen: an
// incomplete file then costs at most 512 bytes for each of its own. A file that states more is decoded once without
// keeping the pixels, and refused if its data end early. Even a single flat colour seldom packs so densely.
constexpr std::uint64_t kPixelsPerByteOnTrust = 64;

constexpr bool isSizeOnTrust(std::uint64_t width, std::uint64_t height, std::size_t fileSize)
{
    return width * height <= kPixelsPerByteOnTrust * fileSize;
}

// False for an image without pixels, and for one so large that its block, whose size wraps, does not hold all rows.
inline bool holdsAllPixels(const Image& image)
{
    return isDecodableSize(image.width, image.height) && image.data != nullptr &&
           image.sizeBytes >= std::uint64_t(image.width) * image.height * 8;
}

} // namespace Ondrel

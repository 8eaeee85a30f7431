#pragma once

#include <cstdint>
#include <ondrel/core/image.h>

namespace Ondrel
{

// True if the image has pixels and its block holds all of them. The size of a block is a 32-bit product that wraps from
// 2^30 pixels on, so an image can claim more pixels than it has memory; the operations of this folder treat such an
// image as one without pixels. Both sides of an image that passes are below 2^30.
inline bool hasPixels(Image const& image)
{
    // The 64-bit product of the sides cannot wrap; eight bytes a pixel are compared by division.
    return image.data && image.width && image.height &&
           std::uint64_t(image.width) * image.height <= image.sizeBytes / 8;
}

inline const std::uint16_t* pixelAt(Image const& image, std::size_t x, std::size_t y)
{
    return image.data + (y * image.width + x) * 4;
}

inline std::uint16_t* pixelAt(Image& image, std::size_t x, std::size_t y)
{
    return image.data + (y * image.width + x) * 4;
}

} // namespace Ondrel

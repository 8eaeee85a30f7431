#pragma once

#include <ondrel/core/image.h>

#include <algorithm>
#include <cstddef>

namespace Ondrel
{

// The pixels that both the size and the block of an image hold. They differ only for sizes that wrapped at 32 bits.
inline std::size_t pixelsInBlock(const Image& image)
{
    return std::min<std::size_t>(std::size_t{image.width} * image.height, image.sizeBytes / 8);
}

} // namespace Ondrel

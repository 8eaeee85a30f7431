#pragma once

#include <ondrel/ondrel_export.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace Ondrel
{

// 0.299 R + 0.587 G + 0.114 B, truncated: green and red in single precision, blue added in double. Not above 65535.
inline unsigned int luminanceOf(const std::uint16_t* pixel)
{
    const float greenAndRed = static_cast<float>(pixel[1]) * 0.587f + static_cast<float>(pixel[0]) * 0.299f;
    const double luminance = static_cast<double>(pixel[2]) * 0.114 + static_cast<double>(greenAndRed);
    return static_cast<unsigned int>(static_cast<int>(luminance));
}

// The mean of the least and the greatest colour sample, halves down.
inline unsigned int lightnessOf(const std::uint16_t* pixel)
{
    const auto [least, greatest] = std::minmax({pixel[0], pixel[1], pixel[2]});
    return (unsigned{least} + unsigned{greatest}) >> 1;
}

enum class FourthBin { Luminance, Lightness };

// Writes four bins for each of `count` pixels of four samples, with vectors: those of red, green, blue, and of one mean
// of them. A bin is (v * factor) >> 32; for lightness a half is added before the shift. Every bin must fit 16 bits.
ONDREL_EXPORT void binsOfPixels(const std::uint16_t* samples, std::size_t count, std::uint32_t factor, FourthBin fourth,
                                std::uint16_t* bins);

} // namespace Ondrel

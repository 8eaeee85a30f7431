#pragma once

#include <algorithm>
#include <cstring>
#include <ondrel/pixel/gaussianblur.h>
#include <ondrel/pixel/gaussianblurkernel_p.h>
#include <ondrel/pixel/gaussianblurrows_p.h>
#include <ondrel/pixel/imageblock_p.h>

// What the ways to blur have in common.
namespace Ondrel
{

// One point of a line: see gaussianblurrows_p.h.
struct alignas(32) SamplePoint {
    std::uint16_t samples[BlurRows::kPoint];
};
struct alignas(64) DoublePoint {
    double samples[BlurRows::kPoint];
};

constexpr std::size_t kPixelsPerPoint = BlurRows::kPoint / 4;

// Which of `size` pixels is found at a position anywhere; -1 for none.
inline std::int64_t edgePosition(std::int64_t position, std::int64_t size, GaussianEdge edge)
{
    if (position >= 0 && position < size)
        return position;
    if (edge == GaussianEdge::Blank)
        return -1;
    if (edge == GaussianEdge::Repeat) {
        const std::int64_t remainder = position % size;
        return remainder < 0 ? remainder + size : remainder;
    }
    return std::clamp<std::int64_t>(position, 0, size - 1);
}

// The part of `count` positions from `first` on that lies on a line of `size` pixels, counted from `first`.
struct InsideRange {
    std::size_t begin, end;

    InsideRange(std::int64_t first, std::size_t count, std::int64_t size)
        : begin(std::size_t(std::clamp<std::int64_t>(-first, 0, std::int64_t(count))))
        , end(std::size_t(std::clamp<std::int64_t>(size - first, std::int64_t(begin), std::int64_t(count))))
    {
    }
};

} // namespace Ondrel

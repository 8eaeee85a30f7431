#pragma once

#include <cstddef>
#include <cstdint>

// Moves of rectangles of whole pixels, in memory order and without passing large results through the caches. Steps are
// in pixels, may be negative, and lead from a pixel to the next one across or down. Source and target must not overlap.

namespace Ondrel
{

// width x height pixels, each row in the order of the source.
void copyRows(const std::uint16_t* from, std::ptrdiff_t fromDownStep, std::uint16_t* to, std::size_t toStride,
              std::size_t width, std::size_t height);

// Each row from right to left. `from` is the leftmost pixel of the first row; the target rows touch.
void copyReversedRows(const std::uint16_t* from, std::ptrdiff_t fromDownStep, std::uint16_t* to, std::size_t width,
                      std::size_t height);

// A quarter turn: target pixel (x, y) is from + x * acrossStep + y, or - y unless it leads downwards.
void copyTurned(const std::uint16_t* from, std::ptrdiff_t acrossStep, bool downwards, std::uint16_t* to,
                std::size_t toStride, std::size_t width, std::size_t height);

} // namespace Ondrel

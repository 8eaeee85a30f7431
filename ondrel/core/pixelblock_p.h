#pragma once

#include <cstdint>

namespace Ondrel
{

// Maps a block of zeroed samples, its pages already resident, and counts its bytes in RunTimeStatistics::ImageMemory.
// A size of 0 maps and counts nothing and gives null. Throws std::bad_alloc, with nothing counted, if the system
// refuses the mapping. Any thread.
std::uint16_t* mapPixelBlock(std::uint64_t sizeBytes);

// Gives back a block of mapPixelBlock, with the size that it was mapped with. Null with size 0 is allowed.
void unmapPixelBlock(std::uint16_t* block, std::uint64_t sizeBytes) noexcept;

} // namespace Ondrel

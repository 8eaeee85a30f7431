#pragma once

#include <ondrel/ondrel_export.h>

#include <cstddef>
#include <cstdint>

// The vector loops of scaling: each handles one row, on the widest vectors that the processor has, with results that do
// not depend on which those are. A pixel is four floats, red, green, blue, alpha. Counts are in pixels; rows of floats
// begin on 64 bytes and hold a multiple of four pixels, and so much is written: the last ones may be beyond the count.

namespace Ondrel::ScaleRows
{

// Four pixels, the unit in which rows of floats are stored.
struct alignas(64) PixelQuad {
    float samples[16];
};

// A row of quads as one run of floats.
inline const float* floatsOf(const PixelQuad* row)
{
    return reinterpret_cast<const float*>(row);
}

inline float* floatsOf(PixelQuad* row)
{
    return reinterpret_cast<float*>(row);
}

// Premultiplied floats in the range 0 to 1 of `count` stored pixels; writes exactly those.
ONDREL_EXPORT void premultiply(const std::uint16_t* from, std::size_t count, float* to);

// Un-premultiplies and stores `count` pixels; writes exactly those.
void store(const PixelQuad* from, std::size_t count, std::uint16_t* to);

// Where one row of samples lies in a row of pixels.
struct Positions {
    const std::int32_t* first; // index of the first pixel that a sample reads
    const float* fraction;     // position between the inner two
    std::size_t count;         // a multiple of four
};

// Samples between two or four neighbours of a row.
void mixAcross2(const float* row, Positions positions, PixelQuad* to);
void mixAcross4(const float* row, Positions positions, PixelQuad* to);

// Rows of samples that lie above each other, and the position between the inner two of them.
template <int taps>
struct Column {
    const PixelQuad* rows[taps];
    float fraction;
};

// Samples between rows, `count` quads.
void mixDown(Column<2> const& column, std::size_t count, PixelQuad* to);
void mixDown(Column<4> const& column, std::size_t count, PixelQuad* to);

// Averages of 2 x 2 are built in two calls: the first for the upper row, the second, which completes them, for the
// lower. A row consists of pairs of runs of `run` quads, where samples at the same place of both runs of a pair are
// neighbours; `to` gets one run for each of the `pairs`.
enum class Half { Upper, Lower };
void averageDown(Column<2> const& column, std::size_t run, std::size_t pairs, Half half, PixelQuad* to);
void averageDown(Column<4> const& column, std::size_t run, std::size_t pairs, Half half, PixelQuad* to);
void average(const PixelQuad* from, std::size_t run, std::size_t pairs, Half half, PixelQuad* to);

} // namespace Ondrel::ScaleRows

#pragma once

#include <ondrel/core/parallel_p.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace Ondrel
{

// Two buffers of the caller for `rows` rows each, between an image and an encoder that takes one row after the other.
struct RowBands {
    unsigned char* current;
    unsigned char* next;
    std::size_t rowSize; // in bytes
    std::size_t rows;    // at least 1
};

// A band of about this size stays in the cache until the encoder takes it.
constexpr std::size_t kRowBandBytes = std::size_t{1} << 19;

inline std::size_t rowsOfBand(std::size_t rowSize, std::size_t height)
{
    return std::clamp<std::size_t>(kRowBandBytes / rowSize, 1, height);
}

enum class RowsTaken { All, Stopped, Failed };

// Calls take(y, row) on this thread for the rows from 0 to `height` in order, until it answers anything but All, and
// gives its last answer. Before, fill(y, row) has put the row into its buffer, on any thread, while those before it
// were taken. A row is filled for one time only, so `take` may change it. `fill` must not throw; `take` may.
template <class Fill, class Take>
RowsTaken takeRows(RowBands bands, std::size_t height, const Fill& fill, const Take& take)
{
    const auto rowsFrom = [&](std::size_t first) { return std::min(bands.rows, height - first); };
    const auto fillBand = [&](std::size_t first, unsigned char* band) {
        parallelRanges(rowsFrom(first), 2, [&](std::size_t begin, std::size_t end) {
            for (std::size_t i = begin; i < end; ++i)
                fill(first + i, band + i * bands.rowSize);
        });
    };
    const auto takeBand = [&](std::size_t first) {
        RowsTaken taken = RowsTaken::All;
        for (std::size_t i = 0; i < rowsFrom(first) && taken == RowsTaken::All; ++i)
            taken = take(first + i, bands.current + i * bands.rowSize);
        return taken;
    };

    RowsTaken taken = RowsTaken::All;
    if (height > 0)
        fillBand(0, bands.current);
    for (std::size_t first = 0; first < height && taken == RowsTaken::All; first += bands.rows) {
        runBeside(
            [&] {
                if (first + bands.rows < height)
                    fillBand(first + bands.rows, bands.next);
            },
            [&] { taken = takeBand(first); });
        std::swap(bands.current, bands.next);
    }
    return taken;
}

} // namespace Ondrel

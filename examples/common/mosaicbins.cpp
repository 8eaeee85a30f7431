#include "rows.h"

#include "mosaicbins.h"

#include <algorithm>
#include <cstdint>

namespace Examples
{
namespace
{

void binPixel(const Ondrel::Image& raw, const MosaicPattern& pattern, unsigned int left, unsigned int top,
              std::uint16_t* out)
{
    const unsigned int side = binSide(raw);
    std::uint32_t sums[3] = {}, counts[3] = {};
    for (unsigned int y = top; y < top + side; ++y) {
        for (unsigned int x = left; x < left + side; ++x) {
            const unsigned int color = pattern.colorAt(x, y);
            sums[color] += raw.data[(std::size_t(y) * raw.width + x) * 4 + color];
            ++counts[color];
        }
    }
    for (std::size_t c = 0; c < 3; ++c)
        out[c] = counts[c] > 0 ? std::uint16_t((sums[c] + counts[c] / 2) / counts[c]) : std::uint16_t(0);
    out[3] = 65535;
}

} // namespace

unsigned int binSide(const Ondrel::Image& raw)
{
    return isXTrans(raw) ? 3 : 2;
}

Ondrel::Image binned(const Ondrel::Image& raw, const Ondrel::RunStatus& status)
{
    const unsigned int side = binSide(raw);
    Ondrel::Image small((raw.width + side - 1) / side, (raw.height + side - 1) / side);
    const MosaicPattern pattern(raw);
    forRows(0, small.height, status, [&](unsigned int y) {
        const unsigned int top = std::min(y * side, raw.height - side);
        std::uint16_t* const row = small.data + std::size_t(y) * small.width * 4;
        for (unsigned int x = 0; x < small.width; ++x)
            binPixel(raw, pattern, std::min(x * side, raw.width - side), top, row + std::size_t(x) * 4);
    });
    return small;
}

} // namespace Examples

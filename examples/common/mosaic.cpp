#include "mosaic.h"

#include <algorithm>
#include <utility>

namespace Examples
{
namespace
{

constexpr unsigned int kXTrans = 9; // the filter word that stands for the pattern in rawXTrans

// The place on the sensor of a pixel. Differences may wrap where only their last bits count.
std::pair<unsigned int, unsigned int> onSensor(const Ondrel::Image& raw, unsigned int x, unsigned int y)
{
    const unsigned int right = raw.width - 1, bottom = raw.height - 1;
    switch (raw.rawRotation) {
    case 1:
        return {right - x, bottom - y};
    case 2:
        return {y, right - x};
    case 3:
        return {bottom - y, x};
    default:
        return {x, y};
    }
}

} // namespace

bool isBayer(const Ondrel::Image& raw)
{
    return raw.rawIsMosaic && raw.rawFilters >= 1000; // smaller words stand for patterns that do not fit in one
}

bool isXTrans(const Ondrel::Image& raw)
{
    return raw.rawIsMosaic && raw.rawFilters == kXTrans;
}

unsigned int turnedFilters(const Ondrel::Image& raw)
{
    unsigned int word = 0;
    for (unsigned int row = 0; row < 8; ++row) {
        for (unsigned int column = 0; column < 2; ++column) {
            const auto [x, y] = onSensor(raw, column, row);
            word |= colorAt(raw.rawFilters, y, x) << (((row << 1) | column) << 1);
        }
    }
    return word;
}

MosaicPattern::MosaicPattern(const Ondrel::Image& raw)
{
    for (unsigned int y = 0; y < std::min(kPeriod, raw.height); ++y) {
        for (unsigned int x = 0; x < std::min(kPeriod, raw.width); ++x) {
            const auto [column, row] = onSensor(raw, x, y);
            const unsigned int color = isXTrans(raw) ? unsigned(raw.rawXTrans[row % 6][column % 6])
                                                     : Examples::colorAt(raw.rawFilters, row, column);
            m_tile[y * kPeriod + x] = std::uint8_t(std::min(color, 2u));
        }
    }
}

} // namespace Examples

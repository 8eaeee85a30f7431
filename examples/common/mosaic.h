#pragma once

#include <ondrel/core/image.h>

#include <array>
#include <cstdint>

namespace Examples
{

// Whether the image is a mosaic whose pattern fits in a filter word, or the 6 x 6 one of X-Trans sensors.
bool isBayer(const Ondrel::Image& raw);
bool isXTrans(const Ondrel::Image& raw);

// The color that a filter word has at a pixel: 0 red, 1 green, 2 blue.
inline unsigned int colorAt(unsigned int filters, unsigned int row, unsigned int column)
{
    return (filters >> ((((row << 1) & 14) | (column & 1)) << 1)) & 3;
}

// The filter word of a Bayer mosaic as the picture lies: the image's own describes the sensor, and the picture has been
// turned since.
unsigned int turnedFilters(const Ondrel::Image& raw);

// The color of each photosite of a Bayer or X-Trans mosaic, as the picture lies.
class MosaicPattern
{
public:
    explicit MosaicPattern(const Ondrel::Image& raw);

    unsigned int colorAt(unsigned int x, unsigned int y) const { return m_tile[(y % kPeriod) * kPeriod + x % kPeriod]; }

private:
    static constexpr unsigned int kPeriod = 24; // a multiple of 8 rows of a filter word and of 6 of X-Trans
    std::array<std::uint8_t, kPeriod * kPeriod> m_tile{};
};

} // namespace Examples

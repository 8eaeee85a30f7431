#pragma once

#include "mosaic.h"

namespace Examples
{

// Makes a pixel of a Bayer or X-Trans mosaic from the mean of the neighbours of each color. Within a distance of 1 that
// is bilinear interpolation for Bayer; the colors of X-Trans lie up to 2 apart, and nearer ones count more.
class NeighbourMeans
{
public:
    // The mosaic must outlive this.
    explicit NeighbourMeans(const Ondrel::Image& mosaic);

    // The four samples of pixel (x, y).
    void pixel(unsigned int x, unsigned int y, std::uint16_t* out) const;

    // All pixels of a row, or those that lie in a border of this width around the picture.
    void row(unsigned int y, Ondrel::Image& out) const;
    void border(unsigned int width, Ondrel::Image& out) const;

private:
    const Ondrel::Image& m_in;
    MosaicPattern m_pattern;
    int m_reach;
};

} // namespace Examples

#include "neighbours.h"

#include <algorithm>

namespace Examples
{
namespace
{

std::uint16_t rounded(float v)
{
    return std::uint16_t(std::min(v + 0.5f, 65535.0f));
}

} // namespace

NeighbourMeans::NeighbourMeans(const Ondrel::Image& mosaic)
    : m_in(mosaic)
    , m_pattern(mosaic)
    , m_reach(isXTrans(mosaic) ? 2 : 1)
{
}

void NeighbourMeans::pixel(unsigned int x, unsigned int y, std::uint16_t* out) const
{
    float sums[3] = {}, weights[3] = {};
    const int left = int(x), top = int(y);
    for (int v = std::max(top - m_reach, 0); v <= std::min(top + m_reach, int(m_in.height) - 1); ++v) {
        for (int u = std::max(left - m_reach, 0); u <= std::min(left + m_reach, int(m_in.width) - 1); ++u) {
            const int distance = (u - left) * (u - left) + (v - top) * (v - top);
            const float weight = m_reach == 1 ? 1.0f : 1.0f / float(std::max(distance, 1));
            const std::size_t color = m_pattern.colorAt(unsigned(u), unsigned(v));
            sums[color] += weight * float(m_in.data[(std::size_t(v) * m_in.width + std::size_t(u)) * 4 + color]);
            weights[color] += weight;
        }
    }
    for (std::size_t c = 0; c < 3; ++c)
        out[c] = weights[c] > 0 ? rounded(sums[c] / weights[c]) : std::uint16_t(0);
    const std::size_t own = m_pattern.colorAt(x, y);
    out[own] = m_in.data[(std::size_t(y) * m_in.width + x) * 4 + own];
    out[3] = 65535;
}

void NeighbourMeans::row(unsigned int y, Ondrel::Image& out) const
{
    for (unsigned int x = 0; x < m_in.width; ++x)
        pixel(x, y, out.data + (std::size_t(y) * m_in.width + x) * 4);
}

void NeighbourMeans::border(unsigned int width, Ondrel::Image& out) const
{
    for (unsigned int y = 0; y < m_in.height; ++y) {
        const bool whole = y < width || y + width >= m_in.height;
        for (unsigned int x = 0; x < m_in.width; ++x) {
            if (whole || x < width || x + width >= m_in.width)
                pixel(x, y, out.data + (std::size_t(y) * m_in.width + x) * 4);
            else
                x = m_in.width - width - 1; // on to the right edge
        }
    }
}

} // namespace Examples

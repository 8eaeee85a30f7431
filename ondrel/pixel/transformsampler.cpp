#include <ondrel/pixel/transformsampler_p.h>

#include <algorithm>
#include <cstring>
#include <ondrel/pixel/imageblock_p.h>

namespace Ondrel
{

using namespace TransformSamples;

namespace
{

const std::uint16_t kBlank[16] = {};

bool isWithin(std::int32_t v, std::int32_t low, std::int32_t end)
{
    return v >= low && v < end;
}

} // namespace

PlaceSampler::PlaceSampler(Image const& source)
    : m_data(source.data)
    , m_width(hasPixels(source) ? std::int32_t(source.width) : 0)
    , m_height(hasPixels(source) ? std::int32_t(source.height) : 0)
{
}

const std::uint16_t* PlaceSampler::pixelAt(std::int32_t x, std::int32_t y) const
{
    return m_data + (std::size_t(y) * std::size_t(m_width) + std::size_t(x)) * 4;
}

// Points `rows` at the pixels to read: in the image, in a copy with blank pixels beside it, or blank ones.
template <int taps>
void PlaceSampler::findNeighbours(std::size_t count)
{
    constexpr std::int32_t before = taps / 2 - 1;
    constexpr std::int32_t after = taps / 2;
    const std::size_t stride = std::size_t(m_width) * 4;
    for (std::size_t i = 0; i < count; ++i) {
        const std::int32_t x = m_columns[i];
        const std::int32_t y = m_rows[i];
        if (isWithin(x, before, m_width - after) && isWithin(y, before, m_height - after)) {
            const std::uint16_t* first = pixelAt(x - before, y - before);
            for (int row = 0; row < taps; ++row, first += stride)
                m_neighbours.rows[row][i] = first;
            // The rows of a turned source follow no pattern that the processor would foresee.
            __builtin_prefetch(first - stride);
        } else if (isWithin(x, -after, m_width + before) && isWithin(y, -after, m_height + before)) {
            copyNeighbours<taps>(i);
        } else {
            for (int row = 0; row < taps; ++row)
                m_neighbours.rows[row][i] = kBlank;
            // The rest of what is not finite would spread, 0 times it not being 0.
            m_neighbours.fx[i] = m_neighbours.fy[i] = 0.0f;
        }
    }
    // Vectors may read a few pixels more.
    for (std::size_t i = count; i < std::min(kRun, (count + 15) / 16 * 16); ++i)
        for (int row = 0; row < taps; ++row)
            m_neighbours.rows[row][i] = kBlank;
}

template <int taps>
void PlaceSampler::copyNeighbours(std::size_t i)
{
    std::memset(m_edges[i], 0, sizeof m_edges[i]);
    for (int row = 0; row < taps; ++row) {
        const std::int32_t y = m_rows[i] - (taps / 2 - 1) + row;
        m_neighbours.rows[row][i] = m_edges[i][row];
        if (!isWithin(y, 0, m_height))
            continue;
        for (int column = 0; column < taps; ++column) {
            const std::int32_t x = m_columns[i] - (taps / 2 - 1) + column;
            if (isWithin(x, 0, m_width))
                std::memcpy(m_edges[i][row] + column * 4, pixelAt(x, y), 8);
        }
    }
}

void PlaceSampler::bilinear(PlaceRow const& places, std::size_t count, ScaleRows::PixelQuad* to)
{
    splitLinear(places.x, count, m_columns, m_neighbours.fx);
    splitLinear(places.y, count, m_rows, m_neighbours.fy);
    findNeighbours<2>(count);
    mixLinear(m_neighbours, count, to);
}

void PlaceSampler::bicubic(PlaceRow const& places, std::size_t count, ScaleRows::PixelQuad* to)
{
    splitCubic(places.x, count, m_columns, m_neighbours.fx);
    splitCubic(places.y, count, m_rows, m_neighbours.fy);
    findNeighbours<4>(count);
    mixCubic(m_neighbours, count, to);
}

void PlaceSampler::copyNearest(PlaceRow const& places, std::size_t count, std::uint16_t* to)
{
    roundNearest(places.x, count, m_columns);
    roundNearest(places.y, count, m_rows);
    const std::uint16_t** from = m_neighbours.rows[0];
    for (std::size_t i = 0; i < count; ++i) {
        const bool isInside = isWithin(m_columns[i], 0, m_width) && isWithin(m_rows[i], 0, m_height);
        from[i] = isInside ? pixelAt(m_columns[i], m_rows[i]) : nullptr;
        __builtin_prefetch(from[i]);
    }
    for (std::size_t i = 0; i < count; ++i)
        if (from[i])
            std::memcpy(to + i * 4, from[i], 8);
}

} // namespace Ondrel

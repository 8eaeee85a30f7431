#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <ondrel/core/image.h>
#include <ondrel/pixel/imageblock_p.h>
#include <ondrel/pixel/scaleplan_p.h>
#include <ondrel/pixel/scalerows_p.h>
#include <vector>

namespace Ondrel
{

inline void mixAcross(BilinearBoxes, const float* row, ScaleRows::Positions positions, ScaleRows::PixelQuad* to)
{
    ScaleRows::mixAcross2(row, positions, to);
}

inline void mixAcross(BicubicBoxes, const float* row, ScaleRows::Positions positions, ScaleRows::PixelQuad* to)
{
    ScaleRows::mixAcross4(row, positions, to);
}

// Samples of a set of output columns on grids of one depth, one output row after the other. Every source row is
// converted and mixed across once as long as rows are asked for in ascending order: what neighbouring rows of samples
// share is kept.
//
// A row of samples is kept as 2^depth runs, one for each position in the grid of a column; the averages of neighbouring
// positions then are sums of whole runs.
template <typename Boxes>
class GridSampler
{
public:
    using Quads = std::vector<ScaleRows::PixelQuad>;

    GridSampler(Image const& source, std::vector<std::uint32_t> const& columns, float stepX, int depth)
        : m_source(source)
        , m_depth(depth)
        , m_run((columns.size() + 3) / 4)
    {
        placeColumns(columns, stepX);
        m_heldRows.fill(-1);
        for (Quads& row : m_mixed)
            row.resize(m_run << depth);
        for (int level = 0; level < std::max(depth, 1); ++level)
            m_levels.emplace_back(m_run << level);
    }

    // The averages of output row y, in the order of the columns.
    const ScaleRows::PixelQuad* row(std::uint32_t y, float stepY)
    {
        if (m_depth == 0)
            ScaleRows::mixDown(columnAt(middleOfOutput(y, stepY)), m_run, m_levels[0].data());
        else
            averageBox(spanOfOutput<Boxes>(y, stepY), 0);
        return m_levels[0].data();
    }

private:
    static constexpr int taps = Boxes::taps;
    static constexpr int before = taps / 2 - 1; // pixels that a sample reads before the one it lies in

    // Positions this far outside read nothing but the edge.
    std::int64_t nearSource(float floored, std::uint32_t size) const
    {
        return std::int64_t(std::clamp(floored, -4.0f, float(size) + 4.0f));
    }

    void placeColumns(std::vector<std::uint32_t> const& columns, float stepX)
    {
        const std::size_t count = (m_run * 4) << m_depth;
        std::vector<std::int64_t> pixels(count);
        m_fractions.resize(count);
        for (std::size_t i = 0; i < m_run * 4; ++i) {
            // The last run of four is filled up with its last column.
            const std::uint32_t x = columns[std::min(i, columns.size() - 1)];
            const auto place = [&](std::size_t index, float position) {
                const float floored = std::floor(position);
                pixels[index * m_run * 4 + i] = nearSource(floored, m_source.width) - before;
                m_fractions[index * m_run * 4 + i] = position - floored;
            };
            if (m_depth == 0)
                place(0, middleOfOutput(x, stepX));
            else
                forEachPoint<Boxes>(spanOfOutput<Boxes>(x, stepX), m_depth, 0, place);
        }
        const auto [low, high] = std::minmax_element(pixels.begin(), pixels.end());
        m_firstPixel = *low;
        m_pixelRow.resize(std::size_t(*high - *low + taps) * 4);
        m_pixels.reserve(count);
        for (const std::int64_t pixel : pixels)
            m_pixels.push_back(std::int32_t(pixel - m_firstPixel));
    }

    // Premultiplied pixels of a source row, with the edge pixels repeated where samples reach beyond.
    void loadPixels(std::int64_t y)
    {
        const std::int64_t count = std::int64_t(m_pixelRow.size() / 4);
        const std::int64_t width = m_source.width;
        const std::int64_t low = std::clamp<std::int64_t>(m_firstPixel, 0, width - 1);
        const std::int64_t high = std::clamp<std::int64_t>(m_firstPixel + count, low + 1, width);
        float* const inside = m_pixelRow.data() + (low - m_firstPixel) * 4;
        ScaleRows::premultiply(pixelAt(m_source, std::size_t(low), std::size_t(y)), std::size_t(high - low), inside);
        for (float* pixel = inside; pixel > m_pixelRow.data(); pixel -= 4)
            std::copy_n(inside, 4, pixel - 4);
        float* const last = inside + (high - low - 1) * 4;
        for (float* pixel = last + 4; pixel < m_pixelRow.data() + m_pixelRow.size(); pixel += 4)
            std::copy_n(last, 4, pixel);
    }

    const ScaleRows::PixelQuad* mixedRow(std::int64_t y)
    {
        y = std::clamp<std::int64_t>(y, 0, std::int64_t(m_source.height) - 1);
        // Neighbouring rows never share a place.
        const std::size_t slot = std::size_t(y % taps);
        if (m_heldRows[slot] != y) {
            loadPixels(y);
            mixAcross(Boxes{}, m_pixelRow.data(), {m_pixels.data(), m_fractions.data(), m_pixels.size()},
                      m_mixed[slot].data());
            m_heldRows[slot] = y;
        }
        return m_mixed[slot].data();
    }

    ScaleRows::Column<taps> columnAt(float y)
    {
        const float floored = std::floor(y);
        const std::int64_t first = nearSource(floored, m_source.height) - before;
        ScaleRows::Column<taps> column;
        for (int tap = 0; tap < taps; ++tap)
            column.rows[tap] = mixedRow(first + tap);
        column.fraction = y - floored;
        return column;
    }

    void averageBox(Span ySpan, int level)
    {
        const std::size_t pairs = std::size_t(1) << level;
        ScaleRows::PixelQuad* const to = m_levels[std::size_t(level)].data();
        for (int index = 0; index < 2; ++index) {
            const auto half = index == 0 ? ScaleRows::Half::Upper : ScaleRows::Half::Lower;
            if (level + 1 == m_depth) {
                ScaleRows::averageDown(columnAt(pointOf<Boxes>(ySpan, index)), m_run, pairs, half, to);
            } else {
                averageBox(childOf<Boxes>(ySpan, index), level + 1);
                ScaleRows::average(m_levels[std::size_t(level) + 1].data(), m_run, pairs, half, to);
            }
        }
    }

    Image const& m_source;
    int m_depth;
    std::size_t m_run; // in quads
    std::vector<std::int32_t> m_pixels;
    std::vector<float> m_fractions;
    std::int64_t m_firstPixel = 0;
    std::vector<float> m_pixelRow;
    std::array<Quads, taps> m_mixed;
    std::array<std::int64_t, taps> m_heldRows;
    std::vector<Quads> m_levels; // averages of each depth of the quartering, the whole boxes first
};

} // namespace Ondrel

#include <ondrel/pixel/gaussianblurworkers_p.h>

#include <ondrel/pixel/gaussianblurdirect_p.h>

#include <array>
#include <vector>

namespace Ondrel
{
namespace
{

using BlurRows::kBlock;

std::size_t roundedUp(std::size_t count, std::size_t unit)
{
    return (count + unit - 1) / unit * unit;
}

BlurRows::Weights weightsOf(GaussianKernel const& kernel)
{
    return {kernel.doubled.data(), kernel.doubled.size()};
}

// Blurs a range of rows, in strips so narrow that what a strip needs stays in the second-level cache: the rows that the
// downward sums reach over are kept as they came out of the sums across, four at a time.
class DirectStrips
{
public:
    DirectStrips(Image const& from, Image& to, GaussianKernel const* across, GaussianKernel const* down,
                 GaussianEdge edge)
        : m_from(from)
        , m_to(to)
        , m_across(across)
        , m_down(down)
        , m_edge(edge)
        , m_keptRows(down ? roundedUp(down->doubled.size() + kBlock - 1, kBlock) : kBlock)
        , m_stripWidth(std::clamp<std::size_t>(kStripBytes / (m_keptRows * 4 * sizeof(double)), 32, 192) /
                       kPixelsPerPoint * kPixelsPerPoint)
        , m_rowPoints(m_stripWidth / kPixelsPerPoint)
        , m_kept(m_keptRows * m_rowPoints)
        , m_spareRows(kBlock * m_rowPoints)
        , m_line(across ? m_stripWidth + across->doubled.size() : 0)
        , m_blankRow(std::size_t(from.width) * 4)
    {
    }

    void blurRows(std::size_t first, std::size_t last)
    {
        for (std::size_t x = 0; x < m_from.width; x += m_stripWidth) {
            m_x = x;
            m_width = std::min<std::size_t>(m_stripWidth, m_from.width - x);
            blurStrip(first, last);
        }
    }

private:
    static constexpr std::size_t kStripBytes = 384 * 1024;

    std::size_t paddedWidth() const { return roundedUp(m_width, kPixelsPerPoint); }
    double* keptRow(std::size_t index) { return m_kept[index % m_keptRows * m_rowPoints].samples; }

    void blurStrip(std::size_t first, std::size_t last)
    {
        const std::int64_t reach = m_down ? m_down->reach : 0;
        const std::size_t needed = m_down ? m_down->doubled.size() + kBlock - 1 : kBlock;
        std::size_t made = 0; // rows from `first - reach` on
        for (std::size_t y = first; y < last; y += kBlock) {
            for (; made < y - first + needed; made += kBlock)
                makeRows(std::int64_t(first + made) - reach, made);
            const std::size_t count = std::min(kBlock, last - y);
            if (m_down)
                sumDown(y, y - first, count);
            else
                for (std::size_t i = 0; i < count; ++i)
                    BlurRows::demote(keptRow(y - first + i), m_width * 4, pixelAt(m_to, m_x, y + i));
        }
    }

    // Four rows of the picture from y on, blurred across, into the places from `index` on.
    void makeRows(std::int64_t y, std::size_t index)
    {
        std::array<const std::uint16_t*, kBlock> rows;
        for (std::size_t i = 0; i < kBlock; ++i) {
            const std::int64_t row = rowAt(y + std::int64_t(i));
            rows[i] = row < 0 ? m_blankRow.data() : pixelAt(m_from, 0, std::size_t(row));
        }
        if (m_across)
            return sumAcross(rows.data(), index);
        for (std::size_t i = 0; i < kBlock; ++i)
            BlurRows::promote(rows[i] + m_x * 4, m_width * 4, keptRow(index + i));
    }

    std::int64_t rowAt(std::int64_t y) const
    {
        const std::int64_t height = m_from.height;
        return edgePosition(m_down ? y : std::min(y, height - 1), height, m_edge);
    }

    void sumAcross(const std::uint16_t* const* rows, std::size_t index)
    {
        const std::size_t padded = paddedWidth();
        const std::size_t points = padded + m_across->doubled.size() - 1;
        gatherLine(rows, std::int64_t(m_x) - m_across->reach, points);
        std::array<double*, kBlock> to;
        for (std::size_t i = 0; i < kBlock; ++i)
            to[i] = keptRow(index + i);
        BlurRows::convolveLine(m_line[0].samples, padded, weightsOf(*m_across), to.data());
    }

    // The pixels from `first` on, wherever that is, of four rows.
    void gatherLine(const std::uint16_t* const* rows, std::int64_t first, std::size_t count)
    {
        const InsideRange inside(first, count, m_from.width);
        for (std::size_t i = 0; i < inside.begin; ++i)
            gatherOutside(rows, first + std::int64_t(i), m_line[i].samples);
        std::array<const std::uint16_t*, kBlock> parts;
        for (std::size_t r = 0; r < kBlock; ++r)
            parts[r] = rows[r] + (first + std::int64_t(inside.begin)) * 4;
        BlurRows::gatherLine(parts.data(), inside.end - inside.begin, m_line[inside.begin].samples);
        for (std::size_t i = inside.end; i < count; ++i)
            gatherOutside(rows, first + std::int64_t(i), m_line[i].samples);
    }

    void gatherOutside(const std::uint16_t* const* rows, std::int64_t x, double* to)
    {
        x = edgePosition(x, m_from.width, m_edge);
        for (std::size_t i = 0; i < BlurRows::kPoint; ++i) {
            const std::uint16_t* const row = rows[i / 4];
            to[i] = x < 0 ? 0.0 : double(row[std::size_t(x) * 4 + i % 4]);
        }
    }

    void sumDown(std::size_t y, std::size_t index, std::size_t count)
    {
        const std::size_t needed = m_down->doubled.size() + kBlock - 1;
        m_rows.resize(needed);
        for (std::size_t i = 0; i < needed; ++i)
            m_rows[i] = keptRow(index + i);
        // Whole points are written; what is not part of the strip goes to spare rows.
        const bool inPlace = m_width % kPixelsPerPoint == 0;
        std::array<std::uint16_t*, kBlock> to;
        for (std::size_t i = 0; i < kBlock; ++i)
            to[i] = inPlace && i < count ? pixelAt(m_to, m_x, y + i) : m_spareRows[i * m_rowPoints].samples;
        BlurRows::convolveRows(m_rows.data(), paddedWidth() * 4, weightsOf(*m_down), to.data());
        if (!inPlace)
            for (std::size_t i = 0; i < count; ++i)
                std::memcpy(pixelAt(m_to, m_x, y + i), to[i], m_width * 8);
    }

    Image const& m_from;
    Image& m_to;
    GaussianKernel const* m_across;
    GaussianKernel const* m_down;
    GaussianEdge m_edge;
    std::size_t m_keptRows;
    std::size_t m_stripWidth, m_rowPoints; // of a full strip
    std::size_t m_x = 0, m_width = 0;      // of the strip at work
    std::vector<DoublePoint> m_kept;       // rows, in a ring
    std::vector<SamplePoint> m_spareRows;
    std::vector<DoublePoint> m_line;
    std::vector<std::uint16_t> m_blankRow;
    std::vector<const double*> m_rows;
};

} // namespace

void blurDirectly(Image const& from, Image& to, GaussianKernel const* across, GaussianKernel const* down,
                  GaussianEdge edge)
{
    // Where a range of rows begins, the rows above it that its sums reach over are blurred across once more, so ranges
    // are long beside the kernel. Without that, eight rows are worth a task.
    const std::size_t height = from.height;
    std::size_t band = 8;
    if (down)
        band = roundedUp(std::clamp<std::size_t>(height / 16, band, 16 * down->doubled.size()), kBlock);
    parallelWorkers((height + band - 1) / band, 1, [&] { return DirectStrips(from, to, across, down, edge); },
                    [&](DirectStrips& strips, std::size_t first, std::size_t last) {
                        strips.blurRows(first * band, std::min(last * band, height));
                    });
}

} // namespace Ondrel

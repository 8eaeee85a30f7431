#include <ondrel/pixel/scalefiltered_p.h>

#include <cstring>
#include <memory>
#include <ondrel/pixel/bilinearsample_p.h>
#include <ondrel/pixel/imageblock_p.h>
#include <ondrel/pixel/scale.h>
#include <ondrel/pixel/scalegrid_p.h>
#include <ondrel/pixel/scaleplan_p.h>

namespace Ondrel
{
namespace
{

void sample(BilinearBoxes, Image const& source, float* xs, float* ys, bool wide, float* rgba)
{
    if (wide)
        BilinearSupersampleMultiplied(source, xs, ys, rgba);
    else
        bilinearSamplePremultiplied(source, xs[1], ys[1], rgba);
}

void sample(BicubicBoxes, Image const& source, float* xs, float* ys, bool wide, float* rgba)
{
    if (wide)
        BicubicSupersampleMultiplied(source, xs, ys, rgba);
    else
        BicubicSample<GetPixelAsFloatRGBAPremultiplied>(source, xs[1], ys[1], rgba);
}

template <typename Boxes>
class FilteredScaler
{
public:
    FilteredScaler(Image const& source, Image& destination)
        : m_source(source)
        , m_destination(destination)
        , m_stepX(float(source.width) / float(destination.width))
        , m_stepY(float(source.height) / float(destination.height))
    {
    }

    void run()
    {
        // Beyond this size neighbouring floats are half a pixel apart, and a box may be quartered in any pattern.
        constexpr std::uint32_t largestSide = 1u << 22;
        if (std::max(m_source.width, m_source.height) > largestSide) {
            for (std::uint32_t y = 0; y < m_destination.height; ++y)
                scaleRowByPixels(y);
            return;
        }
        const AxisPlan columns = planAxis<Boxes>(m_destination.width, m_stepX);
        const AxisPlan rows = planAxis<Boxes>(m_destination.height, m_stepY);
        const int deepest = std::max(columns.deepest, rows.deepest);
        // Bounds the memory of lopsided pictures, whose columns all have the many samples that their rows ask for.
        const std::size_t largestGroup = std::max<std::size_t>((std::size_t(1) << 17) >> deepest, 1);
        for (DepthGroup const& group : columns.groups) {
            for (std::size_t first = 0; first < group.members.size(); first += largestGroup) {
                const auto begin = group.members.begin() + std::ptrdiff_t(first);
                const std::size_t count = std::min(largestGroup, group.members.size() - first);
                scaleColumns({begin, begin + std::ptrdiff_t(count)}, group.depth, rows);
            }
        }
        for (const std::uint32_t y : rows.irregular)
            scaleRowByPixels(y);
        for (const std::uint32_t x : columns.irregular)
            for (std::uint32_t y = 0; y < m_destination.height; ++y)
                scalePixel(x, y);
    }

private:
    void scaleColumns(std::vector<std::uint32_t> const& columns, int depth, AxisPlan const& rows)
    {
        std::vector<std::unique_ptr<GridSampler<Boxes>>> samplers(std::size_t(std::max(depth, rows.deepest)) + 1);
        for (std::uint32_t y = 0; y < m_destination.height; ++y) {
            if (rows.depths[y] == kIrregular)
                continue;
            // Both axes are quartered until neither asks for more.
            const int rowDepth = std::max(depth, rows.depths[y]);
            auto& sampler = samplers[std::size_t(rowDepth)];
            if (!sampler)
                sampler = std::make_unique<GridSampler<Boxes>>(m_source, columns, m_stepX, rowDepth);
            storeColumns(sampler->row(y, m_stepY), columns, y);
        }
    }

    void storeColumns(const ScaleRows::PixelQuad* row, std::vector<std::uint32_t> const& columns, std::uint32_t y)
    {
        if (columns.back() - columns.front() + 1 == columns.size()) {
            ScaleRows::store(row, columns.size(), pixelAt(m_destination, columns.front(), y));
            return;
        }
        m_stored.resize(columns.size() * 4);
        ScaleRows::store(row, columns.size(), m_stored.data());
        for (std::size_t i = 0; i < columns.size(); ++i)
            std::memcpy(pixelAt(m_destination, columns[i], y), m_stored.data() + i * 4, 8);
    }

    void scaleRowByPixels(std::uint32_t y)
    {
        for (std::uint32_t x = 0; x < m_destination.width; ++x)
            scalePixel(x, y);
    }

    void scalePixel(std::uint32_t x, std::uint32_t y)
    {
        const Span xSpan = spanOfOutput<Boxes>(x, m_stepX);
        const Span ySpan = spanOfOutput<Boxes>(y, m_stepY);
        float xs[3] = {xSpan.low, middleOfOutput(x, m_stepX), xSpan.high};
        float ys[3] = {ySpan.low, middleOfOutput(y, m_stepY), ySpan.high};
        float rgba[4];
        sample(Boxes{}, m_source, xs, ys, isWide<Boxes>(xSpan) || isWide<Boxes>(ySpan), rgba);
        storeUnpremultiplied(rgba, pixelAt(m_destination, x, y));
    }

    Image const& m_source;
    Image& m_destination;
    float m_stepX;
    float m_stepY;
    std::vector<std::uint16_t> m_stored;
};

} // namespace

void scaleBilinear(Image const& source, Image& destination)
{
    FilteredScaler<BilinearBoxes>(source, destination).run();
}

void scaleBicubic(Image const& source, Image& destination)
{
    FilteredScaler<BicubicBoxes>(source, destination).run();
}

} // namespace Ondrel

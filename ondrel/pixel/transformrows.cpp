#include <ondrel/pixel/transformrows_p.h>

#include <Eigen/LU>
#include <algorithm>
#include <cstring>
#include <memory>
#include <ondrel/pixel/imageblock_p.h>
#include <ondrel/pixel/transformsamples_p.h>
#include <ondrel/pixel/transformsupersample_p.h>
#include <ondrel/pixel/transformtile_p.h>

namespace Ondrel
{
namespace
{

using namespace TransformSamples;

// The output is made tile by tile: the source pixels of a tile that is turned stay in the first cache.
constexpr int kTileWidth = int(kRun) - 1; // a row of corners is one longer
constexpr int kTileHeight = 64;

class Transformer
{
public:
    Transformer(Image const& source, FilterMethod filter, Eigen::Matrix<double, 3, 3> const& mapping,
                TransformTarget const& target)
        : m_sampler(source)
        , m_supersampler(m_sampler)
        , m_mapping(mapping)
        , m_target(target)
        , m_width(hasPixels(source) ? double(source.width) : 0.0)
        , m_height(hasPixels(source) ? double(source.height) : 0.0)
        , m_filter(filter)
    {
    }

    void fillTile(int left, int top, int right, int bottom)
    {
        const TileBounds bounds = tileBounds(m_mapping, left, top, right, bottom);
        if (isOutside(bounds))
            return clearTile(left, top, right, bottom);
        const std::size_t count = std::size_t(right - left);
        const bool mayBeLong = m_filter != FilterMethod::NearestNeighbor && !bounds.takesOneSample;
        if (mayBeLong)
            project(m_mapping, left, top, count + 1, m_corners[0]);
        for (int y = top; y < bottom; ++y) {
            std::uint16_t* to = targetPixel(left, y);
            if (m_filter == FilterMethod::NearestNeighbor) {
                project(m_mapping, left, y, count, m_places);
                m_sampler.copyNearest(m_places, count, to);
                continue;
            }
            project(m_mapping, left + 0.5, y + 0.5, count, m_places);
            if (mayBeLong) {
                project(m_mapping, left, y + 1, count + 1, m_corners[(y + 1 - top) & 1]);
                fillRow(m_corners[(y - top) & 1], m_corners[(y + 1 - top) & 1], count);
            } else {
                sampleRow(count);
            }
            ScaleRows::store(m_samples, count, to);
        }
    }

private:
    std::uint16_t* targetPixel(int x, int y) const
    {
        const std::size_t row = std::size_t(y - m_target.top);
        return m_target.pixels.data + (row * m_target.pixels.width + std::size_t(x - m_target.left)) * 4;
    }

    // No filter reaches as far as four pixels.
    bool isOutside(TileBounds const& bounds) const
    {
        return bounds.isKnown && (bounds.maxX < -4.0 || bounds.maxY < -4.0 || bounds.minX > m_width + 4.0 ||
                                  bounds.minY > m_height + 4.0);
    }

    void clearTile(int left, int top, int right, int bottom)
    {
        if (m_target.isBlank || m_filter == FilterMethod::NearestNeighbor)
            return;
        for (int y = top; y < bottom; ++y)
            std::memset(targetPixel(left, y), 0, std::size_t(right - left) * 8);
    }

    void sampleRow(std::size_t count)
    {
        if (m_filter == FilterMethod::Bilinear)
            m_sampler.bilinear(m_places, count, m_samples);
        else
            m_sampler.bicubic(m_places, count, m_samples);
    }

    // Pixels between two rows of corners.
    void fillRow(PlaceRow const& upper, PlaceRow const& lower, std::size_t count)
    {
        std::size_t longPixels = 0;
        for (std::size_t i = 0; i < count; ++i)
            longPixels += m_isLong[i] = quadrilateral(upper, lower, i).isLong();
        if (longPixels < count)
            sampleRow(count);
        for (std::size_t i = 0; i < count && longPixels > 0; ++i)
            if (m_isLong[i])
                m_supersampler.add(quadrilateral(upper, lower, i), ScaleRows::floatsOf(m_samples) + i * 4);
        m_supersampler.finish();
    }

    Quadrilateral quadrilateral(PlaceRow const& upper, PlaceRow const& lower, std::size_t i) const
    {
        return {{{upper.x[i], upper.y[i]},
                 {upper.x[i + 1], upper.y[i + 1]},
                 {lower.x[i + 1], lower.y[i + 1]},
                 {lower.x[i], lower.y[i]}},
                {m_places.x[i], m_places.y[i]}};
    }

    // What is aligned to vectors stands first.
    PlaceSampler m_sampler;
    PlaceRow m_places;
    PlaceRow m_corners[2];
    ScaleRows::PixelQuad m_samples[kRun / 4];
    bool m_isLong[kRun];
    Supersampler m_supersampler;
    Eigen::Matrix<double, 3, 3> const m_mapping;
    TransformTarget const m_target;
    double const m_width, m_height;
    FilterMethod const m_filter;
};

bool isKnown(FilterMethod filter)
{
    return filter == FilterMethod::NearestNeighbor || filter == FilterMethod::Bilinear ||
           filter == FilterMethod::Bicubic;
}

} // namespace

Eigen::Matrix<double, 3, 3> pixelMapping(Eigen::Matrix<double, 3, 3> const& matrix, double scale,
                                         RectT<float> const& bounds)
{
    Eigen::Matrix<double, 3, 3> inverse, toPixels, fromPixels;
    bool invertible = false;
    matrix.computeInverseWithCheck(inverse, invertible, 1e-12);
    if (!invertible)
        inverse.setZero();
    toPixels << scale, 0.0, -0.5, 0.0, scale, -0.5, 0.0, 0.0, 1.0;
    fromPixels << 1.0 / scale, 0.0, double(bounds.left()) + 0.5, 0.0, 1.0 / scale, double(bounds.top()) + 0.5, 0.0, 0.0,
        1.0;
    return toPixels * inverse * fromPixels;
}

void transformRows(Image const& source, FilterMethod filter, Eigen::Matrix<double, 3, 3> const& mapping,
                   RectT<int> const& area, TransformTarget const& target)
{
    if (!hasPixels(target.pixels) || !isKnown(filter))
        return;
    RectT<int> inside = area;
    inside.subtractRect(RectT<int>(target.left, target.top, int(target.pixels.width), int(target.pixels.height)));
    if (inside.width() <= 0 || inside.height() <= 0)
        return;
    const auto transformer = std::make_unique<Transformer>(source, filter, mapping, target);
    for (int top = inside.top(); top < inside.bottom(); top += kTileHeight)
        for (int left = inside.left(); left < inside.right(); left += kTileWidth)
            transformer->fillTile(left, top, std::min(left + kTileWidth, inside.right()),
                                  std::min(top + kTileHeight, inside.bottom()));
}

} // namespace Ondrel

#include <ondrel/pixel/transformrows_p.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <ondrel/pixel/imageblock_p.h>
#include <ondrel/pixel/pixelfetch.h>

namespace Ondrel
{
namespace
{

constexpr double kLongest = 1.5; // source pixels between corners that one sample stands for

Place middle(Place a, Place b)
{
    return {(a.x + b.x) * 0.5, (a.y + b.y) * 0.5};
}

struct Quadrilateral {
    Place corners[4];
    Place centre;
};

bool isLong(Place const* corners)
{
    for (int i = 0; i < 4; ++i) {
        const Place a = corners[i];
        const Place b = corners[(i + 1) % 4];
        if (std::abs(a.x - b.x) > kLongest || std::abs(a.y - b.y) > kLongest)
            return true;
    }
    return false;
}

class Sampler
{
public:
    explicit Sampler(Image const& source)
        : m_source(source)
    {
    }

    void bilinear(Place at, float* rgba) const
    {
        const double left = std::floor(at.x);
        const double top = std::floor(at.y);
        if (!(left >= -1.0 && left < double(m_source.width) && top >= -1.0 && top < double(m_source.height)))
            return std::fill_n(rgba, 4, 0.0f), void();
        const float fx = float(at.x - left);
        const float fy = float(at.y - top);
        float pixels[2][2][4];
        for (int j = 0; j < 2; ++j)
            for (int i = 0; i < 2; ++i)
                GetPixelAsFloatRGBABlankPremultiplied(m_source, int(left) + i, int(top) + j, pixels[j][i]);
        for (int c = 0; c < 4; ++c) {
            const float upper = pixels[0][0][c] * (1.0f - fx) + pixels[0][1][c] * fx;
            const float lower = pixels[1][0][c] * (1.0f - fx) + pixels[1][1][c] * fx;
            rgba[c] = upper * (1.0f - fy) + lower * fy;
        }
    }

    void supersample(Quadrilateral const& quad, int depth, float* rgba) const
    {
        float sum[4] = {0, 0, 0, 0};
        for (int i = 0; i < 4; ++i) {
            const Place outer = quad.corners[i];
            const Place before = middle(quad.corners[(i + 3) % 4], outer);
            const Place after = middle(outer, quad.corners[(i + 1) % 4]);
            const Quadrilateral quarter = {{outer, after, quad.centre, before}, middle(outer, quad.centre)};
            float part[4];
            if (depth > 0 && isLong(quarter.corners))
                supersample(quarter, depth - 1, part);
            else
                bilinear(quarter.centre, part);
            for (int c = 0; c < 4; ++c)
                sum[c] += part[c] * 0.25f;
        }
        std::copy_n(sum, 4, rgba);
    }

private:
    Image const& m_source;
};

std::uint16_t stored(float v)
{
    return v > 1.0f ? std::uint16_t(65535) : v > 0.0f ? std::uint16_t(v * 65535.0f) : std::uint16_t(0);
}

void storePixel(const float* rgba, std::uint16_t* to)
{
    const float inverse = rgba[3] == 0.0f ? 0.0f : 1.0f / rgba[3];
    for (int c = 0; c < 3; ++c)
        to[c] = stored(rgba[c] * inverse);
    to[3] = stored(rgba[3]);
}

} // namespace

void transformRows(Image const& source, FilterMethod filter, Eigen::Matrix<double, 3, 3> const& mapping,
                   RectT<int> const& area, Image const& target, bool isBlank)
{
    (void)isBlank;
    if (!hasPixels(target))
        return;
    const std::int64_t left = std::max(area.left(), 0);
    const std::int64_t right = std::min<std::int64_t>(area.right(), target.width);
    const std::int64_t top = std::max(area.top(), 0);
    const std::int64_t bottom = std::min<std::int64_t>(area.bottom(), target.height);
    const auto placeOf = [&](double x, double y) { return projected(mapping, x, y); };
    const Sampler sampler(source);
    for (std::int64_t y = top; y < bottom; ++y)
        for (std::int64_t x = left; x < right; ++x) {
            std::uint16_t* to = target.data + (std::size_t(y) * target.width + std::size_t(x)) * 4;
            if (filter == FilterMethod::NearestNeighbor) {
                const Place at = placeOf(double(x), double(y));
                const double column = std::floor(at.x + 0.5);
                const double row = std::floor(at.y + 0.5);
                if (hasPixels(source) && column >= 0 && column < double(source.width) && row >= 0 &&
                    row < double(source.height))
                    std::memcpy(to, pixelAt(source, std::size_t(column), std::size_t(row)), 8);
                continue;
            }
            const double x0 = double(x), y0 = double(y);
            const Quadrilateral quad = {
                {placeOf(x0, y0), placeOf(x0 + 1.0, y0), placeOf(x0 + 1.0, y0 + 1.0), placeOf(x0, y0 + 1.0)},
                placeOf(x0 + 0.5, y0 + 0.5)};
            float rgba[4];
            if (isLong(quad.corners))
                sampler.supersample(quad, 4, rgba);
            else if (filter == FilterMethod::Bilinear)
                sampler.bilinear(quad.centre, rgba);
            else if (filter == FilterMethod::Bicubic)
                BicubicSample<GetPixelAsFloatRGBABlankPremultiplied>(source, float(quad.centre.x), float(quad.centre.y),
                                                                     rgba);
            else
                continue;
            storePixel(rgba, to);
        }
}

} // namespace Ondrel

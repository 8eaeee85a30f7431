#include "image_reference.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace OndrelReference
{
namespace
{

template <typename Bin>
void count(const Ondrel::Image& image, std::vector<unsigned int>& counters, bool asked, unsigned int bins, Bin bin)
{
    if (!asked)
        return;
    counters.assign(bins, 0);
    const std::size_t pixels = std::size_t(image.width) * image.height;
    for (std::size_t i = 0; i < pixels; ++i)
        ++counters[bin(image.data + i * 4)];
}

unsigned int luminanceOf(const std::uint16_t* p)
{
    const float redAndGreen = float(p[1]) * 0.587f + float(p[0]) * 0.299f;
    return static_cast<unsigned int>(double(p[2]) * 0.114 + double(redAndGreen));
}

unsigned int lightnessOf(const std::uint16_t* p)
{
    const auto [low, high] = std::minmax({p[0], p[1], p[2]});
    return (unsigned(low) + unsigned(high)) >> 1;
}

// Ceiling of a / b for non-negative a.
std::int64_t ceilDivide(std::int64_t a, std::int64_t b)
{
    return (a + b - 1) / b;
}

} // namespace

void buildHistogram(const Ondrel::Image& image, Ondrel::Image::Histogram& histogram, bool luminance, bool lightness,
                    bool red, bool green, bool blue, unsigned int bins)
{
    histogram = Ondrel::Image::Histogram();
    if (image.width == 0 || image.height == 0 || bins == 0)
        return;
    const double scale = double(bins - 1) / 65535.0;
    const auto truncated = [scale](unsigned int v) { return static_cast<unsigned int>(v * scale); };
    count(image, histogram.luminance, luminance, bins,
          [&](const std::uint16_t* p) { return std::min(bins - 1, truncated(luminanceOf(p))); });
    count(image, histogram.lightness, lightness, bins,
          [&](const std::uint16_t* p) { return static_cast<unsigned int>(lightnessOf(p) * scale + 0.5); });
    count(image, histogram.red, red, bins, [&](const std::uint16_t* p) { return truncated(p[0]); });
    count(image, histogram.green, green, bins, [&](const std::uint16_t* p) { return truncated(p[1]); });
    count(image, histogram.blue, blue, bins, [&](const std::uint16_t* p) { return truncated(p[2]); });
}

void checkerboard(Ondrel::Image& image, unsigned int cellWidth, unsigned int cellHeight, const unsigned short* first,
                  const unsigned short* second)
{
    const auto origin = [](std::int64_t size, std::int64_t cell) {
        const std::int64_t half = ceilDivide(size, 2);
        return half - ceilDivide(half, 2 * cell) * 2 * cell;
    };
    const std::int64_t x0 = origin(image.width, cellWidth), y0 = origin(image.height, cellHeight);
    for (std::int64_t y = 0; y < image.height; ++y)
        for (std::int64_t x = 0; x < image.width; ++x) {
            // The second colour stands on even cells of even rows and on odd cells of odd rows.
            const bool isSecond = ((x - x0) / cellWidth) % 2 == ((y - y0) / cellHeight) % 2;
            std::copy_n(isSecond ? second : first, 4, image.data + (y * image.width + x) * 4);
        }
}

} // namespace OndrelReference

#include <ondrel/core/image.h>

#include <algorithm>

namespace Ondrel
{
namespace
{

template <typename BinOf>
void count(std::vector<unsigned int>& bins, const Image& image, std::size_t pixels, BinOf binOf)
{
    for (std::size_t i = 0; i < pixels; ++i)
        ++bins[binOf(image.data + 4 * i)];
}

} // namespace

void Image::BuildHistogram(Histogram& histogram, bool luminance, bool lightness, bool red, bool green, bool blue,
                           unsigned int bins) const
{
    const auto lists = {&histogram.luminance, &histogram.lightness, &histogram.red, &histogram.green, &histogram.blue};
    for (std::vector<unsigned int>* list : lists)
        list->clear();
    if (width == 0 || height == 0 || bins == 0)
        return;
    const std::size_t pixels = std::min<std::size_t>(std::size_t{width} * height, sizeBytes / 8);
    const double scale = (bins - 1) / 65535.0;
    const auto scaled = [scale](unsigned int v) { return static_cast<std::size_t>(v * scale); };
    if (luminance) {
        histogram.luminance.assign(bins, 0);
        count(histogram.luminance, *this, pixels, [&](const std::uint16_t* p) {
            const double sum = double(p[2]) * 0.114 + double(float(p[1]) * 0.587f + float(p[0]) * 0.299f);
            return std::min<std::size_t>(bins - 1, scaled(static_cast<unsigned int>(sum)));
        });
    }
    if (lightness) {
        histogram.lightness.assign(bins, 0);
        count(histogram.lightness, *this, pixels, [&](const std::uint16_t* p) {
            const auto [low, high] = std::minmax({p[0], p[1], p[2]});
            return static_cast<std::size_t>(((low + high) >> 1) * scale + 0.5);
        });
    }
    const bool wanted[3] = {red, green, blue};
    std::vector<unsigned int>* colors[3] = {&histogram.red, &histogram.green, &histogram.blue};
    for (std::size_t c = 0; c < 3; ++c) {
        if (!wanted[c])
            continue;
        colors[c]->assign(bins, 0);
        count(*colors[c], *this, pixels, [&](const std::uint16_t* p) { return scaled(p[c]); });
    }
}

} // namespace Ondrel

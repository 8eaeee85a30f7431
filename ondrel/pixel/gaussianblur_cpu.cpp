#include <ondrel/pixel/gaussianblur.h>

#include <algorithm>
#include <cmath>
#include <ondrel/core/parallel_p.h>
#include <ondrel/pixel/gaussianblurkernel_p.h>
#include <ondrel/pixel/geometry.h>
#include <ondrel/pixel/imageblock_p.h>
#include <ondrel/pixel/pixelfetch.h>
#include <utility>

using namespace Ondrel;

namespace
{

template <void (*Fetch)(Image const&, int, int, unsigned short*)>
Image BlurByRadiusHorizontalT(Image const& image, GaussianKernel const& kernel)
{
    Image result(image.width, image.height);
    if (!hasPixels(image) || !hasPixels(result))
        return result;
    parallelRanges(image.height, 8, [&](std::size_t first, std::size_t last) {
        for (std::size_t y = first; y < last; ++y) {
            for (std::size_t x = 0; x < image.width; ++x) {
                double sums[4] = {};
                for (std::size_t i = 0; i < kernel.weights.size(); ++i) {
                    unsigned short rgba[4];
                    Fetch(image, int(std::int64_t(x + i) - kernel.reach), int(y), rgba);
                    for (int c = 0; c < 4; ++c)
                        sums[c] += double(rgba[c]) * kernel.weights[i];
                }
                for (int c = 0; c < 4; ++c)
                    pixelAt(result, x, y)[c] = std::uint16_t(std::min(std::round(sums[c]), 65535.0));
            }
        }
    });
    return result;
}

Image blurRows(Image const& image, float radiusToZero, GaussianEdge edge)
{
    const GaussianKernel kernel = gaussianKernel(radiusToZero);
    switch (edge) {
    case GaussianEdge::Blank:
        return BlurByRadiusHorizontalT<GetPixelRGBABlank>(image, kernel);
    case GaussianEdge::Repeat:
        return BlurByRadiusHorizontalT<GetPixelRGBARepeat>(image, kernel);
    case GaussianEdge::Clamp:
        break;
    }
    return BlurByRadiusHorizontalT<GetPixelRGBAClamp>(image, kernel);
}

} // namespace

Ondrel::Image GaussianBlur_CPU(Ondrel::Image const& image, float radiusX, float radiusY, GaussianEdge edge,
                               Ondrel::RunStatus const& status)
{
    if (radiusX == 0 && radiusY == 0)
        return image;
    if (status.state && *status.state == 1)
        return Image();
    Image result = image;
    if (radiusX + 1 > 0)
        result = blurRows(result, radiusX + 1, edge);
    if (radiusY + 1 > 0)
        result = Rotate270(blurRows(Rotate90(result, RotateSizeBounding), radiusY + 1, edge), RotateSizeBounding);
    return result;
}

#include <ondrel/pixel/gaussianblur.h>

#include <ondrel/pixel/gaussianblurdirect_p.h>
#include <ondrel/pixel/gaussianblurspectral_p.h>
#include <optional>

using namespace Ondrel;

namespace
{

std::optional<GaussianKernel> kernelOf(float radius)
{
    const float radiusToZero = radius + 1;
    if (radiusToZero > 0)
        return gaussianKernel(radiusToZero);
    return std::nullopt;
}

// From here on transforms cost less than sums.
constexpr std::size_t kLongKernel = 47;

bool isLong(GaussianKernel const* kernel)
{
    return kernel && kernel->doubled.size() >= kLongKernel;
}

// At least one kernel is there.
void blurInto(Image& result, Image const& image, GaussianKernel const* across, GaussianKernel const* down,
              GaussianEdge edge)
{
    if (!isLong(across) && !isLong(down))
        return blurDirectly(image, result, across, down, edge);
    if (isLong(across) && down && !isLong(down)) {
        Image blurred(image.width, image.height);
        blurRowsBySpectrum(image, blurred, *across, edge);
        return blurDirectly(blurred, result, nullptr, down, edge);
    }
    if (isLong(across))
        blurRowsBySpectrum(image, result, *across, edge);
    else if (across)
        blurDirectly(image, result, across, nullptr, edge);
    if (down)
        blurColumnsBySpectrum(across ? result : image, result, *down, edge);
}

const GaussianKernel* pointerTo(std::optional<GaussianKernel> const& kernel)
{
    return kernel ? &*kernel : nullptr;
}

} // namespace

Ondrel::Image GaussianBlur_CPU(Ondrel::Image const& image, float radiusX, float radiusY, GaussianEdge edge,
                               Ondrel::RunStatus const& status)
{
    if (radiusX == 0 && radiusY == 0)
        return image;
    if (status.state && *status.state == 1)
        return Image();
    const std::optional<GaussianKernel> across = kernelOf(radiusX);
    const std::optional<GaussianKernel> down = kernelOf(radiusY);
    if (!across && !down)
        return image;
    if (!hasPixels(image))
        return down ? Image() : Image(image.width, image.height);
    Image result(image.width, image.height);
    blurInto(result, image, pointerTo(across), pointerTo(down), edge);
    return result;
}

#include <ondrel/pixel/gaussianblur.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <ondrel/pixel/gaussianblur_opencl_p.h>
#include <ondrel/pixel/gaussianblurkernel_p.h>

namespace
{

int tapCount(float radius)
{
    const double taps = 2 * double(Ondrel::gaussianReach(radius + 1)) + 1;
    if (std::isnan(taps))
        return 1;
    constexpr double kLimit = std::numeric_limits<int>::max();
    return int(std::clamp(taps, -kLimit, kLimit));
}

} // namespace

Ondrel::Image GaussianBlur(Ondrel::Image const& image, float radiusX, float radiusY, GaussianEdge edge,
                           Ondrel::RunStatus const& status)
{
    if (radiusX == 0 && radiusY == 0)
        return image;
    Ondrel::Image result;
    if (Ondrel::blurOnDevice(image, result, radiusX, radiusY, edge, status))
        return result;
    return GaussianBlur_CPU(image, radiusX, radiusY, edge, status);
}

QSize GaussianSampleSize(float radiusX, float radiusY)
{
    return QSize(tapCount(radiusX), tapCount(radiusY));
}

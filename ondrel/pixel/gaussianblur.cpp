#include <ondrel/pixel/gaussianblur.h>

#include <algorithm>
#include <cmath>
#include <limits>
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
    return GaussianBlur_CPU(image, radiusX, radiusY, edge, status);
}

QSize GaussianSampleSize(float radiusX, float radiusY)
{
    return QSize(tapCount(radiusX), tapCount(radiusY));
}

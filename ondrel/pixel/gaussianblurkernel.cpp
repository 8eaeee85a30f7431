#include <ondrel/pixel/gaussianblurkernel_p.h>

#include <algorithm>
#include <cmath>

namespace Ondrel
{
namespace
{

constexpr float kGreatestRadiusToZero = 524289.0f;

float sigmaOf(float radiusToZero)
{
    // sqrt(2 ln 100): there a Gaussian has fallen to 1 percent.
    return float(double(radiusToZero) / 3.0348542587702925);
}

// Takes off the zeros at both ends, down to three weights. They are there for whole radii, as the weight at R is 0, and
// where N is beyond R. A product of zero changes no sum.
void trim(GaussianKernel& kernel)
{
    const auto isWeight = [](double weight) { return weight > 0; };
    const auto first = std::find_if(kernel.doubled.begin(), kernel.doubled.end(), isWeight);
    const std::int64_t zeros = std::min(std::int64_t(first - kernel.doubled.begin()), kernel.reach - 1);
    kernel.doubled.erase(kernel.doubled.end() - zeros, kernel.doubled.end());
    kernel.doubled.erase(kernel.doubled.begin(), kernel.doubled.begin() + zeros);
    kernel.reach -= zeros;
}

} // namespace

float gaussianReach(float radiusToZero)
{
    return std::trunc(sigmaOf(radiusToZero) * 3 + 1);
}

GaussianKernel gaussianKernel(float radiusToZero)
{
    radiusToZero = std::min(radiusToZero, kGreatestRadiusToZero);
    const double R = double(radiusToZero);
    const double sigma = double(sigmaOf(radiusToZero));
    const double twoVariances = 2 * sigma * sigma;
    const double tail = std::exp(-R * R / twoVariances);

    GaussianKernel kernel;
    kernel.reach = std::int64_t(gaussianReach(radiusToZero));
    kernel.doubled.reserve(std::size_t(2 * kernel.reach + 1));
    double sum = 0;
    for (std::int64_t i = -kernel.reach; i <= kernel.reach; ++i) {
        const double position = double(i);
        // The lower end is not tested: what lies below -R is negative, counts in the sum and is dropped afterwards.
        const double weight = position <= R ? std::exp(-position * position / twoVariances) - tail : 0;
        sum += weight;
        kernel.doubled.push_back(weight);
    }
    for (double& weight : kernel.doubled)
        weight = 2 * std::max(weight / sum, 0.0);
    trim(kernel);
    return kernel;
}

} // namespace Ondrel

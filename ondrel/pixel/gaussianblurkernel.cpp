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

// The lowered Gaussian, before it is divided by its sum.
class Shape
{
public:
    explicit Shape(float radiusToZero)
    {
        radiusToZero = std::min(radiusToZero, kGreatestRadiusToZero);
        const double sigma = double(sigmaOf(radiusToZero));
        reach = std::int64_t(gaussianReach(radiusToZero));
        m_radius = double(radiusToZero);
        m_twoVariances = 2 * sigma * sigma;
        m_tail = std::exp(-m_radius * m_radius / m_twoVariances);
    }

    // The lower end is not tested: what lies below -R is negative, counts in the sum and is dropped afterwards.
    double height(std::int64_t i) const
    {
        const double position = double(i);
        return position <= m_radius ? std::exp(-position * position / m_twoVariances) - m_tail : 0;
    }

    std::int64_t reach;

private:
    double m_radius, m_twoVariances, m_tail;
};

} // namespace

float gaussianReach(float radiusToZero)
{
    return std::trunc(sigmaOf(radiusToZero) * 3 + 1);
}

GaussianKernel gaussianKernel(float radiusToZero)
{
    const Shape shape(radiusToZero);
    GaussianKernel kernel;
    kernel.reach = shape.reach;
    kernel.doubled.reserve(std::size_t(2 * kernel.reach + 1));
    double sum = 0;
    for (std::int64_t i = -kernel.reach; i <= kernel.reach; ++i) {
        const double weight = shape.height(i);
        sum += weight;
        kernel.doubled.push_back(weight);
    }
    for (double& weight : kernel.doubled)
        weight = 2 * std::max(weight / sum, 0.0);
    trim(kernel);
    return kernel;
}

std::vector<float> gaussianWeights(float radiusToZero)
{
    const Shape shape(radiusToZero);
    std::vector<float> weights;
    weights.reserve(std::size_t(2 * shape.reach + 1));
    float sum = 0;
    for (std::int64_t i = -shape.reach; i <= shape.reach; ++i) {
        const float weight = float(shape.height(i));
        sum += weight;
        weights.push_back(weight);
    }
    for (float& weight : weights)
        weight = std::max(weight / sum, 0.0f);
    return weights;
}

} // namespace Ondrel

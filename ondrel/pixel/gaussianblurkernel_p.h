#pragma once

#include <cstdint>
#include <vector>

namespace Ondrel
{

// N for R = radius + 1, the distance at which the weights reach zero, as a whole number in a float; not a number or
// infinite as R is.
float gaussianReach(float radiusToZero);

// Twice the weights of the positions -reach to reach; see GaussianBlur. A sum of twice as much is exactly twice the
// sum, and truncated to a whole number it says all that is needed to round the half of it. The weights are not below 0
// and the same on both sides; zeros at the ends are left out, so that reach may be less than N, but never 0.
struct GaussianKernel {
    std::int64_t reach = 0;
    std::vector<double> doubled;
};

// For R above 0. R is limited, so that a kernel never takes more than some megabytes.
GaussianKernel gaussianKernel(float radiusToZero);

// The weights of the positions -N to N in single precision, as devices use them: each difference of exponentials is
// narrowed, and the sum and the division are done in floats. For R above 0; R is limited in the same way.
std::vector<float> gaussianWeights(float radiusToZero);

} // namespace Ondrel

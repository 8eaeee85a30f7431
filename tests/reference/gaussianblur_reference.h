#pragma once

#include <ondrel/core/image.h>

#include <vector>

namespace OndrelReference
{

// What lies outside the image, in the order of the numbers that hosts store.
enum class Outside { NearestEdgePixel, Zeros, Repetition };

// The 2 * N + 1 weights for a kernel that touches zero at `reach`, the radius plus 1; `reach` is above 0.
std::vector<double> gaussianWeights(float reach);

// GaussianBlur_CPU for radii that are numbers: sample by sample, sums in the order of the taps, 16-bit samples between
// the two passes. Rows are spread on threads as in the library, so that times can be compared.
Ondrel::Image gaussianBlur(const Ondrel::Image& image, float radiusX, float radiusY, Outside outside);

} // namespace OndrelReference

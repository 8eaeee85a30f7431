#pragma once

#include <Eigen/Core>
#include <ondrel/core/image.h>
#include <ondrel/core/rect.h>
#include <ondrel/pixel/scale.h>

namespace Ondrel
{

// Where neighbouring corners of a pixel are farther apart in x or y, in source pixels, one sample does not stand for
// it.
constexpr double kLongestStep = 1.5;

struct Place {
    double x, y;
};

// A point through a matrix, with the homogeneous divide. The order of the sums is part of every result.
inline Place projected(Eigen::Matrix<double, 3, 3> const& matrix, double x, double y)
{
    const double u = matrix(0, 0) * x + matrix(0, 1) * y + matrix(0, 2);
    const double v = matrix(1, 0) * x + matrix(1, 1) * y + matrix(1, 2);
    const double w = matrix(2, 0) * x + matrix(2, 1) * y + matrix(2, 2);
    return {u / w, v / w};
}

// From output pixels to source pixels, for an output that begins at the upper left corner of `bounds`. For a matrix
// without an inverse nothing has a finite position.
Eigen::Matrix<double, 3, 3> pixelMapping(Eigen::Matrix<double, 3, 3> const& matrix, double scale,
                                         RectT<float> const& bounds);

// A part of an output: target pixel (x, y) is pixel (left + x, top + y) of the whole. Of the target only the samples
// change; `isBlank` says that they are all 0 so far.
struct TransformTarget {
    Image const& pixels;
    bool isBlank;
    int left = 0, top = 0;
};

// Writes the pixels of `area`, in coordinates of the whole output, as far as they lie in the target, from where
// `mapping` places them in the source.
void transformRows(Image const& source, FilterMethod filter, Eigen::Matrix<double, 3, 3> const& mapping,
                   RectT<int> const& area, TransformTarget const& target);

} // namespace Ondrel

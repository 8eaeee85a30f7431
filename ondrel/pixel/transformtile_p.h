#pragma once

#include <ondrel/ondrel_export.h>

#include <Eigen/Core>

namespace Ondrel
{

// What can be said about a rectangle of output pixels without looking at each of them. Everything holds for positions
// as they are computed, rounding included; where that is not certain, nothing is claimed.
struct TileBounds {
    bool isKnown = false;        // the box holds the positions of all points of the rectangle
    bool takesOneSample = false; // neighbouring corners of pixels are at most 1.5 source pixels apart
    double minX = 0, maxX = 0, minY = 0, maxY = 0;
};

// For the points from (left, top) to (right, bottom), both ends included.
ONDREL_EXPORT TileBounds tileBounds(Eigen::Matrix<double, 3, 3> const& mapping, double left, double top, double right,
                                    double bottom);

} // namespace Ondrel

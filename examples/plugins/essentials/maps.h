#pragma once

#include "../../host/plugininterface.h"

namespace Essentials
{

// The relation of "image" to "image", in which the result covers a rectangle from (0, 0) on; none for an empty size.
// Points are those of the plane: pixel (x, y) covers the square up to (x + 1, y + 1).
std::vector<Ondrel::TransformMap> mapsOf(const Eigen::Matrix3d& transform, const QSize& resultSize);

Eigen::Matrix3d translation(double dx, double dy);
Eigen::Matrix3d scaling(double x, double y);

} // namespace Essentials

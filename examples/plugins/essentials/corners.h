#pragma once

#include <Eigen/Core>

#include <array>

namespace Essentials
{

// The corners of a picture, in fractions of its size: top left, top right, bottom right, bottom left.
using Corners = std::array<Eigen::Vector2d, 4>;

const Corners kUnmoved = {Eigen::Vector2d(0, 0), Eigen::Vector2d(1, 0), Eigen::Vector2d(1, 1), Eigen::Vector2d(0, 1)};

// How far beside the picture a corner may go.
constexpr double kLeastCorner = -10, kGreatestCorner = 11;

// Turning the same way at every corner, and at none too little: only then is there a view like this of a rectangle.
bool isConvex(const Corners& corners);

} // namespace Essentials

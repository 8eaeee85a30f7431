#include <ondrel/pixel/transformtile_p.h>

#include <algorithm>
#include <cmath>
#include <ondrel/pixel/transformrows_p.h>

namespace Ondrel
{
namespace
{

using Matrix = Eigen::Matrix<double, 3, 3>;

// Sixteen roundings, more than there are on the way to any number here, in relation to the largest part of it.
constexpr double kEpsilon = 0x1p-49;

// From here down products of divisors would come near the numbers that have fewer digits.
constexpr double kSmallestDivisor = 1e-140;

struct Extent {
    double left, top, right, bottom;
};

// The largest magnitude of the parts of one homogeneous coordinate.
double magnitude(Matrix const& m, int row, Extent const& extent)
{
    return std::abs(m(row, 0)) * std::max(std::abs(extent.left), std::abs(extent.right)) +
           std::abs(m(row, 1)) * std::max(std::abs(extent.top), std::abs(extent.bottom)) + std::abs(m(row, 2));
}

double valueAt(Matrix const& m, int row, double x, double y)
{
    return m(row, 0) * x + m(row, 1) * y + m(row, 2);
}

// The divisor of the homogeneous divide is linear, so its extremes are at the corners. 0 if its sign is not certain.
double smallestDivisor(Matrix const& m, Extent const& e)
{
    const double w[4] = {valueAt(m, 2, e.left, e.top), valueAt(m, 2, e.right, e.top), valueAt(m, 2, e.left, e.bottom),
                         valueAt(m, 2, e.right, e.bottom)};
    const double error = kEpsilon * magnitude(m, 2, e);
    const auto [low, high] = std::minmax_element(w, w + 4);
    if (*low > error)
        return *low - error;
    if (*high < -error)
        return -*high - error;
    return 0.0;
}

// With p = u / w, dp/dx = (u_x w - w_x u) / w^2, where the numerator does not depend on x, and likewise dp/dy. Both
// numerators are linear in the other coordinate. The difference over one pixel is the numerator through the product of
// two divisors.
double longestStep(Matrix const& m, int row, Extent const& e, double divisor)
{
    const auto across = [&](double y) {
        return std::abs(m(row, 0) * (m(2, 1) * y + m(2, 2)) - m(2, 0) * (m(row, 1) * y + m(row, 2)));
    };
    const auto down = [&](double x) {
        return std::abs(m(row, 1) * (m(2, 0) * x + m(2, 2)) - m(2, 1) * (m(row, 0) * x + m(row, 2)));
    };
    const double numerator = std::max({across(e.top), across(e.bottom), down(e.left), down(e.right)});
    const double error = kEpsilon * (std::max(std::abs(m(row, 0)), std::abs(m(row, 1))) * magnitude(m, 2, e) +
                                     std::max(std::abs(m(2, 0)), std::abs(m(2, 1))) * magnitude(m, row, e));
    return (numerator + error) / (divisor * divisor) * (1.0 + kEpsilon);
}

} // namespace

// A projective map whose divisor keeps its sign sends a rectangle to the convex quadrilateral between its corners.
TileBounds tileBounds(Matrix const& mapping, double left, double top, double right, double bottom)
{
    TileBounds bounds;
    const Extent extent{left, top, right, bottom};
    const double divisor = smallestDivisor(mapping, extent);
    if (!(divisor > kSmallestDivisor))
        return bounds;
    const double largestW = magnitude(mapping, 2, extent);
    const auto positionError = [&](int row) {
        const double largest = magnitude(mapping, row, extent);
        return kEpsilon * (largest + largest / divisor * largestW) / divisor;
    };
    const double errorX = positionError(0);
    const double errorY = positionError(1);

    const Place places[4] = {projected(mapping, left, top), projected(mapping, right, top),
                             projected(mapping, right, bottom), projected(mapping, left, bottom)};
    const auto [minX, maxX] =
        std::minmax_element(places, places + 4, [](Place const& a, Place const& b) { return a.x < b.x; });
    const auto [minY, maxY] =
        std::minmax_element(places, places + 4, [](Place const& a, Place const& b) { return a.y < b.y; });
    bounds.minX = minX->x - errorX;
    bounds.maxX = maxX->x + errorX;
    bounds.minY = minY->y - errorY;
    bounds.maxY = maxY->y + errorY;
    bounds.isKnown = std::isfinite(bounds.minX) && std::isfinite(bounds.maxX) && std::isfinite(bounds.minY) &&
                     std::isfinite(bounds.maxY);
    bounds.takesOneSample = bounds.isKnown && longestStep(mapping, 0, extent, divisor) + 2.0 * errorX <= kLongestStep &&
                            longestStep(mapping, 1, extent, divisor) + 2.0 * errorY <= kLongestStep;
    return bounds;
}

} // namespace Ondrel

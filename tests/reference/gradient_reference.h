#pragma once

#include <ondrel/core/image.h>
#include <ondrel/core/rect.h>
#include <ondrel/pixel/gradient.h>

#include <cstddef>
#include <functional>
#include <vector>

namespace OndrelReference
{

using GradientStops = std::vector<Ondrel::GradientStop>;
using Knots = std::vector<Ondrel::CubicBezierSpline::Point>;

// Where pixel (x, y) lies between the first stop and the last one, 0 to 1, all in single precision.
using GradientPosition = std::function<float(int x, int y)>;
GradientPosition linearPosition(const Ondrel::Image& image, const GradientLinearGeometry& geometry);
GradientPosition radialPosition(const Ondrel::Image& image, const GradientRadialGeometry& geometry);

// A position after the curve, which is ignored unless it has two points.
float throughCurve(float t, const std::vector<unsigned short>& table);
std::vector<unsigned short> curveTable(const Knots& curve);

// The stops beside a position, and the share of the second one.
struct GradientMix {
    std::size_t previous, next;
    float share;
};
GradientMix mixAt(float t, const GradientStops& stops);

// The fill in RGB of that part of `rect` that lies inside the image, with stops that are sanitised.
void gradient(Ondrel::Image& image, const Ondrel::RectT<int>& rect, const GradientPosition& position,
              const GradientStops& stops, const Knots& curve);

void sanitizeGradientStops(GradientStops& stops);

} // namespace OndrelReference

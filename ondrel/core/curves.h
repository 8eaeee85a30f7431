#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/image.h>

namespace Ondrel
{

// The knots of a curves editor: one curve for all channels, and one for each colour.
struct Curves {
    std::vector<CubicBezierSpline::Point> all, red, green, blue;
};

// Pure functions: any thread, as long as no two change one list.

// Whether the list is exactly (0, 0), (65535, 65535). A third knot on that line makes it not linear.
ONDREL_EXPORT bool IsCurveLinear(std::vector<CubicBezierSpline::Point> const& points);

// Replaces the list, or all four lists, by these two points.
ONDREL_EXPORT void SetCurveLinear(std::vector<CubicBezierSpline::Point>& points);
ONDREL_EXPORT void SetCurvesLinear(Curves& curves);

// Sorts by x and keeps one knot of each x; fewer than two knots become the linear curve. Values are not clamped.
ONDREL_EXPORT void ValidateCurve(std::vector<CubicBezierSpline::Point>& points);
ONDREL_EXPORT void ValidateCurves(Curves& curves);

} // namespace Ondrel

// Sends red, green and blue through a curve each (CubicBezierSpline::roundedSpline, a table of all 65536 values), on
// the calling thread; alpha is copied. The result has no metadata,
// unless all three curves are linear: then it is a plain copy. A curve without knots leaves its channel unchanged.
ONDREL_EXPORT Ondrel::Image CurvesRGB(Ondrel::Image const& image,
                                      std::vector<Ondrel::CubicBezierSpline::Point> const& red,
                                      std::vector<Ondrel::CubicBezierSpline::Point> const& green,
                                      std::vector<Ondrel::CubicBezierSpline::Point> const& blue);

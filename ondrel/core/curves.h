#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/image.h>
namespace Ondrel
{
struct Curves {
    std::vector<CubicBezierSpline::Point> all, red, green, blue;
};
ONDREL_EXPORT bool IsCurveLinear(std::vector<CubicBezierSpline::Point> const& points);
ONDREL_EXPORT void SetCurveLinear(std::vector<CubicBezierSpline::Point>& points);
ONDREL_EXPORT void SetCurvesLinear(Curves& curves);
ONDREL_EXPORT void ValidateCurve(std::vector<CubicBezierSpline::Point>& points);
ONDREL_EXPORT void ValidateCurves(Curves& curves);
} // namespace Ondrel
ONDREL_EXPORT Ondrel::Image CurvesRGB(Ondrel::Image const& image,
                                      std::vector<Ondrel::CubicBezierSpline::Point> const& red,
                                      std::vector<Ondrel::CubicBezierSpline::Point> const& green,
                                      std::vector<Ondrel::CubicBezierSpline::Point> const& blue);

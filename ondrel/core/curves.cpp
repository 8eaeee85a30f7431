#include <ondrel/core/curves.h>
#include <ondrel/core/pixelsinblock_p.h>

#include <algorithm>
#include <numeric>

namespace
{

using Points = std::vector<Ondrel::CubicBezierSpline::Point>;

std::vector<unsigned short> tableOf(const Points& points)
{
    std::vector<unsigned short> table(65536);
    if (points.empty()) {
        std::iota(table.begin(), table.end(), static_cast<unsigned short>(0));
        return table;
    }
    Ondrel::CubicBezierSpline spline;
    spline.setPoints(points);
    spline.roundedSpline(table, 65536, 65535);
    return table;
}

} // namespace

namespace Ondrel
{

bool IsCurveLinear(std::vector<CubicBezierSpline::Point> const& points)
{
    return points.size() == 2 && points[0].x == 0 && points[0].y == 0 && points[1].x == 65535 && points[1].y == 65535;
}

void SetCurveLinear(std::vector<CubicBezierSpline::Point>& points)
{
    points = {{0, 0}, {65535, 65535}};
}

void SetCurvesLinear(Curves& curves)
{
    for (Points* points : {&curves.all, &curves.red, &curves.green, &curves.blue})
        SetCurveLinear(*points);
}

void ValidateCurve(std::vector<CubicBezierSpline::Point>& points)
{
    using Point = CubicBezierSpline::Point;
    if (points.size() < 2) {
        SetCurveLinear(points);
        return;
    }
    std::stable_sort(points.begin(), points.end(), [](const Point& a, const Point& b) { return a.x < b.x; });
    const auto sameX = [](const Point& a, const Point& b) { return a.x == b.x; };
    points.erase(std::unique(points.begin(), points.end(), sameX), points.end());
}

void ValidateCurves(Curves& curves)
{
    for (Points* points : {&curves.all, &curves.red, &curves.green, &curves.blue})
        ValidateCurve(*points);
}

} // namespace Ondrel

Ondrel::Image CurvesRGB(Ondrel::Image const& image, std::vector<Ondrel::CubicBezierSpline::Point> const& red,
                        std::vector<Ondrel::CubicBezierSpline::Point> const& green,
                        std::vector<Ondrel::CubicBezierSpline::Point> const& blue)
{
    if (Ondrel::IsCurveLinear(red) && Ondrel::IsCurveLinear(green) && Ondrel::IsCurveLinear(blue))
        return image;
    const std::vector<unsigned short> tables[3] = {tableOf(red), tableOf(green), tableOf(blue)};
    Ondrel::Image result(image.width, image.height);
    const std::size_t samples = std::min(pixelsInBlock(image), pixelsInBlock(result)) * 4;
    for (std::size_t i = 0; i < samples; i += 4) {
        for (std::size_t c = 0; c < 3; ++c)
            result.data[i + c] = tables[c][image.data[i + c]];
        result.data[i + 3] = image.data[i + 3];
    }
    return result;
}

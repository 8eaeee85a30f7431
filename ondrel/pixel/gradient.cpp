#include <ondrel/pixel/gradient.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <ondrel/pixel/gradientlch_p.h>
#include <ondrel/pixel/gradientruns_p.h>
#include <ondrel/pixel/imageblock_p.h>

using namespace Ondrel;

void SanitizeGradientStops(std::vector<Ondrel::GradientStop>& stops)
{
    if (stops.empty())
        stops = {{0.0f, 0, 0, 0, 65535}, {1.0f, 65535, 65535, 65535, 65535}};
    if (stops.size() == 1)
        stops.push_back(GradientStop(stops.front()));
    for (GradientStop& stop : stops)
        if (std::isnan(stop.position))
            stop.position = 0.0f; // has no place in an order
    std::stable_sort(stops.begin(), stops.end(),
                     [](GradientStop const& a, GradientStop const& b) { return a.position < b.position; });
    stops.front().position = 0.0f;
    stops.back().position = 1.0f;

    constexpr float step = 1.5259022e-5f;
    for (std::size_t i = 1; i + 1 < stops.size(); ++i) {
        const float before = stops[i - 1].position;
        if (stops[i].position - before < step)
            stops[i].position = std::min(before + step, 1.0f);
        if (stops[i].position == 1.0f)
            stops.resize(i + 1);
    }
}

namespace
{

using namespace GradientRows;

// The part of `rect` inside the image; edges of an empty part are equal.
RectT<int> insideOf(Image const& image, RectT<int> const& rect)
{
    if (!hasPixels(image))
        return RectT<int>();
    RectT<int> inside = rect;
    inside.subtractRect(RectT<int>(0, 0, int(image.width), int(image.height)));
    return inside;
}

// Stops that keep every share between 0 and 1. Sanitised ones do; others are replaced by what they should have been.
std::vector<GradientStop> harmless(std::vector<GradientStop> const& stops)
{
    std::vector<GradientStop> result = stops;
    const bool finite =
        std::all_of(stops.begin(), stops.end(), [](GradientStop const& stop) { return std::isfinite(stop.position); });
    if (stops.empty() || !finite || stops.front().position > 0.0f)
        SanitizeGradientStops(result);
    return result;
}

Ramp colourRamp(std::vector<GradientStop> const& stops)
{
    std::vector<Ramp::Stop> result;
    result.reserve(stops.size());
    for (GradientStop const& stop : stops)
        result.push_back({stop.position, {float(stop.red), float(stop.green), float(stop.blue), float(stop.alpha)}});
    return Ramp(std::move(result));
}

template <typename Geometry>
void fillRGB(Image& image, RectT<int> const& rect, Geometry const& geometry, std::vector<GradientStop> const& stops,
             PositionCurve const& curve)
{
    const Ramp ramp = colourRamp(stops);
    for (int y = rect.top(); y < rect.bottom(); ++y) {
        const int twin = twinRow(geometry, y);
        if (twin >= rect.top() && twin < y)
            continue; // written together with that row
        const bool hasTwin = twin > y && twin < rect.bottom();
        std::uint16_t* const row = pixelAt(image, 0, std::size_t(y));
        forEachRun(geometry, curve, y, rect.left(), rect.right(), row, [&](int x, std::size_t count, const float* t) {
            std::uint16_t* const to = row + std::size_t(x) * 4;
            mixPixels(ramp, t, count, to);
            if (hasTwin)
                std::memcpy(pixelAt(image, std::size_t(x), std::size_t(twin)), to, count * 8);
        });
    }
}

template <typename Geometry>
void fill(Image& image, RectT<int> const& rect, Geometry const& geometry, std::vector<GradientStop> const& stops,
          GradientColorInterpolation interpolation, std::vector<CubicBezierSpline::Point> const& knots)
{
    const RectT<int> inside = insideOf(image, rect);
    const PositionCurve curve(knots);
    if (interpolation == GradientColorInterpolationRGB)
        fillRGB(image, inside, geometry, harmless(stops), curve);
    else if (!fillLCH(image, inside, geometry, harmless(stops), curve))
        image.FastFill(0);
}

} // namespace

void GradientLinear(Ondrel::Image& image, Ondrel::RectT<int> const& rect, GradientLinearGeometry const& geometry,
                    std::vector<Ondrel::GradientStop> const& stops, Ondrel::GradientColorInterpolation interpolation,
                    std::vector<Ondrel::CubicBezierSpline::Point> const& curve)
{
    fill(image, rect, LinearAxis(image, geometry), stops, interpolation, curve);
}

void GradientRadial(Ondrel::Image& image, Ondrel::RectT<int> const& rect, GradientRadialGeometry const& geometry,
                    std::vector<Ondrel::GradientStop> const& stops, Ondrel::GradientColorInterpolation interpolation,
                    std::vector<Ondrel::CubicBezierSpline::Point> const& curve)
{
    fill(image, rect, RadialEllipse(image, geometry), stops, interpolation, curve);
}

#include "gradient_reference.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace OndrelReference
{
namespace
{

using Ondrel::GradientStop;
using Ondrel::Image;

float limited(float t)
{
    return t < 0.0f ? 0.0f : t > 1.0f ? 1.0f : t;
}

float length(float x, float y)
{
    return std::sqrt(x * x + y * y);
}

std::uint16_t mixed(unsigned short previous, unsigned short next, float share)
{
    return std::uint16_t(float(next) * share + float(previous) * (1.0f - share));
}

struct Ellipse {
    float cx, cy, rx, ry, sine, cosine, focalX, focalY;
};

Ellipse ellipseOf(const Image& image, const GradientRadialGeometry& g)
{
    const float width = float(image.width), height = float(image.height);
    Ellipse e{g.centerX * width, g.centerY * height, g.radiusX * width, g.radiusY * height,
              std::sin(g.angle), std::cos(g.angle),  g.focalX * width,  g.focalY * height};
    const float phi = std::atan2(-e.focalY, e.focalX), c = std::cos(phi), s = std::sin(phi);
    const float edge = e.rx * e.ry / std::sqrt(e.ry * e.ry * (c * c) + e.rx * e.rx * (s * s));
    const float offset = length(e.focalX, e.focalY);
    if (edge < offset) {
        e.focalX *= edge / offset;
        e.focalY *= edge / offset;
    }
    e.focalX += e.cx;
    e.focalY += e.cy;
    if (e.rx == 0.0f)
        e.rx = 1.0f;
    if (e.ry == 0.0f)
        e.ry = 1.0f;
    return e;
}

// In the circle that the turned and stretched ellipse is: the share of the way from the focal point through the pixel
// to the edge.
float radialShare(const Ellipse& e, float x, float y)
{
    const float ratio = e.rx / e.ry;
    const float turnedX = e.cosine * (x - e.cx) - e.sine * (y - e.cy) + e.cx;
    const float turnedY = e.cosine * (y - e.cy) + e.sine * (x - e.cx) + e.cy;
    float dirX = turnedX - e.focalX, dirY = (turnedY - e.focalY) * ratio;
    const float dist = length(dirX, dirY);
    if (dist != 0.0f) {
        dirX /= dist;
        dirY /= dist;
    }
    const float ox = turnedX - e.cx, oy = (turnedY - e.cy) * ratio;
    const float b = dirX * ox + dirY * oy;
    const float q = ox * ox + oy * oy - e.rx * e.rx;
    if (q >= 0.0f && b > 0.0f)
        return 1.0f;
    const float disc = b * b - q;
    if (disc < 0.0f)
        return 0.0f;
    const float remaining = -b + std::sqrt(disc);
    const float total = remaining + dist;
    return total == 0.0f ? 0.0f : limited(dist / total);
}

} // namespace

GradientPosition linearPosition(const Image& image, const GradientLinearGeometry& g)
{
    const float width = float(image.width), height = float(image.height);
    const float startX = g.x1 * width, startY = g.y1 * height;
    const float dx = g.x2 * width - startX, dy = g.y2 * height - startY;
    const float distance = length(dx, dy) == 0.0f ? 0.0001f : length(dx, dy);
    const float ux = dx / distance, uy = dy / distance;
    const float offset = startX * ux + startY * uy;
    const float factor = 1.0f / length(ux, uy) / distance;
    return [=](int x, int y) { return limited((float(x) * ux + float(y) * uy - offset) * factor); };
}

GradientPosition radialPosition(const Image& image, const GradientRadialGeometry& g)
{
    const Ellipse ellipse = ellipseOf(image, g);
    return [=](int x, int y) { return radialShare(ellipse, float(x), float(y)); };
}

std::vector<unsigned short> curveTable(const Knots& curve)
{
    std::vector<unsigned short> table;
    Ondrel::CubicBezierSpline spline;
    spline.setPoints(curve);
    if (curve.size() > 1)
        spline.roundedSpline(table, 65536, 65535);
    return table;
}

float throughCurve(float t, const std::vector<unsigned short>& table)
{
    return table.empty() ? t : float(table[std::size_t(t * 65535.0f)]) / 65535.0f;
}

GradientMix mixAt(float t, const GradientStops& stops)
{
    for (std::size_t i = 1; i < stops.size(); ++i)
        if (stops[i].position > t)
            return {i - 1, i, (t - stops[i - 1].position) / (stops[i].position - stops[i - 1].position)};
    return {stops.size() - 1, stops.size() - 1, 1.0f};
}

void gradient(Image& image, const Ondrel::RectT<int>& rect, const GradientPosition& position,
              const GradientStops& stops, const Knots& curve)
{
    const std::vector<unsigned short> table = curveTable(curve);
    for (int y = std::max(rect.top(), 0); y < std::min(rect.bottom(), int(image.height)); ++y)
        for (int x = std::max(rect.left(), 0); x < std::min(rect.right(), int(image.width)); ++x) {
            const GradientMix mix = mixAt(throughCurve(position(x, y), table), stops);
            const GradientStop &a = stops[mix.previous], &b = stops[mix.next];
            std::uint16_t* const out = image.data + (std::size_t(y) * image.width + std::size_t(x)) * 4;
            out[0] = mixed(a.red, b.red, mix.share);
            out[1] = mixed(a.green, b.green, mix.share);
            out[2] = mixed(a.blue, b.blue, mix.share);
            out[3] = mixed(a.alpha, b.alpha, mix.share);
        }
}

void sanitizeGradientStops(GradientStops& stops)
{
    if (stops.empty())
        stops = {{0, 0, 0, 0, 65535}, {0, 65535, 65535, 65535, 65535}};
    else if (stops.size() == 1)
        stops.push_back(stops.front());
    else
        std::stable_sort(stops.begin(), stops.end(),
                         [](const GradientStop& a, const GradientStop& b) { return a.position < b.position; });
    stops.front().position = 0.0f;
    stops.back().position = 1.0f;

    const float part = 1.5259022e-5f; // one of 65535
    for (std::size_t i = 1; i + 1 < stops.size(); ++i) {
        if (stops[i].position - stops[i - 1].position < part)
            stops[i].position = std::min(stops[i - 1].position + part, 1.0f);
        if (stops[i].position == 1.0f) {
            stops.resize(i + 1);
            return;
        }
    }
}

} // namespace OndrelReference

#include <algorithm>
#include <cmath>
#include <limits>
#include <ondrel/pixel/gradientrows_p.h>

namespace Ondrel::GradientRows
{
namespace
{

float length(float x, float y)
{
    return std::sqrt(x * x + y * y);
}

} // namespace

LinearAxis::LinearAxis(Image const& image, GradientLinearGeometry const& geometry)
{
    const float startX = geometry.x1 * float(image.width);
    const float startY = geometry.y1 * float(image.height);
    const float dx = geometry.x2 * float(image.width) - startX;
    const float dy = geometry.y2 * float(image.height) - startY;
    const float distance = length(dx, dy) == 0.0f ? 0.0001f : length(dx, dy);
    ux = dx / distance;
    uy = dy / distance;
    offset = startX * ux + startY * uy;
    factor = 1.0f / length(ux, uy) / distance;
}

RadialEllipse::RadialEllipse(Image const& image, GradientRadialGeometry const& geometry)
    : centerX(geometry.centerX * float(image.width))
    , centerY(geometry.centerY * float(image.height))
    , rx(geometry.radiusX * float(image.width))
    , sine(std::sin(geometry.angle))
    , cosine(std::cos(geometry.angle))
    , focalX(geometry.focalX * float(image.width))
    , focalY(geometry.focalY * float(image.height))
{
    float ry = geometry.radiusY * float(image.height);
    // A focal point beyond the ellipse comes back to its edge.
    const float phi = std::atan2(-focalY, focalX);
    const float c = std::cos(phi);
    const float s = std::sin(phi);
    const float edge = rx * ry / std::sqrt(ry * ry * (c * c) + rx * rx * (s * s));
    const float distance = length(focalX, focalY);
    if (edge < distance) {
        focalX *= edge / distance;
        focalY *= edge / distance;
    }
    focalX += centerX;
    focalY += centerY;
    if (rx == 0.0f)
        rx = 1.0f;
    if (ry == 0.0f)
        ry = 1.0f;
    ratio = rx / ry;
}

Ramp::Ramp(std::vector<Stop> stops)
    : m_stops(std::move(stops))
{
    float highest = -std::numeric_limits<float>::infinity();
    m_limits.push_back(highest);
    for (std::size_t i = 1; i < m_stops.size(); ++i) {
        highest = std::max(highest, m_stops[i].position);
        m_limits.push_back(highest);
    }
    m_limits.push_back(std::numeric_limits<float>::infinity());
}

// The first position above t is the first that raises the highest one above it, and those are in order.
std::size_t Ramp::firstAbove(float t) const
{
    const auto end = m_limits.begin() + std::ptrdiff_t(m_stops.size());
    return std::size_t(std::upper_bound(m_limits.begin(), end, t) - m_limits.begin());
}

void Ramp::mix(float t, float* channels) const
{
    const std::size_t above = firstAbove(t);
    const Stop& previous = m_stops[above - 1];
    const bool isLast = above == m_stops.size();
    const Stop& next = isLast ? previous : m_stops[above];
    const float f = isLast ? 1.0f : (t - previous.position) / (next.position - previous.position);
    for (int c = 0; c < 4; ++c)
        channels[c] = next.channels[c] * f + previous.channels[c] * (1.0f - f);
}

} // namespace Ondrel::GradientRows

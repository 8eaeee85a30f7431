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
    const auto isBelow = [](float v, float limit) { return std::abs(v) < limit; };
    isOrdinary = isBelow(centerX, 1e9f) && isBelow(centerY, 1e9f) && isBelow(focalX, 1e9f) && isBelow(focalY, 1e9f) &&
                 isBelow(ratio, 1e6f) && isBelow(1.0f / ratio, 1e6f);
}

namespace
{

// The distances of a row from the focal point and from the centre, as they are computed for each of its pixels where
// nothing is turned: there the column adds a zero to them.
struct RowOffsets {
    float toFocus, toCentre;

    RowOffsets(RadialEllipse const& e, int y)
    {
        const float turnedY = e.cosine * (float(y) - e.centerY) + e.centerY;
        toFocus = (turnedY - e.focalY) * e.ratio;
        toCentre = (turnedY - e.centerY) * e.ratio;
    }
};

} // namespace

// Without a turn, a row takes part in the position of a pixel by these two offsets alone, and by them only in the
// products toFocus * toFocus, toCentre * toCentre and (toFocus / distance) * toCentre, where the distance is the root
// of a sum of squares. Rounding to nearest does not depend on signs, so all three are the same bits for both offsets
// negated; an offset of 0 may at most turn the sign of a product that is 0. Whether two rows are such is looked up in
// the rounded offsets: they are for whole and half centres, and mostly are not for others.
int twinRow(RadialEllipse const& ellipse, int y)
{
    if (ellipse.sine != 0.0f)
        return -1;
    const double mirrored = std::floor(2.0 * double(ellipse.centerY) + 0.5) - double(y);
    if (!(mirrored >= 0.0 && mirrored <= double(std::numeric_limits<int>::max())))
        return -1;
    const RowOffsets here(ellipse, y);
    const RowOffsets there(ellipse, int(mirrored));
    const bool isTwin = here.toFocus == -there.toFocus && here.toCentre == -there.toCentre;
    return isTwin ? int(mirrored) : -1;
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

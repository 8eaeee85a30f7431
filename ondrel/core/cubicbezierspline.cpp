#include <ondrel/core/cubicbezierspline.h>

#include <algorithm>
#include <cstdint>
#include <limits>

namespace Ondrel
{
namespace
{

using Point = CubicBezierSpline::Point;

int truncated(double v)
{
    constexpr double low = std::numeric_limits<int>::min();
    constexpr double high = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(v, low, high));
}

float distance(int from, int to)
{
    return static_cast<float>(std::int64_t{to} - from);
}

float slope(const Point& a, const Point& b)
{
    return a.x == b.x ? 0.0f : distance(a.y, b.y) / distance(a.x, b.x);
}

struct Controls {
    int c1;
    int c2;
};

// The inner control values of the segment between points i and i + 1.
Controls controlsOf(const std::vector<Point>& points, std::size_t i)
{
    const Point& p0 = points[i];
    const Point& p3 = points[i + 1];
    const double y0 = p0.y;
    const double y3 = p3.y;
    if (points.size() == 2)
        return {truncated((y3 - y0) / 3.0 + y0), truncated((y3 - y0) * 0.6666666666666666 + y0)};

    const float dx = distance(p0.x, p3.x);
    const auto afterStart = [&] { return truncated(static_cast<double>(slope(points[i - 1], p3) * dx) / 3.0 + y0); };
    const auto beforeEnd = [&] { return truncated(y3 - static_cast<double>(slope(p0, points[i + 2]) * dx) / 3.0); };
    // The outer knots have a neighbour on one side only: their control lies half way to the other one.
    if (i == 0) {
        const int c2 = beforeEnd();
        return {truncated((c2 - y0) * 0.5 + y0), c2};
    }
    if (i + 2 == points.size()) {
        const int c1 = afterStart();
        return {c1, truncated((c1 - y3) * 0.5 + y3)};
    }
    return {afterStart(), beforeEnd()};
}

// The parameter runs evenly along x, so the curve is a function of x without any root finding.
void drawSegment(std::vector<float>& table, const Point& p0, const Point& p3, Controls controls, float limit)
{
    const float dx = distance(p0.x, p3.x);
    const auto y0 = static_cast<float>(p0.y);
    const auto y3 = static_cast<float>(p3.y);
    const auto c1 = static_cast<float>(controls.c1);
    const auto c2 = static_cast<float>(controls.c2);
    const std::int64_t end = std::min<std::int64_t>(p3.x, static_cast<std::int64_t>(table.size()));
    for (std::int64_t x = std::max(p0.x, 0); x < end; ++x) {
        const float t = static_cast<float>(x - p0.x) / dx;
        const float u = 1.0f - t;
        const float u2 = u * u;
        const float t2 = t * t;
        const float value = u2 * u * y0 + 3.0f * u2 * t * c1 + 3.0f * u * t2 * c2 + t2 * t * y3;
        table[static_cast<std::size_t>(x)] = std::max(std::min(value, limit), 0.0f);
    }
}

} // namespace

bool CubicBezierSpline::operator==(CubicBezierSpline const& other) const
{
    return std::equal(m_points.begin(), m_points.end(), other.m_points.begin(), other.m_points.end(),
                      [](const Point& a, const Point& b) { return a.x == b.x && a.y == b.y; });
}

void CubicBezierSpline::setPoints(std::vector<Point> const& points)
{
    m_points = points;
}

void CubicBezierSpline::smoothSpline(std::vector<float>& table, int size, int maxValue) const
{
    if (m_points.empty())
        return;
    const auto entries = static_cast<std::size_t>(std::max(size, 0));
    table.assign(entries, 0.0f);
    for (std::size_t i = 0; i + 1 < m_points.size(); ++i)
        drawSegment(table, m_points[i], m_points[i + 1], controlsOf(m_points, i), static_cast<float>(maxValue));

    // Knots need not be validated, so both ends may lie outside the table.
    const auto first = static_cast<std::size_t>(std::max(m_points.front().x, 0));
    if (first < entries)
        std::fill_n(table.begin(), first, table[first]);
    const auto last = std::min(static_cast<std::size_t>(std::max(m_points.back().x, 0)), entries);
    std::fill(table.begin() + static_cast<std::ptrdiff_t>(last), table.end(), static_cast<float>(m_points.back().y));
}

void CubicBezierSpline::roundedSpline(std::vector<unsigned short>& table, int size, int maxValue) const
{
    std::vector<float> exact;
    smoothSpline(exact, size, maxValue);
    const double limit = std::clamp(maxValue, 0, 65535);
    table.resize(exact.size());
    std::transform(exact.begin(), exact.end(), table.begin(), [limit](float value) {
        return static_cast<unsigned short>(std::clamp(static_cast<double>(value) + 0.5, 0.0, limit));
    });
}

} // namespace Ondrel

#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <ondrel/pixel/gradientrows_p.h>
#include <vector>

namespace Ondrel::GradientRows
{

// The tone curve of positions; changes nothing if it has fewer than two knots.
class PositionCurve
{
public:
    explicit PositionCurve(std::vector<CubicBezierSpline::Point> const& knots)
    {
        if (knots.size() < 2)
            return;
        CubicBezierSpline spline;
        spline.setPoints(knots);
        spline.roundedSpline(m_table, 65536, 65535);
    }

    void apply(float* t, std::size_t count) const
    {
        if (m_table.empty())
            return;
        for (std::size_t i = 0; i < count; ++i)
            if (!std::isnan(t[i]))
                t[i] = float(m_table[std::size_t(t[i] * 65535.0f)]) / 65535.0f;
    }

private:
    std::vector<unsigned short> m_table;
};

// Calls body(x, count, t) for runs of neighbouring pixels of row y, from `left` to `right`, with their positions. `row`
// is the image's row y if the body writes to it, null otherwise.
template <typename Geometry, typename Body>
void forEachRun(Geometry const& geometry, PositionCurve const& curve, int y, int left, int right,
                const std::uint16_t* row, Body body)
{
    float t[kRun];
    for (int x = left; x < right; x += int(kRun)) {
        const std::size_t count = std::min(kRun, std::size_t(right - x));
        positions(geometry, x, y, count, t, row ? row + std::size_t(x) * 4 : nullptr);
        curve.apply(t, count);
        body(x, count, static_cast<const float*>(t));
    }
}

} // namespace Ondrel::GradientRows

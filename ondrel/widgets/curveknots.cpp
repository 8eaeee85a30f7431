#include <ondrel/widgets/curveknots_p.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace Ondrel
{
namespace
{

constexpr int kReach = 3277; // about 5 % of the width

// Towards zero; an area without a width or height has no place for a knot, and gives 0.
int truncated(double v)
{
    return std::isfinite(v) ? int(std::clamp(v, -2147483648.0, 2147483647.0)) : 0;
}

int knotX(const QPointF& position, const QSizeF& area)
{
    return truncated(position.x() / area.width() * 65535.0);
}

int knotY(const QPointF& position, const QSizeF& area)
{
    return std::clamp(truncated(65535.0 * ((area.height() - position.y()) / area.height())), 0, 65535);
}

} // namespace

int CurveKnots::closest(int x, int& distance) const
{
    distance = std::numeric_limits<int>::max();
    int index = -1;
    for (std::size_t i = 0; i < m_knots.size(); ++i) {
        const std::int64_t away = std::abs(std::int64_t{x} - m_knots[i].x);
        if (away < distance) {
            distance = int(away);
            index = int(i);
        }
    }
    return index;
}

int CurveKnots::grab(const QPointF& position, const QSizeF& area)
{
    const int x = knotX(position, area);
    int distance = 0;
    m_dragged = closest(x, distance);
    if (distance >= kReach) {
        const auto behind = std::find_if(m_knots.begin(), m_knots.end(), [x](const Point& knot) { return knot.x > x; });
        m_dragged = int(behind - m_knots.begin()); // before the insertion, which may move all knots
        m_knots.insert(behind, Point{x, 0});
    }
    m_draggedPresent = true;
    return m_dragged;
}

bool CurveKnots::fitsBetweenNeighbours(std::size_t index) const
{
    const int previous = index > 0 ? m_knots[index - 1].x : -1;
    return previous < m_knots[index].x && (index + 1 == m_knots.size() || m_knots[index].x < m_knots[index + 1].x);
}

bool CurveKnots::drag(const QPointF& position, const QSizeF& area)
{
    const auto index = std::size_t(m_dragged);
    // The curve may have been replaced since the knot was taken.
    if (m_dragged < 0 || index > m_knots.size() || (m_draggedPresent && index == m_knots.size()))
        return false;
    if (!m_draggedPresent)
        m_knots.insert(m_knots.begin() + m_dragged, Point{0, 0});
    Point& knot = m_knots[index];
    const Point moved{knotX(position, area), knotY(position, area)};
    if (knot.x == moved.x && knot.y == moved.y)
        return false;

    knot = moved;
    const bool last = index + 1 == m_knots.size();
    const bool fits = fitsBetweenNeighbours(index);
    m_draggedPresent = fits || index == 0 || last;
    if (!m_draggedPresent)
        m_knots.erase(m_knots.begin() + m_dragged);
    else if (!fits || last)
        knot.x = std::clamp(knot.x, 0, 65535);
    return true;
}

void CurveKnots::endDrag()
{
    m_dragged = -1;
    m_draggedPresent = false;
}

bool CurveKnots::remove(int index)
{
    if (index < 0 || std::size_t(index) >= m_knots.size() || m_knots.size() < 3)
        return false;
    m_knots.erase(m_knots.begin() + index);
    if (index == m_dragged)
        endDrag();
    return true;
}

} // namespace Ondrel

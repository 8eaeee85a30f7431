#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/cubicbezierspline.h>

#include <QPointF>
#include <QSizeF>

#include <vector>

namespace Ondrel
{

// The knots of one curve and the drag of one of them, without a widget. Positions are those of the mouse in an area of
// the given size, y downwards.
class ONDREL_EXPORT CurveKnots
{
public:
    using Point = CubicBezierSpline::Point;

    const std::vector<Point>& knots() const { return m_knots; }
    void setKnots(const std::vector<Point>& knots) { m_knots = knots; }
    void reset() { m_knots = {{0, 0}, {65535, 65535}}; }

    // The knot whose x is nearest, the earlier one at a tie; -1 and a distance of 2147483647 if there is none.
    int closest(int x, int& distance) const;

    // Takes the knot that is within 3276 of the position's x, or puts a new one there. Gives its index.
    int grab(const QPointF& position, const QSizeF& area);

    // Moves the knot that was taken. A knot between two others leaves the curve when it passes one of them, and comes
    // back with the mouse; the ends stay. False if nothing has changed.
    bool drag(const QPointF& position, const QSizeF& area);
    void endDrag();
    int dragged() const { return m_dragged; }

    // False if there is no such knot, or if it is one of the last two. Ends a drag of it.
    bool remove(int index);

private:
    bool fitsBetweenNeighbours(std::size_t index) const;

    std::vector<Point> m_knots = {{0, 0}, {65535, 65535}};
    int m_dragged = -1;
    bool m_draggedPresent = false; // in the curve at the moment
};

} // namespace Ondrel

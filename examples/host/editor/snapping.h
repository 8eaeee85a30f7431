#pragma once

#include <QLineF>
#include <QPointF>
#include <QRectF>

#include <map>
#include <vector>

namespace Host
{

// How far to move a rectangle so that its edges or its centre line up with those of others: for x and y the nearest
// line within the radius, with the guides that show it, from the rectangle to the one it lines up with.
struct Snap {
    QPointF offset;
    std::vector<QLineF> guides;
};
Snap snapTo(const QRectF& moved, const std::vector<QRectF>& others, double radius);

enum class Alignment { Left, Right, Top, Bottom, CentersAcross, CentersDown };

// The new corners of rectangles that are lined up at the outermost of their edges, or at the centre of them all. As
// many as there are rectangles, in their order.
std::vector<QPointF> aligned(const std::vector<QRectF>& areas, Alignment alignment);

// The new corners of rectangles that are moved so that the gaps between them are equal; the first and the last one
// along the direction stay. Gaps are negative where there is too little room.
std::vector<QPointF> distributed(const std::vector<QRectF>& areas, Qt::Orientation orientation);

} // namespace Host

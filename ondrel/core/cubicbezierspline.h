#pragma once

#include <ondrel/ondrel_export.h>

#include <vector>

namespace Ondrel
{

// A curve through knots, as a table: one cubic Bezier segment between each pair of neighbours. At an inner knot the
// tangent is the chord between the knots beside it. Const functions may be called from any number of threads.
class ONDREL_EXPORT CubicBezierSpline
{
public:
    // A knot; both coordinates are meant to lie in 0 to 65535.
    struct Point {
        int x = 0;
        int y = 0;
    }; // aggregate

    bool operator==(CubicBezierSpline const& other) const;

    // Replaces the knots, which should ascend in x (see ValidateCurve).
    void setPoints(std::vector<Point> const& points);

    // Replaces `table` by the values at x = 0 to size - 1, between knots limited to 0 to maxValue. Before the first
    // knot its value goes on, after the last one that knot's y, without a limit. A lone knot gives 0 below it. Without
    // knots the table stays as it is. Knots that do not ascend, or lie outside the table, give values of no meaning.
    //
    // Between the knots (x0, y0) and (x3, y3) the value is the Bezier polynomial of y0, c1, c2, y3 at
    // (x - x0) / (x3 - x0), in single precision. With s the slope of the chord between the neighbours of a knot,
    // c1 = y0 + s * (x3 - x0) / 3 and c2 = y3 - s * (x3 - x0) / 3, truncated to integers. The end of a curve has no
    // such chord: there the control value lies half way between its knot and the other control value. Between two
    // knots alone, c1 and c2 lie on the straight line.
    void smoothSpline(std::vector<float>& table, int size, int maxValue) const;

    // The same, rounded (halves up) and limited to 0 to maxValue everywhere. Without knots the table becomes empty.
    void roundedSpline(std::vector<unsigned short>& table, int size, int maxValue) const;

private:
    std::vector<Point> m_points;
};

} // namespace Ondrel

#pragma once

#include <ondrel/ondrel_export.h>

#include <vector>
namespace Ondrel
{
class ONDREL_EXPORT CubicBezierSpline
{
public:
    struct Point {
        int x = 0;
        int y = 0;
    }; // aggregate
    bool operator==(CubicBezierSpline const& other) const;
    void setPoints(std::vector<Point> const& points);
    void smoothSpline(std::vector<float>& table, int size, int maxValue) const;
    void roundedSpline(std::vector<unsigned short>& table, int size, int maxValue) const;
};
} // namespace Ondrel

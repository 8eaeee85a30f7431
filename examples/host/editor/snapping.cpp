#include "snapping.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace Host
{
namespace
{

// One direction of a rectangle: its extent along and across.
struct Extent {
    double from, to, acrossFrom, acrossTo;
    double line(int index) const { return index == 0 ? from : index == 1 ? (from + to) / 2 : to; }
};

Extent extentOf(const QRectF& area, bool across)
{
    return across ? Extent{area.left(), area.right(), area.top(), area.bottom()}
                  : Extent{area.top(), area.bottom(), area.left(), area.right()};
}

// The nearest pair of lines; edges go to edges and centres to centres, as other pairs only look like chance.
bool nearest(const Extent& moved, const std::vector<QRectF>& others, bool across, double radius, double& offset)
{
    double least = radius;
    bool found = false;
    for (const QRectF& other : others) {
        const Extent extent = extentOf(other, across);
        for (const auto& [mine, its] : {std::pair{0, 0}, {0, 2}, {2, 0}, {2, 2}, {1, 1}}) {
            const double distance = extent.line(its) - moved.line(mine);
            if (std::abs(distance) < least) {
                least = std::abs(distance);
                offset = distance;
                found = true;
            }
        }
    }
    return found;
}

void addGuides(const Extent& moved, const std::vector<QRectF>& others, bool across, std::vector<QLineF>& guides)
{
    std::map<double, std::pair<double, double>> lines; // by their place: how far they reach
    for (const QRectF& other : others) {
        const Extent extent = extentOf(other, across);
        for (const auto& [mine, its] : {std::pair{0, 0}, {0, 2}, {2, 0}, {2, 2}, {1, 1}}) {
            if (std::abs(extent.line(its) - moved.line(mine)) > 1e-6)
                continue;
            const auto [line, isNew] =
                lines.try_emplace(std::round(moved.line(mine) * 16) / 16, moved.acrossFrom, moved.acrossTo);
            line->second.first = std::min(line->second.first, extent.acrossFrom);
            line->second.second = std::max(line->second.second, extent.acrossTo);
        }
    }
    for (const auto& [at, reach] : lines)
        guides.push_back(across ? QLineF(at, reach.first, at, reach.second)
                                : QLineF(reach.first, at, reach.second, at));
}

} // namespace

Snap snapTo(const QRectF& moved, const std::vector<QRectF>& others, double radius)
{
    Snap snap;
    double x = 0, y = 0;
    const bool snapsX = nearest(extentOf(moved, true), others, true, radius, x);
    const bool snapsY = nearest(extentOf(moved, false), others, false, radius, y);
    snap.offset = QPointF(x, y);
    const QRectF there = moved.translated(snap.offset);
    if (snapsX)
        addGuides(extentOf(there, true), others, true, snap.guides);
    if (snapsY)
        addGuides(extentOf(there, false), others, false, snap.guides);
    return snap;
}

std::vector<QPointF> aligned(const std::vector<QRectF>& areas, Alignment alignment)
{
    const QRectF whole = std::accumulate(areas.begin(), areas.end(), QRectF(),
                                         [](const QRectF& sum, const QRectF& area) { return sum.united(area); });
    std::vector<QPointF> corners;
    for (QRectF area : areas) {
        if (alignment == Alignment::Left)
            area.moveLeft(whole.left());
        else if (alignment == Alignment::Right)
            area.moveRight(whole.right());
        else if (alignment == Alignment::Top)
            area.moveTop(whole.top());
        else if (alignment == Alignment::Bottom)
            area.moveBottom(whole.bottom());
        else if (alignment == Alignment::CentersAcross)
            area.moveCenter(QPointF(whole.center().x(), area.center().y()));
        else
            area.moveCenter(QPointF(area.center().x(), whole.center().y()));
        corners.push_back(area.topLeft());
    }
    return corners;
}

std::vector<QPointF> distributed(const std::vector<QRectF>& areas, Qt::Orientation orientation)
{
    const bool across = orientation == Qt::Horizontal;
    std::vector<QPointF> corners;
    for (const QRectF& area : areas)
        corners.push_back(area.topLeft());
    if (areas.size() < 3)
        return corners;
    std::vector<std::size_t> order(areas.size());
    std::iota(order.begin(), order.end(), std::size_t(0));
    const auto extent = [&](std::size_t i) { return extentOf(areas[i], across); };
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return extent(a).line(1) < extent(b).line(1); });
    double room = extent(order.back()).to - extent(order.front()).from;
    for (const std::size_t i : order)
        room -= extent(i).to - extent(i).from;
    const double gap = room / double(areas.size() - 1);
    double at = extent(order.front()).from;
    for (const std::size_t i : order) {
        (across ? corners[i].rx() : corners[i].ry()) = at;
        at += extent(i).to - extent(i).from + gap;
    }
    return corners;
}

} // namespace Host

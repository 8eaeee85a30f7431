#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/rect.h>

#include <QPoint>
#include <QPointF>
#include <QPolygon>
#include <QSize>
#include <QTransform>

#include <Eigen/Core>

#include <vector>

namespace Ondrel
{

// Routes from a base image to a child image, each a list of geometric steps; made by TransformGraph. A route is named
// by its index.
//
// Matrices are homogeneous and act on column vectors. The clipped mappings walk a route step by step and give up where
// the point, its coordinates truncated toward zero, leaves the rectangle of a step; the NoClip mappings use the product
// of all steps. A singular or degenerate matrix is not detected: coordinates become infinite or NaN, and one that does
// not fit into int becomes the lowest int.
//
// A value without locks: any number of threads may read a series as long as none calls setPaths.
class ONDREL_EXPORT TransformSeries
{
public:
    struct Node {
        // From the previous step's coordinates to those of this step's output.
        Eigen::Matrix3d transform = Eigen::Matrix3d::Identity();
        RectT<int> rect;     // what the output covers, both ends inclusive
        QSize inputSizeHint; // (-1, -1) for none
    };

    TransformSeries(); // no routes

    bool empty() const;
    unsigned int pathCount() const;

    // Of the first node of the first route; (-1, -1) if there is none.
    QSize baseSize() const;
    QSize baseInputSizeHint() const;

    // The routes, each from the base node to the child node. To be called once, on a fresh series: the products of the
    // routes are appended, so that after a second call route i still has the product it got in the first.
    void setPaths(const std::vector<std::vector<Node>>& paths);

    // One point for each route, in order, in which no step's rectangle excludes the point; false if there is none, and
    // then `child` is empty. A route without nodes gives the point itself.
    bool mapFromBaseToChild(const QPoint& base, std::vector<QPoint>& child) const;

    // By the first route in which no step's rectangle excludes the point, each tested before its step is undone; the
    // result is not tested and not rounded. False, with `base` and `*pathIndex` unwritten, if there is no such route.
    // `pathIndex` may be null.
    bool mapFromChildToBase(const QPointF& child, QPointF& base, unsigned int* pathIndex) const;

    // The point by the whole route, with no rectangle consulted. False, with the result unwritten, if there is no such
    // route.
    bool mapFromBaseToChildNoClip(unsigned int pathIndex, const QPointF& base, QPointF& child) const;
    bool mapFromChildToBaseNoClip(unsigned int pathIndex, const QPointF& child, QPointF& base) const;
    // The same mapping as a QTransform, from base to child.
    bool transformFromBaseToChild(unsigned int pathIndex, QTransform& transform) const;

    // Appends one polygon for each route: where the base reaches in the child. It starts as the open polygon (0, 0),
    // (right, 0), (right, bottom), (0, bottom) of the first node's rectangle, and is mapped by each further node, with
    // coordinates truncated, and intersected with that node's rectangle, which closes it.
    void calculatePathPolygons(std::vector<QPolygon>& polygons) const;

private:
    std::vector<std::vector<Node>> m_paths;
    std::vector<Eigen::Matrix3d> m_baseToChild; // parallel to m_paths, or longer
    std::vector<Eigen::Matrix3d> m_childToBase;
};

} // namespace Ondrel

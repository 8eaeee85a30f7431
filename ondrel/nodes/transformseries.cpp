#include <ondrel/nodes/transformseries.h>

#include <QVector>

#include <Eigen/LU>

#include <limits>

namespace Ondrel
{
namespace
{

using Path = std::vector<TransformSeries::Node>;

// What the processor's own conversion gives, for every value: a cast that does not fit would be undefined.
int truncated(double v)
{
    constexpr double low = std::numeric_limits<int>::min();
    constexpr double high = std::numeric_limits<int>::max();
    return v > low - 1.0 && v < high + 1.0 ? static_cast<int>(v) : std::numeric_limits<int>::min();
}

QPoint truncatedPoint(const Eigen::Vector3d& point)
{
    return {truncated(point.x() / point.z()), truncated(point.y() / point.z())};
}

QPointF projected(const Eigen::Matrix3d& m, const QPointF& point)
{
    const double x = point.x();
    const double y = point.y();
    const double w = m(2, 0) * x + m(2, 1) * y + m(2, 2);
    return {(m(0, 0) * x + m(0, 1) * y + m(0, 2)) / w, (m(1, 0) * x + m(1, 1) * y + m(1, 2)) / w};
}

bool mapForward(const Path& path, const QPoint& base, QPoint& child)
{
    // w is carried along unchanged, so that a division at one step costs no precision at the next.
    Eigen::Vector3d point(base.x(), base.y(), 1.0);
    child = base;
    for (const TransformSeries::Node& node : path) {
        point = node.transform * point;
        child = truncatedPoint(point);
        if (!node.rect.contains(child))
            return false;
    }
    return true;
}

bool mapBackward(const Path& path, const QPointF& child, QPointF& base)
{
    Eigen::Vector3d point(child.x(), child.y(), 1.0);
    for (auto node = path.rbegin(); node != path.rend(); ++node) {
        if (!node->rect.contains(truncatedPoint(point)))
            return false;
        point = node->transform.inverse() * point;
    }
    base = QPointF(point.x() / point.z(), point.y() / point.z());
    return true;
}

QPolygon pathPolygon(const Path& path)
{
    if (path.empty())
        return {};
    // An image's own origin is (0, 0), wherever the rectangle of its node lies.
    const int right = path.front().rect.right();
    const int bottom = path.front().rect.bottom();
    QPolygon polygon(QVector<QPoint>{{0, 0}, {right, 0}, {right, bottom}, {0, bottom}});
    for (auto node = path.begin() + 1; node != path.end(); ++node) {
        for (QPoint& point : polygon) {
            const QPointF mapped = projected(node->transform, point);
            point = QPoint(truncated(mapped.x()), truncated(mapped.y()));
        }
        const RectT<int>& rect = node->rect;
        polygon = polygon.intersected(
            QPolygon(QVector<QPoint>{rect.topLeft(), rect.topRight(), rect.bottomRight(), rect.bottomLeft()}));
    }
    return polygon;
}

} // namespace

TransformSeries::TransformSeries() = default;

bool TransformSeries::empty() const
{
    return m_paths.empty();
}

unsigned int TransformSeries::pathCount() const
{
    return static_cast<unsigned int>(m_paths.size());
}

QSize TransformSeries::baseSize() const
{
    return m_paths.empty() || m_paths.front().empty() ? QSize() : m_paths.front().front().rect.size();
}

QSize TransformSeries::baseInputSizeHint() const
{
    return m_paths.empty() || m_paths.front().empty() ? QSize() : m_paths.front().front().inputSizeHint;
}

void TransformSeries::setPaths(const std::vector<std::vector<Node>>& paths)
{
    m_paths = paths;
    for (const Path& path : m_paths) {
        Eigen::Matrix3d product = Eigen::Matrix3d::Identity();
        for (const Node& node : path)
            product = node.transform * product;
        m_baseToChild.push_back(product);
        m_childToBase.push_back(product.inverse());
    }
}

bool TransformSeries::mapFromBaseToChild(const QPoint& base, std::vector<QPoint>& child) const
{
    const QPoint from = base; // may be an element of `child`
    child.clear();
    for (const Path& path : m_paths)
        if (QPoint mapped; mapForward(path, from, mapped))
            child.push_back(mapped);
    return !child.empty();
}

bool TransformSeries::mapFromChildToBase(const QPointF& child, QPointF& base, unsigned int* pathIndex) const
{
    for (std::size_t i = 0; i < m_paths.size(); ++i)
        if (mapBackward(m_paths[i], child, base)) {
            if (pathIndex)
                *pathIndex = static_cast<unsigned int>(i);
            return true;
        }
    return false;
}

bool TransformSeries::mapFromBaseToChildNoClip(unsigned int pathIndex, const QPointF& base, QPointF& child) const
{
    if (pathIndex >= m_paths.size())
        return false;
    child = projected(m_baseToChild[pathIndex], base);
    return true;
}

bool TransformSeries::mapFromChildToBaseNoClip(unsigned int pathIndex, const QPointF& child, QPointF& base) const
{
    if (pathIndex >= m_paths.size())
        return false;
    base = projected(m_childToBase[pathIndex], child);
    return true;
}

bool TransformSeries::transformFromBaseToChild(unsigned int pathIndex, QTransform& transform) const
{
    if (pathIndex >= m_paths.size())
        return false;
    const Eigen::Matrix3d& m = m_baseToChild[pathIndex];
    // QTransform multiplies row vectors from the left, so its matrix is the transpose.
    transform.setMatrix(m(0, 0), m(1, 0), m(2, 0), m(0, 1), m(1, 1), m(2, 1), m(0, 2), m(1, 2), m(2, 2));
    return true;
}

void TransformSeries::calculatePathPolygons(std::vector<QPolygon>& polygons) const
{
    for (const Path& path : m_paths)
        polygons.push_back(pathPolygon(path));
}

} // namespace Ondrel

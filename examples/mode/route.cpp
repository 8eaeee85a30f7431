#include "route.h"

#include <QPolygonF>
#include <QTransform>

#include <cmath>

namespace Route
{
namespace
{

constexpr double kDegrees = 9;

Eigen::Matrix3d toMatrix(const QTransform& t)
{
    // QTransform has its vectors on the left.
    Eigen::Matrix3d matrix;
    matrix << t.m11(), t.m21(), t.m31(), t.m12(), t.m22(), t.m32(), t.m13(), t.m23(), t.m33();
    return matrix;
}

QPolygonF corners(QSize size)
{
    const qreal w = size.width(), h = size.height();
    return QPolygonF({{0, 0}, {w, 0}, {w, h}, {0, h}});
}

// Moves the result so that its bounding box begins at (0, 0).
Step placed(const QTransform& transform, QSize before)
{
    const QRectF box = transform.map(corners(before)).boundingRect();
    Step step;
    step.matrix = toMatrix(transform * QTransform::fromTranslate(-box.left(), -box.top()));
    step.size = QSize(int(box.width()), int(box.height()));
    return step;
}

Step rotation(QSize before)
{
    return placed(QTransform().rotate(-kDegrees), before);
}

Step perspective(QSize before)
{
    const QPolygonF from = corners(before);
    QPolygonF to = from;
    const qreal w = before.width(), h = before.height();
    to[0] += QPointF(0.16 * w, 0.05 * h);
    to[1] += QPointF(-0.08 * w, 0);
    to[3] += QPointF(0, -0.04 * h);
    QTransform transform;
    QTransform::quadToQuad(from, to, transform);
    return placed(transform, before);
}

Ondrel::TransformMap mapBetween(const QString& input, const Eigen::Matrix3d& matrix, QSize size)
{
    Ondrel::TransformMap map;
    map.inputField = input;
    map.outputField = "image";
    map.transform = matrix;
    map.rect = Ondrel::RectT<int>(QPoint(0, 0), size);
    return map;
}

} // namespace

Steps stepsFor(QSize cropped)
{
    Steps steps;
    steps.rotation = rotation(cropped);
    steps.perspective = perspective(steps.rotation.size);
    return steps;
}

TransformGraph graphFor(QSize photograph, const Ondrel::RectT<int>& frame)
{
    const Steps steps = stepsFor(frame.size());
    const Eigen::Matrix3d crop = toMatrix(QTransform::fromTranslate(-frame.left(), -frame.top()));
    TransformGraph graph;
    graph.addNode({PhotographNode, {mapBetween(QString(), Eigen::Matrix3d::Identity(), photograph)}});
    graph.addNode({CropNode, {mapBetween("image", crop, frame.size())}});
    graph.addNode({RotationNode, {mapBetween("image", steps.rotation.matrix, steps.rotation.size)}});
    graph.addNode({PerspectiveNode, {mapBetween("image", steps.perspective.matrix, steps.perspective.size)}});
    for (unsigned long id = PhotographNode; id < PerspectiveNode; ++id)
        graph.addEdge(id, "image", id + 1, "image");
    return graph;
}

} // namespace Route

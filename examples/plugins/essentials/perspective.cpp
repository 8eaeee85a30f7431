#include "corners.h"
#include "geometry.h"
#include "nodes.h"
#include "perspectivemode.h"
#include "values.h"

#include <ondrel/pixel/perspective.h>

#include <QPointF>

#include <Eigen/LU>

#include <cmath>
#include <optional>

namespace Essentials
{
namespace
{

// Where the corners of the picture go, in fractions of its size. What is missing stays.
Corners cornersOf(const QVariantMap& values)
{
    const QVariantList list = values.value("corners").toList();
    Corners corners = kUnmoved;
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const QVariant element = list.value(int(i));
        if (!element.canConvert<QPointF>())
            continue;
        const QPointF point = element.toPointF();
        corners[i] = {limited(point.x(), kLeastCorner, kGreatestCorner, corners[i].x()),
                      limited(point.y(), kLeastCorner, kGreatestCorner, corners[i].y())};
    }
    return corners;
}

// The homography from the unit square to four points, by the linear equations of each (R. Hartley, A. Zisserman,
// "Multiple View Geometry in Computer Vision", 2004, section 4.1, with the last element 1).
Eigen::Matrix3d homography(const Corners& corners)
{
    Eigen::Matrix<double, 8, 8> a;
    Eigen::Matrix<double, 8, 1> b;
    for (int i = 0; i < 4; ++i) {
        const Eigen::Vector2d& from = kUnmoved[std::size_t(i)];
        const Eigen::Vector2d& to = corners[std::size_t(i)];
        a.row(2 * i) << from.x(), from.y(), 1, 0, 0, 0, -from.x() * to.x(), -from.y() * to.x();
        a.row(2 * i + 1) << 0, 0, 0, from.x(), from.y(), 1, -from.x() * to.y(), -from.y() * to.y();
        b(2 * i) = to.x();
        b(2 * i + 1) = to.y();
    }
    const Eigen::Matrix<double, 8, 1> h = a.partialPivLu().solve(b);
    Eigen::Matrix3d matrix;
    matrix << h(0), h(1), h(2), h(3), h(4), h(5), h(6), h(7), 1;
    return matrix;
}

struct View {
    Eigen::Matrix3d matrix; // from the picture to the result
    QSize size;             // of the result
};

bool showsAll(const QVariantMap& values)
{
    return choice(values, "size", {"Same Size", "Whole Picture"}) == 1;
}

// None if the corners make no view, or the result would be too large.
std::optional<View> viewOf(const QVariantMap& values, const QSize& size)
{
    const Corners corners = cornersOf(values);
    if (!isConvex(corners))
        return std::nullopt;
    View view{scaling(size.width(), size.height()) * homography(corners) *
                  scaling(1.0 / size.width(), 1.0 / size.height()),
              size};
    if (!showsAll(values))
        return view;
    // The result begins at (0, 0), so that the library has nothing to add to it, at any scale.
    Eigen::Vector2d first = corners[0], last = corners[0];
    for (const Eigen::Vector2d& corner : corners) {
        first = first.cwiseMin(corner);
        last = last.cwiseMax(corner);
    }
    const double width = (last.x() - first.x()) * size.width(), height = (last.y() - first.y()) * size.height();
    if (width < 1 || height < 1 || width > 100000 || height > 100000)
        return std::nullopt;
    view.matrix = translation(-first.x() * size.width(), -first.y() * size.height()) * view.matrix;
    view.size = QSize(int(width), int(height));
    return view;
}

class PerspectiveNode : public GeometryFilter
{
public:
    Ondrel::ModeInterface* createMode() const override { return new PerspectiveMode; }

protected:
    QSize sizeOf(const QVariantMap& values, const QSize& size) const override
    {
        const auto view = viewOf(values, size);
        return view ? view->size : size;
    }

    Eigen::Matrix3d matrixOf(const QVariantMap& values, const QSize& size) const override
    {
        const auto view = viewOf(values, size);
        return view ? view->matrix : Eigen::Matrix3d(Eigen::Matrix3d::Identity());
    }

    ImagePtr process(const Work& work) const override
    {
        if (cornersOf(work.values) == kUnmoved)
            return work.image; // the library would resample it
        const auto view = viewOf(work.values, work.fullSize);
        if (!view)
            throw Problem(Text::tr("No view of the picture has its corners at these places."));
        ImagePtr result;
        Transform(*work.image, Ondrel::RectT<int>::invalid(), work.scale,
                  showsAll(work.values) ? TransformSizeBounding : TransformSizeKeep, filterMethod(work.values),
                  view->matrix, result);
        if (!result || !result->data)
            throw Problem(Text::tr("Nothing is left of the picture."));
        return withProfile(Image(*result), work.image->colorProfile);
    }
};

} // namespace

Host::NodeEntry perspectiveNode()
{
    return entryOf<PerspectiveNode>("Perspective");
}

} // namespace Essentials

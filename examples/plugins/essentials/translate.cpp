#include "geometry.h"
#include "nodes.h"
#include "values.h"

#include <ondrel/pixel/geometry.h>

#include <QPoint>

#include <cmath>

namespace Essentials
{
namespace
{

constexpr int kFarthest = 30000;

QPoint shiftOf(const QVariantMap& values)
{
    return QPoint(wholeNumber(values, "x", -kFarthest, kFarthest, 0),
                  wholeNumber(values, "y", -kFarthest, kFarthest, 0));
}

class TranslateNode : public GeometryFilter
{
protected:
    QSize sizeOf(const QVariantMap& values, const QSize& size) const override
    {
        return CalculateTranslateSize(size, shiftOf(values).x(), shiftOf(values).y());
    }

    Eigen::Matrix3d matrixOf(const QVariantMap& values, const QSize&) const override
    {
        return translation(shiftOf(values).x(), shiftOf(values).y());
    }

    ImagePtr process(const Work& work) const override
    {
        const QPoint shift = shiftOf(work.values);
        return withProfile(
            Translate(*work.image, int(std::lround(shift.x() * work.scale)), int(std::lround(shift.y() * work.scale))),
            work.image->colorProfile);
    }
};

} // namespace

Host::NodeEntry translateNode()
{
    return entryOf<TranslateNode>("Translate");
}

} // namespace Essentials

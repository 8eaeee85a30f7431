#include "geometry.h"
#include "nodes.h"
#include "values.h"

#include <ondrel/pixel/geometry.h>

namespace Essentials
{
namespace
{

enum class Axis { Horizontal, Vertical, Both };

Axis axisOf(const QVariantMap& values)
{
    return Axis(choice(values, "axis", {"Left and Right", "Top and Bottom", "Both"}));
}

class MirrorNode : public GeometryFilter
{
protected:
    QSize sizeOf(const QVariantMap&, const QSize& size) const override { return size; }

    Eigen::Matrix3d matrixOf(const QVariantMap& values, const QSize& size) const override
    {
        const Axis axis = axisOf(values);
        const bool x = axis != Axis::Vertical, y = axis != Axis::Horizontal;
        return translation(x ? size.width() : 0, y ? size.height() : 0) * scaling(x ? -1 : 1, y ? -1 : 1);
    }

    ImagePtr process(const Work& work) const override
    {
        const auto mirrored = [&work] {
            switch (axisOf(work.values)) {
            case Axis::Vertical:
                return VerticalMirror(*work.image);
            case Axis::Both:
                return Rotate180(*work.image);
            default:
                return HorizontalMirror(*work.image);
            }
        };
        return withProfile(mirrored(), work.image->colorProfile);
    }
};

} // namespace

Host::NodeEntry mirrorNode()
{
    return entryOf<MirrorNode>("Mirror");
}

} // namespace Essentials

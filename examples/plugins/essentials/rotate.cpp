#include "geometry.h"
#include "nodes.h"
#include "values.h"

#include <ondrel/pixel/perspective.h>

#include <cmath>

namespace Essentials
{
namespace
{

float angleOf(const QVariantMap& values)
{
    return float(number(values, "angle", -360, 360, 0));
}

RotateSize modeOf(const QVariantMap& values)
{
    constexpr RotateSize modes[] = {RotateSizeBounding, RotateSizeKeep, RotateSizeInscribed};
    return modes[choice(values, "size", {"Whole Picture", "Same Size", "Without Corners"})];
}

class RotateNode : public GeometryFilter
{
protected:
    QSize sizeOf(const QVariantMap& values, const QSize& size) const override
    {
        return CalculateRotateSize(size, angleOf(values), modeOf(values));
    }

    // Middle to middle; the library's canvases, whose sides are whole, may lie up to a pixel away from that.
    Eigen::Matrix3d matrixOf(const QVariantMap& values, const QSize& size) const override
    {
        const double degrees = double(angleOf(values));
        const double radians = degrees * 3.14159265358979323846 / 180;
        const bool quarter = std::fmod(degrees, 90) == 0;
        const double s = quarter ? std::round(std::sin(radians)) : std::sin(radians);
        const double c = quarter ? std::round(std::cos(radians)) : std::cos(radians);
        Eigen::Matrix3d turn;
        turn << c, s, 0, -s, c, 0, 0, 0, 1;
        const QSize result = sizeOf(values, size);
        return translation(result.width() / 2.0, result.height() / 2.0) * turn *
               translation(-size.width() / 2.0, -size.height() / 2.0);
    }

    ImagePtr process(const Work& work) const override
    {
        const float angle = angleOf(work.values);
        if (std::fmod(angle, 360.0f) == 0.0f)
            return work.image; // the library would resample it
        Image turned = Rotate(*work.image, angle, modeOf(work.values), filterMethod(work.values));
        if (!turned.data)
            throw Problem(Text::tr("Nothing is left of the picture."));
        return withProfile(std::move(turned), work.image->colorProfile);
    }
};

} // namespace

Host::NodeEntry rotateNode()
{
    return entryOf<RotateNode>("Rotate");
}

} // namespace Essentials

#include "geometry.h"
#include "nodes.h"
#include "values.h"

#include <ondrel/pixel/scale.h>

namespace Essentials
{
namespace
{

constexpr int kLongestSide = 15000;

class ResizeNode : public GeometryFilter
{
protected:
    QSize sizeOf(const QVariantMap& values, const QSize& size) const override
    {
        const QStringList units{"Percentage", "Pixels"}, aspects{"Keep", "Ignore", "Cover"};
        unsigned int width = 0, height = 0;
        CalculateScaleSize(
            units[choice(values, "unit", units)], aspects[choice(values, "aspect", aspects)], unsigned(size.width()),
            unsigned(size.height()), float(number(values, "percentwidth", 0, 10000, 100)),
            float(number(values, "percentheight", 0, 10000, 100)),
            unsigned(wholeNumber(values, "pixelwidth", 0, kLongestSide, size.width())),
            unsigned(wholeNumber(values, "pixelheight", 0, kLongestSide, size.height())), 1, width, height);
        return QSize(int(width), int(height));
    }

    Eigen::Matrix3d matrixOf(const QVariantMap& values, const QSize& size) const override
    {
        const QSize result = sizeOf(values, size);
        return scaling(double(result.width()) / size.width(), double(result.height()) / size.height());
    }

    ImagePtr process(const Work& work) const override
    {
        const QSize size = scaledSize(work.fullResult, work.scale);
        return withProfile(
            Scale(*work.image, unsigned(size.width()), unsigned(size.height()), filterMethod(work.values)),
            work.image->colorProfile);
    }
};

} // namespace

Host::NodeEntry resizeNode()
{
    return entryOf<ResizeNode>("Resize");
}

} // namespace Essentials

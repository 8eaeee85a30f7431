#include "cropnodemode.h"
#include "geometry.h"
#include "nodes.h"
#include "values.h"

#include <ondrel/pixel/geometry.h>

#include <QRect>

#include <algorithm>
#include <cmath>

namespace Essentials
{
namespace
{

// Where a side begins and how long it is, inside the picture; a length of 0 goes to its edge.
std::pair<int, int> span(const QVariantMap& values, const QString& start, const QString& length, int whole)
{
    const int from = wholeNumber(values, start, 0, whole - 1, 0);
    const int wanted = wholeNumber(values, length, 0, whole, 0);
    return {from, wanted == 0 ? whole - from : std::min(wanted, whole - from)};
}

QRect cropRect(const QVariantMap& values, const QSize& size)
{
    const auto [left, width] = span(values, "left", "width", size.width());
    const auto [top, height] = span(values, "top", "height", size.height());
    return QRect(left, top, width, height);
}

class CropNode : public GeometryFilter
{
public:
    Ondrel::ModeInterface* createMode() const override { return new CropNodeMode; }

protected:
    QSize sizeOf(const QVariantMap& values, const QSize& size) const override { return cropRect(values, size).size(); }

    Eigen::Matrix3d matrixOf(const QVariantMap& values, const QSize& size) const override
    {
        const QRect rect = cropRect(values, size);
        return translation(-rect.left(), -rect.top());
    }

    ImagePtr process(const Work& work) const override
    {
        const QRect full = cropRect(work.values, work.fullSize);
        const QSize size = scaledSize(full.size(), work.scale);
        const auto start = [&work](int from, int length, unsigned int whole) {
            const int rounded = int(std::lround(from * work.scale));
            return unsigned(std::clamp(rounded, 0, std::max(0, int(whole) - length)));
        };
        const unsigned int left = start(full.left(), size.width(), work.image->width);
        const unsigned int top = start(full.top(), size.height(), work.image->height);
        return std::make_shared<const Image>(
            SubImage(*work.image, left, top, unsigned(size.width()), unsigned(size.height())));
    }
};

} // namespace

Host::NodeEntry cropNode()
{
    return entryOf<CropNode>("Crop");
}

} // namespace Essentials

#include "filter.h"
#include "nodes.h"
#include "paintmode.h"
#include "values.h"

#include <ondrel/core/color.h>
#include <ondrel/pixel/painter.h>

#include <QPointF>

#include <algorithm>
#include <cmath>

namespace Essentials
{
namespace
{

constexpr double kLargestSize = 2000; // of a brush, in pixels
constexpr double kFarthest = 1000000; // of a point, in pixels
constexpr double kCutoff = 4, kFalloff = 0.3;

// The points of a stroke in pixels of the picture that is painted on.
std::vector<QPoint> pointsOf(const QVariantMap& stroke, double scale)
{
    std::vector<QPoint> points;
    const auto coordinate = [scale](double v) {
        return int(std::lround(std::clamp(v, -kFarthest, kFarthest) * scale));
    };
    for (const QVariant& element : stroke.value("points").toList()) {
        const QPointF point = element.toPointF();
        if (element.canConvert<QPointF>() && !std::isnan(point.x()) && !std::isnan(point.y()))
            points.emplace_back(coordinate(point.x()), coordinate(point.y()));
    }
    return points;
}

void setBrush(PixelPainter& painter, const QVariantMap& stroke, double scale)
{
    const double size = number(stroke, "size", 1, kLargestSize, 20);
    const int radius = std::max(1, int(std::lround(size / 2 * scale)));
    const auto color = stroke.value("color").value<Ondrel::Color>();
    painter.setBrush(color.red, color.green, color.blue, color.alpha, static_cast<unsigned short>(radius),
                     float(number(stroke, "hardness", 0, 1, 0.5)), kCutoff, kFalloff);
}

void paintStroke(PixelPainter& painter, const std::vector<QPoint>& points, const Ondrel::RunStatus& status)
{
    if (points.size() == 1)
        painter.drawPoint(points.front());
    for (std::size_t i = 1; i < points.size() && !isCancelled(status); ++i)
        painter.drawLine(points[i - 1], points[i]);
}

// The value "strokes" is a list of maps {size, hardness, color, points}: the diameter of the brush and its points in
// pixels of the whole picture, a hardness from 0 to 1, and a color.
class PaintNode : public Filter
{
public:
    Ondrel::ModeInterface* createMode() const override { return new PaintMode; }

protected:
    ImagePtr process(const Work& work) const override
    {
        const QVariantList strokes = work.values.value("strokes").toList();
        if (strokes.isEmpty())
            return work.image;
        auto image = std::make_shared<Image>(*work.image);
        PixelPainter painter(image.get());
        for (const QVariant& element : strokes) {
            if (isCancelled(work.status))
                return nullptr;
            const QVariantMap stroke = element.toMap();
            const std::vector<QPoint> points = pointsOf(stroke, work.scale);
            if (points.empty())
                continue;
            setBrush(painter, stroke, work.scale);
            paintStroke(painter, points, work.status);
        }
        return image;
    }
};

} // namespace

Host::NodeEntry paintNode()
{
    return entryOf<PaintNode>("Paint");
}

} // namespace Essentials

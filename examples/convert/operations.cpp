#include "operations.h"

#include <ondrel/pixel/geometry.h>

namespace
{

Ondrel::Image apply(const Ondrel::Image& image, const ScaleTo& size, Ondrel::FilterMethod filter)
{
    unsigned int width = 0, height = 0;
    CalculateScaleSize(size.unit, size.aspect, image.width, image.height, size.percent, size.percent, size.width,
                       size.height, 1.0f, width, height);
    return Scale(image, width, height, filter);
}

Ondrel::Image apply(const Ondrel::Image& image, const CropTo& crop, Ondrel::FilterMethod)
{
    return SubImage(image, crop.x, crop.y, crop.width, crop.height);
}

Ondrel::Image apply(const Ondrel::Image& image, const QuarterTurns& turns, Ondrel::FilterMethod)
{
    switch (turns.count) {
    case 1:
        return Rotate90(image, RotateSizeBounding);
    case 2:
        return Rotate180(image);
    default:
        return Rotate270(image, RotateSizeBounding);
    }
}

} // namespace

Ondrel::Image applyOperation(const Ondrel::Image& image, const Operation& operation, Ondrel::FilterMethod filter)
{
    Ondrel::Image result = std::visit([&](const auto& o) { return apply(image, o, filter); }, operation);
    result.colorProfile = image.colorProfile; // most operations leave the profile to their caller
    return result;
}

QString describeOperation(const Operation& operation)
{
    struct Describe {
        QString operator()(const ScaleTo& s) const
        {
            return s.unit == "Pixels" ? QString("scale to %1 x %2").arg(s.width).arg(s.height)
                                      : QString("scale to %1 %").arg(double(s.percent));
        }
        QString operator()(const CropTo& c) const { return QString("crop to %1 x %2").arg(c.width).arg(c.height); }
        QString operator()(const QuarterTurns& t) const { return QString("rotate by %1").arg(t.count * 90); }
    };
    return std::visit(Describe(), operation);
}

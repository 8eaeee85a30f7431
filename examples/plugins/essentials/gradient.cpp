#include "filter.h"
#include "nodes.h"
#include "profiles.h"
#include "values.h"

#include <ondrel/core/color.h>
#include <ondrel/pixel/gradient.h>

#include <algorithm>

namespace Essentials
{
namespace
{

constexpr int kMostStops = 256;
constexpr int kBandHeight = 128; // rows that are painted between two looks at whether to stop

QSize sizeOf(const QVariantMap& values)
{
    return QSize(wholeNumber(values, "width", 1, 15000, 1920), wholeNumber(values, "height", 1, 15000, 1080));
}

Ondrel::GradientStop stopOf(double position, const QVariant& color)
{
    const auto c = color.value<Ondrel::Color>();
    return {float(position), c.red, c.green, c.blue, c.alpha};
}

// The value "stops" is a list of maps {position, color}; where it is empty, the two colors are the ends.
std::vector<Ondrel::GradientStop> stopsOf(const QVariantMap& values)
{
    std::vector<Ondrel::GradientStop> stops;
    for (const QVariant& element : values.value("stops").toList().mid(0, kMostStops)) {
        const QVariantMap stop = element.toMap();
        stops.push_back(stopOf(number(stop, "position", 0, 1, 0), stop.value("color")));
    }
    if (stops.empty())
        stops = {stopOf(0, values.value("start")), stopOf(1, values.value("end"))};
    SanitizeGradientStops(stops);
    return stops;
}

float fraction(const QVariantMap& values, const char* name, double otherwise)
{
    return float(number(values, name, -1000, 1000, otherwise) / 100);
}

GradientLinearGeometry lineOf(const QVariantMap& values)
{
    return {fraction(values, "x1", 0), fraction(values, "y1", 0), fraction(values, "x2", 100),
            fraction(values, "y2", 100)};
}

GradientRadialGeometry ellipseOf(const QVariantMap& values)
{
    return {fraction(values, "centerx", 50),
            fraction(values, "centery", 50),
            fraction(values, "radiusx", 50),
            fraction(values, "radiusy", 50),
            float(number(values, "angle", -360, 360, 0) * 3.14159265358979323846 / 180),
            fraction(values, "focalx", 0),
            fraction(values, "focaly", 0)};
}

// Paints the rows of the rectangle.
void paint(Image& image, const Ondrel::RectT<int>& rect, const QVariantMap& values)
{
    const std::vector<Ondrel::GradientStop> stops = stopsOf(values);
    const auto mix = Ondrel::GradientColorInterpolation(choice(values, "mix", {"RGB", "Lab"}));
    if (choice(values, "shape", {"Linear", "Radial"}) == 0)
        GradientLinear(image, rect, lineOf(values), stops, mix, {});
    else
        GradientRadial(image, rect, ellipseOf(values), stops, mix, {});
}

class GradientNode : public Host::NodeBehaviour
{
public:
    Host::Result evaluate(const Host::Request& request) const override
    {
        return guarded([&] {
            const QSize full = sizeOf(request.values), size = scaledSize(full, request.scale);
            refuseAbsurdSize(size);
            auto image = std::make_shared<Image>(unsigned(size.width()), unsigned(size.height()));
            image->colorProfile = Ondrel::QByteArrayToColorProfileHash(profileHash(request.values, "profile"));
            if (!isPixelProfile(image->colorProfile))
                throw Problem(Text::tr("Pictures cannot have this profile."));
            for (int y = 0; y < size.height() && !isCancelled(request.status); y += kBandHeight) {
                const int rows = std::min(kBandHeight, size.height() - y);
                paint(*image, Ondrel::RectT<int>(0, y, size.width(), rows), request.values);
            }
            return resultOf(image, full);
        });
    }

    QHash<QString, QSize> outputSizes(const QVariantMap& values, const QHash<QString, QSize>&) const override
    {
        return {{"image", sizeOf(values)}};
    }
};

} // namespace

Host::NodeEntry gradientNode()
{
    return entryOf<GradientNode>("Gradient");
}

} // namespace Essentials

#include "../../common/rows.h"

#include "../../common/neighbours.h"
#include "../../common/pixelgrouping.h"
#include "../../common/whitebalance.h"
#include "nodes.h"
#include "profiles.h"
#include "stored.h"
#include "values.h"

#include <ondrel/color/colortransformer.h>
#include <ondrel/pixel/temperature.h>

#include <cmath>

namespace Essentials
{
namespace
{

using Gains = std::array<float, 3>;

Gains gainsFor(const Image& raw, const QVariantMap& values)
{
    Gains gains = Examples::asShotGains(raw);
    if (choice(values, "balance", {"As Shot", "Chosen"}) == 1) {
        float red = 0, green = 0, blue = 0;
        TemperatureToRGBWB(raw.rawPreMultipliers, float(number(values, "temperature", 1667, 25000, 6500)),
                           float(number(values, "tint", 100, 2000, 1000)), red, green, blue);
        gains = Examples::gainsOf({red, green, blue});
    }
    const auto exposure = float(std::exp2(number(values, "exposure", -10, 10, 0)));
    for (float& gain : gains)
        gain *= exposure;
    return gains;
}

Image bayerDeveloped(Image&& balanced, const Ondrel::RunStatus& status)
{
    constexpr unsigned int border = 2; // which the interpolation leaves
    Image picture(balanced.width, balanced.height);
    Examples::NeighbourMeans(balanced).border(border, picture);
    const unsigned int filters = Examples::turnedFilters(balanced);
    const Examples::Mosaic mosaic{std::move(balanced), filters};
    if (!demosaicOnDevice(mosaic, picture, status))
        demosaicOnProcessor(mosaic, picture, status);
    return picture;
}

Image xTransDeveloped(const Image& balanced, const Ondrel::RunStatus& status)
{
    Image picture(balanced.width, balanced.height);
    const Examples::NeighbourMeans means(balanced);
    Examples::forRows(0, picture.height, status, [&](unsigned int y) { means.row(y, picture); });
    return picture;
}

// The linear picture in the camera's profile.
ImagePtr developed(const Image& raw, const QVariantMap& values, const Ondrel::RunStatus& status)
{
    if (raw.rawIsMosaic && !Examples::isBayer(raw) && !Examples::isXTrans(raw))
        throw Problem(Text::tr("The pattern of this camera's sensor is not known."));
    Image balanced(raw);
    Examples::balance(balanced, gainsFor(raw, values), status);
    if (isCancelled(status))
        return nullptr;
    if (Examples::isXTrans(raw))
        return withProfile(xTransDeveloped(balanced, status), raw.colorProfile);
    if (raw.rawIsMosaic)
        return withProfile(bayerDeveloped(std::move(balanced), status), raw.colorProfile);
    return withProfile(std::move(balanced), raw.colorProfile);
}

ImagePtr converted(const ImagePtr& image, const QVariantMap& values)
{
    const QByteArray profile = profileHash(values, "profile");
    if (!isPixelProfile(image->colorProfile) || !isPixelProfile(Ondrel::QByteArrayToColorProfileHash(profile)))
        throw Problem(Text::tr("The picture cannot be read in this profile."));
    constexpr unsigned int relativeColorimetric = 1;
    return std::make_shared<const Image>(ConvertColorSpace(*image, "Automatic", profile, relativeColorimetric));
}

class RawImageNode : public Host::NodeBehaviour
{
public:
    // Scaled before it is converted: pixels are mixed as light is.
    Host::Result evaluate(const Host::Request& request) const override
    {
        return guarded([&] {
            const ImagePtr raw = storedImage(request.values, true, request.status);
            ImagePtr image = raw ? developed(*raw, request.values, request.status) : nullptr;
            if (!image || isCancelled(request.status))
                return Host::Result();
            image = scaledDown(image, request.scale);
            if (convertsToProfile(request.values))
                image = converted(image, request.values);
            return resultOf(image, QSize(int(raw->width), int(raw->height)));
        });
    }

    QHash<QString, QSize> outputSizes(const QVariantMap& values, const QHash<QString, QSize>&) const override
    {
        const QSize size = storedSize(values);
        return size.isEmpty() ? QHash<QString, QSize>() : QHash<QString, QSize>{{"image", size}};
    }
};

} // namespace

Host::NodeEntry rawImageNode()
{
    return entryOf<RawImageNode>("RAW Image");
}

} // namespace Essentials

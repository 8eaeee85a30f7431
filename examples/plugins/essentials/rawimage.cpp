#include "../../common/rows.h"

#include "../../common/mosaicbins.h"
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

Image balancedBy(Image image, const Gains& gains, const Ondrel::RunStatus& status)
{
    Examples::balance(image, gains, status);
    return image;
}

// Whether a preview of this size gets enough pixels from the mosaic's photosites as they are.
bool binsSuffice(const Image& raw, const QSize& size)
{
    const unsigned int side = Examples::binSide(raw);
    return raw.width >= side && raw.height >= side && unsigned(size.width()) <= (raw.width + side - 1) / side &&
           unsigned(size.height()) <= (raw.height + side - 1) / side;
}

// The linear picture in the camera's profile, at least as large as `size`. Null if it was cancelled.
ImagePtr developed(const ImagePtr& raw, const QVariantMap& values, const QSize& size, const Ondrel::RunStatus& status)
{
    if (raw->rawIsMosaic && !Examples::isBayer(*raw) && !Examples::isXTrans(*raw))
        throw Problem(Text::tr("The pattern of this camera's sensor is not known."));
    const Gains gains = gainsFor(*raw, values);
    Image picture;
    if (!raw->rawIsMosaic) {
        picture = balancedBy(*scaledTo(raw, size), gains, status);
    } else if (binsSuffice(*raw, size)) {
        picture = balancedBy(Examples::binned(*raw, status), gains, status);
    } else {
        Image balanced = balancedBy(*raw, gains, status);
        if (isCancelled(status))
            return nullptr;
        picture =
            Examples::isXTrans(*raw) ? xTransDeveloped(balanced, status) : bayerDeveloped(std::move(balanced), status);
    }
    return isCancelled(status) ? nullptr : withProfile(std::move(picture), raw->colorProfile);
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
            if (!raw)
                return Host::Result();
            const QSize fullSize(int(raw->width), int(raw->height)), size = scaledSize(fullSize, request.scale);
            ImagePtr image = developed(raw, request.values, size, request.status);
            if (!image)
                return Host::Result();
            image = scaledTo(image, size);
            if (convertsToProfile(request.values))
                image = converted(image, request.values);
            return resultOf(image, fullSize);
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

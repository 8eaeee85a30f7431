#include "operations.h"

#include "profiles.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/color/colortransformer.h>
#include <ondrel/color/softproof.h>
#include <ondrel/pixel/painter.h>
#include <ondrel/pixel/perspective.h>
#include <ondrel/pixel/temperature.h>

#include <Eigen/LU>

#include <algorithm>
#include <memory>

namespace
{

using Ondrel::Image;

Image apply(const Image& image, const ScaleTo& size, const Options& options)
{
    unsigned int width = 0, height = 0;
    CalculateScaleSize(size.unit, size.aspect, image.width, image.height, size.percent, size.percent, size.width,
                       size.height, 1.0f, width, height);
    return Scale(image, width, height, options.filter);
}

Image apply(const Image& image, const CropTo& crop, const Options&)
{
    return SubImage(image, crop.x, crop.y, crop.width, crop.height);
}

Image apply(const Image& image, const RotateBy& turn, const Options& options)
{
    return Rotate(image, turn.angle, options.rotateSize, options.filter);
}

Image apply(const Image& image, const BlurBy& radius, const Options& options)
{
    return GaussianBlur(image, radius.x, radius.y, options.edge, {});
}

// The projective matrix that takes the corners of a picture to the given ones: two equations for each corner (Heckbert,
// "Fundamentals of Texture Mapping and Image Warping", 1989).
Eigen::Matrix3d homography(double width, double height, const std::array<QPointF, 4>& to)
{
    const QPointF from[4] = {{0, 0}, {width, 0}, {width, height}, {0, height}};
    Eigen::Matrix<double, 8, 8> a;
    Eigen::Matrix<double, 8, 1> b;
    for (int i = 0; i < 4; ++i) {
        const double x = from[i].x(), y = from[i].y(), u = to[std::size_t(i)].x(), v = to[std::size_t(i)].y();
        a.row(2 * i) << x, y, 1, 0, 0, 0, -x * u, -y * u;
        a.row(2 * i + 1) << 0, 0, 0, x, y, 1, -x * v, -y * v;
        b(2 * i) = u;
        b(2 * i + 1) = v;
    }
    const Eigen::Matrix<double, 8, 1> h = a.fullPivLu().solve(b);
    Eigen::Matrix3d matrix;
    matrix << h(0), h(1), h(2), h(3), h(4), h(5), h(6), h(7), 1;
    return matrix;
}

Image apply(const Image& image, const MoveCorners& move, const Options& options)
{
    std::shared_ptr<const Image> output;
    Transform(image, Ondrel::RectT<int>::invalid(), 1.0, TransformSizeBounding, options.filter,
              homography(image.width, image.height, move.corners), output);
    return output ? *output : Image();
}

Image apply(const Image& image, const GradientOver& gradient, const Options& options)
{
    Image layer(image.width, image.height);
    layer.colorProfile = image.colorProfile;
    const Ondrel::RectT<int> all(0, 0, int(image.width), int(image.height));
    const auto mix =
        options.mixLightnessAndHue ? Ondrel::GradientColorInterpolationLCH : Ondrel::GradientColorInterpolationRGB;
    if (const auto* linear = std::get_if<GradientLinearGeometry>(&gradient.geometry))
        GradientLinear(layer, all, *linear, gradient.stops, mix, {});
    else
        GradientRadial(layer, all, std::get<GradientRadialGeometry>(gradient.geometry), gradient.stops, mix, {});
    Image result(image);
    PixelPainter(&result).drawImage(0, 0, layer);
    return result;
}

// In linear light, where a filter before the lens would act.
Image apply(const Image& image, const WhiteBalance& light, const Options&)
{
    float daylight[3], factor[3];
    TemperatureToRGB(6500, daylight[0], daylight[1], daylight[2]);
    TemperatureToRGBWB(daylight, light.kelvin, light.tint, factor[0], factor[1], factor[2]);
    const bool known = !Ondrel::ColorManager::copyColorProfileDataByHash(image.colorProfile).empty();
    ProfileHash linear{};
    findProfile("Linear sRGB", linear);
    Image result = known ? ConvertColorSpace(image, "Automatic", toByteArray(linear), 1) : Image(image);
    for (std::size_t i = 0; i < std::size_t(result.width) * result.height * 4; i += 4)
        for (std::size_t c = 0; c < 3; ++c)
            result.data[i + c] =
                static_cast<unsigned short>(std::clamp(float(result.data[i + c]) * factor[c] + 0.5f, 0.0f, 65535.0f));
    return known ? ConvertColorSpace(result, "Automatic", toByteArray(image.colorProfile), 1) : result;
}

Image apply(const Image& image, const ProofFor& device, const Options& options)
{
    ProfileHash hash{};
    if (!findProfile(device.profile, hash))
        return Image();
    return SoftProof(image, toByteArray(hash), options.intent, options.gamutWarning, true);
}

struct Describe {
    QString operator()(const ScaleTo& s) const
    {
        return s.unit == "Pixels" ? QString("scale to %1 x %2").arg(s.width).arg(s.height)
                                  : QString("scale to %1 %").arg(double(s.percent));
    }
    QString operator()(const CropTo& c) const { return QString("crop to %1 x %2").arg(c.width).arg(c.height); }
    QString operator()(const RotateBy& r) const { return QString("rotate by %1").arg(double(r.angle)); }
    QString operator()(const BlurBy& b) const { return QString("blur by %1, %2").arg(double(b.x)).arg(double(b.y)); }
    QString operator()(const MoveCorners&) const { return "move the corners"; }
    QString operator()(const GradientOver& g) const
    {
        return g.geometry.index() == 0 ? "draw a linear gradient" : "draw a radial gradient";
    }
    QString operator()(const WhiteBalance& w) const
    {
        return QString("balance for %1 K, tint %2").arg(double(w.kelvin)).arg(double(w.tint));
    }
    QString operator()(const ProofFor& p) const { return "proof for " + p.profile; }
};

} // namespace

Image applyOperation(const Image& image, const Operation& operation, const Options& options)
{
    Image result = std::visit([&](const auto& o) { return apply(image, o, options); }, operation);
    if (!std::holds_alternative<ProofFor>(operation)) // a proof is in the profile of the display
        result.colorProfile = image.colorProfile;     // most others leave the profile to their caller
    return result;
}

QString describeOperation(const Operation& operation)
{
    return std::visit(Describe(), operation);
}

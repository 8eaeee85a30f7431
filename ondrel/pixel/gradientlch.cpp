// oneTBB, behind this header, comes before any of Qt.
#include <ondrel/color/cmstransform.h>

#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>
#include <ondrel/color/lcms_p.h>
#include <ondrel/pixel/gradientlch_p.h>
#include <ondrel/pixel/imageblock_p.h>
#include <ondrel/pixel/painter.h>

namespace Ondrel::GradientRows
{
namespace
{

constexpr unsigned int kIntent = INTENT_ABSOLUTE_COLORIMETRIC;
constexpr float kTurn = 6.28318530717958647692f;

// Pixels whose colours are held in Lab at a time.
constexpr std::size_t kBandPixels = std::size_t{1} << 22;

// The profile of the image's RGB samples; null if there is none.
OwnedProfile profileOf(Image const& image)
{
    OwnedProfile profile(ColorManager::copyColorProfileByHash(image.colorProfile));
    if (!profile || cmsGetColorSpace(profile.get()) != cmsSigLabData)
        return profile;
    std::array<unsigned char, 32> hash;
    profile.reset(ColorManager::copyDisplayProfile(hash));
    if (!profile)
        profile.reset(Create_sRGBColorProfile());
    return profile;
}

OwnedTransform makeTransform(OwnedProfile const& from, cmsUInt32Number fromFormat, OwnedProfile const& to,
                             cmsUInt32Number toFormat)
{
    return OwnedTransform(cmsCreateTransform(from.get(), fromFormat, to.get(), toFormat, kIntent, cmsFLAGS_NOCACHE));
}

// Each hue on the turn where it is nearest to the one before.
void unwrapHues(std::vector<Ramp::Stop>& stops)
{
    float turns = 0.0f;
    for (std::size_t i = 1; i < stops.size(); ++i) {
        float& hue = stops[i].channels[2];
        hue += kTurn * turns;
        const float d = stops[i - 1].channels[2] - hue;
        const float oneUp = std::abs(d + kTurn);
        const float oneDown = std::abs(d - kTurn);
        if (oneUp < oneDown && oneUp < std::abs(d)) {
            hue -= kTurn;
            turns -= 1.0f;
        } else if (oneDown < oneUp && oneDown < std::abs(d)) {
            hue += kTurn;
            turns += 1.0f;
        }
    }
}

// Lightness, chroma, hue and alpha.
Ramp lchRamp(std::vector<GradientStop> const& stops, cmsHTRANSFORM toLab)
{
    std::vector<Ramp::Stop> result;
    result.reserve(stops.size());
    for (GradientStop const& stop : stops) {
        const std::uint16_t rgb[3] = {stop.red, stop.green, stop.blue};
        float lab[3];
        cmsDoTransform(toLab, rgb, lab, 1);
        const float chroma = std::sqrt(lab[1] * lab[1] + lab[2] * lab[2]);
        result.push_back({stop.position, {lab[0], chroma, std::atan2(lab[2], lab[1]), float(stop.alpha)}});
    }
    unwrapHues(result);
    return Ramp(std::move(result));
}

// L, a and b of `count` pixels, and their alphas in place.
void mixLab(Ramp const& ramp, const float* t, std::size_t count, float* lab, std::uint16_t* pixels)
{
    for (std::size_t i = 0; i < count; ++i) {
        float mixed[4];
        ramp.mix(t[i], mixed);
        lab[i * 3] = mixed[0];
        lab[i * 3 + 1] = mixed[1] * std::cos(mixed[2]);
        lab[i * 3 + 2] = mixed[1] * std::sin(mixed[2]);
        pixels[i * 4 + 3] = std::uint16_t(mixed[3]);
    }
}

} // namespace

template <typename Geometry>
bool fillLCH(Image& image, RectT<int> const& rect, Geometry const& geometry, std::vector<GradientStop> const& stops,
             PositionCurve const& curve)
{
    const OwnedProfile profile = profileOf(image);
    const OwnedProfile labProfile(CreateLabColorProfile());
    if (!profile || !labProfile)
        return false;
    const OwnedTransform toLab = makeTransform(profile, TYPE_RGB_16, labProfile, TYPE_Lab_FLT);
    // A profile can have a table for one of the two ways alone.
    if (!toLab || !makeTransform(labProfile, TYPE_Lab_FLT, profile, TYPE_RGBA_16))
        return false;

    const Ramp ramp = lchRamp(stops, toLab.get());
    const std::size_t width = std::size_t(rect.width());
    const int bandRows = int(std::max<std::size_t>(1, kBandPixels / std::max<std::size_t>(1, width)));
    std::vector<float> lab(width * std::size_t(std::min(bandRows, rect.height())) * 3);
    ColorTransformCache cache;
    for (int top = rect.top(); top < rect.bottom() && width > 0; top += bandRows) {
        const int rows = std::min(bandRows, rect.bottom() - top);
        for (int y = 0; y < rows; ++y) {
            std::uint16_t* pixels = pixelAt(image, std::size_t(rect.left()), std::size_t(top) + std::size_t(y));
            float* labRow = lab.data() + std::size_t(y) * width * 3;
            forEachRun(geometry, curve, top + y, rect.left(), rect.right(), nullptr,
                       [&](int, std::size_t count, const float* t) {
                           mixLab(ramp, t, count, labRow, pixels);
                           labRow += count * 3;
                           pixels += count * 4;
                       });
        }
        const auto convert = [&](std::uint16_t* to) {
            DoMultithreadedCMSTransform(labProfile.get(), TYPE_Lab_FLT, profile.get(), TYPE_RGBA_16, kIntent, &cache,
                                        lab.data(), 3 * sizeof(float), to, 8, unsigned(width), unsigned(rows));
        };
        if (width == image.width) {
            convert(pixelAt(image, 0, std::size_t(top)));
        } else {
            Image part = Image(unsigned(width), unsigned(rows));
            convert(part.data);
            PixelPainter(&image).copyImage(unsigned(rect.left()), unsigned(top), part, false);
        }
    }
    return true;
}

template bool fillLCH(Image&, RectT<int> const&, LinearAxis const&, std::vector<GradientStop> const&,
                      PositionCurve const&);
template bool fillLCH(Image&, RectT<int> const&, RadialEllipse const&, std::vector<GradientStop> const&,
                      PositionCurve const&);

} // namespace Ondrel::GradientRows

#include "gallery.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>
#include <ondrel/color/colortransformer.h>
#include <ondrel/color/softproof.h>
#include <ondrel/core/curves.h>
#include <ondrel/pixel/gradient.h>
#include <ondrel/pixel/painter.h>
#include <ondrel/pixel/scale.h>
#include <ondrel/pixel/temperature.h>

#include <algorithm>

#include <lcms2.h>

namespace
{

using Ondrel::Image;
using Hash = std::array<unsigned char, 32>;

QByteArray toByteArray(const Hash& hash)
{
    return QByteArray(reinterpret_cast<const char*>(hash.data()), int(hash.size()));
}

// A device of few colours: its primaries are half as far from white as those of sRGB.
QByteArray paleDevice()
{
    static const Hash hash = [] {
        const cmsCIExyY white = {0.3127, 0.3290, 1.0};
        const cmsCIExyYTRIPLE primaries = {{0.4764, 0.3295, 1.0}, {0.3064, 0.4645, 1.0}, {0.2314, 0.1945, 1.0}};
        cmsToneCurve* const curve = cmsBuildGamma(nullptr, 2.2);
        cmsToneCurve* const curves[] = {curve, curve, curve};
        void* const profile = cmsCreateRGBProfile(&white, &primaries, curves);
        cmsFreeToneCurve(curve);
        Hash made{};
        Ondrel::ColorManager::addColorProfileAndClose(profile, Ondrel::ColorManager::ColorProfile::Embedded, &made);
        return made;
    }();
    return toByteArray(hash);
}

Image small(const Image& photo)
{
    return Scale(photo, 300, 168, Ondrel::FilterMethod::Bicubic);
}

// Light of every temperature from left to right, on a scale of its inverse, as eyes see it.
Image locus()
{
    Image image(kChartWidth, 80);
    for (unsigned int x = 0; x < kChartWidth; ++x) {
        const double mired = 600.0 + (40.0 - 600.0) * x / (kChartWidth - 1);
        float rgb[3];
        TemperatureToRGB(1e6 / mired, rgb[0], rgb[1], rgb[2]);
        unsigned short s[3];
        for (int c = 0; c < 3; ++c)
            s[c] = static_cast<unsigned short>(std::clamp(rgb[c], 0.0f, 1.0f) * 65535.0f);
        image.Fill(s[0], s[1], s[2], 65535, x, 0, 1, 80);
    }
    void* const linear = Ondrel::CreateLinear_sRGBColorProfile();
    image.colorProfile = Ondrel::ColorManager::buildColorProfileHash(linear);
    cmsCloseProfile(linear);
    return image;
}

// All hues, paler downwards.
Image hues()
{
    Image image(kChartWidth, kChartHeight);
    image.colorProfile = Ondrel::DefaultColorProfileHash;
    const std::vector<Ondrel::GradientStop> around = {{0.0f, 65535, 0, 0, 65535},   {0.167f, 65535, 65535, 0, 65535},
                                                      {0.333f, 0, 65535, 0, 65535}, {0.5f, 0, 65535, 65535, 65535},
                                                      {0.667f, 0, 0, 65535, 65535}, {0.833f, 65535, 0, 65535, 65535},
                                                      {1.0f, 65535, 0, 0, 65535}};
    GradientLinear(image, {0, 0, int(kChartWidth), int(kChartHeight)}, {0, 0, 1, 0}, around,
                   Ondrel::GradientColorInterpolationRGB, {});
    Image veil(kChartWidth, kChartHeight);
    GradientLinear(veil, {0, 0, int(kChartWidth), int(kChartHeight)}, {0, 0, 0, 1},
                   {{0.0f, 40000, 40000, 40000, 0}, {1.0f, 40000, 40000, 40000, 65535}},
                   Ondrel::GradientColorInterpolationRGB, {});
    PixelPainter(&image).drawImage(0, 0, veil);
    return image;
}

} // namespace

std::vector<Section> colour()
{
    Section sections{"Colour", {}};
    const std::vector<Ondrel::CubicBezierSpline::Point> contrast = {
        {0, 0}, {16000, 9000}, {48000, 56000}, {65535, 65535}};
    sections.pictures = {{"CurvesRGB(photo, contrast, contrast, contrast)", "",
                          [contrast](const Inputs& in) {
                              Image image = CurvesRGB(small(in.photo), contrast, contrast, contrast);
                              image.colorProfile = in.photo.colorProfile;
                              return image;
                          }},
                         {"TemperatureToRGB, 1667 to 25000 K", "even in mired", [](const Inputs&) { return locus(); }},
                         {"hues", "what the proofs below start from", [](const Inputs&) { return hues(); }},
                         {"SoftProof(hues, a pale device, relative)", "",
                          [](const Inputs&) { return SoftProof(hues(), paleDevice(), 1, false, true); }},
                         {"SoftProof(hues, a pale device, relative, gamut)", "red: out of reach",
                          [](const Inputs&) { return SoftProof(hues(), paleDevice(), 1, true, true); }},
                         {"SoftProof(photo, a pale device, relative, gamut)", "",
                          [](const Inputs& in) { return SoftProof(small(in.photo), paleDevice(), 1, true, true); }}};
    return {sections};
}

#include "gallery.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/pixel/gradient.h>
#include <ondrel/pixel/painter.h>
#include <ondrel/pixel/scale.h>

namespace
{

using Ondrel::GradientStop;
using Ondrel::Image;

constexpr float kDegree = 0.01745329252f;

Image canvas(unsigned short grey)
{
    Image image(kChartWidth, kChartHeight);
    image.Fill(grey, grey, grey, 65535);
    image.colorProfile = Ondrel::DefaultColorProfileHash;
    return image;
}

const std::vector<GradientStop> kFire = {{0.0f, 0, 0, 0, 65535},
                                         {0.4f, 60000, 8000, 0, 65535},
                                         {0.75f, 65535, 52000, 4000, 65535},
                                         {1.0f, 65535, 65535, 65535, 65535}};
const std::vector<GradientStop> kBlueToYellow = {{0.0f, 4000, 10000, 60000, 65535}, {1.0f, 65535, 60000, 0, 65535}};
const std::vector<GradientStop> kFading = {{0.0f, 65535, 0, 20000, 65535}, {1.0f, 65535, 0, 20000, 0}};

Image linear(const GradientLinearGeometry& geometry, const std::vector<GradientStop>& stops,
             Ondrel::GradientColorInterpolation mix, const std::vector<Ondrel::CubicBezierSpline::Point>& curve = {})
{
    Image image = canvas(0);
    GradientLinear(image, {0, 0, int(kChartWidth), int(kChartHeight)}, geometry, stops, mix, curve);
    return image;
}

Image radial(const GradientRadialGeometry& geometry, const std::vector<GradientStop>& stops,
             Ondrel::GradientColorInterpolation mix)
{
    Image image = canvas(0);
    GradientRadial(image, {0, 0, int(kChartWidth), int(kChartHeight)}, geometry, stops, mix, {});
    return image;
}

// Three stamps and a stroke; `tool` chooses brush and opacity.
Image strokes(unsigned short grey, float opacity, float hardness)
{
    Image image = canvas(grey);
    PixelPainter painter(&image);
    painter.setOpacity(opacity);
    painter.setBrush(60000, 20000, 5000, 65535, 30, hardness, 4.0, 0.3);
    for (const int x : {50, 150, 250})
        painter.drawPoint(QPoint(x, 60));
    painter.drawLine(QPoint(40, 150), QPoint(260, 130));
    return image;
}

Image erased(const Image& photo)
{
    Image image = Scale(photo, 300, 168, Ondrel::FilterMethod::Bicubic);
    PixelPainter painter(&image);
    painter.setBrush(0, 0, 0, 65535, 40, 0.4f, 4.0, 0.3);
    for (const int x : {60, 150, 240})
        painter.erasePoint(QPoint(x, 84));
    return image;
}

Image composed(const Image& photo, const Image& chart, float opacity)
{
    Image image = Scale(photo, 300, 168, Ondrel::FilterMethod::Bicubic);
    PixelPainter painter(&image);
    painter.setOpacity(opacity);
    painter.drawImage(-20, -30, chart);
    return image;
}

} // namespace

std::vector<Section> gradients()
{
    using Ondrel::GradientColorInterpolationLCH;
    using Ondrel::GradientColorInterpolationRGB;
    Section lines{"GradientLinear", {}}, rounds{"GradientRadial", {}};
    lines.pictures = {{"{0, 0, 1, 0}, fire, RGB", "no bands",
                       [](const Inputs&) {
                           return linear({0, 0, 1, 0}, kFire, GradientColorInterpolationRGB);
                       }},
                      {"{0.2, 0.1, 0.8, 0.9}, fire, RGB", "",
                       [](const Inputs&) {
                           return linear({0.2f, 0.1f, 0.8f, 0.9f}, kFire, GradientColorInterpolationRGB);
                       }},
                      {"{0, 0, 1, 0}, red to nothing, RGB", "",
                       [](const Inputs&) {
                           return linear({0, 0, 1, 0}, kFading, GradientColorInterpolationRGB);
                       }},
                      {"{0, 0, 1, 0}, blue to yellow, RGB", "grey in the middle",
                       [](const Inputs&) {
                           return linear({0, 0, 1, 0}, kBlueToYellow, GradientColorInterpolationRGB);
                       }},
                      {"{0, 0, 1, 0}, blue to yellow, LCH", "along the hues",
                       [](const Inputs&) {
                           return linear({0, 0, 1, 0}, kBlueToYellow, GradientColorInterpolationLCH);
                       }},
                      {"{0, 0, 1, 0}, fire, RGB, curve (0,0) (20000,50000) (65535,65535)", "", [](const Inputs&) {
                           return linear({0, 0, 1, 0}, kFire, GradientColorInterpolationRGB,
                                         {{0, 0}, {20000, 50000}, {65535, 65535}});
                       }}};
    rounds.pictures = {
        {"{0.5, 0.5, 0.4, 0.4, 0, 0, 0}, fire, RGB", "radii in fractions of the sides",
         [](const Inputs&) {
             return radial({0.5f, 0.5f, 0.4f, 0.4f, 0, 0, 0}, kFire, GradientColorInterpolationRGB);
         }},
        {"{0.5, 0.5, 0.45, 0.25, 30 degrees, 0, 0}, fire, RGB", "",
         [](const Inputs&) {
             return radial({0.5f, 0.5f, 0.45f, 0.25f, 30 * kDegree, 0, 0}, kFire, GradientColorInterpolationRGB);
         }},
        {"{0.5, 0.5, 0.3, 0.45, 0, 0.2, -0.2}, fire, RGB", "focal point aside",
         [](const Inputs&) {
             return radial({0.5f, 0.5f, 0.3f, 0.45f, 0, 0.2f, -0.2f}, kFire, GradientColorInterpolationRGB);
         }},
        {"{0.5, 0.5, 0.3, 0.45, 0, 2, 0}, fire, RGB", "focal point moved to the edge",
         [](const Inputs&) {
             return radial({0.5f, 0.5f, 0.3f, 0.45f, 0, 2, 0}, kFire, GradientColorInterpolationRGB);
         }},
        {"{0.5, 0.5, 0.3, 0.45, 0, 0, 0}, blue to yellow, LCH", "",
         [](const Inputs&) {
             return radial({0.5f, 0.5f, 0.3f, 0.45f, 0, 0, 0}, kBlueToYellow, GradientColorInterpolationLCH);
         }},
        {"{0.5, 0.5, 0.3, 0.45, 0, 0, 0}, red to nothing, RGB", "", [](const Inputs&) {
             return radial({0.5f, 0.5f, 0.3f, 0.45f, 0, 0, 0}, kFading, GradientColorInterpolationRGB);
         }}};
    return {lines, rounds};
}

std::vector<Section> painting()
{
    Section brush{"PixelPainter", {}};
    for (const float hardness : {0.0f, 0.5f, 0.99f})
        brush.pictures.push_back({QString("radius 30, hardness %1").arg(double(hardness)), "stamps and a stroke",
                                  [hardness](const Inputs&) { return strokes(20000, 1.0f, hardness); }});
    brush.pictures.push_back({"opacity 0.4, hardness 0.8", "one stroke does not add up with itself",
                              [](const Inputs&) { return strokes(20000, 0.4f, 0.8f); }});
    brush.pictures.push_back(
        {"erasePoint, radius 40, hardness 0.4", "", [](const Inputs& in) { return erased(in.photo); }});
    brush.pictures.push_back({"drawImage(-20, -30, chart), opacity 0.7", "",
                              [](const Inputs& in) { return composed(in.photo, in.chart, 0.7f); }});
    return {brush};
}

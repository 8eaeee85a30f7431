#include "gallery.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/pixel/gaussianblur.h>
#include <ondrel/pixel/geometry.h>
#include <ondrel/pixel/perspective.h>
#include <ondrel/pixel/scale.h>

#include <memory>

namespace
{

using Ondrel::FilterMethod;
using Ondrel::Image;

const std::pair<FilterMethod, const char*> kFilters[] = {{FilterMethod::NearestNeighbor, "NearestNeighbor"},
                                                         {FilterMethod::Bilinear, "Bilinear"},
                                                         {FilterMethod::Bicubic, "Bicubic"}};
const std::pair<RotateSize, const char*> kSizes[] = {{RotateSizeKeep, "RotateSizeKeep"},
                                                     {RotateSizeBounding, "RotateSizeBounding"},
                                                     {RotateSizeInscribed, "RotateSizeInscribed"}};
const std::pair<GaussianEdge, const char*> kEdges[] = {
    {GaussianEdge::Clamp, "Clamp"}, {GaussianEdge::Blank, "Blank"}, {GaussianEdge::Repeat, "Repeat"}};

// Most operations leave the profile to their caller.
Image tagged(Image image)
{
    image.colorProfile = Ondrel::DefaultColorProfileHash;
    return image;
}

Image warped(const Image& image, const Eigen::Matrix3d& matrix, TransformSize size, FilterMethod filter,
             double scale = 1.0)
{
    std::shared_ptr<const Image> output;
    Transform(image, Ondrel::RectT<int>::invalid(), scale, size, filter, matrix, output);
    return output ? tagged(*output) : Image();
}

Eigen::Matrix3d matrixOf(std::initializer_list<double> rows)
{
    return Eigen::Map<const Eigen::Matrix<double, 3, 3, Eigen::RowMajor>>(rows.begin());
}

const Eigen::Matrix3d kTilt = matrixOf({1, 0.15, 10, 0.05, 1, 0, 0.0004, 0.0012, 1});
const Eigen::Matrix3d kIdentity = Eigen::Matrix3d::Identity();

// A whole result, and then a rectangle of it drawn anew with another filter.
Image refreshed(const Image& image)
{
    std::shared_ptr<const Image> output;
    Transform(image, Ondrel::RectT<int>::invalid(), 1.0, TransformSizeKeep, FilterMethod::NearestNeighbor, kTilt,
              output);
    Transform(image, Ondrel::RectT<int>(40, 60, 80, 80), 1.0, TransformSizeKeep, FilterMethod::Bilinear, kTilt, output);
    return tagged(*output);
}

} // namespace

std::vector<Section> scaling()
{
    Section reduced{"Scale, reduced", {}}, enlarged{"Scale, enlarged", {}}, others{"Canvas", {}};
    for (const auto& [filter, name] : kFilters) {
        reduced.pictures.push_back({QString("Scale(photo, 240, 135, %1)").arg(name), "",
                                    [f = filter](const Inputs& in) { return Scale(in.photo, 240, 135, f); }});
    }
    for (const auto& [filter, name] : kFilters) {
        reduced.pictures.push_back(
            {QString("Scale(chart, 131, 87, %1)").arg(name), "no false rings at the rim",
             [f = filter](const Inputs& in) { return magnified(Scale(in.chart, 131, 87, f), 2); }});
        enlarged.pictures.push_back({QString("Scale(small, 320, 224, %1)").arg(name), "pixels stay where they are",
                                     [f = filter](const Inputs& in) { return Scale(in.smallChart, 320, 224, f); }});
    }
    others.pictures = {{"ScaleSubImageFast(photo, 600, 337, 150, 84)", "a draft",
                        [](const Inputs& in) {
                            return tagged(ScaleSubImageFast(in.photo, in.photo.width, in.photo.height, 150, 84));
                        }},
                       {"Resize(chart, 330, 220, 60000, 40000, 0, 65535)", "room in a colour",
                        [](const Inputs& in) { return tagged(Resize(in.chart, 330, 220, 60000, 40000, 0, 65535)); }},
                       {"SubImage(photo, 100, 40, 300, 200)", "",
                        [](const Inputs& in) { return SubImage(in.photo, 100, 40, 300, 200); }}};
    return {reduced, enlarged, others};
}

std::vector<Section> geometry()
{
    Section moves{"Whole-image geometry", {}};
    moves.pictures = {
        {"Crop(chart, 20, 10, 60, 40)", "", [](const Inputs& in) { return tagged(Crop(in.chart, 20, 10, 60, 40)); }},
        {"HorizontalMirror(chart)", "", [](const Inputs& in) { return tagged(HorizontalMirror(in.chart)); }},
        {"VerticalMirror(chart)", "", [](const Inputs& in) { return tagged(VerticalMirror(in.chart)); }},
        {"Translate(chart, 40, 20)", "the canvas grows",
         [](const Inputs& in) { return tagged(Translate(in.chart, 40, 20)); }},
        {"Translate(chart, -40, -20)", "the canvas stays",
         [](const Inputs& in) { return tagged(Translate(in.chart, -40, -20)); }},
        {"Rotate180(chart)", "", [](const Inputs& in) { return tagged(Rotate180(in.chart)); }},
        {"Rotate90(chart, RotateSizeBounding)", "counter-clockwise",
         [](const Inputs& in) { return tagged(Rotate90(in.chart, RotateSizeBounding)); }},
        {"Rotate90(chart, RotateSizeKeep)", "",
         [](const Inputs& in) { return tagged(Rotate90(in.chart, RotateSizeKeep)); }},
        {"Rotate270(chart, RotateSizeBounding)", "clockwise",
         [](const Inputs& in) { return tagged(Rotate270(in.chart, RotateSizeBounding)); }}};
    return {moves};
}

std::vector<Section> blurring()
{
    Section radii{"GaussianBlur, radii", {}}, edges{"GaussianBlur, edges", {}};
    const std::pair<float, float> sizes[] = {{3, 3}, {12, 12}, {60, 60}, {40, 0}, {0, 40}, {200, 3}};
    for (const auto& [x, y] : sizes) {
        radii.pictures.push_back({QString("GaussianBlur(photo, %1, %2, Clamp)").arg(double(x)).arg(double(y)), "",
                                  [x = x, y = y](const Inputs& in) {
                                      return tagged(Scale(GaussianBlur(in.photo, x, y, GaussianEdge::Clamp, {}), 300,
                                                          168, FilterMethod::Bilinear));
                                  }});
    }
    for (const auto& [edge, name] : kEdges) {
        edges.pictures.push_back(
            {QString("GaussianBlur(chart, 20, 20, %1)").arg(name), "",
             [e = edge](const Inputs& in) { return tagged(GaussianBlur(in.chart, 20, 20, e, {})); }});
    }
    for (const float radius : {0.5f, 1.0f, 2.0f}) {
        edges.pictures.push_back(
            {QString("GaussianBlur(small, %1, %1, Clamp)").arg(double(radius)), "", [radius](const Inputs& in) {
                 return magnified(GaussianBlur(in.smallChart, radius, radius, GaussianEdge::Clamp, {}), 8);
             }});
    }
    return {radii, edges};
}

std::vector<Section> warping()
{
    Section free{"Rotate", {}}, transforms{"Transform", {}};
    for (const auto& [size, name] : kSizes) {
        free.pictures.push_back({QString("Rotate(chart, 17, %1, Bicubic)").arg(name), "", [s = size](const Inputs& in) {
                                     return tagged(Rotate(in.chart, 17, s, FilterMethod::Bicubic));
                                 }});
    }
    for (const auto& [filter, name] : kFilters) {
        free.pictures.push_back(
            {QString("Rotate(small, 10, RotateSizeBounding, %1)").arg(name), "", [f = filter](const Inputs& in) {
                 return magnified(Rotate(in.smallChart, 10, RotateSizeBounding, f), 7);
             }});
        transforms.pictures.push_back(
            {QString("Transform(chart, all, 1, Keep, %1, tilt)").arg(name), "",
             [f = filter](const Inputs& in) { return warped(in.chart, kTilt, TransformSizeKeep, f); }});
    }
    for (const auto& [filter, name] : kFilters) {
        transforms.pictures.push_back({QString("Transform(small, all, 1, Keep, %1, identity)").arg(name),
                                       filter == FilterMethod::NearestNeighbor
                                           ? "exact"
                                           : "half a pixel to the left and upwards, as the contract says",
                                       [f = filter](const Inputs& in) {
                                           return magnified(warped(in.smallChart, kIdentity, TransformSizeKeep, f), 8);
                                       }});
    }
    transforms.pictures.push_back({"Transform(photo, all, 1, Bounding, Bilinear, tilt)", "", [](const Inputs& in) {
                                       return warped(Scale(in.photo, 300, 168, FilterMethod::Bicubic), kTilt,
                                                     TransformSizeBounding, FilterMethod::Bilinear);
                                   }});
    transforms.pictures.push_back(
        {"Transform(photo, all, 1, Bounding, Bilinear, 1/4)", "supersampled", [](const Inputs& in) {
             return warped(in.photo, matrixOf({0.25, 0, 0, 0, 0.25, 0, 0, 0, 1}), TransformSizeBounding,
                           FilterMethod::Bilinear);
         }});
    transforms.pictures.push_back({"Transform(chart, {40, 60, 80, 80}, ...)",
                                   "a rectangle drawn anew, bilinear in a nearest neighbour picture",
                                   [](const Inputs& in) { return refreshed(in.chart); }});
    return {free, transforms};
}

#include "raw_reference.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>
#include <ondrel/core/curves.h>
#include <ondrel/resources/raw.h>

#include <lcms2.h>
#include <libraw/libraw.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace OndrelReference
{
namespace
{

using Ondrel::Image;
using Point = Ondrel::CubicBezierSpline::Point;

std::uint16_t* pixelOf(const Image& image, unsigned int x, unsigned int y)
{
    return image.data + (std::size_t(y) * image.width + x) * 4;
}

std::shared_ptr<std::vector<Point>> toneCurve(const unsigned short* curve)
{
    int maximum = 0, count = 65535;
    bool identity = true;
    for (int i = 0; i <= 65534; ++i) {
        maximum = std::max<int>(maximum, curve[i]);
        identity = identity && curve[i] == i;
        if (i > 0 && curve[i] <= curve[i - 1]) {
            if (i == 1)
                return nullptr;
            count = i - 1;
            break;
        }
    }
    if (maximum == 0 || identity)
        return nullptr;
    auto points = std::make_shared<std::vector<Point>>();
    for (int j = 0; j < count; ++j) {
        const float across = float(j) / float(count) * 65535.0f;
        const float up = float(curve[j]) / float(maximum) * 65535.0f;
        points->push_back({65535 - int(across), std::min(65535 - int(up), 65535)});
    }
    std::reverse(points->begin(), points->end());
    Ondrel::ValidateCurve(*points);
    return points;
}

// By Gauss and Jordan, with the largest pivot of each column.
void invert(double (&a)[3][3], double (&inverse)[3][3])
{
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            inverse[i][j] = i == j;
    for (int column = 0; column < 3; ++column) {
        int pivot = column;
        for (int row = column; row < 3; ++row)
            if (std::abs(a[row][column]) > std::abs(a[pivot][column]))
                pivot = row;
        std::swap(a[pivot], a[column]);
        std::swap(inverse[pivot], inverse[column]);
        const double divisor = a[column][column];
        for (int j = 0; j < 3; ++j) {
            a[column][j] /= divisor;
            inverse[column][j] /= divisor;
        }
        for (int row = 0; row < 3; ++row) {
            const double factor = row == column ? 0 : a[row][column];
            for (int j = 0; j < 3; ++j) {
                a[row][j] -= factor * a[column][j];
                inverse[row][j] -= factor * inverse[column][j];
            }
        }
    }
}

double determinant(const double (&a)[3][3])
{
    return a[0][0] * (a[1][1] * a[2][2] - a[1][2] * a[2][1]) - a[0][1] * (a[1][0] * a[2][2] - a[1][2] * a[2][0]) +
           a[0][2] * (a[1][0] * a[2][1] - a[1][1] * a[2][0]);
}

cmsCIExyY chromaticity(const double (&row)[3])
{
    const double sum = static_cast<float>(row[0] + row[1] + row[2]);
    return {row[0] / sum, row[1] / sum, 1.0};
}

void mergeGreens(Image& image, unsigned int filters)
{
    for (unsigned int r = 0; r < image.height; ++r)
        for (unsigned int c = 0; c < image.width; ++c)
            if (((filters >> ((((r << 1) & 14) | (c & 1)) << 1)) & 3) == 3)
                pixelOf(image, c, r)[1] = pixelOf(image, c, r)[3];
}

// Keeps its remarks on damaged files out of the test log.
std::unique_ptr<LibRaw> quietRaw()
{
    auto raw = std::make_unique<LibRaw>(0u);
    raw->set_dataerror_handler(nullptr, nullptr);
    return raw;
}

} // namespace

RawInfo rawInfo(const LibRaw& raw)
{
    const libraw_colordata_t& color = raw.imgdata.color;
    RawInfo info;
    info.isMosaic = raw.imgdata.idata.filters != 0;
    for (int field = 0; field < 16; ++field) {
        const unsigned int code = (raw.imgdata.idata.filters >> (2 * field)) & 3;
        info.filters |= (code == 3 ? 1 : code) << (2 * field);
    }
    info.identityMatrix = true;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            info.identityMatrix = info.identityMatrix && color.rgb_cam[i][j] == (i == j ? 1.0f : 0.0f);
    const bool ofTheShot = color.cam_mul[0] > 0 && color.cam_mul[1] > 0 && color.cam_mul[2] > 0;
    for (std::size_t i = 0; i < 3; ++i) {
        info.preMultipliers[i] = color.pre_mul[i];
        info.cameraMultipliers[i] = ofTheShot ? color.cam_mul[i] : color.pre_mul[i];
    }
    if (info.cameraMultipliers == std::array<float, 3>{0, 0, 0})
        info.cameraMultipliers = {2.0f, 1.0f, 1.5f};
    info.toneCurve = toneCurve(color.curve);
    return info;
}

void* rawColorProfile(const double (&colorMatrix)[3][3])
{
    double a[3][3], b[3][3];
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            a[i][j] = colorMatrix[j][i];
    if (!(std::abs(determinant(a)) > 1e-12))
        return nullptr;
    invert(a, b);
    const cmsCIExyYTRIPLE primaries = {chromaticity(b[0]), chromaticity(b[1]), chromaticity(b[2])};
    cmsCIExyY white;
    cmsWhitePointFromTemp(&white, 6503.6);
    const double parameters[] = {1.0, 0.0};
    cmsToneCurve* const curve = cmsBuildParametricToneCurve(nullptr, 1, parameters);
    cmsToneCurve* const curves[] = {curve, curve, curve};
    void* const profile = cmsCreateRGBProfile(&white, &primaries, curves);
    cmsFreeToneCurve(curve);
    if (profile) {
        cmsMLU* const text = cmsMLUalloc(nullptr, 1);
        cmsMLUsetASCII(text, "en", "US", "RAW Image RGB");
        cmsWriteTag(profile, cmsSigProfileDescriptionTag, text);
        cmsMLUfree(text);
    }
    return profile;
}

void* rawColorProfile(const LibRaw& raw)
{
    const auto& color = raw.imgdata.color;
    double matrix[3][3];
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            matrix[i][j] = raw.imgdata.idata.dng_version ? color.dng_color[0].colormatrix[i][j] : color.cam_xyz[i][j];
    return rawColorProfile(matrix);
}

void scaleColors(unsigned int black, unsigned int maximum, Image& image)
{
    const float offset = float(black);
    const float factor = 65535.0f / float(maximum - black);
    for (std::size_t i = 0; i < std::size_t(image.width) * image.height; ++i) {
        std::uint16_t* const pixel = image.data + 4 * i;
        for (int c = 0; c < 3; ++c) {
            const float difference = float(pixel[c]) - offset;
            const float v = difference * factor;
            if (v > 65535)
                pixel[c] = 65535;
            else if (v > 0)
                pixel[c] = static_cast<std::uint16_t>(v);
            else
                pixel[c] = 0;
        }
        pixel[3] = 65535;
    }
}

Image turned(const Image& image, int flip)
{
    const bool isUpright = flip != 5 && flip != 6;
    const unsigned int w = image.width, h = image.height;
    Image result(isUpright ? w : h, isUpright ? h : w);
    for (unsigned int y = 0; y < h; ++y)
        for (unsigned int x = 0; x < w; ++x) {
            std::uint16_t* to = pixelOf(result, x, y);
            if (flip == 3)
                to = pixelOf(result, w - 1 - x, h - 1 - y);
            else if (flip == 5) // a quarter turn to the left
                to = pixelOf(result, y, w - 1 - x);
            else if (flip == 6)
                to = pixelOf(result, h - 1 - y, x);
            std::copy_n(pixelOf(image, x, y), 4, to);
        }
    return result;
}

unsigned int rawRotation(int flip)
{
    return flip == 3 ? 1 : flip == 5 ? 3 : flip == 6 ? 2 : 0;
}

bool isRaw(const std::vector<unsigned char>& file)
{
    const auto raw = quietRaw();
    return raw->open_buffer(const_cast<unsigned char*>(file.data()), file.size()) == 0 && raw->unpack() == 0;
}

Image processRaw(const std::vector<unsigned char>& file)
{
    const auto raw = quietRaw();
    if (raw->open_buffer(const_cast<unsigned char*>(file.data()), file.size()) != 0)
        return Image();
    raw->imgdata.params.output_bps = 16;
    raw->imgdata.params.use_camera_wb = 0;
    raw->imgdata.params.use_camera_matrix = 0;
    raw->imgdata.params.output_color = 0;
    raw->unpack();
    raw->raw2image_ex(1);
    const libraw_data_t& data = raw->imgdata;
    Image image(data.sizes.width, data.sizes.height);
    const std::size_t pixels = std::size_t(image.width) * image.height;
    if (pixels && data.image)
        std::memcpy(image.data, data.image, pixels * 8);
    mergeGreens(image, data.idata.filters);
    scaleColors(data.color.black, data.color.maximum, image);
    image = turned(image, data.sizes.flip);
    if (data.idata.colors == 1)
        for (std::size_t i = 0; i < pixels; ++i)
            image.data[4 * i + 1] = image.data[4 * i + 2] = image.data[4 * i];
    image.colorProfile = Ondrel::DefaultRawColorProfileHash;
    if (void* const profile = rawColorProfile(*raw)) {
        std::vector<unsigned char> bytes;
        Ondrel::GetICCProfileData(profile, bytes);
        cmsCloseProfile(profile);
        image.colorProfile = Ondrel::ColorManager::buildColorProfileHash(bytes);
    }
    const RawInfo info = rawInfo(*raw);
    image.rawIsMosaic = info.isMosaic;
    image.rawFilters = info.filters;
    image.rawHasInfo = true;
    std::copy(info.preMultipliers.begin(), info.preMultipliers.end(), image.rawPreMultipliers);
    std::copy(info.cameraMultipliers.begin(), info.cameraMultipliers.end(), image.rawCameraMultipliers);
    image.rawIdentityMatrix = info.identityMatrix;
    image.rawToneCurve = info.toneCurve;
    image.rawRotation = rawRotation(data.sizes.flip);
    std::memcpy(image.rawXTrans, data.idata.xtrans, 36);
    return image;
}

} // namespace OndrelReference

#include <ondrel/pixel/perspective.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <ondrel/pixel/imageblock_p.h>
#include <ondrel/pixel/painter.h>
#include <ondrel/pixel/transformrows_p.h>

using namespace Ondrel;

namespace
{

constexpr float kQuarter = 90.0f;
constexpr float kHalf = 180.0f;
constexpr float kThreeQuarters = 270.0f;

// To 0 up to 360, 360 not included. Not a number if the angle is not finite.
float normalised(float angle)
{
    if (angle < 0.0f)
        angle = 360.0f - std::fmod(-angle, 360.0f);
    return std::fmod(angle, 360.0f);
}

float radians(float angle)
{
    return float(double(angle) * 0.017453292519943295);
}

// Sine and cosine are single: their last bits decide about the sizes of many canvases.
Eigen::Matrix<double, 3, 3> rotationMatrix(QSize const& size, float angle)
{
    const double s = double(std::sin(radians(angle)));
    const double c = double(std::cos(radians(angle)));
    const int centerX = size.width() / 2;
    const int centerY = size.height() / 2;
    const double cx = centerX;
    const double cy = centerY;
    Eigen::Matrix<double, 3, 3> matrix;
    matrix << c, s, cx - c * cx - s * cy, -s, c, cy + s * cx - c * cy, 0.0, 0.0, 1.0;
    return matrix;
}

// Toward zero; 0 for what no side can be.
int side(double length)
{
    return length >= 0.0 && length < 2147483648.0 ? int(length) : 0;
}

QSize boundingSize(QSize const& size, float angle)
{
    RectT<float> box;
    CalculateTransformOutputBoundingRect(unsigned(size.width()), unsigned(size.height()), 1.0f, TransformSizeBounding,
                                         rotationMatrix(size, angle), box);
    return QSize(side(double(box.width())), side(double(box.height())));
}

QSize inscribedSize(QSize const& size, float angle)
{
    const float width = float(size.width());
    const float height = float(size.height());
    const float shorter = std::min(width, height);
    const float longer = std::max(width, height);
    const float as = std::abs(std::sin(radians(angle)));
    const float ac = std::abs(std::cos(radians(angle)));
    // Two corners of the result touch the longer side. Without the tolerance 45 degrees of a square would not do so.
    if (longer * (2.0f * as * ac) + 0.0001f >= shorter) {
        const float half = shorter * 0.5f;
        return width >= height ? QSize(side(double(half / as)), side(double(half / ac)))
                               : QSize(side(double(half / ac)), side(double(half / as)));
    }
    const float a2 = std::abs(std::cos(2.0f * radians(angle)));
    return QSize(side(double(std::abs(width * ac - height * as) / a2)),
                 side(double(std::abs(height * ac - width * as) / a2)));
}

// The middle part of the turned picture, which has the size `whole`. The other pixels need not be made.
Image turnedPart(Image const& image, FilterMethod filter, Eigen::Matrix<double, 3, 3> const& matrix,
                 RectT<float> const& bounds, QSize const& whole, QSize const& part)
{
    Image result(unsigned(part.width()), unsigned(part.height()));
    const int left = (whole.width() - part.width()) / 2;
    const int top = (whole.height() - part.height()) / 2;
    transformRows(image, filter, pixelMapping(matrix, 1.0, bounds), RectT<int>(left, top, part.width(), part.height()),
                  {result, true, left, top});
    return result;
}

// A picture drawn in the middle of a canvas that is larger. Drawing rounds its samples once more.
Image onCanvas(Image const& picture, QSize const& size)
{
    Image canvas(unsigned(size.width()), unsigned(size.height()));
    PixelPainter(&canvas).drawImage((size.width() - int(picture.width)) / 2, (size.height() - int(picture.height)) / 2,
                                    picture);
    return canvas;
}

} // namespace

QSize CalculateRotateSize(QSize const& size, float angle, RotateSize mode)
{
    if (size.width() <= 0 || size.height() <= 0)
        return QSize(0, 0);
    if (mode == RotateSizeKeep)
        return size;
    angle = normalised(angle);
    if (angle == kQuarter || angle == kThreeQuarters)
        return size.transposed();
    if (angle == 0.0f || angle == kHalf)
        return size;
    if (mode == RotateSizeBounding)
        return boundingSize(size, angle);
    if (mode == RotateSizeInscribed)
        return inscribedSize(size, angle);
    return QSize(0, 0);
}

Ondrel::Image Rotate(Ondrel::Image const& image, float angle, RotateSize mode, Ondrel::FilterMethod filter)
{
    angle = normalised(angle);
    if (angle == kQuarter)
        return Rotate90(image, mode);
    if (angle == kHalf)
        return Rotate180(image);
    if (angle == kThreeQuarters)
        return Rotate270(image, mode);
    if (!hasPixels(image) || !std::isfinite(angle))
        return Image();
    const QSize size(int(image.width), int(image.height));
    const QSize target = CalculateRotateSize(size, angle, mode);
    if (target.isEmpty() || std::uint64_t(target.width()) * std::uint64_t(target.height()) >= (std::uint64_t{1} << 30))
        return Image();

    const Eigen::Matrix<double, 3, 3> matrix = rotationMatrix(size, angle);
    RectT<float> bounds;
    CalculateTransformOutputBoundingRect(image.width, image.height, 1.0f, TransformSizeBounding, matrix, bounds);
    const QSize whole(side(double(bounds.width())), side(double(bounds.height())));
    const QSize part = whole.boundedTo(target);
    Image turned = turnedPart(image, filter, matrix, bounds, whole, part);
    if (part == target)
        return turned;
    return onCanvas(turned, target);
}

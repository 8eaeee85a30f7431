#include <ondrel/pixel/geometry.h>

#include <algorithm>
#include <limits>
#include <ondrel/pixel/imageblock_p.h>
#include <ondrel/pixel/pixelcopy_p.h>

using namespace Ondrel;

namespace
{

QSize sizeOf(Image const& image)
{
    return QSize(int(image.width), int(image.height));
}

// A quarter turn as a walk over the source: pixel (x, y) of the turned picture is
// origin + x * acrossStep, and from there y pixels to the right if it leads downwards, else to the left.
struct TurnedPicture {
    const std::uint16_t* origin;
    std::ptrdiff_t acrossStep;
    bool downwards;
    std::uint32_t width;
    std::uint32_t height;
};

TurnedPicture counterClockwise(Image const& image)
{
    return {pixelAt(image, image.width - 1, 0), std::ptrdiff_t(image.width), false, image.height, image.width};
}

TurnedPicture clockwise(Image const& image)
{
    return {pixelAt(image, 0, image.height - 1), -std::ptrdiff_t(image.width), true, image.height, image.width};
}

Image wholeTurned(TurnedPicture const& picture)
{
    Image result(picture.width, picture.height);
    if (hasPixels(result))
        copyTurned(picture.origin, picture.acrossStep, picture.downwards, result.data, result.width, result.width,
                   result.height);
    return result;
}

// The picture centred on a canvas with its sides exchanged. On the longer side of the picture the first d pixels fall
// off; across it, d rows or columns of the canvas stay transparent.
Image centredTurned(TurnedPicture const& picture)
{
    Image result(picture.height, picture.width);
    if (!hasPixels(result))
        return result;
    const std::uint32_t shorter = std::min(picture.width, picture.height);
    const std::uint32_t d = (std::max(picture.width, picture.height) - shorter) >> 1;
    const bool wide = picture.width > picture.height;
    const std::ptrdiff_t lost = std::ptrdiff_t(d) * (wide ? picture.acrossStep : picture.downwards ? 1 : -1);
    std::uint16_t* to = wide ? pixelAt(result, 0, d) : pixelAt(result, d, 0);
    copyTurned(picture.origin + lost * 4, picture.acrossStep, picture.downwards, to, result.width, shorter, shorter);
    return result;
}

Image turned(TurnedPicture const& picture, RotateSize mode)
{
    return mode == RotateSizeKeep ? centredTurned(picture) : wholeTurned(picture);
}

} // namespace

QSize CalculateCropSize(QSize const& size, unsigned int left, unsigned int top, unsigned int right, unsigned int bottom)
{
    const auto leaves = [](unsigned int side, unsigned int low, unsigned int high) {
        // The sum wraps, so it alone would let pairs of huge margins pass.
        return side > low && side > high && side > low + high;
    };
    const unsigned int width = unsigned(size.width());
    const unsigned int height = unsigned(size.height());
    if (!leaves(width, left, right) || !leaves(height, top, bottom))
        return QSize(-1, -1);
    return QSize(int(width - left - right), int(height - top - bottom));
}

Ondrel::Image Crop(Ondrel::Image const& image, unsigned int left, unsigned int top, unsigned int right,
                   unsigned int bottom)
{
    if (!hasPixels(image))
        return Image();
    const QSize size = CalculateCropSize(sizeOf(image), left, top, right, bottom);
    if (size.width() < 0)
        return Image();
    Image result(unsigned(size.width()), unsigned(size.height()));
    copyRows(pixelAt(image, left, top), image.width, result.data, result.width, result.width, result.height);
    return result;
}

Ondrel::Image SubImage(Ondrel::Image const& image, unsigned int x, unsigned int y, unsigned int width,
                       unsigned int height)
{
    const auto margin = [](std::uint32_t side, unsigned int position, unsigned int length) {
        const std::int64_t left = std::int64_t(side) - (std::int64_t(position) + std::int64_t(length));
        return unsigned(std::max<std::int64_t>(left, 0));
    };
    Image result = Crop(image, x, y, margin(image.width, x, width), margin(image.height, y, height));
    result.colorProfile = image.colorProfile;
    return result;
}

Ondrel::Image SubImage(Ondrel::Image const& image, Ondrel::RectT<int> const& rect)
{
    return SubImage(image, unsigned(rect.x()), unsigned(rect.y()), unsigned(rect.width()), unsigned(rect.height()));
}

Ondrel::Image HorizontalMirror(Ondrel::Image const& image)
{
    Image result(image.width, image.height);
    if (hasPixels(image) && hasPixels(result))
        copyReversedRows(pixelAt(image, 0, 0), std::ptrdiff_t(image.width), result.data, result.width, result.height);
    return result;
}

Ondrel::Image VerticalMirror(Ondrel::Image const& image)
{
    Image result(image.width, image.height);
    if (hasPixels(image) && hasPixels(result))
        copyRows(pixelAt(image, 0, image.height - 1), -std::ptrdiff_t(image.width), result.data, result.width,
                 result.width, result.height);
    return result;
}

QSize CalculateTranslateSize(QSize const& size, int dx, int dy)
{
    if (size.width() <= 0 || size.height() <= 0)
        return QSize(0, 0);
    const std::int64_t width = std::int64_t(size.width()) + std::max(dx, 0);
    const std::int64_t height = std::int64_t(size.height()) + std::max(dy, 0);
    if (std::max(width, height) > std::numeric_limits<int>::max())
        return QSize(0, 0);
    return QSize(int(width), int(height));
}

Ondrel::Image Translate(Ondrel::Image const& image, int dx, int dy)
{
    if (!hasPixels(image))
        return Image();
    const QSize size = CalculateTranslateSize(sizeOf(image), dx, dy);
    // A new block is transparent black already.
    Image result(unsigned(size.width()), unsigned(size.height()));
    const std::int64_t skippedColumns = std::max<std::int64_t>(-std::int64_t(dx), 0);
    const std::int64_t skippedRows = std::max<std::int64_t>(-std::int64_t(dy), 0);
    if (!hasPixels(result) || skippedColumns >= image.width || skippedRows >= image.height)
        return result;
    copyRows(pixelAt(image, std::size_t(skippedColumns), std::size_t(skippedRows)), image.width,
             pixelAt(result, std::size_t(std::max(dx, 0)), std::size_t(std::max(dy, 0))), result.width,
             std::size_t(image.width - skippedColumns), std::size_t(image.height - skippedRows));
    return result;
}

Ondrel::Image Rotate90(Ondrel::Image const& image, RotateSize mode)
{
    return hasPixels(image) ? turned(counterClockwise(image), mode) : Image();
}

Ondrel::Image Rotate180(Ondrel::Image const& image)
{
    Image result(image.width, image.height);
    if (hasPixels(image) && hasPixels(result))
        copyReversedRows(pixelAt(image, 0, image.height - 1), -std::ptrdiff_t(image.width), result.data, result.width,
                         result.height);
    return result;
}

Ondrel::Image Rotate270(Ondrel::Image const& image, RotateSize mode)
{
    return hasPixels(image) ? turned(clockwise(image), mode) : Image();
}

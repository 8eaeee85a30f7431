#include <ondrel/core/image.h>
#include <ondrel/core/pixelblock_p.h>
#include <ondrel/core/pixelsinblock_p.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace Ondrel
{
namespace
{

std::uint64_t blockBytes(std::uint32_t width, std::uint32_t height)
{
    return std::uint64_t{width * height * 4} * 2;
}

void copyMetadata(Image& to, const Image& from)
{
    to.colorProfile = from.colorProfile;
    to.rawIsMosaic = from.rawIsMosaic;
    to.rawFilters = from.rawFilters;
    to.rawHasInfo = from.rawHasInfo;
    std::copy_n(from.rawPreMultipliers, 3, to.rawPreMultipliers);
    std::copy_n(from.rawCameraMultipliers, 3, to.rawCameraMultipliers);
    to.rawIdentityMatrix = from.rawIdentityMatrix;
    to.rawRotation = from.rawRotation;
    std::memcpy(to.rawXTrans, from.rawXTrans, sizeof to.rawXTrans);
    to.rawToneCurve = from.rawToneCurve;
}

void swapMetadata(Image& a, Image& b) noexcept
{
    std::swap(a.colorProfile, b.colorProfile);
    std::swap(a.rawIsMosaic, b.rawIsMosaic);
    std::swap(a.rawFilters, b.rawFilters);
    std::swap(a.rawHasInfo, b.rawHasInfo);
    std::swap(a.rawPreMultipliers, b.rawPreMultipliers);
    std::swap(a.rawCameraMultipliers, b.rawCameraMultipliers);
    std::swap(a.rawIdentityMatrix, b.rawIdentityMatrix);
    std::swap(a.rawRotation, b.rawRotation);
    std::swap(a.rawXTrans, b.rawXTrans);
    std::swap(a.rawToneCurve, b.rawToneCurve);
}

void takePixels(Image& to, Image& from) noexcept
{
    to.width = std::exchange(from.width, 0);
    to.height = std::exchange(from.height, 0);
    to.sizeBytes = std::exchange(from.sizeBytes, 0);
    to.data = std::exchange(from.data, nullptr);
}

void dropPixels(Image& image) noexcept
{
    unmapPixelBlock(std::exchange(image.data, nullptr), std::exchange(image.sizeBytes, 0));
    image.width = 0;
    image.height = 0;
}

void copyBlock(Image& to, const Image& from)
{
    if (from.data)
        std::memcpy(to.data, from.data, from.sizeBytes);
}

std::uint64_t packPixel(unsigned short r, unsigned short g, unsigned short b, unsigned short a)
{
    const std::uint16_t samples[4] = {r, g, b, a};
    std::uint64_t word;
    std::memcpy(&word, samples, sizeof word);
    return word;
}

void fillPixels(std::uint16_t* samples, std::size_t count, std::uint64_t pixel)
{
    for (std::size_t i = 0; i < count; ++i)
        std::memcpy(samples + 4 * i, &pixel, sizeof pixel);
}

} // namespace

Image::Image() = default;

Image::Image(unsigned int newWidth, unsigned int newHeight)
    : width(newWidth)
    , height(newHeight)
    , sizeBytes(blockBytes(newWidth, newHeight))
    , data(mapPixelBlock(sizeBytes))
{
}

Image::Image(QImage image)
    : Image(static_cast<unsigned int>(image.width()), static_cast<unsigned int>(image.height()))
{
    std::array<std::uint16_t, 256> widened;
    for (std::size_t v = 0; v < widened.size(); ++v)
        widened[v] = static_cast<std::uint16_t>(static_cast<double>(v) / 255.0 * 65535.0);

    const std::size_t words = static_cast<std::size_t>(image.sizeInBytes()) / sizeof(QRgb);
    const std::size_t count = std::min(pixelsInBlock(*this), words);
    const uchar* source = image.constBits();
    for (std::size_t i = 0; i < count; ++i) {
        QRgb word;
        std::memcpy(&word, source + sizeof word * i, sizeof word);
        std::uint16_t* pixel = data + 4 * i;
        pixel[0] = widened[word >> 16 & 0xFF];
        pixel[1] = widened[word >> 8 & 0xFF];
        pixel[2] = widened[word & 0xFF];
        pixel[3] = widened[word >> 24];
    }
}

Image::Image(Image const& other)
    : width(other.width)
    , height(other.height)
    , sizeBytes(other.sizeBytes)
    , data(mapPixelBlock(other.sizeBytes))
{
    copyBlock(*this, other);
    copyMetadata(*this, other);
}

Image::Image(Image&& other) noexcept
{
    takePixels(*this, other);
    swapMetadata(*this, other);
}

Image& Image::operator=(Image const& other)
{
    if (this == &other)
        return *this;
    if (sizeBytes != other.sizeBytes) {
        dropPixels(*this);
        copyMetadata(*this, Image()); // if the mapping fails, an empty image is left
        data = mapPixelBlock(other.sizeBytes);
        sizeBytes = other.sizeBytes;
    }
    width = other.width;
    height = other.height;
    copyBlock(*this, other);
    copyMetadata(*this, other);
    return *this;
}

Image& Image::operator=(Image&& other) noexcept
{
    dropPixels(*this);
    rawIsMosaic = false;
    rawFilters = 0;
    rawHasInfo = false;
    takePixels(*this, other);
    swapMetadata(*this, other);
    return *this;
}

Image::~Image()
{
    unmapPixelBlock(data, sizeBytes);
}

bool Image::canSafelyResize(unsigned int newWidth, unsigned int newHeight) const
{
    // Each new side goes with the present other side: so much must fit while rows are moved one by one.
    return blockBytes(newWidth, height) <= sizeBytes && blockBytes(width, newHeight) <= sizeBytes;
}

bool Image::canSafelyAssignInPlace(Image const& other) const
{
    return sizeBytes == other.sizeBytes && canSafelyResize(other.width, other.height);
}

std::shared_ptr<const Image> Image::toPtr() const
{
    return std::make_shared<const Image>(*this);
}

void Image::Fill(unsigned short r, unsigned short g, unsigned short b, unsigned short a)
{
    fillPixels(data, pixelsInBlock(*this), packPixel(r, g, b, a));
}

void Image::Fill(unsigned short r, unsigned short g, unsigned short b, unsigned short a, unsigned int x, unsigned int y,
                 unsigned int w, unsigned int h)
{
    if (x >= width || y >= height)
        return;
    const unsigned int right = std::min(x + w, width);
    const unsigned int bottom = std::min(y + h, height);
    if (right <= x)
        return;
    const std::uint64_t pixel = packPixel(r, g, b, a);
    const std::size_t count = pixelsInBlock(*this);
    for (unsigned int row = y; row < bottom; ++row) {
        const std::size_t first = std::size_t{row} * width + x;
        if (first >= count)
            return;
        fillPixels(data + 4 * first, std::min<std::size_t>(right - x, count - first), pixel);
    }
}

void Image::FastFill(unsigned short value)
{
    std::fill_n(data, pixelsInBlock(*this) * 4, value);
}

bool Image::SampleAverageRGB(int x, int y, int w, int h, float& r, float& g, float& b) const
{
    const std::int64_t y0 = std::clamp<std::int64_t>(y, 0, height);
    const std::int64_t rows = std::min<std::int64_t>(h, height - y0);
    const std::int64_t x0 = std::clamp<std::int64_t>(x, 0, width);
    const std::int64_t columns = std::min<std::int64_t>(w, width - x0);
    if (rows < 1 || columns < 1)
        return false;

    const double weight = 1.0 / static_cast<double>(rows * columns);
    const std::size_t count = pixelsInBlock(*this);
    float sums[3] = {0, 0, 0};
    for (std::int64_t row = y0; row < y0 + rows; ++row) {
        const auto first = static_cast<std::size_t>(row * width + x0);
        const std::size_t end = std::min(first + static_cast<std::size_t>(columns), count);
        for (std::size_t i = first; i < end; ++i) {
            for (std::size_t c = 0; c < 3; ++c)
                sums[c] = static_cast<float>(data[4 * i + c] / 65535.0 * weight + static_cast<double>(sums[c]));
        }
    }
    r = sums[0];
    g = sums[1];
    b = sums[2];
    return true;
}

} // namespace Ondrel

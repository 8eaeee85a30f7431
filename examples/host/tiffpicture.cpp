#include "tiffpicture.h"

#include <tiffio.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <iterator>
#include <memory>
#include <vector>

namespace Host
{
namespace
{

constexpr std::uint64_t kMostPixels = std::uint64_t(1) << 28;

struct MemoryFile {
    const unsigned char* data;
    std::uint64_t size;
    std::uint64_t at = 0;
};

MemoryFile& fileOf(thandle_t handle)
{
    return *static_cast<MemoryFile*>(handle);
}

tmsize_t readBytes(thandle_t handle, void* target, tmsize_t size)
{
    MemoryFile& file = fileOf(handle);
    if (size <= 0 || file.at >= file.size)
        return 0;
    const std::uint64_t count = std::min(std::uint64_t(size), file.size - file.at);
    std::memcpy(target, file.data + file.at, count);
    file.at += count;
    return tmsize_t(count);
}

tmsize_t writeNothing(thandle_t, void*, tmsize_t)
{
    return 0;
}

toff_t seekTo(thandle_t handle, toff_t offset, int whence)
{
    MemoryFile& file = fileOf(handle);
    const std::uint64_t start = whence == SEEK_CUR ? file.at : whence == SEEK_END ? file.size : 0;
    file.at = start + offset; // wraps for offsets below zero, as they come
    return file.at;
}

int closeNothing(thandle_t)
{
    return 0;
}

toff_t sizeOf(thandle_t handle)
{
    return fileOf(handle).size;
}

struct CloseTiff {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};

using Tiff = std::unique_ptr<TIFF, CloseTiff>;

Tiff open(MemoryFile& file)
{
    return Tiff(
        TIFFClientOpen("memory", "rm", &file, readBytes, writeNothing, seekTo, closeNothing, sizeOf, nullptr, nullptr));
}

bool isTiff(const unsigned char* data, std::size_t size)
{
    constexpr unsigned char starts[][4] = {{'I', 'I', 42, 0}, {'M', 'M', 0, 42}, {'I', 'I', 43, 0}, {'M', 'M', 0, 43}};
    return size > sizeof(starts[0]) && std::any_of(std::begin(starts), std::end(starts), [data](const auto& start) {
               return std::memcmp(data, start, sizeof(start)) == 0;
           });
}

void takeLarger(TIFF* tiff, QSize& largest)
{
    std::uint32_t width = 0, height = 0;
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &height);
    if (width <= INT_MAX && height <= INT_MAX &&
        std::uint64_t(width) * height > std::uint64_t(largest.width()) * std::uint64_t(largest.height()))
        largest = QSize(int(width), int(height));
}

// Directories below the present one.
std::vector<std::uint64_t> below(TIFF* tiff)
{
    std::uint16_t count = 0;
    const std::uint64_t* offsets = nullptr;
    if (!TIFFGetField(tiff, TIFFTAG_SUBIFD, &count, &offsets) || !offsets)
        return {};
    return std::vector<std::uint64_t>(offsets, offsets + count);
}

std::uint16_t straight(std::uint32_t premultiplied, std::uint32_t alpha)
{
    return alpha == 0 ? std::uint16_t(0)
                      : std::uint16_t(std::min((premultiplied * 255 + alpha / 2) / alpha, std::uint32_t(255)) * 257);
}

} // namespace

bool readTiffPicture(const FileBytes& bytes, Ondrel::Image& image)
{
    MemoryFile file{bytes.data(), bytes.size()};
    const Tiff tiff = open(file);
    std::uint32_t width = 0, height = 0;
    std::uint16_t compression = 0;
    if (!tiff || !TIFFGetField(tiff.get(), TIFFTAG_IMAGEWIDTH, &width) ||
        !TIFFGetField(tiff.get(), TIFFTAG_IMAGELENGTH, &height) ||
        !TIFFGetFieldDefaulted(tiff.get(), TIFFTAG_COMPRESSION, &compression) || compression == COMPRESSION_OJPEG ||
        width == 0 || height == 0 || std::uint64_t(width) * height > kMostPixels)
        return false;
    const std::size_t count = std::size_t(width) * height;
    const std::unique_ptr<std::uint32_t[]> pixels(new std::uint32_t[count]); // not set, so not touched for a lie
    if (!TIFFReadRGBAImageOriented(tiff.get(), width, height, pixels.get(), ORIENTATION_TOPLEFT, 1))
        return false;
    Ondrel::Image result(width, height);
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t alpha = TIFFGetA(pixels[i]);
        result.data[i * 4] = straight(TIFFGetR(pixels[i]), alpha);
        result.data[i * 4 + 1] = straight(TIFFGetG(pixels[i]), alpha);
        result.data[i * 4 + 2] = straight(TIFFGetB(pixels[i]), alpha);
        result.data[i * 4 + 3] = std::uint16_t(alpha * 257);
    }
    image = std::move(result);
    return true;
}

QSize tiffSize(const unsigned char* data, std::size_t size)
{
    constexpr int mostDirectories = 64; // camera files have less than ten
    if (!isTiff(data, size))            // of which libtiff would complain on standard error
        return QSize();
    MemoryFile file{data, size};
    const Tiff tiff = open(file);
    QSize largest(0, 0);
    std::vector<std::uint64_t> children;
    for (int i = 0; tiff && i < mostDirectories; ++i) {
        takeLarger(tiff.get(), largest);
        const std::vector<std::uint64_t> found = below(tiff.get());
        children.insert(children.end(), found.begin(), found.end());
        if (!TIFFReadDirectory(tiff.get()))
            break;
    }
    children.resize(std::min(children.size(), std::size_t(mostDirectories)));
    for (const std::uint64_t offset : children) {
        if (TIFFSetSubDirectory(tiff.get(), offset))
            takeLarger(tiff.get(), largest);
    }
    return largest;
}

} // namespace Host

#include "testfiles.h"

#include <zlib.h>

#include <cstring>

namespace OndrelTest
{

namespace
{

void appendToBytes(png_struct* png, png_byte* data, std::size_t size)
{
    Bytes& file = *static_cast<Bytes*>(png_get_io_ptr(png));
    file.insert(file.end(), data, data + size);
}

void flushNothing(png_struct*) {}

} // namespace

unsigned int PngPicture::channels() const
{
    switch (colorType) {
    case PNG_COLOR_TYPE_GRAY_ALPHA:
        return 2;
    case PNG_COLOR_TYPE_RGB:
        return 3;
    case PNG_COLOR_TYPE_RGB_ALPHA:
        return 4;
    default:
        return 1;
    }
}

std::size_t PngPicture::rowBytes() const
{
    return (std::size_t(width) * channels() * unsigned(bitDepth) + 7) / 8;
}

unsigned int PngPicture::sample(unsigned int x, unsigned int y, unsigned int channel) const
{
    const std::size_t bit = (std::size_t(x) * channels() + channel) * unsigned(bitDepth);
    const unsigned char* const bytes = &rows[rowBytes() * y + bit / 8];
    if (bitDepth == 16)
        return bytes[0] * 256u + bytes[1];
    return (unsigned(*bytes) >> (8 - unsigned(bitDepth) - bit % 8)) & ((1u << bitDepth) - 1);
}

PngPicture randomPng(unsigned int width, unsigned int height, int colorType, int bitDepth, unsigned int seed)
{
    PngPicture picture{width, height, colorType, bitDepth, {}};
    picture.rows = randomBytes(picture.rowBytes() * height, seed);
    if (colorType == PNG_COLOR_TYPE_PALETTE) {
        const Bytes colors = randomBytes(3u << bitDepth, seed + 1);
        for (std::size_t i = 0; i < colors.size(); i += 3)
            picture.palette.push_back({colors[i], colors[i + 1], colors[i + 2]});
    }
    return picture;
}

Bytes pngFile(const PngPicture& picture, const PngChunks& chunks)
{
    Bytes file;
    png_struct* png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_info* info = png_create_info_struct(png);
    png_set_write_fn(png, &file, appendToBytes, flushNothing);
    png_set_IHDR(png, info, picture.width, picture.height, picture.bitDepth, picture.colorType,
                 picture.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    if (!picture.palette.empty())
        png_set_PLTE(png, info, picture.palette.data(), int(picture.palette.size()));
    if (chunks)
        chunks(png, info);
    png_write_info(png, info);
    Bytes rows = picture.rows;
    std::vector<png_byte*> pointers;
    for (unsigned int y = 0; y < picture.height; ++y)
        pointers.push_back(rows.data() + picture.rowBytes() * y);
    png_write_image(png, pointers.data());
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return file;
}

Bytes pngChunk(const char* type, const Bytes& data)
{
    Bytes content(type, type + 4);
    append(content, data);
    Bytes chunk = bigEndian(unsigned(data.size()));
    append(chunk, content);
    append(chunk, bigEndian(unsigned(crc32(0, content.data(), uInt(content.size())))));
    return chunk;
}

Bytes withPngChunk(const Bytes& file, const Bytes& chunk)
{
    constexpr int kBehindHeader = 8 + 25; // signature, IHDR
    Bytes result = file;
    result.insert(result.begin() + kBehindHeader, chunk.begin(), chunk.end());
    return result;
}

} // namespace OndrelTest

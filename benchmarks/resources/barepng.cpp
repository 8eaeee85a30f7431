#include "barelibraries.h"

#include <png.h>

#include <cstddef>
#include <cstdio>
#include <cstring>

namespace OndrelBench
{
namespace
{

struct Source {
    const unsigned char* data;
};

void readFromMemory(png_structp png, png_bytep out, std::size_t count)
{
    auto* source = static_cast<Source*>(png_get_io_ptr(png));
    std::memcpy(out, source->data, count);
    source->data += count;
}

} // namespace

bool bareReadPng(const std::vector<unsigned char>& file, Ondrel::Image& image)
{
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    Source source{file.data()};
    png_set_read_fn(png, &source, &readFromMemory);
    png_read_info(png, info);
    png_set_expand_16(png);
    png_set_alpha_mode(png, PNG_ALPHA_PNG, -1.0);
    png_set_add_alpha(png, 0xFFFF, PNG_FILLER_AFTER);
    png_set_swap(png);
    png_read_update_info(png, info);
    for (unsigned int y = 0; y < image.height; ++y)
        png_read_row(png, reinterpret_cast<png_bytep>(image.data + std::size_t(y) * image.width * 4), nullptr);
    png_read_end(png, info);
    png_destroy_read_struct(&png, &info, nullptr);
    return true;
}

bool bareWritePng(const std::string& fileName, const void* rgba, unsigned int width, unsigned int height, int bits,
                  int compressionLevel)
{
    std::FILE* file = std::fopen(fileName.c_str(), "wb");
    if (!file)
        return false;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, file);
    png_set_IHDR(png, info, width, height, bits, PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_compression_level(png, compressionLevel);
    png_write_info(png, info);
    if (bits == 16)
        png_set_swap(png);
    png_set_flush(png, 100);
    const std::size_t rowBytes = std::size_t(width) * unsigned(bits) / 2;
    for (unsigned int y = 0; y < height; ++y)
        png_write_row(png, static_cast<png_const_bytep>(rgba) + y * rowBytes);
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return std::fclose(file) == 0;
}

} // namespace OndrelBench

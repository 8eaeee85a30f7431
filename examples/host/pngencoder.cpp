#include "pngencoder.h"

#include <png.h>

#include <csetjmp>
#include <new>

namespace Host
{
namespace
{

constexpr int kFastDeflate = 1;

// What libpng needs to write, freed together.
struct Writer {
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, onWarning);
    png_infop info = png ? png_create_info_struct(png) : nullptr;

    Writer() = default;
    ~Writer() { png_destroy_write_struct(&png, &info); }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    static void onWarning(png_structp, png_const_charp) {}
};

struct Layout {
    bool wide;  // 16 bits
    bool alpha; // four channels
    std::size_t rowBytes(const Ondrel::Image& image) const
    {
        return std::size_t(image.width) * (alpha ? 4 : 3) * (wide ? 2 : 1);
    }
};

// The smallest that keeps every sample.
Layout layoutOf(const Ondrel::Image& image)
{
    Layout layout{false, false};
    const std::size_t count = std::size_t(image.width) * image.height * 4;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint16_t sample = image.data[i];
        layout.wide = layout.wide || sample >> 8 != (sample & 255);
        layout.alpha = layout.alpha || (i % 4 == 3 && sample != 65535);
    }
    return layout;
}

void packRow(const std::uint16_t* samples, std::size_t pixels, Layout layout, unsigned char* row)
{
    for (std::size_t i = 0; i < pixels * 4; ++i) {
        if (i % 4 == 3 && !layout.alpha)
            continue;
        *row++ = static_cast<unsigned char>(samples[i] >> 8);
        if (layout.wide)
            *row++ = static_cast<unsigned char>(samples[i]);
    }
}

void append(png_structp png, png_bytep bytes, png_size_t count)
{
    auto& file = *static_cast<FileBytes*>(png_get_io_ptr(png));
    bool isFull = false;
    try {
        file.insert(file.end(), bytes, bytes + count);
    } catch (const std::bad_alloc&) {
        isFull = true; // libpng's error jumps, which must not happen in here
    }
    if (isFull)
        png_error(png, "There is no memory.");
}

// libpng's errors land here; nothing inside has a destructor.
[[gnu::noinline]] bool write(const Writer& writer, const Ondrel::Image& image, Layout layout, const FileBytes& profile,
                             unsigned char* row)
{
    if (setjmp(png_jmpbuf(writer.png)))
        return false;
    png_set_user_limits(writer.png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_set_compression_level(writer.png, kFastDeflate);
    png_set_IHDR(writer.png, writer.info, image.width, image.height, layout.wide ? 16 : 8,
                 layout.alpha ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (profile.empty())
        png_set_sRGB(writer.png, writer.info, PNG_sRGB_INTENT_PERCEPTUAL);
    else
        png_set_iCCP(writer.png, writer.info, "ICC", PNG_COMPRESSION_TYPE_BASE, profile.data(),
                     png_uint_32(profile.size()));
    if (!profile.empty() && !png_get_valid(writer.png, writer.info, PNG_INFO_iCCP))
        return false;
    png_write_info(writer.png, writer.info);
    for (std::size_t y = 0; y < image.height; ++y) {
        packRow(image.data + y * image.width * 4, image.width, layout, row);
        png_write_row(writer.png, row);
    }
    png_write_end(writer.png, writer.info);
    return true;
}

} // namespace

FileBytes encodePng(const Ondrel::Image& image, const FileBytes& profile)
{
    const Writer writer;
    if (!writer.info || image.width == 0 || image.height == 0 || !image.data)
        return {};
    const Layout layout = layoutOf(image);
    FileBytes file, row(layout.rowBytes(image));
    png_set_write_fn(writer.png, &file, append, nullptr);
    return write(writer, image, layout, profile, row.data()) ? file : FileBytes();
}

} // namespace Host

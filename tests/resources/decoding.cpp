#include "decoding.h"
#include "pngsource.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace OndrelTest
{

namespace
{

using Ondrel::ColorManager;
using Ondrel::Image;

template <typename Read>
ReadResult read(Read reader, const Bytes& file)
{
    ReadResult result;
    void* profile = nullptr;
    result.ok = reader(recordOf(file), result.image, &profile);
    result.profile.reset(profile);
    return result;
}

std::uint16_t alphaOf(const unsigned char* sample, unsigned int bits)
{
    if (bits == 8)
        return static_cast<std::uint16_t>(std::min(std::lround(*sample * 257.0), 65535L));
    if (bits == 16) {
        std::uint16_t value;
        std::memcpy(&value, sample, 2);
        return value;
    }
    float value;
    std::memcpy(&value, sample, 4);
    const double scaled = std::round(value * 65535.0);
    return scaled > 65535.0 ? 65535 : scaled > 0.0 ? static_cast<std::uint16_t>(scaled) : 0;
}

void divideByAlpha(std::uint16_t* pixel)
{
    const float alpha = float(pixel[3]) * 1.5259022e-5f;
    const float inverse = pixel[3] == 0 ? 0.0f : 1.0f / alpha;
    for (int c = 0; c < 3; ++c)
        pixel[c] = static_cast<std::uint16_t>(std::min(std::round(float(pixel[c]) * inverse), 65535.0f));
}

} // namespace

ReadResult readPng(const Bytes& file)
{
    return read(ResourceEngine::ReadPNG, file);
}

ReadResult readJpeg(const Bytes& file, const Hash& wanted)
{
    return read([&wanted](const auto& record, Image& image,
                          void** profile) { return ResourceEngine::ReadJPEG(record, image, profile, wanted); },
                file);
}

ReadResult readTiff(const Bytes& file, const Hash& wanted)
{
    return read([&wanted](const auto& record, Image& image,
                          void** profile) { return ResourceEngine::ReadTIFF(record, image, profile, wanted); },
                file);
}

Hash hashOf(void* profile)
{
    return ColorManager::buildColorProfileHash(profile);
}

Hash hashOf(const Profile& profile)
{
    return hashOf(profile.get());
}

RegisteredProfile::RegisteredProfile(const Profile& profile)
{
    ColorManager::addColorProfile(savedBytes(profile.get()), ColorManager::ColorProfile::Embedded, &m_hash);
}

RegisteredProfile::~RegisteredProfile()
{
    ColorManager::removeColorProfile(m_hash, ColorManager::ColorProfile::Embedded);
}

Profile sRGB()
{
    return Profile(Ondrel::Create_sRGBColorProfile());
}

Hash proPhoto()
{
    ColorManager::get();
    return hashOf(Profile(Ondrel::CreateProPhotoRGBColorProfile()));
}

std::uint16_t widened(unsigned char v)
{
    return static_cast<std::uint16_t>(float(v) / 255.0f * 65535.0f);
}

Image transformed(const Bytes& samples, unsigned int width, unsigned int height, cmsUInt32Number format, void* from,
                  void* to)
{
    Image image(width, height);
    image.FastFill(65535);
    void* const transform = cmsCreateTransform(from, format, to, TYPE_RGBA_16, INTENT_PERCEPTUAL, 0);
    EXPECT_NE(transform, nullptr);
    if (!transform)
        return image;
    cmsDoTransform(transform, samples.data(), image.data, width * height);
    cmsDeleteTransform(transform);
    return image;
}

Image pngPixels(const Bytes& file)
{
    PngSource source{file, 0};
    png_struct* png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_info* info = png_create_info_struct(png);
    png_set_read_fn(png, &source, takeFromBytes);
    png_read_info(png, info);
    png_set_expand_16(png);
    png_set_alpha_mode(png, PNG_ALPHA_PNG, PNG_DEFAULT_sRGB);
    if (png_get_valid(png, info, PNG_INFO_tRNS) != 0)
        png_set_tRNS_to_alpha(png);
    else
        png_set_add_alpha(png, 0xFFFF, PNG_FILLER_AFTER);
    png_set_interlace_handling(png);
    png_read_update_info(png, info);
    const unsigned int width = png_get_image_width(png, info), height = png_get_image_height(png, info);
    const std::size_t rowBytes = png_get_rowbytes(png, info);
    Bytes bytes(rowBytes * height);
    std::vector<png_byte*> rows;
    for (unsigned int y = 0; y < height; ++y)
        rows.push_back(&bytes[rowBytes * y]);
    png_read_image(png, rows.data());
    png_read_end(png, info);
    png_destroy_read_struct(&png, &info, nullptr);
    Image image(width, height);
    for (unsigned int y = 0; y < height; ++y)
        for (std::size_t i = 0; i < rowBytes / 2; ++i)
            image.data[std::size_t(y) * width * 4 + i] = std::uint16_t(rows[y][i * 2] * 256 + rows[y][i * 2 + 1]);
    return image;
}

JpegRows decodeJpeg(const Bytes& file)
{
    jpeg_decompress_struct jpeg;
    jpeg_error_mgr errors;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&jpeg);
    jpeg_mem_src(&jpeg, file.data(), static_cast<unsigned long>(file.size()));
    jpeg_read_header(&jpeg, TRUE);
    if (jpegChannels(jpeg.jpeg_color_space) == 3)
        jpeg.out_color_space = JCS_RGB;
    JpegRows rows{jpeg.image_width, jpeg.image_height, jpeg.jpeg_color_space, jpeg.saw_Adobe_marker != 0, {}};
    jpeg_start_decompress(&jpeg);
    const std::size_t rowBytes = std::size_t(jpeg.output_width) * unsigned(jpeg.output_components);
    rows.samples.resize(rowBytes * jpeg.output_height);
    while (jpeg.output_scanline < jpeg.output_height) {
        unsigned char* row = &rows.samples[rowBytes * jpeg.output_scanline];
        jpeg_read_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_decompress(&jpeg);
    jpeg_destroy_decompress(&jpeg);
    return rows;
}

Image widened(const JpegRows& rgb)
{
    Image image(rgb.width, rgb.height);
    image.FastFill(65535);
    for (std::size_t i = 0; i < rgb.samples.size(); ++i)
        image.data[i / 3 * 4 + i % 3] = widened(rgb.samples[i]);
    return image;
}

cmsUInt32Number tiffFormat(const TiffPicture& picture, unsigned int type, bool reversed)
{
    const auto extra = unsigned(picture.extraSamples.size());
    return BYTES_SH(picture.bits / 8u % 8u) | CHANNELS_SH(picture.samplesPerPixel - extra) | EXTRA_SH(extra) |
           COLORSPACE_SH(type) | FLAVOR_SH(reversed ? 1u : 0u) |
           FLOAT_SH(picture.sampleFormat == SAMPLEFORMAT_IEEEFP ? 1u : 0u);
}

Image tiffPixels(const TiffPicture& picture, cmsUInt32Number format, void* from, void* to)
{
    Image image = transformed(picture.samples, picture.width, picture.height, format, from, to);
    if (picture.extraSamples.empty() || picture.extraSamples[0] == EXTRASAMPLE_UNSPECIFIED)
        return image;
    const std::size_t channels = picture.samplesPerPixel - picture.extraSamples.size();
    for (std::size_t i = 0; i < std::size_t(picture.width) * picture.height; ++i) {
        const std::size_t at = i * picture.pixelBytes() + channels * (picture.bits / 8u);
        image.data[i * 4 + 3] = alphaOf(&picture.samples[at], picture.bits);
        if (picture.extraSamples[0] == EXTRASAMPLE_ASSOCALPHA)
            divideByAlpha(&image.data[i * 4]);
    }
    return image;
}

} // namespace OndrelTest

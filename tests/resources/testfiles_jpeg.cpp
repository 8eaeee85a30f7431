#include "testfiles.h"

#include <algorithm>
#include <cstdlib>

namespace OndrelTest
{

namespace
{

J_COLOR_SPACE inputSpace(J_COLOR_SPACE fileSpace)
{
    switch (fileSpace) {
    case JCS_YCbCr:
        return JCS_RGB;
    case JCS_YCCK:
        return JCS_CMYK;
    default:
        return fileSpace;
    }
}

void appendLittleEndian(Bytes& bytes, unsigned int value, int count)
{
    for (int i = 0; i < count; ++i)
        bytes.push_back(static_cast<unsigned char>(value >> (8 * i)));
}

} // namespace

int jpegChannels(J_COLOR_SPACE space)
{
    switch (space) {
    case JCS_GRAYSCALE:
        return 1;
    case JCS_UNKNOWN:
        return 2;
    case JCS_CMYK:
    case JCS_YCCK:
        return 4;
    default:
        return 3;
    }
}

JpegPicture randomJpeg(unsigned int width, unsigned int height, J_COLOR_SPACE space, unsigned int seed)
{
    return {width, height, space, randomBytes(std::size_t(width) * height * unsigned(jpegChannels(space)), seed)};
}

Bytes jpegFile(const JpegPicture& picture, const JpegMarkers& markers)
{
    jpeg_compress_struct jpeg;
    jpeg_error_mgr errors;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    unsigned char* buffer = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&jpeg, &buffer, &size);
    jpeg.image_width = picture.width;
    jpeg.image_height = picture.height;
    jpeg.input_components = jpegChannels(picture.space);
    jpeg.in_color_space = inputSpace(picture.space);
    jpeg_set_defaults(&jpeg);
    jpeg_set_colorspace(&jpeg, picture.space);
    jpeg_set_quality(&jpeg, picture.quality, TRUE);
    if (picture.space == JCS_CMYK)
        jpeg.write_Adobe_marker = picture.adobeMarker;
    if (picture.progressive)
        jpeg_simple_progression(&jpeg);
    jpeg_start_compress(&jpeg, TRUE);
    if (markers)
        markers(&jpeg);
    Bytes samples = picture.samples;
    const std::size_t rowBytes = std::size_t(picture.width) * unsigned(jpeg.input_components);
    for (unsigned int y = 0; y < picture.height; ++y) {
        unsigned char* row = samples.data() + rowBytes * y;
        jpeg_write_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
    const Bytes file(buffer, buffer + size);
    std::free(buffer);
    return file;
}

void writeIccMarker(jpeg_compress_struct* jpeg, unsigned int number, unsigned int total, const Bytes& part)
{
    const char name[] = "ICC_PROFILE";
    Bytes content(name, name + sizeof name);
    content.push_back(static_cast<unsigned char>(number));
    content.push_back(static_cast<unsigned char>(total));
    content.insert(content.end(), part.begin(), part.end());
    jpeg_write_marker(jpeg, JPEG_APP0 + 2, content.data(), unsigned(content.size()));
}

void writeIcc(jpeg_compress_struct* jpeg, const Bytes& profile, unsigned int count)
{
    const std::size_t each = (profile.size() + count - 1) / count;
    for (unsigned int i = 0; i < count; ++i) {
        const std::size_t begin = std::min(each * i, profile.size()), end = std::min(begin + each, profile.size());
        const Bytes part(profile.begin() + std::ptrdiff_t(begin), profile.begin() + std::ptrdiff_t(end));
        writeIccMarker(jpeg, i + 1, count, part);
    }
}

Bytes exif(const std::vector<ExifEntry>& entries, unsigned int offset)
{
    Bytes content = {'E', 'x', 'i', 'f', 0, 0, 'I', 'I', 42, 0};
    appendLittleEndian(content, offset, 4);
    appendLittleEndian(content, unsigned(entries.size()), 2);
    for (const ExifEntry& entry : entries) {
        appendLittleEndian(content, entry.tag, 2);
        appendLittleEndian(content, entry.type, 2);
        appendLittleEndian(content, entry.count, 4);
        appendLittleEndian(content, entry.value, 4);
    }
    appendLittleEndian(content, 0, 4); // no further directory
    return content;
}

Bytes exifOrientation(unsigned int value)
{
    return exif({{0x112, 3, 1, value}});
}

Bytes bigEndianExifOrientation(unsigned int value)
{
    return {'E', 'x',  'i', 'f', 0, 0, 'M', 'M', 0, 42,
            0,   0,    0,   8,   0, 1, // one entry
            0x1, 0x12, 0,   3,   0, 0, 0,   1,   0, static_cast<unsigned char>(value),
            0,   0,    0,   0,   0, 0};
}

void writeExif(jpeg_compress_struct* jpeg, const Bytes& content)
{
    jpeg_write_marker(jpeg, JPEG_APP0 + 1, content.data(), unsigned(content.size()));
}

} // namespace OndrelTest

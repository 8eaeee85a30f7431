#include <ondrel/resources/jpegmarkers_p.h>

#include <cstdint>
#include <cstring>
#include <optional>

namespace Ondrel
{
namespace
{

constexpr int kExifMarker = JPEG_APP0 + 1;
constexpr std::uint64_t kTiffStart = 6; // offsets in the block count from here
constexpr std::uint64_t kEntrySize = 12;
constexpr std::uint16_t kOrientationTag = 274;
constexpr std::uint16_t kShortType = 3;

std::uint16_t number16(const unsigned char* bytes)
{
    return std::uint16_t(bytes[0] | bytes[1] << 8);
}

std::uint32_t number32(const unsigned char* bytes)
{
    return number16(bytes) | std::uint32_t(number16(bytes + 2)) << 16;
}

bool isExif(const jpeg_marker_struct& marker)
{
    return marker.marker == kExifMarker && marker.data_length >= 16 && std::memcmp(marker.data, "Exif\0\0", 6) == 0;
}

// The orientation value of a block, 0 if it gives none. Nothing if its directory is empty and another block may tell.
std::optional<unsigned int> exifOrientation(const unsigned char* data, std::uint64_t length)
{
    const std::uint64_t directory = kTiffStart + number32(data + 10);
    if (length < directory + 2)
        return 0;
    const unsigned int count = number16(data + directory);
    if (count == 0)
        return std::nullopt;
    std::uint64_t entry = directory + 2;
    for (unsigned int i = 0; i < count && entry + kEntrySize <= length; ++i, entry += kEntrySize) {
        const unsigned char* bytes = data + entry;
        if (number16(bytes) == kOrientationTag && number16(bytes + 2) == kShortType && number32(bytes + 4) == 1)
            return number16(bytes + 8);
    }
    return 0;
}

JpegOrientation turn(unsigned int exifValue)
{
    switch (exifValue) {
    case 3:
        return JpegOrientation::Turned180;
    case 6:
        return JpegOrientation::Clockwise;
    case 8:
        return JpegOrientation::CounterClockwise;
    default:
        return JpegOrientation::Upright;
    }
}

} // namespace

JpegOrientation jpegOrientation(jpeg_saved_marker_ptr markers)
{
    for (; markers; markers = markers->next) {
        if (!isExif(*markers))
            continue;
        if (const auto value = exifOrientation(markers->data, markers->data_length))
            return turn(*value);
    }
    return JpegOrientation::Upright;
}

} // namespace Ondrel

#include <ondrel/resources/jpegicc.h>
#include <ondrel/resources/jpegmarkers_p.h>

#include <algorithm>
#include <array>
#include <cstring>

namespace
{

constexpr int kIccMarker = JPEG_APP0 + 2;
constexpr char kSignature[] = "ICC_PROFILE"; // written and compared with its final zero
constexpr unsigned int kHeaderSize = sizeof kSignature + 2;
constexpr unsigned int kMostChunkData = 65533 - kHeaderSize;

bool isIccChunk(const jpeg_marker_struct& marker)
{
    return marker.marker == kIccMarker && marker.data_length >= kHeaderSize &&
           std::memcmp(marker.data, kSignature, sizeof kSignature) == 0;
}

} // namespace

namespace Ondrel
{

std::vector<unsigned char> jpegIccProfile(jpeg_saved_marker_ptr markers)
{
    std::array<jpeg_saved_marker_ptr, 256> chunks{}; // by number
    unsigned int total = 0, found = 0;
    for (; markers; markers = markers->next) {
        if (!isIccChunk(*markers))
            continue;
        const unsigned int number = markers->data[sizeof kSignature];
        const unsigned int stated = markers->data[sizeof kSignature + 1];
        if (found == 0)
            total = stated;
        if (stated != total || number == 0 || number > total || chunks[number])
            return {};
        chunks[number] = markers;
        ++found;
    }
    if (found != total)
        return {};
    std::vector<unsigned char> profile;
    for (unsigned int number = 1; number <= total; ++number)
        profile.insert(profile.end(), chunks[number]->data + kHeaderSize,
                       chunks[number]->data + chunks[number]->data_length);
    return profile;
}

} // namespace Ondrel

void JPEGWriteICCProfile(jpeg_compress_struct* cinfo, const unsigned char* data, unsigned int size)
{
    const unsigned int total = size / kMostChunkData + (size % kMostChunkData > 0);
    for (unsigned int number = 1; number <= total; ++number) {
        const unsigned int chunk = std::min(size, kMostChunkData);
        jpeg_write_m_header(cinfo, kIccMarker, chunk + kHeaderSize);
        for (const char c : kSignature)
            jpeg_write_m_byte(cinfo, c);
        jpeg_write_m_byte(cinfo, int(number & 0xFF));
        jpeg_write_m_byte(cinfo, int(total & 0xFF));
        for (unsigned int i = 0; i < chunk; ++i)
            jpeg_write_m_byte(cinfo, data[i]);
        data += chunk;
        size -= chunk;
    }
}

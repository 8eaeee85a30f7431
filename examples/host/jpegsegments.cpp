#include "jpegsegments.h"

#include <algorithm>
#include <cstring>

namespace Host
{
namespace
{

constexpr unsigned char kStartOfImage = 0xD8, kEndOfImage = 0xD9, kStartOfScan = 0xDA, kApp1 = 0xE1, kApp2 = 0xE2;
constexpr char kExif[] = "Exif\0"; // with the zero at its end six bytes
constexpr char kProfile[] = "ICC_PROFILE";
constexpr std::size_t kProfileHeader = sizeof(kProfile) + 2, kLargestPayload = 65533;

bool isFrame(unsigned char marker)
{
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

// Markers without a length.
bool standsAlone(unsigned char marker)
{
    return marker <= 0x01 || (marker >= 0xD0 && marker <= 0xD8);
}

void appendSegment(FileBytes& file, unsigned char marker, const FileBytes& payload)
{
    const std::size_t length = payload.size() + 2;
    file.insert(file.end(),
                {0xFF, marker, static_cast<unsigned char>(length >> 8), static_cast<unsigned char>(length)});
    file.insert(file.end(), payload.begin(), payload.end());
}

FileBytes exifSegment(int orientation)
{
    FileBytes payload(std::begin(kExif), std::end(kExif));
    // The header, a directory at byte 8 with one entry (a short at tag 274), and no further one.
    payload.insert(
        payload.end(),
        {'I', 'I', 42, 0, 8, 0, 0, 0, 1, 0, 0x12, 0x01, 3, 0, 1, 0, 0, 0, static_cast<unsigned char>(orientation),
         0,   0,   0,  0, 0, 0, 0});
    FileBytes segment;
    appendSegment(segment, kApp1, payload);
    return segment;
}

// Empty if it takes more than the 255 segments that can be counted.
FileBytes profileSegments(const FileBytes& profile)
{
    constexpr std::size_t chunk = kLargestPayload - kProfileHeader;
    const std::size_t count = (profile.size() + chunk - 1) / chunk;
    FileBytes segments;
    for (std::size_t i = 0; count <= 255 && i < count; ++i) {
        FileBytes payload(std::begin(kProfile), std::end(kProfile));
        payload.push_back(static_cast<unsigned char>(i + 1));
        payload.push_back(static_cast<unsigned char>(count));
        const std::size_t end = std::min(profile.size(), (i + 1) * chunk);
        payload.insert(payload.end(), profile.data() + i * chunk, profile.data() + end);
        appendSegment(segments, kApp2, payload);
    }
    return segments;
}

} // namespace

JpegSegments::JpegSegments(const FileBytes& file)
    : m_file(file)
{
    m_isJpeg = file.size() > 3 && file[0] == 0xFF && file[1] == kStartOfImage;
    m_rest = m_isJpeg ? 2 : 0;
    while (m_isJpeg) {
        // As decoders do: what stands between segments is skipped, and a marker may have any number of 255 before it.
        std::size_t at = m_rest;
        while (at < file.size() && file[at] != 0xFF)
            ++at;
        while (at + 1 < file.size() && file[at + 1] == 0xFF)
            ++at;
        if (at + 4 > file.size() || file[at + 1] == kStartOfScan || file[at + 1] == kEndOfImage)
            return;
        if (standsAlone(file[at + 1])) {
            m_rest = at + 2;
            continue;
        }
        const std::size_t length = std::size_t(file[at + 2] << 8 | file[at + 3]);
        if (length < 2 || length > file.size() - at - 2)
            return;
        m_rest = at + 2 + length;
        m_segments.push_back({at, m_rest, file[at + 1]});
    }
}

JpegSegments::Kind JpegSegments::kindOf(const Segment& segment) const
{
    const auto startsWith = [&](const char* word, std::size_t size) {
        return payloadSize(segment) >= size && std::memcmp(payload(segment), word, size) == 0;
    };
    if (segment.marker == kApp1 && startsWith(kExif, sizeof(kExif)))
        return Kind::Exif;
    if (segment.marker == kApp2 && startsWith(kProfile, sizeof(kProfile)))
        return Kind::Profile;
    return Kind::Other;
}

int JpegSegments::components() const
{
    const auto frame = std::find_if(m_segments.begin(), m_segments.end(),
                                    [](const Segment& segment) { return isFrame(segment.marker); });
    return frame == m_segments.end() || payloadSize(*frame) < 6 ? 0 : payload(*frame)[5];
}

JpegSegments::Orientation JpegSegments::orientation() const
{
    Orientation found;
    for (const Segment& segment : m_segments) {
        if (kindOf(segment) == Kind::Exif && found.value == 0)
            found.value = tiffOrientation(payload(segment) + sizeof(kExif), payloadSize(segment) - sizeof(kExif),
                                          found.bigEndian);
    }
    return found;
}

// What is added stands behind all other segments.
FileBytes JpegSegments::without(Kind kind, const FileBytes& added) const
{
    FileBytes result;
    result.reserve(m_file.size() + added.size());
    result.insert(result.end(), {0xFF, kStartOfImage});
    for (const Segment& segment : m_segments) {
        if (kindOf(segment) != kind)
            result.insert(result.end(), m_file.data() + segment.begin, m_file.data() + segment.end);
    }
    result.insert(result.end(), added.begin(), added.end());
    result.insert(result.end(), m_file.data() + m_rest, m_file.data() + m_file.size());
    return result;
}

FileBytes JpegSegments::withOrientation(int value) const
{
    return without(Kind::Exif, exifSegment(value));
}

FileBytes JpegSegments::withProfile(const FileBytes& profile) const
{
    return without(Kind::Profile, profileSegments(profile));
}

int tiffOrientation(const unsigned char* data, std::size_t size, bool& bigEndian)
{
    if (size < 8 || data[0] != data[1] || (data[0] != 'I' && data[0] != 'M'))
        return 0;
    const bool big = data[0] == 'M';
    const auto number = [&](std::size_t at, std::size_t bytes) {
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < bytes; ++i)
            value = value << 8 | data[big ? at + i : at + bytes - 1 - i];
        return value;
    };
    const std::size_t directory = number(4, 4);
    if (number(2, 2) != 42 || directory > size - 2)
        return 0;
    constexpr std::size_t entrySize = 12;
    std::size_t entry = directory + 2;
    for (std::uint32_t left = number(directory, 2); left > 0 && entry + entrySize <= size; --left, entry += entrySize) {
        if (number(entry, 2) != 274 || number(entry + 2, 2) != 3 || number(entry + 4, 4) != 1)
            continue;
        const std::uint32_t value = number(entry + 8, 2);
        bigEndian = big;
        return value >= 1 && value <= 8 ? int(value) : 0;
    }
    return 0;
}

} // namespace Host

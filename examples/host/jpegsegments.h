#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Host
{

using FileBytes = std::vector<unsigned char>;

// The part of a JPEG file before its first scan, as marker segments. Nothing is decoded; a file that is none, or is
// damaged, has the segments up to the damage.
class JpegSegments
{
public:
    explicit JpegSegments(const FileBytes& file); // which must live as long

    bool isJpeg() const { return m_isJpeg; }
    int components() const; // of the frame: 1 grey, 3 colour, 4 CMYK; 0 if there is no frame

    // The Exif orientation (1 to 8) and the byte order of the block that tells it; 0 if none does.
    struct Orientation {
        int value = 0;
        bool bigEndian = false;
    };
    Orientation orientation() const;

    // The file with its Exif blocks replaced by one in little-endian order that says the orientation and nothing else.
    FileBytes withOrientation(int value) const;

    // The file with another ICC profile in place of what it has; with none if the profile is empty. A profile that is
    // too large for a JPEG is left out.
    FileBytes withProfile(const FileBytes& profile) const;

private:
    struct Segment {
        std::size_t begin, end; // of its bytes, from the marker on
        unsigned char marker;
    };
    enum class Kind { Exif, Profile, Other };
    Kind kindOf(const Segment& segment) const;
    std::size_t payloadSize(const Segment& segment) const { return segment.end - segment.begin - 4; }
    const unsigned char* payload(const Segment& segment) const { return m_file.data() + segment.begin + 4; }
    FileBytes without(Kind kind, const FileBytes& added) const;

    const FileBytes& m_file;
    bool m_isJpeg = false;
    std::vector<Segment> m_segments;
    std::size_t m_rest = 0; // where they end
};

// The orientation (tag 274 of the first directory) of a block with the structure of TIFF 6.0, which Exif shares; 0 if
// it has none. `bigEndian` is set if it has.
int tiffOrientation(const unsigned char* data, std::size_t size, bool& bigEndian);

} // namespace Host

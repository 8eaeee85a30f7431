#pragma once

#include "testfiles.h"

#include <ondrel/core/image.h>

// The decoders as the tests call them, and what they are compared with: the C libraries themselves, in plain loops.
namespace OndrelTest
{

struct ReadResult {
    bool ok = false;
    Ondrel::Image image;
    Profile profile; // null if none was handed over
};

ReadResult readPng(const Bytes& file);
ReadResult readJpeg(const Bytes& file, const Hash& wanted = Ondrel::EmbeddedColorProfile);
ReadResult readTiff(const Bytes& file, const Hash& wanted = Ondrel::EmbeddedColorProfile);

// The hash that the registry gives to a fresh handle.
Hash hashOf(void* profile);
Hash hashOf(const Profile& profile);

// A registered profile, for as long as the object lives.
class RegisteredProfile
{
public:
    explicit RegisteredProfile(const Profile& profile);
    ~RegisteredProfile();
    RegisteredProfile(const RegisteredProfile&) = delete;
    RegisteredProfile& operator=(const RegisteredProfile&) = delete;

    const Hash& hash() const { return m_hash; }

private:
    Hash m_hash{};
};

// A fresh handle of sRGB, and a registered profile that is none of those.
Profile sRGB();
Hash proPhoto();

// trunc(v / 255 * 65535) in single precision.
std::uint16_t widened(unsigned char v);

// What Little CMS makes of interleaved samples of `format`, perceptually, over samples that are all 65535.
Ondrel::Image transformed(const Bytes& samples, unsigned int width, unsigned int height, cmsUInt32Number format,
                          void* from, void* to);

// The pixels of a PNG file by libpng: expanded to 16 bits, in the gamma of sRGB, with an alpha channel.
Ondrel::Image pngPixels(const Bytes& file);

// The samples of a JPEG file by libjpeg: grey, RGB or CMYK.
struct JpegRows {
    unsigned int width = 0, height = 0;
    J_COLOR_SPACE space = JCS_UNKNOWN; // of the file
    bool adobeMarker = false;
    Bytes samples;
};
JpegRows decodeJpeg(const Bytes& file);
Ondrel::Image widened(const JpegRows& rgb);

// The samples of a TIFF file by libtiff, strip by strip or tile by tile.
TiffPicture decodeTiff(const Bytes& file);

// The word that describes interleaved samples to Little CMS.
cmsUInt32Number tiffFormat(const TiffPicture& picture, unsigned int type, bool reversed = false);

// The picture in `to`, with its alpha by the kind of its first extra sample.
Ondrel::Image tiffPixels(const TiffPicture& picture, cmsUInt32Number format, void* from, void* to);

} // namespace OndrelTest

#pragma once

#include <ondrel/color/lcms_p.h>

#include <tiffio.h>

#include <cstddef>
#include <cstdint>
#include <optional>

namespace Ondrel
{

enum class TiffAlpha { None, Unassociated, Associated };

// How the samples of a TIFF file lie in the strips or tiles that libtiff decodes.
struct TiffLayout {
    std::uint32_t width = 0, height = 0;
    std::uint16_t fileBits = 0;    // BitsPerSample as the file states it
    std::uint16_t sampleBytes = 0; // as decoded
    std::uint16_t channels = 0;    // of colour
    std::uint16_t extras = 0;
    bool planar = false;
    bool isFloat = false;
    bool reversed = false;
    unsigned int type = 0; // Little CMS pixel type
    TiffAlpha alpha = TiffAlpha::None;

    unsigned int planes() const { return planar ? channels + extras : 1u; }
    // Bytes from one pixel to the next within a plane.
    std::size_t pixelBytes() const { return std::size_t(planar ? 1 : channels + extras) * sampleBytes; }
    cmsUInt32Number lcmsFormat() const;
};

// Reads the tags, with their defaults. Nothing for a file that is not read: one with other depths, formats or colour
// models, subsampled colour, more channels than Little CMS has room for, or no decodable size.
std::optional<TiffLayout> readTiffLayout(TIFF* tiff);

} // namespace Ondrel

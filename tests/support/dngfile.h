#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace OndrelTest
{

// A small DNG file (Adobe DNG 1.4): little-endian, one uncompressed strip of 16-bit samples. LibRaw takes none with a
// side below 22.
struct DngFile {
    enum class Kind { Bayer, XTrans, Monochrome, Linear };
    enum class Preview { None, Jpeg, Bitmap };

    Kind kind = Kind::Bayer;
    std::uint32_t width = 0, height = 0;
    std::array<unsigned char, 4> bayer = {0, 1, 1, 2}; // colours of the rows of the 2 x 2 pattern: 0 red to 2 blue
    unsigned short orientation = 1;                    // as TIFF
    std::uint32_t black = 0, white = 65535;
    std::vector<std::uint32_t> blacks; // instead of `black`, those of the rows of a 2 x 2 pattern of one sample each
    bool hasMatrix = true;             // of Monochrome there is none
    std::array<double, 9> matrix = {1, 0, 0, 0, 1, 0, 0, 0, 1}; // ColorMatrix1: XYZ to camera
    std::array<double, 3> neutral = {1, 1, 1};                  // AsShotNeutral
    std::vector<std::uint16_t> table;                           // linearisation table; none if empty
    std::vector<std::uint16_t> samples;                         // width * height, of Linear three times as many

    Preview preview = Preview::None; // in a second directory
    std::uint32_t previewWidth = 0, previewHeight = 0;
    unsigned short previewChannels = 3;
    std::vector<unsigned char> previewData; // a JPEG file, or interleaved samples of 8 bits

    // The colour of a photosite of the mosaic.
    unsigned int colorAt(std::uint32_t x, std::uint32_t y) const;

    std::vector<unsigned char> bytes() const;
};

} // namespace OndrelTest

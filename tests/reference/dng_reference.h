#pragma once

#include <ondrel/core/image.h>

#include <array>
#include <cstdint>
#include <vector>

// Uncompressed DNG files read without LibRaw: little-endian, one directory, one strip of 16-bit samples.
namespace OndrelReference
{

struct DngNumbers {
    std::uint32_t width = 0, height = 0, channels = 1, orientation = 1;
    std::uint32_t patternSide = 0;       // 2 of Bayer, 6 of X-Trans, 0 without a mosaic
    std::vector<unsigned int> pattern;   // colours of its rows
    std::vector<unsigned int> table;     // linearisation table
    std::uint32_t blackSide = 1;         // 2: the levels are those of a 2 x 2 pattern
    std::vector<unsigned int> blacks{0}; // else one a channel
    std::uint32_t white = 65535;
    bool hasMatrix = false;
    double matrix[3][3] = {}; // XYZ to camera, in single precision
    std::array<double, 3> neutral = {1, 1, 1};
    std::vector<std::uint16_t> samples;

    explicit DngNumbers(const std::vector<unsigned char>& file); // one that is as told above

    unsigned int colorAt(std::uint32_t x, std::uint32_t y) const;

    // The picture with its RAW description, but without multipliers, identity and curve; a missing or singular matrix
    // gives the default profile.
    Ondrel::Image decoded() const;

private:
    Ondrel::Image unscaled() const;
    unsigned int darkest() const;
};

} // namespace OndrelReference

#pragma once

#include <ondrel/ondrel_export.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

// Conversions between the 16-bit samples of an image and the 8-bit samples of files. The three formats round
// differently, and each rule is part of its file's exact result. All are integer forms, equal for every input to the
// floating-point rule that they stand for. Plain loops over them vectorise; the two that decide the speed of JPEG files
// are written for every instruction level.

namespace Ondrel
{

// trunc(v / 255.0f * 65535.0f) in 32-bit float.
constexpr std::uint16_t sampleFromByte(std::uint8_t v)
{
    return std::uint16_t(v * 257);
}

// trunc(v / 65535.0f * 255.0f) in 32-bit float, which is v / 257 rounded down.
constexpr std::uint8_t byteTruncated(std::uint16_t v)
{
    return std::uint8_t((v - (v >> 8)) >> 8);
}

// round(v / 65535.0 * 255.0) in double, and lroundf(v * 0.0038910506f): v / 257 rounded to nearest. There are no ties,
// since 257 is odd, and half of it may be added before the division; the limit keeps the sum in 16 bits.
constexpr std::uint8_t byteRounded(std::uint16_t v)
{
    return byteTruncated(std::uint16_t((v < 65407 ? v : 65407) + 128));
}

constexpr std::uint16_t swappedBytes(std::uint16_t v)
{
    return std::uint16_t((v << 8) | (v >> 8));
}

// For samples that are not read again soon: whole vectors go past the cache, which the result of a large image would
// only flush. Everything is in memory when the function returns.
ONDREL_EXPORT void samplesFromBytes(const std::uint8_t* in, std::size_t count, std::uint16_t* out);

ONDREL_EXPORT void bytesRounded(const std::uint16_t* in, std::size_t count, std::uint8_t* out);

inline void bytesTruncated(const std::uint16_t* in, std::size_t count, std::uint8_t* out)
{
    for (std::size_t i = 0; i < count; ++i)
        out[i] = byteTruncated(in[i]);
}

inline void swapSamples(std::uint16_t* samples, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        samples[i] = swappedBytes(samples[i]);
}

// Copies the first `channels`, 3 or 4, of the four samples of each pixel, side by side. Three may go to where they came
// from.
template <class Sample>
void copyChannels(const Sample* in, std::size_t pixels, unsigned int channels, Sample* out)
{
    if (channels == 4) {
        std::memcpy(out, in, pixels * 4 * sizeof(Sample));
        return;
    }
    for (std::size_t i = 0; i < pixels; ++i, in += 4, out += 3) {
        out[0] = in[0];
        out[1] = in[1];
        out[2] = in[2];
    }
}

} // namespace Ondrel

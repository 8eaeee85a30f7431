#include <ondrel/resources/tiffalpha_p.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace Ondrel
{
namespace
{

std::uint16_t alphaFromFloat(float value)
{
    // Clamped first: the conversion of NaN and of large numbers to an integer is undefined.
    const double scaled = std::round(value * 65535.0);
    return std::uint16_t(scaled > 0.0 ? std::min(scaled, 65535.0) : 0.0);
}

std::uint16_t alphaSample(const unsigned char* bytes, std::uint16_t sampleBytes)
{
    if (sampleBytes == 1)
        return std::uint16_t(*bytes * 257);
    if (sampleBytes == 2) {
        std::uint16_t value;
        std::memcpy(&value, bytes, sizeof value);
        return value;
    }
    float value;
    std::memcpy(&value, bytes, sizeof value);
    return alphaFromFloat(value);
}

void divideByAlpha(std::uint16_t* pixel)
{
    const float alpha = float(pixel[3]) * 1.5259022e-5f;
    const float inverse = alpha != 0.0f ? 1.0f / alpha : 0.0f;
    for (int i = 0; i < 3; ++i)
        pixel[i] = std::uint16_t(std::min(std::round(float(pixel[i]) * inverse), 65535.0f));
}

} // namespace

void applyTiffAlpha(const TiffLayout& layout, const unsigned char* source, std::size_t planeBytes, std::size_t count,
                    std::uint16_t* out)
{
    if (layout.alpha == TiffAlpha::None) {
        for (std::size_t i = 0; i < count; ++i)
            out[i * 4 + 3] = 65535;
        return;
    }
    const std::size_t offset = layout.channels * (layout.planar ? planeBytes : layout.sampleBytes);
    const unsigned char* sample = source + offset;
    for (std::size_t i = 0; i < count; ++i, sample += layout.pixelBytes(), out += 4) {
        out[3] = alphaSample(sample, layout.sampleBytes);
        if (layout.alpha == TiffAlpha::Associated)
            divideByAlpha(out);
    }
}

} // namespace Ondrel

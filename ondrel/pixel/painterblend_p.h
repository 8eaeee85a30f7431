#pragma once

#include <algorithm>
#include <cstdint>

// The arithmetic of one painted pixel, in single precision, in the order written.

namespace OndrelBrush
{

// Colour of the brush in the range of samples.
struct Ink {
    Ink(std::uint16_t r, std::uint16_t g, std::uint16_t b)
        : channels{float(r), float(g), float(b)}
    {
    }
    float channels[3];
};

// Truncated and limited; opacities above 1 or below 0 leave the range. Not a number gives 0.
inline std::uint16_t stored(float v)
{
    return v >= 65535.0f ? std::uint16_t(65535) : v > 0.0f ? std::uint16_t(v) : std::uint16_t(0);
}

// Lays the ink with alpha `s` over a pixel.
inline void blend(Ink const& ink, float s, std::uint16_t* pixel)
{
    const float under = float(pixel[3]) / 65535.0f * (1.0f - s);
    const float alpha = s + under;
    // Nothing on nothing has no colour to store.
    if (!(alpha < 0.0f || alpha > 0.0f))
        return;
    for (int c = 0; c < 3; ++c)
        pixel[c] = stored((s * ink.channels[c] + under * float(pixel[c])) / alpha);
    pixel[3] = stored(alpha * 65535.0f);
}

// Takes `s` from the alpha of a pixel.
inline void erase(float s, std::uint16_t* pixel)
{
    const std::uint16_t taken = stored(s * 65535.0f);
    pixel[3] = std::uint16_t(pixel[3] - std::min(taken, pixel[3]));
}

} // namespace OndrelBrush

#pragma once

#include <algorithm>
#include <cstdint>
#include <emmintrin.h>

// The arithmetic of one painted pixel, in single precision, in the order written. The four channels of a pixel fill the
// plain vector of every x86-64.

namespace OndrelBrush
{

// Colour of the brush in the range of samples.
struct Ink {
    Ink(std::uint16_t r, std::uint16_t g, std::uint16_t b)
        : channels(_mm_setr_ps(float(r), float(g), float(b), 0.0f))
    {
    }
    __m128 channels;
};

// Truncated and limited; opacities above 1 or below 0 leave the range. Not a number gives 0.
inline std::uint16_t stored(float v)
{
    return v >= 65535.0f ? std::uint16_t(65535) : v > 0.0f ? std::uint16_t(v) : std::uint16_t(0);
}

inline __m128 loadPixel(const std::uint16_t* pixel)
{
    const __m128i samples = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(pixel));
    return _mm_cvtepi32_ps(_mm_unpacklo_epi16(samples, _mm_setzero_si128()));
}

inline void storePixel(__m128 v, std::uint16_t* pixel)
{
    // The order of the operands makes not a number 0.
    const __m128 limited = _mm_min_ps(_mm_max_ps(v, _mm_setzero_ps()), _mm_set1_ps(65535.0f));
    // There is only a signed packing, so the range is moved down for it and back.
    const __m128i moved = _mm_sub_epi32(_mm_cvttps_epi32(limited), _mm_set1_epi32(32768));
    const __m128i packed = _mm_xor_si128(_mm_packs_epi32(moved, moved), _mm_set1_epi16(-32768));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(pixel), packed);
}

// Lays the ink with alpha `s` over a pixel.
inline void blend(Ink const& ink, float s, std::uint16_t* pixel)
{
    const float under = float(pixel[3]) / 65535.0f * (1.0f - s);
    const float alpha = s + under;
    // Nothing on nothing has no colour to store.
    if (!(alpha < 0.0f || alpha > 0.0f))
        return;
    const __m128 sum =
        _mm_add_ps(_mm_mul_ps(_mm_set1_ps(s), ink.channels), _mm_mul_ps(_mm_set1_ps(under), loadPixel(pixel)));
    storePixel(_mm_div_ps(sum, _mm_set1_ps(alpha)), pixel);
    pixel[3] = stored(alpha * 65535.0f);
}

// Takes `s` from the alpha of a pixel.
inline void erase(float s, std::uint16_t* pixel)
{
    const std::uint16_t taken = stored(s * 65535.0f);
    pixel[3] = std::uint16_t(pixel[3] - std::min(taken, pixel[3]));
}

} // namespace OndrelBrush

#include <ondrel/color/displaypacking_p.h>

#include <immintrin.h>

#include <cstring>

namespace Ondrel
{
namespace
{

constexpr float kScale = 1.5259022e-5f; // the float nearest to 1 / 65535

// 0 to 255 in four integers, red, green, blue, alpha, of one pixel's samples in integers. The order of the products is
// part of the result: c * scale * a * 255, with 1 in the place of a for alpha itself.
inline __m128i premultiplied(__m128i pixel)
{
    const __m128 unit = _mm_mul_ps(_mm_cvtepi32_ps(pixel), _mm_set1_ps(kScale));
    const __m128 colorMask = _mm_castsi128_ps(_mm_set_epi32(0, -1, -1, -1));
    const __m128 alpha = _mm_shuffle_ps(unit, unit, _MM_SHUFFLE(3, 3, 3, 3));
    const __m128 factor = _mm_or_ps(_mm_and_ps(colorMask, alpha), _mm_andnot_ps(colorMask, _mm_set1_ps(1.0f)));
    return _mm_cvtps_epi32(_mm_mul_ps(_mm_mul_ps(unit, factor), _mm_set1_ps(255.0f)));
}

// Saturates two pixels of 32-bit integers to bytes in the lower half, blue first.
inline __m128i packedPixels(__m128i first, __m128i second)
{
    __m128i words = _mm_packs_epi32(first, second);
    words = _mm_shufflelo_epi16(words, _MM_SHUFFLE(3, 0, 1, 2));
    words = _mm_shufflehi_epi16(words, _MM_SHUFFLE(3, 0, 1, 2));
    return _mm_packus_epi16(words, words);
}

inline void packOnePixel(const std::uint16_t* samples, unsigned char* bytes)
{
    const __m128i loaded = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(samples));
    const __m128i pixel = premultiplied(_mm_unpacklo_epi16(loaded, _mm_setzero_si128()));
    const int word = _mm_cvtsi128_si32(packedPixels(pixel, pixel));
    std::memcpy(bytes, &word, sizeof word);
}

__attribute__((target("avx"))) inline __m256i premultipliedPair(__m128i samples)
{
    const __m128i zero = _mm_setzero_si128();
    const __m128i low = _mm_unpacklo_epi16(samples, zero);
    const __m128i high = _mm_unpackhi_epi16(samples, zero);
    const __m256i pixels = _mm256_insertf128_si256(_mm256_castsi128_si256(low), high, 1);
    const __m256 unit = _mm256_mul_ps(_mm256_cvtepi32_ps(pixels), _mm256_set1_ps(kScale));
    const __m256 alpha = _mm256_permute_ps(unit, _MM_SHUFFLE(3, 3, 3, 3));
    const __m256 factor = _mm256_blend_ps(alpha, _mm256_set1_ps(1.0f), 0x88);
    return _mm256_cvtps_epi32(_mm256_mul_ps(_mm256_mul_ps(unit, factor), _mm256_set1_ps(255.0f)));
}

// Two pixels as 16-bit integers.
__attribute__((target("avx"))) inline __m128i narrowed(__m256i pair)
{
    return _mm_packs_epi32(_mm256_castsi256_si128(pair), _mm256_extractf128_si256(pair, 1));
}

} // namespace

void packForDisplay_SSE2(const std::uint16_t* samples, unsigned char* bytes, std::size_t count)
{
    const __m128i zero = _mm_setzero_si128();
    const std::size_t single = (count & 7) + 4;
    const std::size_t paired = count < single ? 0 : count - single; // even
    std::size_t i = 0;
    for (; i < paired; i += 2) {
        const __m128i loaded = _mm_loadu_si128(reinterpret_cast<const __m128i*>(samples + i * 4));
        const __m128i first = premultiplied(_mm_unpacklo_epi16(loaded, zero));
        const __m128i second = premultiplied(_mm_unpackhi_epi16(loaded, zero));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(bytes + i * 4), packedPixels(first, second));
    }
    for (; i < count; ++i)
        packOnePixel(samples + i * 4, bytes + i * 4);
}

__attribute__((target("avx"))) void packForDisplay_AVX(const std::uint16_t* samples, unsigned char* bytes,
                                                       std::size_t count)
{
    const __m128i blueFirst = _mm_set_epi8(15, 12, 13, 14, 11, 8, 9, 10, 7, 4, 5, 6, 3, 0, 1, 2);
    const std::size_t vectors = count & ~std::size_t{3};
    std::size_t i = 0;
    for (; i < vectors; i += 4) {
        const std::uint16_t* at = samples + i * 4;
        // Only a hint: reading ahead of the block's end is harmless.
        _mm_prefetch(reinterpret_cast<const char*>(at) + 256 * sizeof *at, _MM_HINT_T0);
        const __m256i first = premultipliedPair(_mm_loadu_si128(reinterpret_cast<const __m128i*>(at)));
        const __m256i second = premultipliedPair(_mm_loadu_si128(reinterpret_cast<const __m128i*>(at + 8)));
        const __m128i packed = _mm_packus_epi16(narrowed(first), narrowed(second));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes + i * 4), _mm_shuffle_epi8(packed, blueFirst));
    }
    for (; i < count; ++i)
        packOnePixel(samples + i * 4, bytes + i * 4);
}

void packForDisplay(const std::uint16_t* samples, unsigned char* bytes, std::size_t count, SIMDCompatibility level)
{
    if (level >= SIMD_AVX)
        packForDisplay_AVX(samples, bytes, count);
    else
        packForDisplay_SSE2(samples, bytes, count);
}

} // namespace Ondrel

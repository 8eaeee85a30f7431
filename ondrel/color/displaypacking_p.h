#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/simdcompatibility.h>

#include <cstddef>
#include <cstdint>

namespace Ondrel
{

// Packs `count` pixels of four 16-bit samples (red, green, blue, alpha) into premultiplied bytes in the order blue,
// green, red, alpha. Both forms give the same bytes; the second one needs a processor with AVX.
ONDREL_EXPORT void packForDisplay_SSE2(const std::uint16_t* samples, unsigned char* bytes, std::size_t count);
ONDREL_EXPORT void packForDisplay_AVX(const std::uint16_t* samples, unsigned char* bytes, std::size_t count);

// The form for an instruction level.
ONDREL_EXPORT void packForDisplay(const std::uint16_t* samples, unsigned char* bytes, std::size_t count,
                                  SIMDCompatibility level);

} // namespace Ondrel

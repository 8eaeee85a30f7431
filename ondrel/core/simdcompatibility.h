#pragma once

#include <ondrel/ondrel_export.h>

enum SIMDCompatibility : unsigned int { SIMD_None = 0, SIMD_SSE3 = 1, SIMD_SSE41 = 2, SIMD_SSE42 = 3, SIMD_AVX = 4 };
ONDREL_EXPORT SIMDCompatibility CheckSIMDCompatibility();

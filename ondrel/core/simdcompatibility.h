#pragma once

#include <ondrel/ondrel_export.h>

// The best instruction level of a processor, from low to high.
enum SIMDCompatibility : unsigned int { SIMD_None = 0, SIMD_SSE3 = 1, SIMD_SSE41 = 2, SIMD_SSE42 = 3, SIMD_AVX = 4 };

// Asks the processor on every call (CPUID leaf 1, ECX bits 28, 20, 19, 0; the highest bit that is set decides). Only
// the processor's flags count; whether the operating system saves the AVX registers is not asked. Any thread.
ONDREL_EXPORT SIMDCompatibility CheckSIMDCompatibility();

#include <ondrel/core/simdcompatibility.h>

#include <cpuid.h>

SIMDCompatibility CheckSIMDCompatibility()
{
    unsigned int eax = 0, ebx = 0, ecx = 0, edx = 0;
    __cpuid(0, eax, ebx, ecx, edx);
    if (eax == 0)
        return SIMD_None;
    __cpuid(1, eax, ebx, ecx, edx);
    if (ecx & bit_AVX)
        return SIMD_AVX;
    if (ecx & bit_SSE4_2)
        return SIMD_SSE42;
    if (ecx & bit_SSE4_1)
        return SIMD_SSE41;
    if (ecx & bit_SSE3)
        return SIMD_SSE3;
    return SIMD_None;
}

// Erosion and dilation: the least or the greatest value of each channel, alpha too, over those pixels of a square window
// whose place in `mask` is 1. The mask has (2 * radius + 1)^2 bytes of 0 or 1, row by row; other values have no meaning.
// Coordinates are limited to the image. A mask of zeros alone gives 65535 (erosion) or 0 (dilation) in all channels.
//
// a4 to j4 erode and k4 to t4 dilate, with the radii 1 to 10.
#define MORPHOLOGY_KERNEL(name, radius, start, choose)                                                                 \
    __kernel void name(uint w, uint h, __global unsigned short* in, __global unsigned short* out,                      \
                       __global unsigned char* mask)                                                                   \
    {                                                                                                                  \
        const uint id = (uint)get_global_id(0);                                                                        \
        if (id >= w * h)                                                                                               \
            return;                                                                                                    \
        const int x = (int)(id % w);                                                                                   \
        const int y = (int)(id / w);                                                                                   \
        const int side = 2 * radius + 1;                                                                               \
        int4 result = (int4)(start);                                                                                   \
        for (int j = 0; j < side; ++j) {                                                                               \
            const size_t row = (size_t)clamp(y + j - radius, 0, (int)h - 1) * w;                                       \
            for (int i = 0; i < side; ++i) {                                                                           \
                const size_t at = row + (size_t)clamp(x + i - radius, 0, (int)w - 1);                                  \
                const int4 value = convert_int4(((const __global ushort4*)in)[at]);                                    \
                const int m = mask[j * side + i];                                                                      \
                /* by arithmetic, as neighbours in a group of work items take the same way then */                     \
                result = m * choose(result, value) + (int)abs(1 - m) * result;                                         \
            }                                                                                                          \
        }                                                                                                              \
        ((__global ushort4*)out)[id] = convert_ushort4(result);                                                        \
    }

MORPHOLOGY_KERNEL(a4, 1, 65535, min)
MORPHOLOGY_KERNEL(b4, 2, 65535, min)
MORPHOLOGY_KERNEL(c4, 3, 65535, min)
MORPHOLOGY_KERNEL(d4, 4, 65535, min)
MORPHOLOGY_KERNEL(e4, 5, 65535, min)
MORPHOLOGY_KERNEL(f4, 6, 65535, min)
MORPHOLOGY_KERNEL(g4, 7, 65535, min)
MORPHOLOGY_KERNEL(h4, 8, 65535, min)
MORPHOLOGY_KERNEL(i4, 9, 65535, min)
MORPHOLOGY_KERNEL(j4, 10, 65535, min)
MORPHOLOGY_KERNEL(k4, 1, 0, max)
MORPHOLOGY_KERNEL(l4, 2, 0, max)
MORPHOLOGY_KERNEL(m4, 3, 0, max)
MORPHOLOGY_KERNEL(n4, 4, 0, max)
MORPHOLOGY_KERNEL(o4, 5, 0, max)
MORPHOLOGY_KERNEL(p4, 6, 0, max)
MORPHOLOGY_KERNEL(q4, 7, 0, max)
MORPHOLOGY_KERNEL(r4, 8, 0, max)
MORPHOLOGY_KERNEL(s4, 9, 0, max)
MORPHOLOGY_KERNEL(t4, 10, 0, max)

#undef MORPHOLOGY_KERNEL

// Median of a square window, for each of the four channels, alpha too. a3 to j3 have the radii 1 to 10; the radius is
// known to the compiler, so that the window has a fixed size. Coordinates are limited to the image.
//
// A selection sort runs as far as the middle of the window. It looks for a minimum strictly below 65535 and takes the
// first element where there is none. For a channel with exactly (n * n - 1) / 2 values below 65535 in the window, the
// element that the last pass so brings to the middle is the least of all instead of 65535. That is part of the result.
#define MEDIAN_KERNEL(name, radius)                                                                                    \
    __kernel void name(uint w, uint h, __global unsigned short* in, __global unsigned short* out)                      \
    {                                                                                                                  \
        const uint id = (uint)get_global_id(0);                                                                        \
        if (id >= w * h)                                                                                               \
            return;                                                                                                    \
        const int x = (int)(id % w);                                                                                   \
        const int y = (int)(id / w);                                                                                   \
        enum { side = 2 * radius + 1, count = side * side, middle = (count - 1) / 2 };                                 \
        ushort4 window[count];                                                                                         \
        for (int j = 0; j < side; ++j) {                                                                               \
            const size_t row = (size_t)clamp(y + j - radius, 0, (int)h - 1) * w;                                       \
            for (int i = 0; i < side; ++i)                                                                             \
                window[j * side + i] =                                                                                 \
                    ((const __global ushort4*)in)[row + (size_t)clamp(x + i - radius, 0, (int)w - 1)];                 \
        }                                                                                                              \
        for (int p = 0; p <= middle; ++p) {                                                                            \
            ushort4 least = (ushort4)(65535);                                                                          \
            ushort4 where = (ushort4)(0);                                                                              \
            for (int q = p; q < count; ++q) {                                                                          \
                const ushort4 value = window[q];                                                                       \
                where = value < least ? (ushort4)((ushort)q) : where;                                                  \
                least = min(value, least);                                                                             \
            }                                                                                                          \
            __private ushort* samples = (__private ushort*)window;                                                     \
            const ushort4 held = window[p];                                                                            \
            window[p].x = samples[where.x * 4];                                                                        \
            samples[where.x * 4] = held.x;                                                                             \
            window[p].y = samples[where.y * 4 + 1];                                                                    \
            samples[where.y * 4 + 1] = held.y;                                                                         \
            window[p].z = samples[where.z * 4 + 2];                                                                    \
            samples[where.z * 4 + 2] = held.z;                                                                         \
            window[p].w = samples[where.w * 4 + 3];                                                                    \
            samples[where.w * 4 + 3] = held.w;                                                                         \
        }                                                                                                              \
        ((__global ushort4*)out)[id] = window[middle];                                                                 \
    }

MEDIAN_KERNEL(a3, 1)
MEDIAN_KERNEL(b3, 2)
MEDIAN_KERNEL(c3, 3)
MEDIAN_KERNEL(d3, 4)
MEDIAN_KERNEL(e3, 5)
MEDIAN_KERNEL(f3, 6)
MEDIAN_KERNEL(g3, 7)
MEDIAN_KERNEL(h3, 8)
MEDIAN_KERNEL(i3, 9)
MEDIAN_KERNEL(j3, 10)

#undef MEDIAN_KERNEL

// Weighted sums along a row or a column: one pass of a separable filter. All four channels are summed alike, without
// premultiplication. The weight at taps / 2 belongs to the pixel itself. What lies outside of the image depends on the
// kernel:
//
//            along rows   along columns
//     clamp      b1           c1          the nearest pixel of the row or column
//     blank      d1           e1          zero; the weights that are left over are not brought back to a sum of 1
//     repeat     f1           g1          the image again, once on each side

// Stores a pixel truncated and limited to 16 bits.
void a1(float4 value, __global unsigned short* out, uint id)
{
    ((__global ushort4*)out)[id] = convert_ushort4_sat(value);
}

__kernel void b1(uint w, uint h, __global float* weights, int taps, __global unsigned short* in,
                 __global unsigned short* out)
{
    const uint id = (uint)get_global_id(0);
    if (id >= w * h)
        return;
    const int x = (int)(id % w);
    const __global ushort4* row = (const __global ushort4*)in + (id - (uint)x);
    const int middle = taps / 2;
    float4 sum = 0.0f;
    for (int i = 0; i < taps; ++i)
        sum += weights[i] * convert_float4(row[clamp(x + i - middle, 0, (int)w - 1)]);
    a1(sum, out, id);
}

__kernel void c1(uint w, uint h, __global float* weights, int taps, __global unsigned short* in,
                 __global unsigned short* out)
{
    const uint id = (uint)get_global_id(0);
    if (id >= w * h)
        return;
    const int y = (int)(id / w);
    const __global ushort4* column = (const __global ushort4*)in + id % w;
    const int middle = taps / 2;
    float4 sum = 0.0f;
    for (int i = 0; i < taps; ++i)
        sum += weights[i] * convert_float4(column[(size_t)clamp(y + i - middle, 0, (int)h - 1) * w]);
    a1(sum, out, id);
}

__kernel void d1(uint w, uint h, __global float* weights, int taps, __global unsigned short* in,
                 __global unsigned short* out)
{
    const uint id = (uint)get_global_id(0);
    if (id >= w * h)
        return;
    const int x = (int)(id % w);
    const __global ushort4* row = (const __global ushort4*)in + (id - (uint)x);
    const int middle = taps / 2;
    float4 sum = 0.0f;
    for (int i = 0; i < taps; ++i) {
        const int at = x + i - middle;
        if (at >= 0 && at < (int)w)
            sum += weights[i] * convert_float4(row[at]);
    }
    a1(sum, out, id);
}

__kernel void e1(uint w, uint h, __global float* weights, int taps, __global unsigned short* in,
                 __global unsigned short* out)
{
    const uint id = (uint)get_global_id(0);
    if (id >= w * h)
        return;
    const int y = (int)(id / w);
    const __global ushort4* column = (const __global ushort4*)in + id % w;
    const int middle = taps / 2;
    float4 sum = 0.0f;
    for (int i = 0; i < taps; ++i) {
        const int at = y + i - middle;
        if (at >= 0 && at < (int)h)
            sum += weights[i] * convert_float4(column[(size_t)at * w]);
    }
    a1(sum, out, id);
}

__kernel void f1(uint w, uint h, __global float* weights, int taps, __global unsigned short* in,
                 __global unsigned short* out)
{
    const uint id = (uint)get_global_id(0);
    if (id >= w * h)
        return;
    const __global ushort4* row = (const __global ushort4*)in + (id - id % w);
    const int middle = taps / 2;
    float4 sum = 0.0f;
    // The flat index does as well as x: it differs by whole rows. One width is added, in unsigned numbers, so that the
    // image is repeated once on each side; taps / 2 must not exceed w.
    for (int i = 0; i < taps; ++i)
        sum += weights[i] * convert_float4(row[(id + (uint)i - (uint)middle + w) % w]);
    a1(sum, out, id);
}

__kernel void g1(uint w, uint h, __global float* weights, int taps, __global unsigned short* in,
                 __global unsigned short* out)
{
    const uint id = (uint)get_global_id(0);
    if (id >= w * h)
        return;
    const uint y = id / w;
    const __global ushort4* column = (const __global ushort4*)in + id % w;
    const int middle = taps / 2;
    float4 sum = 0.0f;
    // As in f1: taps / 2 must not exceed h.
    for (int i = 0; i < taps; ++i)
        sum += weights[i] * convert_float4(column[(size_t)((y + (uint)i - (uint)middle + h) % h) * w]);
    a1(sum, out, id);
}

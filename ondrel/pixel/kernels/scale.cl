// Scaling. Each work item makes one pixel of the output. An output pixel covers a box of the source, held as the start,
// middle and end of its two sides, in source pixels with the centre of pixel 0 at 0. Colours are mixed premultiplied, as
// floats from 0 to 1.

// Mix of four neighbouring pixels (p10 stands to the right of p00, p01 below it), by the fractions of a position.
float4 b6(float fx, float fy, float4 p00, float4 p10, float4 p01, float4 p11)
{
    return (p00 * (1.0f - fx) + p10 * fx) * (1.0f - fy) + (p01 * (1.0f - fx) + p11 * fx) * fy;
}

// The pixel at (x, y), limited to the image, premultiplied.
float4 c6(__global unsigned short* in, uint inW, uint inH, int x, int y)
{
    const size_t at = (size_t)clamp(y, 0, (int)inH - 1) * inW + (size_t)clamp(x, 0, (int)inW - 1);
    float4 pixel = convert_float4(((const __global ushort4*)in)[at]) / 65535.0f;
    pixel.xyz *= pixel.w;
    return pixel;
}

// Bilinear sample.
float4 d6(__global unsigned short* in, uint inW, uint inH, float x, float y)
{
    const float left = floor(x);
    const float top = floor(y);
    const int column = (int)left;
    const int row = (int)top;
    return b6(x - left, y - top, c6(in, inW, inH, column, row), c6(in, inW, inH, column + 1, row),
              c6(in, inW, inH, column, row + 1), c6(in, inW, inH, column + 1, row + 1));
}

// Mean of n x n bilinear samples, at the centres of an equal grid over the box: 2 x 2 and finer, until a cell is at most
// 1.5 pixels wide and high, but no finer than 64 x 64.
float4 e6(__global unsigned short* in, uint inW, uint inH, float3 xs, float3 ys)
{
    const float width = xs.z - xs.x;
    const float height = ys.z - ys.x;
    float cellWidth = width;
    float cellHeight = height;
    int level = 1;
    while (level < 6) {
        cellWidth *= 0.5f;
        cellHeight *= 0.5f;
        if (!(cellWidth > 1.5f || cellHeight > 1.5f))
            break;
        ++level;
    }
    const int n = 1 << level;
    const float weight = 1.0f / (float)(n * n);
    float4 sum = 0.0f;
    for (int j = 0; j < n; ++j) {
        const float y = ys.x + height / (float)(2 * n) + (float)j * height / (float)n;
        for (int i = 0; i < n; ++i) {
            const float x = xs.x + width / (float)(2 * n) + (float)i * width / (float)n;
            sum += d6(in, inW, inH, x, y) * weight;
        }
    }
    return sum;
}

// Nearest neighbour.
__kernel void a6(__global unsigned short* in, uint inW, uint inH, __global unsigned short* out, uint outW, uint outH)
{
    const uint id = (uint)get_global_id(0);
    if (id >= outW * outH)
        return;
    const float sx = (float)inW / (float)outW;
    const float sy = (float)inH / (float)outH;
    const int x = clamp((int)round((float)(id % outW) * sx), 0, (int)inW - 1);
    const int y = clamp((int)round((float)(id / outW) * sy), 0, (int)inH - 1);
    ((__global ushort4*)out)[id] = ((const __global ushort4*)in)[(size_t)y * inW + (size_t)x];
}

// Bilinear. The result is truncated and limited to 16 bits.
__kernel void f6(__global unsigned short* in, uint inW, uint inH, __global unsigned short* out, uint outW, uint outH)
{
    const uint id = (uint)get_global_id(0);
    if (id >= outW * outH)
        return;
    const float sx = (float)inW / (float)outW;
    const float sy = (float)inH / (float)outH;
    const float3 parts = (float3)(0.0f, 0.5f, 1.0f);
    const float3 xs = ((float)(id % outW) + parts) * sx - 0.5f;
    const float3 ys = ((float)(id / outW) + parts) * sy - 0.5f;
    float4 value = xs.z - xs.x > 1.5f || ys.z - ys.x > 1.5f ? e6(in, inW, inH, xs, ys) : d6(in, inW, inH, xs.y, ys.y);
    value.xyz = value.w == 0.0f ? (float3)(0.0f) : value.xyz / value.w;
    ((__global ushort4*)out)[id] = convert_ushort4_sat(value * 65535.0f);
}

// Does nothing. The name is kept for bicubic scaling.
__kernel void g6(__global unsigned short* in, uint inW, uint inH, __global unsigned short* out, uint outW, uint outH)
{
}

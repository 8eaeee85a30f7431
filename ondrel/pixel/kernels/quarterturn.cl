// Turns by 90 degrees. w and h are the size of the input; each work item moves one of its pixels.

// By 180 degrees.
__kernel void a5(uint w, uint h, __global unsigned short* in, __global unsigned short* out)
{
    const uint id = (uint)get_global_id(0);
    if (id >= w * h)
        return;
    const uint x = id % w;
    const uint y = id / w;
    ((__global ushort4*)out)[(h - 1 - y) * w + (w - 1 - x)] = ((const __global ushort4*)in)[id];
}

// By 90 degrees counter-clockwise; the output has w rows of h pixels.
__kernel void b5(uint w, uint h, __global unsigned short* in, __global unsigned short* out)
{
    const uint id = (uint)get_global_id(0);
    if (id >= w * h)
        return;
    const uint x = id % w;
    const uint y = id / w;
    ((__global ushort4*)out)[(w - 1 - x) * h + y] = ((const __global ushort4*)in)[id];
}

// By 90 degrees clockwise; the output has w rows of h pixels.
__kernel void c5(uint w, uint h, __global unsigned short* in, __global unsigned short* out)
{
    const uint id = (uint)get_global_id(0);
    if (id >= w * h)
        return;
    const uint x = id % w;
    const uint y = id / w;
    ((__global ushort4*)out)[x * h + (h - 1 - y)] = ((const __global ushort4*)in)[id];
}

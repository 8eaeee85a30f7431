// Unsharp mask: the difference to a blurred copy, times `amount` and truncated toward zero, less `threshold` in size, is
// added to each colour. Alpha is copied. There is no test of the range: launch exactly one work item a pixel.
__kernel void a7(float amount, int threshold, __global unsigned short* in, __global unsigned short* blurred,
                 __global unsigned short* out)
{
    const size_t id = get_global_id(0);
    const ushort4 pixel = ((const __global ushort4*)in)[id];
    const int3 sharp = convert_int3(pixel.xyz);
    const int3 difference = sharp - convert_int3(((const __global ushort4*)blurred)[id].xyz);
    // Saturating steps: amounts and thresholds of any size keep their direction.
    int3 d = convert_int3_sat(convert_float3(difference) * amount);
    d = d > 0 ? max(sub_sat(d, (int3)(threshold)), 0) : (d < 0 ? min(add_sat(d, (int3)(threshold)), 0) : (int3)(0));
    ((__global ushort4*)out)[id] = (ushort4)(convert_ushort3_sat(add_sat(sharp, d)), pixel.w);
}

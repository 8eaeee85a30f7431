// Levels. Each colour channel by itself: black point, input gain, gamma, gain, offset; then all three alike: gamma,
// gain, offset. Samples are taken as 0 to 1. What ends above 1 becomes 1; what ends below 0, or is no number (a
// negative value has no power), becomes 0. Alpha is copied.
__kernel void a2(float offset, float offsetR, float offsetG, float offsetB,
                 float gain, float gainR, float gainG, float gainB,
                 float blackR, float blackG, float blackB,
                 float inputGainR, float inputGainG, float inputGainB,
                 float gamma, float gammaR, float gammaG, float gammaB,
                 uint pixelCount, __global unsigned short* in, __global unsigned short* out)
{
    const uint id = (uint)get_global_id(0);
    if (id >= pixelCount)
        return;
    const ushort4 pixel = ((const __global ushort4*)in)[id];
    float3 v = convert_float3(pixel.xyz) * (1.0f / 65535.0f);
    v = max((float3)(0.0f), v - (float3)(blackR, blackG, blackB));
    v *= (float3)(inputGainR, inputGainG, inputGainB);
    v = powr(v, (float3)(gammaR, gammaG, gammaB));
    v *= (float3)(gainR, gainG, gainB);
    v += (float3)(offsetR, offsetG, offsetB);
    v = powr(v, (float3)(gamma));
    v *= gain;
    v += offset;
    v = v > 0.0f ? min(v * 65535.0f, 65535.0f) : (float3)(0.0f); // false for what is no number
    ((__global ushort4*)out)[id] = (ushort4)(convert_ushort3_sat(v), pixel.w);
}

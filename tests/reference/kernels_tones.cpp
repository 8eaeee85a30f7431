#include "kernels_reference.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace OndrelReference
{
namespace
{

// Toward zero by `threshold`, and no further than zero.
int softThreshold(int d, int threshold)
{
    if (d > 0)
        return std::max(d - threshold, 0);
    return d < 0 ? std::min(d + threshold, 0) : 0;
}

// The power of a number that is not negative; what is negative has none.
float power(float base, float exponent)
{
    return base < 0.0f ? std::numeric_limits<float>::quiet_NaN() : std::pow(base, exponent);
}

} // namespace

void levels(const Levels& levels, unsigned int pixelCount, const Sample* in, Sample* out)
{
    for (std::size_t pixel = 0; pixel < pixelCount; ++pixel, in += 4, out += 4) {
        for (int c = 0; c < 3; ++c) {
            float v = float(in[c]) * (1.0f / 65535.0f);
            v = std::max(0.0f, v - levels.black[c]);
            v *= levels.inputGain[c];
            v = power(v, levels.channelGamma[c]);
            v *= levels.channelGain[c];
            v += levels.channelOffset[c];
            v = power(v, levels.gamma);
            v *= levels.gain;
            v += levels.offset;
            out[c] = v > 0.0f ? Sample(std::min(v * 65535.0f, 65535.0f)) : Sample(0);
        }
        out[3] = in[3];
    }
}

void unsharpMask(float amount, int threshold, unsigned int pixelCount, const Sample* in, const Sample* blurred,
                 Sample* out)
{
    for (std::size_t pixel = 0; pixel < pixelCount; ++pixel, in += 4, blurred += 4, out += 4) {
        for (int c = 0; c < 3; ++c) {
            const int d = int(float(in[c] - blurred[c]) * amount);
            out[c] = Sample(std::clamp(in[c] + softThreshold(d, threshold), 0, 65535));
        }
        out[3] = in[3];
    }
}

} // namespace OndrelReference

#include "kernels_reference.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <vector>

namespace OndrelReference
{
namespace
{

std::size_t offsetOf(unsigned int w, long x, long y)
{
    return (std::size_t(y) * w + std::size_t(x)) * 4;
}

// The pixel with its coordinates clamped to the picture.
const Sample* nearestPixel(const Sample* in, unsigned int w, unsigned int h, long x, long y)
{
    return in + offsetOf(w, std::clamp(x, 0L, long(w) - 1), std::clamp(y, 0L, long(h) - 1));
}

// Truncated, from 0 to 65535.
Sample saturate(float v)
{
    return Sample(std::clamp(v, 0.0f, 65535.0f));
}

// Where a tap at position `at` of a line of `length` pixels is read, or -1 for a tap that is left out.
long tapPosition(BlurEdge edge, long at, long length)
{
    switch (edge) {
    case BlurEdge::Clamp:
        return std::clamp(at, 0L, length - 1);
    case BlurEdge::Zero:
        return at >= 0 && at < length ? at : -1;
    case BlurEdge::Wrap:
        return (at + length) % length;
    }
    return -1;
}

// Sorts one channel of a window far enough for its middle, by selection from the front. A minimum is found only if it
// is below 65535; where all that is left is 65535, the place 0 stands for it, and that moves the smallest value of the
// window away from the front. With as many values below 65535 as there are places before the middle, the smallest value
// is what ends up there.
Sample selectMiddle(std::vector<Sample>& values)
{
    const std::size_t middle = (values.size() - 1) / 2;
    for (std::size_t pass = 0; pass <= middle; ++pass) {
        Sample smallest = 65535;
        std::size_t at = 0;
        for (std::size_t i = pass; i < values.size(); ++i)
            if (values[i] < smallest) {
                smallest = values[i];
                at = i;
            }
        std::swap(values[at], values[pass]);
    }
    return values[middle];
}

template <typename Choose>
void morphology(int radius, unsigned int w, unsigned int h, const Sample* in, Sample* out, const unsigned char* mask,
                Sample start, Choose choose)
{
    const long side = 2 * radius + 1;
    for (long y = 0; y < long(h); ++y)
        for (long x = 0; x < long(w); ++x) {
            Sample* const pixel = out + offsetOf(w, x, y);
            std::fill_n(pixel, 4, start);
            for (long j = 0; j < side; ++j)
                for (long i = 0; i < side; ++i) {
                    if (mask[j * side + i] != 1)
                        continue;
                    const Sample* const p = nearestPixel(in, w, h, x + i - radius, y + j - radius);
                    for (int c = 0; c < 4; ++c)
                        pixel[c] = choose(pixel[c], p[c]);
                }
        }
}

} // namespace

void blurPass(BlurDirection direction, BlurEdge edge, unsigned int w, unsigned int h, const float* weights, int taps,
              const Sample* in, Sample* out)
{
    const bool row = direction == BlurDirection::Row;
    for (long y = 0; y < long(h); ++y)
        for (long x = 0; x < long(w); ++x) {
            float sums[4] = {0, 0, 0, 0};
            for (int i = 0; i < taps; ++i) {
                const long at = tapPosition(edge, (row ? x : y) + i - taps / 2, long(row ? w : h));
                if (at < 0)
                    continue;
                const Sample* const p = in + (row ? offsetOf(w, at, y) : offsetOf(w, x, at));
                for (int c = 0; c < 4; ++c)
                    sums[c] += weights[i] * float(p[c]);
            }
            std::transform(sums, sums + 4, out + offsetOf(w, x, y), saturate);
        }
}

void median(int radius, unsigned int w, unsigned int h, const Sample* in, Sample* out)
{
    std::vector<Sample> window;
    for (long y = 0; y < long(h); ++y)
        for (long x = 0; x < long(w); ++x)
            for (int c = 0; c < 4; ++c) {
                window.clear();
                for (long j = y - radius; j <= y + radius; ++j)
                    for (long i = x - radius; i <= x + radius; ++i)
                        window.push_back(nearestPixel(in, w, h, i, j)[c]);
                out[offsetOf(w, x, y) + std::size_t(c)] = selectMiddle(window);
            }
}

void erode(int radius, unsigned int w, unsigned int h, const Sample* in, Sample* out, const unsigned char* mask)
{
    morphology(radius, w, h, in, out, mask, 65535, [](Sample a, Sample b) { return std::min(a, b); });
}

void dilate(int radius, unsigned int w, unsigned int h, const Sample* in, Sample* out, const unsigned char* mask)
{
    morphology(radius, w, h, in, out, mask, 0, [](Sample a, Sample b) { return std::max(a, b); });
}

} // namespace OndrelReference

#include "kernels_reference.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace OndrelReference
{
namespace
{

// Above this extent, in source pixels, a box takes more than one sample.
constexpr float kPlainExtent = 1.5f;
constexpr int kDeepestLevel = 6;

// Copies each pixel to the place that `target` gives for it.
template <typename Target>
void turn(unsigned int w, unsigned int h, const Sample* in, Sample* out, Target target)
{
    for (std::size_t y = 0; y < h; ++y)
        for (std::size_t x = 0; x < w; ++x)
            std::copy_n(in + (y * w + x) * 4, 4, out + target(x, y) * 4);
}

std::size_t nearestPosition(unsigned int position, float step, unsigned int length)
{
    return std::size_t(std::clamp(std::round(float(position) * step), 0.0f, float(length - 1)));
}

// Premultiplied red, green, blue, then alpha, 0 to 1.
struct Color {
    float rgba[4] = {0, 0, 0, 0};
};

struct Source {
    const Sample* samples;
    unsigned int width, height;

    // The pixel with its coordinates clamped to the picture.
    Color fetch(float x, float y) const
    {
        const std::size_t column = std::size_t(std::clamp(x, 0.0f, float(width - 1)));
        const std::size_t row = std::size_t(std::clamp(y, 0.0f, float(height - 1)));
        const Sample* const p = samples + (row * width + column) * 4;
        Color color;
        color.rgba[3] = float(p[3]) / 65535.0f;
        for (int c = 0; c < 3; ++c)
            color.rgba[c] = float(p[c]) / 65535.0f * color.rgba[3];
        return color;
    }
};

float mix(float fx, float fy, float p00, float p10, float p01, float p11)
{
    return (p00 * (1.0f - fx) + p10 * fx) * (1.0f - fy) + (p01 * (1.0f - fx) + p11 * fx) * fy;
}

Color plainSample(const Source& source, float x, float y)
{
    const float left = std::floor(x), top = std::floor(y);
    const Color p00 = source.fetch(left, top), p10 = source.fetch(left + 1.0f, top);
    const Color p01 = source.fetch(left, top + 1.0f), p11 = source.fetch(left + 1.0f, top + 1.0f);
    Color color;
    for (int c = 0; c < 4; ++c)
        color.rgba[c] = mix(x - left, y - top, p00.rgba[c], p10.rgba[c], p01.rgba[c], p11.rgba[c]);
    return color;
}

// One direction of the area of the source that an output pixel covers.
struct Span {
    float start, middle, end;

    float length() const { return end - start; }

    // The middle of part `i` of `n` equal parts.
    float center(int i, int n) const { return start + length() / (2.0f * float(n)) + float(i) * length() / float(n); }
};

Span spanOf(unsigned int position, float step)
{
    const float at = float(position);
    return {at * step - 0.5f, (at + 0.5f) * step - 0.5f, (at + 1.0f) * step - 0.5f};
}

Color meanOfGrid(const Source& source, const Span& xs, const Span& ys, int n)
{
    const float weight = 1.0f / float(n * n);
    Color sum;
    for (int j = 0; j < n; ++j)
        for (int i = 0; i < n; ++i) {
            const Color sample = plainSample(source, xs.center(i, n), ys.center(j, n));
            for (int c = 0; c < 4; ++c)
                sum.rgba[c] += sample.rgba[c] * weight;
        }
    return sum;
}

// Truncated, from 0 to 65535.
Sample store(float v)
{
    return Sample(std::clamp(v * 65535.0f, 0.0f, 65535.0f));
}

void storeStraight(const Color& color, Sample* out)
{
    const float alpha = color.rgba[3];
    for (int c = 0; c < 3; ++c)
        out[c] = alpha == 0.0f ? Sample(0) : store(color.rgba[c] / alpha);
    out[3] = store(alpha);
}

} // namespace

void halfTurn(unsigned int w, unsigned int h, const Sample* in, Sample* out)
{
    turn(w, h, in, out, [=](std::size_t x, std::size_t y) { return (h - 1 - y) * w + (w - 1 - x); });
}

void quarterTurnCounterClockwise(unsigned int w, unsigned int h, const Sample* in, Sample* out)
{
    turn(w, h, in, out, [=](std::size_t x, std::size_t y) { return (w - 1 - x) * h + y; });
}

void quarterTurnClockwise(unsigned int w, unsigned int h, const Sample* in, Sample* out)
{
    turn(w, h, in, out, [=](std::size_t x, std::size_t y) { return x * h + (h - 1 - y); });
}

void scaleNearest(const Sample* in, unsigned int inW, unsigned int inH, Sample* out, unsigned int outW,
                  unsigned int outH)
{
    const float sx = float(inW) / float(outW), sy = float(inH) / float(outH);
    for (unsigned int y = 0; y < outH; ++y)
        for (unsigned int x = 0; x < outW; ++x, out += 4)
            std::copy_n(in + (nearestPosition(y, sy, inH) * inW + nearestPosition(x, sx, inW)) * 4, 4, out);
}

int supersampleLevel(float boxWidth, float boxHeight)
{
    if (!(boxWidth > kPlainExtent || boxHeight > kPlainExtent))
        return 0;
    int level = 1;
    while (level < kDeepestLevel) {
        boxWidth *= 0.5f;
        boxHeight *= 0.5f;
        if (!(boxWidth > kPlainExtent || boxHeight > kPlainExtent))
            break;
        ++level;
    }
    return level;
}

void scaleBilinear(const Sample* in, unsigned int inW, unsigned int inH, Sample* out, unsigned int outW,
                   unsigned int outH)
{
    const Source source{in, inW, inH};
    const float sx = float(inW) / float(outW), sy = float(inH) / float(outH);
    for (unsigned int y = 0; y < outH; ++y)
        for (unsigned int x = 0; x < outW; ++x, out += 4) {
            const Span xs = spanOf(x, sx), ys = spanOf(y, sy);
            const int level = supersampleLevel(xs.length(), ys.length());
            storeStraight(
                level == 0 ? plainSample(source, xs.middle, ys.middle) : meanOfGrid(source, xs, ys, 1 << level), out);
        }
}

} // namespace OndrelReference

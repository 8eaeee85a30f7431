#include "scale_reference.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace OndrelReference
{
namespace
{

using Ondrel::FilterMethod;
using Ondrel::Image;
using Sampler = void (*)(const Image&, float, float, float*);

const std::uint16_t* pixel(const Image& image, unsigned int x, unsigned int y)
{
    return image.data + (std::size_t(y) * image.width + x) * 4;
}

std::uint16_t* pixel(Image& image, unsigned int x, unsigned int y)
{
    return image.data + (std::size_t(y) * image.width + x) * 4;
}

// Premultiplied, in the range 0 to 1, the edge pixels repeated outside.
void fetch(const Image& image, int x, int y, float* rgba)
{
    x = std::clamp(x, 0, int(image.width) - 1);
    y = std::clamp(y, 0, int(image.height) - 1);
    const std::uint16_t* const p = pixel(image, unsigned(x), unsigned(y));
    rgba[3] = float(p[3]) / 65535.0f;
    for (int c = 0; c < 3; ++c)
        rgba[c] = float(p[c]) / 65535.0f * rgba[3];
}

std::uint16_t store(float v)
{
    if (v > 1.0f)
        return 65535;
    if (v > 0.0f)
        return std::uint16_t(v * 65535.0f);
    return 0;
}

void storePixel(const float* rgba, std::uint16_t* out)
{
    const float inverse = rgba[3] == 0.0f ? 0.0f : 1.0f / rgba[3];
    for (int c = 0; c < 3; ++c)
        out[c] = store(rgba[c] * inverse);
    out[3] = store(rgba[3]);
}

float cubic(const float* p, float t)
{
    return p[1] + (0.5f * p[2] - 0.5f * p[0]) * t + (p[0] - 2.5f * p[1] + 2.0f * p[2] - 0.5f * p[3]) * (t * t) +
           (1.5f * p[1] - 0.5f * p[0] - 1.5f * p[2] + 0.5f * p[3]) * (t * t * t);
}

// A box of the source, cut into four. The centres lie at the fractions `near` and 1 - `near`; a quarter's half extent
// is `half` of the box. A quarter with an extent above `limit` is cut again.
struct Quartering {
    float near, half, limit;
    Sampler sample;
};

void supersample(const Quartering& q, const Image& image, const float* xs, const float* ys, float* rgba)
{
    const float w = xs[2] - xs[0], h = ys[2] - ys[0];
    const float halfW = q.half * w, halfH = q.half * h;
    const bool deeper = 2.0f * q.half * w > q.limit || 2.0f * q.half * h > q.limit;
    float sum[4] = {0, 0, 0, 0};
    for (const float fy : {q.near, 1.0f - q.near}) {
        for (const float fx : {q.near, 1.0f - q.near}) {
            const float x = xs[0] + fx * w, y = ys[0] + fy * h;
            float part[4];
            if (deeper) {
                const float partXs[3] = {x - halfW, x, x + halfW}, partYs[3] = {y - halfH, y, y + halfH};
                supersample(q, image, partXs, partYs, part);
            } else {
                q.sample(image, x, y, part);
            }
            for (int c = 0; c < 4; ++c)
                sum[c] += part[c];
        }
    }
    for (int c = 0; c < 4; ++c)
        rgba[c] = sum[c] * 0.25f;
}

const Quartering kBilinear = {0.25f, 0.25f, 1.5f, bilinearSample};
const Quartering kBicubic = {0.375f, 0.125f, 2.0f, bicubicSample};

void nearest(const Image& source, Image& out)
{
    const float sx = float(double(source.width) / double(out.width));
    const float sy = float(double(source.height) / double(out.height));
    for (unsigned int y = 0; y < out.height; ++y)
        for (unsigned int x = 0; x < out.width; ++x) {
            const long fromX = std::min(std::lround(float(x) * sx), long(source.width) - 1);
            const long fromY = std::min(std::lround(float(y) * sy), long(source.height) - 1);
            std::copy_n(pixel(source, unsigned(fromX), unsigned(fromY)), 4, pixel(out, x, y));
        }
}

// `before` and `after`: where the box of an output pixel begins and ends, in output pixels from its left edge.
void filtered(const Image& source, Image& out, const Quartering& q, float before, float after)
{
    const float sx = float(source.width) / float(out.width), sy = float(source.height) / float(out.height);
    for (unsigned int y = 0; y < out.height; ++y) {
        const float ys[3] = {(float(y) + before) * sy - 0.5f, (float(y) + 0.5f) * sy - 0.5f,
                             (float(y) + after) * sy - 0.5f};
        for (unsigned int x = 0; x < out.width; ++x) {
            const float xs[3] = {(float(x) + before) * sx - 0.5f, (float(x) + 0.5f) * sx - 0.5f,
                                 (float(x) + after) * sx - 0.5f};
            float rgba[4];
            if (xs[2] - xs[0] > q.limit || ys[2] - ys[0] > q.limit)
                supersample(q, source, xs, ys, rgba);
            else
                q.sample(source, xs[1], ys[1], rgba);
            storePixel(rgba, pixel(out, x, y));
        }
    }
}

} // namespace

void bilinearSample(const Image& image, float x, float y, float* rgba)
{
    const float floorX = std::floor(x), floorY = std::floor(y);
    const float fx = x - floorX, fy = y - floorY;
    const int ix = int(floorX), iy = int(floorY);
    float p00[4], p10[4], p01[4], p11[4];
    fetch(image, ix, iy, p00);
    fetch(image, ix + 1, iy, p10);
    fetch(image, ix, iy + 1, p01);
    fetch(image, ix + 1, iy + 1, p11);
    for (int c = 0; c < 4; ++c)
        rgba[c] = (p00[c] * (1.0f - fx) + p10[c] * fx) * (1.0f - fy) + (p01[c] * (1.0f - fx) + p11[c] * fx) * fy;
}

void bicubicSample(const Image& image, float x, float y, float* rgba)
{
    const float floorX = std::floor(x), floorY = std::floor(y);
    const int ix = int(floorX), iy = int(floorY);
    float rows[4][4]; // [channel][row]
    for (int j = 0; j < 4; ++j) {
        float p[4][4];
        for (int i = 0; i < 4; ++i)
            fetch(image, ix - 1 + i, iy - 1 + j, p[i]);
        for (int c = 0; c < 4; ++c) {
            const float four[4] = {p[0][c], p[1][c], p[2][c], p[3][c]};
            rows[c][j] = cubic(four, x - floorX);
        }
    }
    for (int c = 0; c < 4; ++c)
        rgba[c] = cubic(rows[c], y - floorY);
}

void bilinearSupersample(const Image& image, const float* xs, const float* ys, float* rgba)
{
    supersample(kBilinear, image, xs, ys, rgba);
}

void bicubicSupersample(const Image& image, const float* xs, const float* ys, float* rgba)
{
    supersample(kBicubic, image, xs, ys, rgba);
}

Image scale(const Image& source, unsigned int width, unsigned int height, FilterMethod filter)
{
    if (source.width == 0 || source.height == 0 || (source.width == width && source.height == height))
        return source;
    Image out(width, height);
    switch (filter) {
    case FilterMethod::NearestNeighbor:
        nearest(source, out);
        break;
    case FilterMethod::Bilinear:
        filtered(source, out, kBilinear, 0.0f, 1.0f);
        break;
    case FilterMethod::Bicubic:
        filtered(source, out, kBicubic, -0.5f, 1.5f);
        break;
    }
    out.colorProfile = source.colorProfile;
    return out;
}

Image scaleSubImageFast(const Image& source, unsigned int sourceWidth, unsigned int sourceHeight, unsigned int width,
                        unsigned int height)
{
    if (!source.width || !source.height || !sourceWidth || !sourceHeight || !width || !height)
        return Image(0, 0);
    const unsigned int subWidth = std::min(source.width, sourceWidth);
    const unsigned int subHeight = std::min(source.height, sourceHeight);
    if (width == height && width == subWidth)
        return source;
    Image out(width, height);
    const float sx = float(subWidth) / (float(width) + 0.5f), sy = float(subHeight) / (float(height) + 0.5f);
    for (unsigned int y = 0; y < height; ++y)
        for (unsigned int x = 0; x < width; ++x) {
            const long fromX = std::lrint((float(x) + 0.5f) * sx - 0.5f);
            const long fromY = std::lrint((float(y) + 0.5f) * sy - 0.5f);
            std::copy_n(pixel(source, unsigned(fromX), unsigned(fromY)), 4, pixel(out, x, y));
        }
    return out;
}

} // namespace OndrelReference

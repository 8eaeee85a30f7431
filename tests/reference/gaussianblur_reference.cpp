#include "gaussianblur_reference.h"

#include "geometry_reference.h"

#include <ondrel/core/parallel_p.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace OndrelReference
{
namespace
{

using Ondrel::Image;

// The column in which the pixel of column `x` is found; -1 if there is none.
int column(int x, int width, Outside outside)
{
    if (x >= 0 && x < width)
        return x;
    switch (outside) {
    case Outside::NearestEdgePixel:
        return std::clamp(x, 0, width - 1);
    case Outside::Zeros:
        return -1;
    case Outside::Repetition:
        return x % width < 0 ? x % width + width : x % width;
    }
    return -1;
}

// The row with `n` pixels on either side.
std::vector<double> extendedRow(const std::uint16_t* in, int width, int n, Outside outside)
{
    std::vector<double> row(std::size_t(width + 2 * n) * 4, 0.0);
    for (int x = -n; x < width + n; ++x) {
        const int from = column(x, width, outside);
        for (std::size_t c = 0; from >= 0 && c < 4; ++c)
            row[std::size_t(x + n) * 4 + c] = double(in[std::size_t(from) * 4 + c]);
    }
    return row;
}

void blurRow(const std::uint16_t* in, std::uint16_t* out, int width, const std::vector<double>& weights,
             Outside outside)
{
    const std::vector<double> row = extendedRow(in, width, int(weights.size()) / 2, outside);
    for (int x = 0; x < width; ++x) {
        const double* samples = row.data() + std::size_t(x) * 4;
        double sum[4] = {0, 0, 0, 0};
        for (const double weight : weights) {
            for (int c = 0; c < 4; ++c)
                sum[c] += samples[c] * weight;
            samples += 4;
        }
        for (std::size_t c = 0; c < 4; ++c)
            out[std::size_t(x) * 4 + c] = std::uint16_t(std::min(std::round(sum[c]), 65535.0));
    }
}

Image blurredRows(const Image& image, float reach, Outside outside)
{
    const std::vector<double> weights = gaussianWeights(reach);
    Image out(image.width, image.height);
    Ondrel::parallelRanges(image.height, 8, [&](std::size_t first, std::size_t last) {
        for (std::size_t y = first; y < last; ++y) {
            const std::size_t row = y * image.width * 4;
            blurRow(image.data + row, out.data + row, int(image.width), weights, outside);
        }
    });
    return out;
}

} // namespace

std::vector<double> gaussianWeights(float reach)
{
    const float sigma = float(double(reach) / 3.0348542587702925);
    const int n = int(sigma * 3.0f + 1.0f);
    const double r = double(reach), s = double(sigma);
    std::vector<double> weights(std::size_t(2 * n + 1), 0.0);
    double sum = 0.0;
    for (int i = -n; i <= n; ++i) {
        double& weight = weights[std::size_t(i + n)];
        if (double(i) <= r)
            weight = std::exp(-double(i) * double(i) / (2.0 * s * s)) - std::exp(-r * r / (2.0 * s * s));
        sum += weight;
    }
    for (double& weight : weights)
        weight = std::max(weight / sum, 0.0);
    return weights;
}

Image gaussianBlur(const Image& image, float radiusX, float radiusY, Outside outside)
{
    if (radiusX == 0.0f && radiusY == 0.0f)
        return image;
    const float reachX = radiusX + 1.0f, reachY = radiusY + 1.0f;
    Image working = image;
    if (reachX > 0.0f)
        working = blurredRows(working, reachX, outside);
    if (reachY > 0.0f) {
        working = rotate90(working, RotateSizeBounding);
        working = blurredRows(working, reachY, outside);
        working = rotate270(working, RotateSizeBounding);
    }
    return working;
}

} // namespace OndrelReference

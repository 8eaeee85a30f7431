#include <ondrel/pixel/scale.h>

#include <algorithm>
#include <ondrel/pixel/bilinearsample_p.h>
#include <ondrel/pixel/imageblock_p.h>
#include <ondrel/pixel/scalesamplers_p.h>

using namespace Ondrel;

namespace
{

// Far outside any image, and far inside the range of int with room for the neighbours of a pixel.
constexpr float kFarthest = 1073741824.0f;

int pixelIndex(float floored)
{
    return int(std::clamp(floored, -kFarthest, kFarthest));
}

void clearPixel(float* rgba)
{
    std::fill_n(rgba, 4, 0.0f);
}

float cubic(float p0, float p1, float p2, float p3, float t)
{
    const float t2 = t * t;
    const float t3 = t2 * t;
    return p1 + (0.5f * p2 - 0.5f * p0) * t + (p0 - 2.5f * p1 + 2.0f * p2 - 0.5f * p3) * t2 +
           (1.5f * p1 - 0.5f * p0 - 1.5f * p2 + 0.5f * p3) * t3;
}

void sampleAt(BilinearBoxes, Image const& image, float x, float y, float* rgba)
{
    bilinearSamplePremultiplied(image, x, y, rgba);
}

void sampleAt(BicubicBoxes, Image const& image, float x, float y, float* rgba)
{
    BicubicSample<GetPixelAsFloatRGBAPremultiplied>(image, x, y, rgba);
}

template <typename Boxes>
void averageBox(Image const& image, Span xSpan, Span ySpan, float* rgba)
{
    const bool splits = splitsAgain<Boxes>(xSpan) || splitsAgain<Boxes>(ySpan);
    float sum[4];
    for (int quadrant = 0; quadrant < 4; ++quadrant) {
        const int i = quadrant & 1;
        const int j = quadrant >> 1;
        float part[4];
        if (splits)
            averageBox<Boxes>(image, childOf<Boxes>(xSpan, i), childOf<Boxes>(ySpan, j), part);
        else
            sampleAt(Boxes{}, image, pointOf<Boxes>(xSpan, i), pointOf<Boxes>(ySpan, j), part);
        for (int c = 0; c < 4; ++c)
            sum[c] = quadrant == 0 ? part[c] : sum[c] + part[c];
    }
    for (int c = 0; c < 4; ++c)
        rgba[c] = sum[c] * 0.25f;
}

template <typename Boxes>
void averageBox(Image const& image, const float* xs, const float* ys, float* rgba)
{
    const Span xSpan{xs[0], xs[2]};
    const Span ySpan{ys[0], ys[2]};
    // An infinite side would be halved without end.
    if (!std::isfinite(xSpan.length()) || !std::isfinite(ySpan.length()) || !hasPixels(image))
        return clearPixel(rgba);
    averageBox<Boxes>(image, xSpan, ySpan, rgba);
}

} // namespace

void Ondrel::bilinearSamplePremultiplied(Image const& image, float x, float y, float* rgba)
{
    if (!std::isfinite(x) || !std::isfinite(y))
        return clearPixel(rgba);
    const float left = std::floor(x);
    const float top = std::floor(y);
    const float fx = x - left;
    const float fy = y - top;
    float pixels[2][2][4];
    for (int j = 0; j < 2; ++j)
        for (int i = 0; i < 2; ++i)
            GetPixelAsFloatRGBAPremultiplied(image, pixelIndex(left) + i, pixelIndex(top) + j, pixels[j][i]);
    for (int c = 0; c < 4; ++c) {
        const float upper = pixels[0][0][c] * (1.0f - fx) + pixels[0][1][c] * fx;
        const float lower = pixels[1][0][c] * (1.0f - fx) + pixels[1][1][c] * fx;
        rgba[c] = upper * (1.0f - fy) + lower * fy;
    }
}

template <void (*Fetch)(Ondrel::Image const&, int, int, float*)>
void BicubicSample(Ondrel::Image const& image, float x, float y, float* rgba)
{
    if (!std::isfinite(x) || !std::isfinite(y))
        return clearPixel(rgba);
    const float left = std::floor(x);
    const float top = std::floor(y);
    float rows[4][4];
    for (int j = 0; j < 4; ++j) {
        float pixels[4][4];
        for (int i = 0; i < 4; ++i)
            Fetch(image, pixelIndex(left) + i - 1, pixelIndex(top) + j - 1, pixels[i]);
        for (int c = 0; c < 4; ++c)
            rows[j][c] = cubic(pixels[0][c], pixels[1][c], pixels[2][c], pixels[3][c], x - left);
    }
    for (int c = 0; c < 4; ++c)
        rgba[c] = cubic(rows[0][c], rows[1][c], rows[2][c], rows[3][c], y - top);
}

template ONDREL_EXPORT void BicubicSample<GetPixelAsFloatRGBAPremultiplied>(Image const&, float, float, float*);
template ONDREL_EXPORT void BicubicSample<GetPixelAsFloatRGBABlankPremultiplied>(Image const&, float, float, float*);

void BilinearSupersampleMultiplied(Ondrel::Image const& image, float* xs, float* ys, float* rgba)
{
    averageBox<BilinearBoxes>(image, xs, ys, rgba);
}

void BicubicSupersampleMultiplied(Ondrel::Image const& image, float* xs, float* ys, float* rgba)
{
    averageBox<BicubicBoxes>(image, xs, ys, rgba);
}

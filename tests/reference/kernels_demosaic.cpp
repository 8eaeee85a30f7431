#include "kernels_reference.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>

namespace OndrelReference
{
namespace
{

constexpr int kRed = 0, kGreen = 1, kBlue = 2, kAlpha = 3;
constexpr int kBorder = 2;

int colorAt(unsigned int filters, int row, int column)
{
    return int((filters >> ((((row << 1) & 14) | (column & 1)) << 1)) & 3);
}

// One channel of a picture, read with signed coordinates and offsets.
struct View {
    const Sample* samples;
    unsigned int width;

    int operator()(int x, int y, int channel) const
    {
        return samples[(std::size_t(y) * width + std::size_t(x)) * 4 + std::size_t(channel)];
    }
};

Sample clampSample(std::int64_t value)
{
    return Sample(std::clamp<std::int64_t>(value, 0, 65535));
}

// The value at the middle of p1 and p3, where the guide has the values l1, l2, l3: it follows the guide along a slope
// and is shifted by the guide's curvature elsewhere. The product of two differences of samples needs 33 bits.
std::int64_t hueTransit(std::int64_t l1, std::int64_t l2, std::int64_t l3, std::int64_t p1, std::int64_t p3)
{
    if ((l1 < l2 && l2 < l3) || (l1 > l2 && l2 > l3))
        return p1 + (p3 - p1) * (l2 - l1) / (l3 - l1);
    return ((p1 + p3) >> 1) + ((2 * l2 - l1 - l3) >> 2);
}

// Green of a red or blue pixel, from the direction of the smallest gradient.
Sample greenOf(const View& in, int x, int y, int color)
{
    const int value = in(x, y, color);
    const int north = in(x, y - 1, kGreen), south = in(x, y + 1, kGreen);
    const int east = in(x + 1, y, kGreen), west = in(x - 1, y, kGreen);
    const int north2 = in(x, y - 2, color), south2 = in(x, y + 2, color);
    const int east2 = in(x + 2, y, color), west2 = in(x - 2, y, color);

    const int gradients[4] = {
        2 * std::abs(value - north2) + std::abs(north - south), 2 * std::abs(value - east2) + std::abs(west - east),
        2 * std::abs(value - west2) + std::abs(west - east), 2 * std::abs(value - south2) + std::abs(north - south)};
    const int estimates[4] = {(3 * north + south + value - north2) / 4, (3 * east + west + value - east2) / 4,
                              (3 * west + east + value - west2) / 4, (3 * south + north + value - south2) / 4};
    // min_element gives the first of equal gradients.
    return clampSample(estimates[std::min_element(gradients, gradients + 4) - gradients]);
}

// Red and blue of a green pixel.
void neighboursOf(const View& in, const View& green, int x, int y, unsigned int filters, Sample* out)
{
    const int besides = colorAt(filters, y, x + 1), above = colorAt(filters, y - 1, x);
    const int own = green(x, y, kGreen);
    const Sample horizontal = clampSample(hueTransit(green(x - 1, y, kGreen), own, green(x + 1, y, kGreen),
                                                     in(x - 1, y, besides), in(x + 1, y, besides)));
    const Sample vertical = clampSample(
        hueTransit(green(x, y - 1, kGreen), own, green(x, y + 1, kGreen), in(x, y - 1, above), in(x, y + 1, above)));
    out[kRed] = besides == kBlue ? vertical : horizontal;
    out[kBlue] = besides == kBlue ? horizontal : vertical;
}

// The gradient across a pixel along the diagonal whose upper end lies in the direction `dx` (1 or -1).
int diagonalGradient(const View& in, const View& green, int x, int y, int dx, int own, int other)
{
    return std::abs(in(x + dx, y - 1, other) - in(x - dx, y + 1, other)) +
           std::abs(in(x + 2 * dx, y - 2, own) - in(x, y, own)) + std::abs(in(x, y, own) - in(x - 2 * dx, y + 2, own)) +
           std::abs(green(x + dx, y - 1, kGreen) - green(x, y, kGreen)) +
           std::abs(green(x, y, kGreen) - green(x - dx, y + 1, kGreen));
}

// Blue of a red pixel or red of a blue one, from its diagonal neighbours.
void oppositeOf(const View& in, const View& green, int x, int y, unsigned int filters, Sample* out)
{
    const int own = colorAt(filters, y, x), other = colorAt(filters, y - 1, x + 1);
    const bool northEast =
        diagonalGradient(in, green, x, y, 1, own, other) < diagonalGradient(in, green, x, y, -1, own, other);
    const int dx = northEast ? 1 : -1;
    const Sample estimate =
        clampSample(hueTransit(green(x + dx, y - 1, kGreen), green(x, y, kGreen), green(x - dx, y + 1, kGreen),
                               in(x + dx, y - 1, other), in(x - dx, y + 1, other)));
    out[kRed] = own == kBlue ? estimate : Sample(in(x, y, own));
    out[kBlue] = own == kBlue ? Sample(in(x, y, own)) : estimate;
}

} // namespace

void demosaicGreen(unsigned int w, unsigned int h, unsigned int filters, const Sample* in, Sample* out)
{
    const View view{in, w};
    for (int y = kBorder; y < int(h) - kBorder; ++y)
        for (int x = kBorder; x < int(w) - kBorder; ++x) {
            Sample* const pixel = out + (std::size_t(y) * w + std::size_t(x)) * 4;
            const int color = colorAt(filters, y, x);
            pixel[kGreen] = color == kGreen ? Sample(view(x, y, kGreen)) : greenOf(view, x, y, color);
            pixel[kAlpha] = 65535;
        }
}

void demosaicRedBlue(unsigned int w, unsigned int h, unsigned int filters, const Sample* in, Sample* out)
{
    const View view{in, w}, green{out, w};
    for (int y = kBorder; y < int(h) - kBorder; ++y)
        for (int x = kBorder; x < int(w) - kBorder; ++x) {
            Sample* const pixel = out + (std::size_t(y) * w + std::size_t(x)) * 4;
            if (colorAt(filters, y, x) == kGreen)
                neighboursOf(view, green, x, y, filters, pixel);
            else
                oppositeOf(view, green, x, y, filters, pixel);
        }
}

} // namespace OndrelReference

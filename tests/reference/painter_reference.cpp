#include "painter_reference.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace OndrelReference
{
namespace
{

using Ondrel::Image;

// "Over" with source alpha `s` in the range 0 to 1. A pixel that stays without any alpha is left as it is.
void over(unsigned short* pixel, const unsigned short* colour, float s)
{
    const float under = float(pixel[3]) / 65535.0f * (1.0f - s);
    const float alpha = s + under;
    if (alpha == 0.0f)
        return;
    for (int c = 0; c < 3; ++c)
        pixel[c] = static_cast<unsigned short>((s * float(colour[c]) + under * float(pixel[c])) / alpha);
    pixel[3] = static_cast<unsigned short>(alpha * 65535.0f);
}

unsigned short* pixelAt(Image& image, int x, int y)
{
    return image.data + (std::size_t(y) * image.width + std::size_t(x)) * 4;
}

float bilinear(const Brush& brush, float x, float y)
{
    const std::size_t n = 2u * brush.radius + 1u;
    const float floorX = std::floor(x), floorY = std::floor(y);
    const float fx = x - floorX, fy = y - floorY;
    const float* const row = brush.mask.data() + std::size_t(floorY) * n + std::size_t(floorX);
    return (row[0] * (1.0f - fx) + row[1] * fx) * (1.0f - fy) + (row[n] * (1.0f - fx) + row[n + 1] * fx) * fy;
}

} // namespace

void Brush::buildMask()
{
    hardness = std::min(hardness, 0.99f);
    const std::size_t n = 2u * radius + 1u;
    mask.assign(n * n, 0.0f);
    const int solid = int(float(radius) * hardness);
    for (int j = 0; j < 2 * radius; ++j)
        for (int i = 0; i < 2 * radius; ++i) {
            const double d = std::hypot(radius - i, radius - j);
            double weight = 1.0;
            if (int(d) >= solid) {
                const double v = (d - solid) / (radius - solid);
                weight = v > cutoff ? 0.0
                                    : std::exp(-v * v / (2 * falloff * falloff)) -
                                          std::exp(-cutoff * cutoff / (2 * falloff * falloff));
            }
            mask[std::size_t(j) * n + std::size_t(i)] = float(weight);
        }
}

void stamp(Image& image, const Brush& brush, int x, int y, bool draw)
{
    const int r = brush.radius;
    const float strength = float(brush.alpha) / 65535.0f * brush.opacity;
    const unsigned short colour[3] = {brush.red, brush.green, brush.blue};
    for (int j = 0; j < 2 * r; ++j)
        for (int i = 0; i < 2 * r; ++i) {
            const int px = x - r + i, py = y - r + j;
            if (px < 0 || py < 0 || px >= int(image.width) || py >= int(image.height))
                continue;
            const float s = brush.mask[std::size_t(j) * (2u * unsigned(r) + 1u) + std::size_t(i)] * strength;
            unsigned short* const p = pixelAt(image, px, py);
            if (draw)
                over(p, colour, s);
            else
                p[3] = static_cast<unsigned short>(std::max(0, int(p[3]) - int(s * 65535.0f)));
        }
}

void sweep(Image& image, const Brush& brush, QPoint from, QPoint to, const Ondrel::RectT<int>& area)
{
    const float strength = float(brush.alpha) / 65535.0f * brush.opacity;
    const unsigned short colour[3] = {brush.red, brush.green, brush.blue};
    const float dx = float(to.x() - from.x()), dy = float(to.y() - from.y());
    const float reach = 2.0f * float(brush.radius);
    for (int y = area.top(); y < area.bottom(); ++y)
        for (int x = area.left(); x < area.right(); ++x) {
            const float k =
                std::clamp((float(x - from.x()) * dx + float(y - from.y()) * dy) / (dx * dx + dy * dy), 0.0f, 1.0f);
            const float mx = float(brush.radius) + (float(from.x()) + k * dx) - float(x);
            const float my = float(brush.radius) + (float(from.y()) + k * dy) - float(y);
            if (mx >= 0.0f && my >= 0.0f && mx < reach && my < reach)
                over(pixelAt(image, x, y), colour, bilinear(brush, mx, my) * strength);
        }
}

void compose(Image& target, int x, int y, const Image& source, float opacity)
{
    for (int j = 0; j < int(source.height); ++j)
        for (int i = 0; i < int(source.width); ++i) {
            const int px = x + i, py = y + j;
            if (px < 0 || py < 0 || px >= int(target.width) || py >= int(target.height))
                continue;
            const unsigned short* const from = source.data + (std::size_t(j) * source.width + std::size_t(i)) * 4;
            over(pixelAt(target, px, py), from, float(from[3]) * (opacity / 65535.0f));
        }
}

} // namespace OndrelReference

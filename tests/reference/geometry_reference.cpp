#include "geometry_reference.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace OndrelReference
{
namespace
{

using Ondrel::Image;

// Copies pixel (fromX, fromY) to (toX, toY) if both lie inside.
void move(const Image& from, std::int64_t fromX, std::int64_t fromY, Image& to, std::int64_t toX, std::int64_t toY)
{
    const auto inside = [](const Image& i, std::int64_t x, std::int64_t y) {
        return x >= 0 && y >= 0 && x < std::int64_t(i.width) && y < std::int64_t(i.height);
    };
    if (inside(from, fromX, fromY) && inside(to, toX, toY))
        std::copy_n(from.data + (fromY * from.width + fromX) * 4, 4, to.data + (toY * to.width + toX) * 4);
}

// Moves every pixel (x, y) of the image to where `place` says, on a canvas of the given size.
template <typename Place>
Image moved(const Image& image, unsigned int width, unsigned int height, Place place)
{
    Image out(width, height);
    for (std::int64_t y = 0; y < image.height; ++y)
        for (std::int64_t x = 0; x < image.width; ++x) {
            const auto [toX, toY] = place(x, y);
            move(image, x, y, out, toX, toY);
        }
    return out;
}

struct Place {
    std::int64_t x, y;
};

// A turn with the sides exchanged, or centred on a canvas of the source's size.
template <typename Turn>
Image turned(const Image& image, RotateSize mode, Turn turn)
{
    if (mode != RotateSizeKeep || image.width == image.height)
        return moved(image, image.height, image.width, turn);
    const std::int64_t w = image.width, h = image.height, d = std::abs(w - h) >> 1;
    // The turned picture is h wide and w tall; its corner goes to (-d, d) on a tall canvas, to (d, -d) on a wide one.
    const std::int64_t dx = h > w ? -d : d, dy = h > w ? d : -d;
    return moved(image, image.width, image.height, [&](std::int64_t x, std::int64_t y) {
        const Place p = turn(x, y);
        return Place{p.x + dx, p.y + dy};
    });
}

} // namespace

Image crop(const Image& image, unsigned int left, unsigned int top, unsigned int right, unsigned int bottom)
{
    const std::int64_t width = std::int64_t(image.width) - left - right;
    const std::int64_t height = std::int64_t(image.height) - top - bottom;
    if (width <= 0 || height <= 0)
        return Image();
    return moved(image, unsigned(width), unsigned(height), [&](std::int64_t x, std::int64_t y) {
        return Place{x - left, y - top};
    });
}

Image horizontalMirror(const Image& image)
{
    return moved(image, image.width, image.height, [&](std::int64_t x, std::int64_t y) {
        return Place{std::int64_t(image.width) - 1 - x, y};
    });
}

Image verticalMirror(const Image& image)
{
    return moved(image, image.width, image.height, [&](std::int64_t x, std::int64_t y) {
        return Place{x, std::int64_t(image.height) - 1 - y};
    });
}

Image translate(const Image& image, int dx, int dy)
{
    if (image.width == 0 || image.height == 0)
        return Image();
    return moved(image, image.width + unsigned(std::max(dx, 0)), image.height + unsigned(std::max(dy, 0)),
                 [&](std::int64_t x, std::int64_t y) {
                     return Place{x + dx, y + dy};
                 });
}

Image rotate90(const Image& image, RotateSize mode)
{
    return turned(image, mode, [&](std::int64_t x, std::int64_t y) {
        return Place{y, std::int64_t(image.width) - 1 - x};
    });
}

Image rotate180(const Image& image)
{
    return moved(image, image.width, image.height, [&](std::int64_t x, std::int64_t y) {
        return Place{std::int64_t(image.width) - 1 - x, std::int64_t(image.height) - 1 - y};
    });
}

Image rotate270(const Image& image, RotateSize mode)
{
    return turned(image, mode, [&](std::int64_t x, std::int64_t y) {
        return Place{std::int64_t(image.height) - 1 - y, x};
    });
}

} // namespace OndrelReference

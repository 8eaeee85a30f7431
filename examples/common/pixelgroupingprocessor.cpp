// Patterned Pixel Grouping, as the kernels c0 and d0 have it.

#include "rows.h"

#include "pixelgrouping.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace Examples
{
namespace
{

// A pixel and what surrounds it.
struct Place {
    const Ondrel::Image& image;
    int x, y;

    int at(int dx, int dy, unsigned int channel) const
    {
        return image.data[(std::size_t(y + dy) * image.width + std::size_t(x + dx)) * 4 + channel];
    }
};

int limited(int value)
{
    return std::clamp(value, 0, 65535);
}

// The colour between two outer values p1 and p3, from the values l1, l2, l3 of a colour that is known at all three.
int hueTransit(int l1, int l2, int l3, int p1, int p3)
{
    if ((l1 < l2 && l2 < l3) || (l3 < l2 && l2 < l1))
        return p1 + int(std::int64_t(p3 - p1) * (l2 - l1) / (l3 - l1));
    return ((p1 + p3) >> 1) + ((2 * l2 - l1 - l3) >> 2);
}

int greenAt(const Place& sensor, unsigned int color)
{
    if (color == 1)
        return sensor.at(0, 0, 1);
    struct Direction {
        int dx, dy;
    };
    constexpr Direction directions[] = {{0, -1}, {1, 0}, {-1, 0}, {0, 1}}; // the first of equals is taken
    const int own = sensor.at(0, 0, color);
    int least = 1 << 30, green = 0;
    for (const auto [dx, dy] : directions) {
        const int near = sensor.at(dx, dy, 1), opposite = sensor.at(-dx, -dy, 1);
        const int beyond = sensor.at(2 * dx, 2 * dy, color);
        const int gradient = 2 * std::abs(own - beyond) + std::abs(near - opposite);
        if (gradient < least) {
            least = gradient;
            green = limited((3 * near + opposite + own - beyond) / 4);
        }
    }
    return green;
}

// The estimate of a colour along a line through the pixel.
int along(const Place& sensor, const Place& picture, int dx, int dy, unsigned int color)
{
    return limited(hueTransit(picture.at(-dx, -dy, 1), picture.at(0, 0, 1), picture.at(dx, dy, 1),
                              sensor.at(-dx, -dy, color), sensor.at(dx, dy, color)));
}

// How much changes along a diagonal.
int diagonalGradient(const Place& sensor, const Place& picture, int dx, int dy, unsigned int own, unsigned int other)
{
    const int c = sensor.at(0, 0, own), green = picture.at(0, 0, 1);
    return std::abs(sensor.at(dx, dy, other) - sensor.at(-dx, -dy, other)) +
           std::abs(sensor.at(2 * dx, 2 * dy, own) - c) + std::abs(c - sensor.at(-2 * dx, -2 * dy, own)) +
           std::abs(picture.at(dx, dy, 1) - green) + std::abs(green - picture.at(-dx, -dy, 1));
}

void setRedAndBlue(const Place& sensor, const Place& picture, unsigned int filters, std::uint16_t* pixel)
{
    const unsigned int row = unsigned(sensor.y), column = unsigned(sensor.x);
    const unsigned int own = colorAt(filters, row, column);
    if (own == 1) {
        const unsigned int beside = colorAt(filters, row, column + 1);
        const unsigned int above = colorAt(filters, row - 1, column);
        pixel[beside] = std::uint16_t(along(sensor, picture, 1, 0, beside));
        pixel[above] = std::uint16_t(along(sensor, picture, 0, 1, above));
        return;
    }
    const unsigned int other = colorAt(filters, row - 1, column + 1);
    const bool rising =
        diagonalGradient(sensor, picture, 1, -1, own, other) < diagonalGradient(sensor, picture, -1, -1, own, other);
    pixel[other] = std::uint16_t(rising ? along(sensor, picture, -1, 1, other) : along(sensor, picture, 1, 1, other));
    pixel[own] = std::uint16_t(sensor.at(0, 0, own));
}

template <typename Body>
void forInnerPixels(const Ondrel::Image& picture, const Ondrel::RunStatus& status, Body body)
{
    if (picture.width < 5 || picture.height < 5)
        return;
    forRows(2, picture.height - 2, status, [&](unsigned int row) {
        const int y = int(row);
        for (int x = 2; x + 2 < int(picture.width); ++x)
            body(x, y, picture.data + (std::size_t(y) * picture.width + std::size_t(x)) * 4);
    });
}

} // namespace

void demosaicOnProcessor(const Mosaic& mosaic, Ondrel::Image& picture, const Ondrel::RunStatus& status)
{
    forInnerPixels(picture, status, [&](int x, int y, std::uint16_t* pixel) {
        const unsigned int color = colorAt(mosaic.filters, unsigned(y), unsigned(x));
        pixel[1] = std::uint16_t(greenAt({mosaic.image, x, y}, color));
        pixel[3] = 65535;
    });
    forInnerPixels(picture, status, [&](int x, int y, std::uint16_t* pixel) {
        setRedAndBlue({mosaic.image, x, y}, {picture, x, y}, mosaic.filters, pixel);
    });
}

} // namespace Examples

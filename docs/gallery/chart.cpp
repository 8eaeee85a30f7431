#include "gallery.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/pixel/scale.h>

#include <cmath>

namespace
{

void setPixel(Ondrel::Image& image, unsigned int x, unsigned int y, int r, int g, int b)
{
    image.Fill(static_cast<unsigned short>(r * 257), static_cast<unsigned short>(g * 257),
               static_cast<unsigned short>(b * 257), 65535, x, y, 1, 1);
}

// Patches of the corners of the RGB cube, eight pixels wide.
void paintPatches(Ondrel::Image& image)
{
    for (unsigned int i = 0; i < 8; ++i)
        image.Fill(i & 4 ? 65535 : 0, i & 2 ? 65535 : 0, i & 1 ? 65535 : 0, 65535, 4 + 8 * i, 4, 8, 12);
}

// Lines of one to four pixels, upright and lying, and single points.
void paintLines(Ondrel::Image& image)
{
    for (unsigned int width = 1, at = 4; width <= 4; at += 3 * width, ++width) {
        image.Fill(65535, 65535, 65535, 65535, at, 20, width, 40);
        image.Fill(65535, 65535, 65535, 65535, 50, 16 + at, 60, width);
    }
    for (unsigned int i = 0; i < 6; ++i)
        image.Fill(65535, 65535, 0, 65535, 130 + 8 * i, 30, 1, 1);
}

// Rings whose distance shrinks outwards: what folds back here folds back in photographs.
void paintRings(Ondrel::Image& image)
{
    for (unsigned int y = 70; y < 190; ++y)
        for (unsigned int x = 10; x < 130; ++x) {
            const double dx = x - 69.5, dy = y - 129.5;
            const int v = int(127.5 + 127.5 * std::cos((dx * dx + dy * dy) * 0.013));
            setPixel(image, x, y, v, v, v);
        }
}

void paintRamp(Ondrel::Image& image)
{
    for (unsigned int x = 0; x < 140; ++x)
        image.Fill(static_cast<unsigned short>(x * 65535 / 139), static_cast<unsigned short>(x * 65535 / 139),
                   static_cast<unsigned short>(x * 65535 / 139), 65535, 145 + x, 70, 1, 40);
}

// A red disc on nothing, with a soft right half.
void paintDisc(Ondrel::Image& image)
{
    for (unsigned int y = 120; y < 190; ++y)
        for (unsigned int x = 180; x < 260; ++x) {
            const double r = std::hypot(x - 219.5, y - 154.5);
            const double soft = x < 220 ? (r < 30 ? 1.0 : 0.0) : 1.0 - std::min(1.0, std::max(0.0, (r - 15) / 15));
            image.Fill(60000, 9000, 9000, static_cast<unsigned short>(65535 * soft), x, y, 1, 1);
        }
}

} // namespace

Ondrel::Image paintChart()
{
    Ondrel::Image chart(kChartWidth, kChartHeight);
    chart.Fill(12000, 14000, 18000, 65535);
    paintPatches(chart);
    paintLines(chart);
    paintRings(chart);
    paintRamp(chart);
    chart.Fill(0, 0, 0, 0, 170, 115, 100, 80);
    paintDisc(chart);
    chart.colorProfile = Ondrel::DefaultColorProfileHash;
    return chart;
}

Ondrel::Image magnified(const Ondrel::Image& image, unsigned int factor)
{
    Ondrel::Image result(image.width * factor, image.height * factor);
    for (unsigned int y = 0; y < image.height; ++y)
        for (unsigned int x = 0; x < image.width; ++x) {
            const std::uint16_t* p = image.data + (std::size_t(y) * image.width + x) * 4;
            result.Fill(p[0], p[1], p[2], p[3], x * factor, y * factor, factor, factor);
        }
    result.colorProfile = Ondrel::DefaultColorProfileHash;
    return result;
}

#include "testimages.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace OndrelTest
{

Ondrel::Image randomImage(unsigned int width, unsigned int height, unsigned int seed)
{
    Ondrel::Image image(width, height);
    std::mt19937 random(seed);
    const std::size_t pixels = std::size_t(width) * height;
    for (std::size_t i = 0; i < pixels; ++i) {
        for (std::size_t c = 0; c < 3; ++c)
            image.data[i * 4 + c] = std::uint16_t(random());
        const unsigned int kind = random() % 4;
        const std::uint16_t alphas[4] = {0, 1, 65535, std::uint16_t(random())};
        image.data[i * 4 + 3] = alphas[kind];
    }
    return image;
}

Ondrel::Image shrunkImage(unsigned int width, unsigned int height, unsigned int seed)
{
    Ondrel::Image image(width + 3, height + 2);
    const Ondrel::Image pixels = randomImage(width, height, seed);
    if (pixels.data)
        std::memcpy(image.data, pixels.data, std::size_t(width) * height * 8);
    image.width = width;
    image.height = height;
    return image;
}

Ondrel::Image withMetadata(unsigned int width, unsigned int height)
{
    Ondrel::Image image = randomImage(width, height, 1);
    image.colorProfile.fill(7);
    image.rawIsMosaic = true;
    image.rawFilters = 5;
    image.rawHasInfo = true;
    image.rawRotation = 2;
    image.rawToneCurve = std::make_shared<std::vector<Ondrel::CubicBezierSpline::Point>>(3);
    return image;
}

Pixel pixelAt(const Ondrel::Image& image, unsigned int x, unsigned int y)
{
    Pixel pixel;
    std::copy_n(image.data + (std::size_t(y) * image.width + x) * 4, 4, pixel.begin());
    return pixel;
}

void setPixel(Ondrel::Image& image, unsigned int x, unsigned int y, const Pixel& pixel)
{
    std::copy(pixel.begin(), pixel.end(), image.data + (std::size_t(y) * image.width + x) * 4);
}

bool samePixels(const Ondrel::Image& a, const Ondrel::Image& b)
{
    if (a.width != b.width || a.height != b.height)
        return false;
    const std::size_t bytes = std::size_t(a.width) * a.height * 8;
    return bytes == 0 || std::memcmp(a.data, b.data, bytes) == 0;
}

} // namespace OndrelTest

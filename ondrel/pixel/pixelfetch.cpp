#include <ondrel/pixel/pixelfetch.h>

#include <algorithm>
#include <ondrel/pixel/imageblock_p.h>

using Ondrel::hasPixels;
using Ondrel::pixelAt;

namespace
{

std::size_t clampedPosition(int position, std::uint32_t size)
{
    return std::size_t(std::clamp<std::int64_t>(position, 0, std::int64_t(size) - 1));
}

std::size_t repeatedPosition(int position, std::uint32_t size)
{
    const std::int64_t remainder = std::int64_t(position) % std::int64_t(size);
    return std::size_t(remainder < 0 ? remainder + std::int64_t(size) : remainder);
}

bool isInside(Ondrel::Image const& image, int x, int y)
{
    return x >= 0 && y >= 0 && std::uint32_t(x) < image.width && std::uint32_t(y) < image.height;
}

void premultiply(const std::uint16_t* pixel, float* rgba)
{
    const float alpha = float(pixel[3]) / 65535.0f;
    for (int c = 0; c < 3; ++c)
        rgba[c] = float(pixel[c]) / 65535.0f * alpha;
    rgba[3] = alpha;
}

template <typename T>
void blank(T* rgba)
{
    std::fill_n(rgba, 4, T(0));
}

} // namespace

void GetPixelAsFloatRGBAPremultiplied(Ondrel::Image const& image, int x, int y, float* rgba)
{
    if (!hasPixels(image))
        return blank(rgba);
    premultiply(pixelAt(image, clampedPosition(x, image.width), clampedPosition(y, image.height)), rgba);
}

void GetPixelAsFloatRGBABlankPremultiplied(Ondrel::Image const& image, int x, int y, float* rgba)
{
    if (!hasPixels(image) || !isInside(image, x, y))
        return blank(rgba);
    premultiply(pixelAt(image, std::size_t(x), std::size_t(y)), rgba);
}

void GetPixelRGBAClamp(Ondrel::Image const& image, int x, int y, unsigned short* rgba)
{
    if (!hasPixels(image))
        return blank(rgba);
    std::copy_n(pixelAt(image, clampedPosition(x, image.width), clampedPosition(y, image.height)), 4, rgba);
}

void GetPixelRGBABlank(Ondrel::Image const& image, int x, int y, unsigned short* rgba)
{
    if (!hasPixels(image) || !isInside(image, x, y))
        return blank(rgba);
    std::copy_n(pixelAt(image, std::size_t(x), std::size_t(y)), 4, rgba);
}

void GetPixelRGBARepeat(Ondrel::Image const& image, int x, int y, unsigned short* rgba)
{
    if (!hasPixels(image))
        return blank(rgba);
    std::copy_n(pixelAt(image, repeatedPosition(x, image.width), repeatedPosition(y, image.height)), 4, rgba);
}

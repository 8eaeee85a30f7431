#pragma once

#include <ondrel/core/image.h>

#include <array>
#include <cstdint>
#include <random>

// Images for tests. All are reproducible: the same arguments give the same pixels.
namespace OndrelTest
{

using Pixel = std::array<std::uint16_t, 4>;

// Uniformly random samples. Of the alphas a quarter each is 0, 1 and 65535, the rest random.
Ondrel::Image randomImage(unsigned int width, unsigned int height, unsigned int seed);

// A random image of `width` x `height` in a block made for more pixels, as an in-place shrink leaves it.
Ondrel::Image shrunkImage(unsigned int width, unsigned int height, unsigned int seed);

// A random image with every field of metadata set.
Ondrel::Image withMetadata(unsigned int width, unsigned int height);

Pixel pixelAt(const Ondrel::Image& image, unsigned int x, unsigned int y);
void setPixel(Ondrel::Image& image, unsigned int x, unsigned int y, const Pixel& pixel);

// True if size and all width * height pixels agree; metadata and block sizes are not compared.
bool samePixels(const Ondrel::Image& a, const Ondrel::Image& b);

} // namespace OndrelTest

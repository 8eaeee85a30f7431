#include <ondrel/pixel/pixelfetch.h>

#include "tests/support/testimages.h"

#include <gtest/gtest.h>

#include <array>

namespace
{

using OndrelTest::Pixel;
using Floats = std::array<float, 4>;

Ondrel::Image twoByTwo()
{
    Ondrel::Image image(2, 2);
    OndrelTest::setPixel(image, 0, 0, {65535, 1, 2, 65535});
    OndrelTest::setPixel(image, 1, 0, {30000, 20000, 10000, 32768});
    OndrelTest::setPixel(image, 0, 1, {7, 8, 9, 0});
    OndrelTest::setPixel(image, 1, 1, {11, 12, 13, 14});
    return image;
}

Floats premultiplied(const Pixel& p)
{
    const float a = float(p[3]) / 65535.0f;
    return {float(p[0]) / 65535.0f * a, float(p[1]) / 65535.0f * a, float(p[2]) / 65535.0f * a, a};
}

template <typename Fetch>
Floats floats(Fetch fetch, const Ondrel::Image& image, int x, int y)
{
    Floats rgba = {-1, -1, -1, -1};
    fetch(image, x, y, rgba.data());
    return rgba;
}

template <typename Fetch>
Pixel samples(Fetch fetch, const Ondrel::Image& image, int x, int y)
{
    Pixel rgba = {9999, 9999, 9999, 9999};
    fetch(image, x, y, rgba.data());
    return rgba;
}

TEST(PixelFetch, FloatsArePremultipliedByTrueDivision)
{
    const Ondrel::Image image = twoByTwo();
    EXPECT_EQ(floats(GetPixelAsFloatRGBAPremultiplied, image, 1, 0), premultiplied({30000, 20000, 10000, 32768}));
    EXPECT_EQ(floats(GetPixelAsFloatRGBAPremultiplied, image, 0, 1), (Floats{0, 0, 0, 0}));
    EXPECT_EQ(floats(GetPixelAsFloatRGBAPremultiplied, image, 0, 0)[0], 1.0f);
}

TEST(PixelFetch, FloatsOutsideRepeatTheEdgePixel)
{
    const Ondrel::Image image = twoByTwo();
    const auto at = [&](int x, int y) { return floats(GetPixelAsFloatRGBAPremultiplied, image, x, y); };
    EXPECT_EQ(at(-1, -1), at(0, 0));
    EXPECT_EQ(at(-2147483647 - 1, 0), at(0, 0));
    EXPECT_EQ(at(2, 0), at(1, 0));
    EXPECT_EQ(at(2147483647, 2147483647), at(1, 1));
    EXPECT_EQ(at(0, 5), at(0, 1));
}

TEST(PixelFetch, BlankFloatsAreZeroOutside)
{
    const Ondrel::Image image = twoByTwo();
    const auto at = [&](int x, int y) { return floats(GetPixelAsFloatRGBABlankPremultiplied, image, x, y); };
    const Floats zero = {0, 0, 0, 0};
    EXPECT_EQ(at(1, 0), premultiplied({30000, 20000, 10000, 32768}));
    EXPECT_EQ(at(-1, 0), zero);
    EXPECT_EQ(at(2, 0), zero);
    EXPECT_EQ(at(0, -1), zero);
    EXPECT_EQ(at(0, 2), zero);
}

TEST(PixelFetch, SamplesClampBlankAndRepeat)
{
    const Ondrel::Image image = twoByTwo();
    const Pixel topLeft = {65535, 1, 2, 65535}, bottomRight = {11, 12, 13, 14}, blank = {0, 0, 0, 0};
    EXPECT_EQ(samples(GetPixelRGBAClamp, image, -9, -9), topLeft);
    EXPECT_EQ(samples(GetPixelRGBAClamp, image, 9, 9), bottomRight);
    EXPECT_EQ(samples(GetPixelRGBABlank, image, 1, 1), bottomRight);
    EXPECT_EQ(samples(GetPixelRGBABlank, image, -1, 0), blank);
    EXPECT_EQ(samples(GetPixelRGBABlank, image, 2, 0), blank);
    EXPECT_EQ(samples(GetPixelRGBARepeat, image, 2, 2), topLeft);
    EXPECT_EQ(samples(GetPixelRGBARepeat, image, -1, -1), bottomRight);
    EXPECT_EQ(samples(GetPixelRGBARepeat, image, -2001, 1003), bottomRight);
}

} // namespace

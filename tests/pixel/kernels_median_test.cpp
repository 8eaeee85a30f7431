// a3 to j3 against the reference. Integers all the way: the bound is 0.

#include "opencldevice.h"

#include "../reference/kernels_reference.h"

#include <algorithm>

using namespace OndrelTest;

namespace
{

using KernelsMedian = OnDevice;

constexpr int kRadii = 10;

std::string kernelOf(int radius)
{
    return std::string(1, char('a' + radius - 1)) + "3";
}

Samples onDevice(int radius, const Size& size, const Samples& in)
{
    return runKernel(kernelOf(radius).c_str(), size, in, Samples(size.samples(), 4711));
}

Samples reference(int radius, const Size& size, const Samples& in)
{
    Samples out(size.samples());
    OndrelReference::median(radius, size.width, size.height, in.data(), out.data());
    return out;
}

void compare(int radius, const Size& size, const Samples& in)
{
    ASSERT_TRUE(within(0, reference(radius, size, in), onDevice(radius, size, in)))
        << "radius " << radius << ", " << size;
}

// A pixel's work grows with the fourth power of the radius, so that large pictures are for small radii.
std::vector<Size> sizesFor(int radius)
{
    std::vector<Size> sizes = {{1, 1}, {1, 9}, {13, 1}, {5, 6}};
    if (radius <= 6)
        sizes.push_back({23, 17});
    if (radius <= 3)
        sizes.push_back({70, 50});
    return sizes;
}

} // namespace

TEST_F(KernelsMedian, EveryRadiusEqualsTheReference)
{
    for (int radius = 1; radius <= kRadii; ++radius)
        for (const Size& size : sizesFor(radius))
            for (const Samples& in : pictures(size, unsigned(radius)))
                compare(radius, size, in);
}

TEST_F(KernelsMedian, WindowsWithoutWhiteGiveTheMedianInAllFourChannels)
{
    const Size size{15, 11};
    Samples in = randomSamples(size.samples(), 3);
    for (std::uint16_t& sample : in)
        sample = std::min<std::uint16_t>(sample, 65534);
    const Samples out = onDevice(1, size, in);
    for (std::size_t y = 1; y + 1 < size.height; ++y)
        for (std::size_t x = 1; x + 1 < size.width; ++x)
            for (std::size_t c = 0; c < 4; ++c) {
                Samples window;
                for (std::size_t j = y - 1; j <= y + 1; ++j)
                    for (std::size_t i = x - 1; i <= x + 1; ++i)
                        window.push_back(in[(j * size.width + i) * 4 + c]);
                std::sort(window.begin(), window.end());
                ASSERT_EQ(out[(y * size.width + x) * 4 + c], window[4]);
            }
}

// The search for a minimum finds none where all that is left is white and takes the first element, which is the
// smallest of all by then.
TEST_F(KernelsMedian, AsManyValuesBelowWhiteAsComeBeforeTheMiddleGiveTheSmallest)
{
    for (int radius = 1; radius <= kRadii; ++radius) {
        const unsigned int side = unsigned(2 * radius + 1);
        const Size size{side, side};
        const std::size_t middle = (side * side - 1) / 2, center = middle * 4;
        for (const std::size_t below : {middle - 1, middle, middle + 1}) {
            Samples in(size.samples(), 65535);
            for (std::size_t i = 0; i < below; ++i)
                std::fill_n(in.begin() + std::ptrdiff_t((size.samples() / 4 - 1 - i) * 4), 4, std::uint16_t(1000 + i));
            const std::uint16_t expected = below < middle    ? 65535
                                           : below == middle ? 1000
                                                             : std::uint16_t(1000 + middle);
            const Samples out = onDevice(radius, size, in);
            EXPECT_EQ(Samples(out.begin() + std::ptrdiff_t(center), out.begin() + std::ptrdiff_t(center) + 4),
                      Samples(4, expected))
                << "radius " << radius << ", " << below << " values";
        }
    }
}

// Many whites, so that the defect occurs all over the picture and in channels by themselves.
TEST_F(KernelsMedian, MostlyWhitePicturesEqualTheReference)
{
    const Size size{31, 19};
    for (int radius = 1; radius <= 3; ++radius) {
        std::mt19937 random(unsigned(radius) + 50);
        Samples in(size.samples(), 65535);
        for (std::uint16_t& sample : in)
            if (random() % 2)
                sample = std::uint16_t(random() % 60000);
        compare(radius, size, in);
    }
}

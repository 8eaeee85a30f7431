// a4 to t4 against the reference. Integers all the way: the bound is 0.

#include "opencldevice.h"

#include "../reference/kernels_reference.h"

using namespace OndrelTest;

namespace
{

using KernelsMorphology = OnDevice;
using Mask = std::vector<unsigned char>;

constexpr int kRadii = 10;

std::string kernelOf(int radius, bool dilate)
{
    return std::string(1, char((dilate ? 'k' : 'a') + radius - 1)) + "4";
}

Samples onDevice(int radius, bool dilate, const Size& size, const Samples& in, const Mask& mask)
{
    DeviceWork work;
    Output out(work, Samples(size.samples(), 4711));
    const cl::Buffer input = work.upload(in), maskBuffer = work.upload(mask);
    work.run(work.kernel(kernelOf(radius, dilate).c_str(), cl_uint(size.width), cl_uint(size.height), input,
                         out.buffer(), maskBuffer),
             std::size_t(size.width) * size.height);
    return out.take();
}

Samples reference(int radius, bool dilate, const Size& size, const Samples& in, const Mask& mask)
{
    Samples out(size.samples());
    const auto function = dilate ? OndrelReference::dilate : OndrelReference::erode;
    function(radius, size.width, size.height, in.data(), out.data(), mask.data());
    return out;
}

// All, none, the middle alone, one corner alone, a random half.
std::vector<Mask> masksFor(int radius)
{
    const std::size_t side = std::size_t(2 * radius + 1), count = side * side;
    std::vector<Mask> masks(5, Mask(count, 0));
    masks[0].assign(count, 1);
    masks[2][count / 2] = 1;
    masks[3][side - 1] = 1;
    std::mt19937 random(unsigned(radius) + 20);
    for (unsigned char& value : masks[4])
        value = (random() >> 16) & 1;
    return masks;
}

} // namespace

TEST_F(KernelsMorphology, EveryRadiusAndMaskEqualsTheReference)
{
    for (int radius = 1; radius <= kRadii; ++radius)
        for (const bool dilate : {false, true})
            for (const Size& size : kSizes)
                for (const Mask& mask : masksFor(radius)) {
                    const Samples in = randomSamples(size.samples(), unsigned(radius) + size.width);
                    ASSERT_TRUE(
                        within(0, reference(radius, dilate, size, in, mask), onDevice(radius, dilate, size, in, mask)))
                        << kernelOf(radius, dilate) << ", " << size;
                }
}

TEST_F(KernelsMorphology, AnEmptyMaskGivesWhiteByErosionAndBlackByDilation)
{
    const Size size{5, 4};
    const Samples in = randomSamples(size.samples(), 1);
    EXPECT_EQ(onDevice(2, false, size, in, Mask(25, 0)), Samples(size.samples(), 65535));
    EXPECT_EQ(onDevice(2, true, size, in, Mask(25, 0)), Samples(size.samples(), 0));
}

// One mark of the mask moves the picture: the pixel to the upper right of each.
TEST_F(KernelsMorphology, MasksAreRowByRowFromTheTopLeft)
{
    const Size size{9, 7};
    const Samples in = randomSamples(size.samples(), 2);
    Mask mask(9, 0);
    mask[2] = 1;
    for (const bool dilate : {false, true}) {
        const Samples out = onDevice(1, dilate, size, in, mask);
        for (std::size_t y = 0; y < size.height; ++y)
            for (std::size_t x = 0; x < size.width; ++x) {
                const std::size_t fromX = std::min<std::size_t>(x + 1, size.width - 1), fromY = y ? y - 1 : 0;
                for (std::size_t c = 0; c < 4; ++c)
                    ASSERT_EQ(out[(y * size.width + x) * 4 + c], in[(fromY * size.width + fromX) * 4 + c]);
            }
    }
}

// a5 to c5, a6, f6 and g6 against the reference. What copies pixels has the bound 0; f6 see scalebound.h.

#include "opencldevice.h"
#include "scalebound.h"

#include "../reference/kernels_reference.h"

using namespace OndrelTest;

namespace
{

using KernelsTurn = OnDevice;
using KernelsScale = OnDevice;

using Turn = void (*)(unsigned int, unsigned int, const OndrelReference::Sample*, OndrelReference::Sample*);

struct Resampling {
    Size in, out;
};

const std::vector<Resampling> kResamplings = {
    {{1, 1}, {1, 1}},     {{1, 1}, {5, 3}},     {{2, 1}, {7, 4}},     {{3, 5}, {3, 5}},     {{5, 4}, {9, 1}},
    {{33, 29}, {70, 50}}, {{70, 50}, {69, 50}}, {{70, 50}, {70, 49}}, {{66, 48}, {44, 32}}, {{70, 50}, {35, 25}},
    {{69, 51}, {23, 17}}, {{70, 50}, {16, 13}}, {{64, 48}, {16, 12}}, {{70, 50}, {7, 50}},  {{70, 50}, {1, 1}},
    {{50, 70}, {3, 2}},   {{70, 1}, {140, 2}},  {{97, 2}, {1, 1}},    {{200, 3}, {1, 2}},   {{2, 250}, {5, 1}}};

Samples onDevice(const char* name, const Resampling& r, const Samples& in)
{
    DeviceWork work;
    Output out(work, Samples(r.out.samples(), 4711));
    const cl::Buffer input = work.upload(in);
    work.run(work.kernel(name, input, cl_uint(r.in.width), cl_uint(r.in.height), out.buffer(), cl_uint(r.out.width),
                         cl_uint(r.out.height)),
             std::size_t(r.out.width) * r.out.height);
    return out.take();
}

Samples opaque(Samples samples)
{
    for (std::size_t i = 3; i < samples.size(); i += 4)
        samples[i] = 65535;
    return samples;
}

} // namespace

TEST_F(KernelsTurn, EqualTheReference)
{
    const std::pair<const char*, Turn> turns[] = {{"a5", OndrelReference::halfTurn},
                                                  {"b5", OndrelReference::quarterTurnCounterClockwise},
                                                  {"c5", OndrelReference::quarterTurnClockwise}};
    for (const auto& [name, turn] : turns)
        for (const Size& size : kSizes)
            for (const Samples& in : pictures(size, size.width)) {
                Samples expected(size.samples());
                turn(size.width, size.height, in.data(), expected.data());
                ASSERT_TRUE(within(0, expected, runKernel(name, size, in, Samples(size.samples(), 4711))))
                    << name << ", " << size;
            }
}

// Two pixels beside each other: clockwise the left one comes to the top.
TEST_F(KernelsTurn, DirectionsAreThoseOfTheNames)
{
    const Samples in = {1, 2, 3, 4, 5, 6, 7, 8};
    const Samples swapped = {5, 6, 7, 8, 1, 2, 3, 4}, before(8, 0);
    EXPECT_EQ(runKernel("a5", {2, 1}, in, before), swapped);
    EXPECT_EQ(runKernel("b5", {2, 1}, in, before), swapped);
    EXPECT_EQ(runKernel("c5", {2, 1}, in, before), in);
    EXPECT_EQ(runKernel("b5", {1, 2}, in, before), in);
    EXPECT_EQ(runKernel("c5", {1, 2}, in, before), swapped);
}

TEST_F(KernelsScale, NearestEqualsTheReference)
{
    for (const Resampling& r : kResamplings)
        for (const Samples& in : pictures(r.in, r.out.width)) {
            Samples expected(r.out.samples());
            OndrelReference::scaleNearest(in.data(), r.in.width, r.in.height, expected.data(), r.out.width,
                                          r.out.height);
            ASSERT_TRUE(within(0, expected, onDevice("a6", r, in))) << r.in << " to " << r.out;
        }
}

TEST_F(KernelsScale, NearestCopiesRowsOfTheSameWidth)
{
    const Resampling r{{33, 29}, {33, 58}};
    const Samples in = randomSamples(r.in.samples(), 1), out = onDevice("a6", r, in);
    for (std::size_t y = 0; y < r.out.height; ++y) {
        const std::size_t from = std::min<std::size_t>((y + 1) / 2, r.in.height - 1);
        for (std::size_t i = 0; i < 33 * 4; ++i)
            ASSERT_EQ(out[y * 33 * 4 + i], in[from * 33 * 4 + i]) << "row " << y;
    }
}

TEST_F(KernelsScale, BilinearIsWithinItsBoundOfTheReference)
{
    for (const Resampling& r : kResamplings)
        for (const bool withAlpha : {true, false})
            for (const Samples& picture : pictures(r.in, r.out.width)) {
                const Samples in = withAlpha ? picture : opaque(picture);
                Samples expected(r.out.samples());
                OndrelReference::scaleBilinear(in.data(), r.in.width, r.in.height, expected.data(), r.out.width,
                                               r.out.height);
                ASSERT_TRUE(sameScale(r.in, r.out, expected, onDevice("f6", r, in)));
            }
}

TEST_F(KernelsScale, BilinearWithoutAlphaIsZeroInAllSamples)
{
    Samples in = randomSamples(Size{20, 10}.samples(), 3);
    for (std::size_t i = 3; i < in.size(); i += 4)
        in[i] = 0;
    for (const Size& out : {Size{20, 10}, Size{31, 17}, Size{3, 2}})
        EXPECT_EQ(onDevice("f6", {{20, 10}, out}, in), Samples(out.samples(), 0)) << out;
}

TEST_F(KernelsScale, BilinearLetsTransparentPixelsGiveNoColour)
{
    const Samples in = {65535, 0, 0, 0, 0, 30000, 0, 65535};
    const Samples out = onDevice("f6", {{2, 1}, {5, 1}}, in);
    for (std::size_t pixel = 0; pixel < 5; ++pixel) {
        EXPECT_EQ(out[pixel * 4], 0);
        EXPECT_NEAR(out[pixel * 4 + 1], out[pixel * 4 + 3] ? 30000 : 0, 1);
    }
}

// The name is kept for a bicubic kernel.
TEST_F(KernelsScale, TheThirdKernelWritesNothing)
{
    const Resampling r{{5, 4}, {9, 7}};
    EXPECT_EQ(onDevice("g6", r, randomSamples(r.in.samples(), 1)), Samples(r.out.samples(), 4711));
}

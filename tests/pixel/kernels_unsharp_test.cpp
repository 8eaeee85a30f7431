// a7 against the reference. One rounding of a product and integers: the bound is 0.

#include "opencldevice.h"

#include "../reference/kernels_reference.h"

using namespace OndrelTest;

namespace
{

using KernelsUnsharp = OnDevice;

constexpr unsigned int kSlack = 64;

// a7 tests no range. RunIncrementalKernel launches up to 32 items more than pixels, so its buffers are longer.
Samples byIncrementalLaunch(float amount, int threshold, const Samples& in, const Samples& blurred)
{
    DeviceWork work;
    const auto longer = [](Samples samples) {
        samples.resize(samples.size() + kSlack * 4);
        return samples;
    };
    const cl::Buffer input = work.upload(longer(in)), blurredInput = work.upload(longer(blurred));
    const cl::Buffer out = work.upload(longer(in));
    work.run(work.kernel("a7", amount, cl_int(threshold), input, blurredInput, out), in.size() / 4);
    return work.download(out, in.size());
}

// With one item for each pixel and nothing more.
Samples byExactLaunch(float amount, int threshold, const Samples& in, const Samples& blurred)
{
    DeviceWork work;
    Output out(work, Samples(in.size(), 4711));
    const cl::Buffer input = work.upload(in), blurredInput = work.upload(blurred);
    const cl::Kernel kernel = work.kernel("a7", amount, cl_int(threshold), input, blurredInput, out.buffer());
    EXPECT_EQ(work.queue().enqueueNDRangeKernel(kernel, cl::NullRange, cl::NDRange(in.size() / 4), cl::NDRange(1)),
              CL_SUCCESS);
    return out.take();
}

Samples reference(float amount, int threshold, const Samples& in, const Samples& blurred)
{
    Samples out(in.size());
    OndrelReference::unsharpMask(amount, threshold, unsigned(in.size() / 4), in.data(), blurred.data(), out.data());
    return out;
}

} // namespace

TEST_F(KernelsUnsharp, EveryAmountAndThresholdEqualsTheReference)
{
    unsigned int seed = 1;
    for (const float amount : {0.0f, 0.3f, 1.0f, 2.71f, -1.5f, 1000.0f})
        for (const int threshold : {0, 1, 700, 65535, 1000000})
            for (const Size& size : kSizes)
                for (const Samples& in : pictures(size, seed++)) {
                    const Samples blurred = randomSamples(size.samples(), seed + 500);
                    const Samples expected = reference(amount, threshold, in, blurred);
                    ASSERT_TRUE(within(0, expected, byIncrementalLaunch(amount, threshold, in, blurred)))
                        << size << ", amount " << amount << ", threshold " << threshold;
                    ASSERT_TRUE(within(0, expected, byExactLaunch(amount, threshold, in, blurred)))
                        << size << ", amount " << amount << ", threshold " << threshold;
                }
}

TEST_F(KernelsUnsharp, AThresholdAboveEveryDifferenceChangesNothing)
{
    const Samples in = randomSamples(33 * 29 * 4, 4), blurred = randomSamples(33 * 29 * 4, 5);
    EXPECT_TRUE(within(0, in, byExactLaunch(1.0f, 65535, in, blurred)));
}

// 7 * 0.9 is 6.3, -7 * 0.9 is -6.3; both lose their fraction before a threshold of 4 is taken off.
TEST_F(KernelsUnsharp, DifferencesAreTruncatedTowardZeroBeforeTheThreshold)
{
    const Samples in = {1007, 993, 1000, 5, 1000, 1000, 1000, 9};
    const Samples blurred = {1000, 1000, 1000, 800, 996, 1004, 1001, 900};
    EXPECT_EQ(byExactLaunch(0.9f, 4, in, blurred), Samples({1009, 991, 1000, 5, 1000, 1000, 1000, 9}));
    EXPECT_EQ(byExactLaunch(0.9f, 0, in, blurred), Samples({1013, 987, 1000, 5, 1003, 997, 1000, 9}));
}

TEST_F(KernelsUnsharp, ResultsAreLimitedAndAlphaIsCopied)
{
    const Samples in = {60000, 3000, 30000, 77}, blurred = {40000, 20000, 30000, 30000};
    EXPECT_EQ(byExactLaunch(1.0f, 0, in, blurred), Samples({65535, 0, 30000, 77}));
}

// a2 against the reference.

#include "opencldevice.h"

#include "../reference/kernels_reference.h"

using namespace OndrelTest;
using OndrelReference::Levels;

namespace
{

using KernelsLevels = OnDevice;

Samples onDevice(const Levels& l, const Samples& in)
{
    DeviceWork work;
    Output out(work, Samples(in.size(), 4711));
    const cl::Buffer input = work.upload(in);
    const cl_uint pixels = cl_uint(in.size() / 4);
    work.run(work.kernel("a2", l.offset, l.channelOffset[0], l.channelOffset[1], l.channelOffset[2], l.gain,
                         l.channelGain[0], l.channelGain[1], l.channelGain[2], l.black[0], l.black[1], l.black[2],
                         l.inputGain[0], l.inputGain[1], l.inputGain[2], l.gamma, l.channelGamma[0], l.channelGamma[1],
                         l.channelGamma[2], pixels, input, out.buffer()),
             pixels);
    return out.take();
}

// powr is right to 16 units in the last place, and the division by the range and the other steps to a few more. Such an
// error is multiplied by the second gamma, at most 3 here, and by what was cut at the end, a factor of at most 4:
// (3 * 20 + 20) * 4 * 2^-23 * 65536 = 2.5. So truncated values lie at most 3 apart.
constexpr int kBound = 3;

void compare(const Levels& levels, const char* name)
{
    unsigned int seed = 3;
    for (const Size& size : kSizes)
        for (const Samples& in : pictures(size, seed++)) {
            Samples expected(in.size());
            OndrelReference::levels(levels, unsigned(in.size() / 4), in.data(), expected.data());
            const Samples actual = onDevice(levels, in);
            ASSERT_TRUE(within(kBound, expected, actual)) << name << ", " << size;
            for (std::size_t i = 3; i < in.size(); i += 4)
                ASSERT_EQ(actual[i], in[i]) << "alpha of pixel " << i / 4;
        }
}

} // namespace

TEST_F(KernelsLevels, EachParameterAloneEqualsTheReference)
{
    Levels l;
    compare(l, "identity");
    l = Levels(), l.offset = 0.2f;
    compare(l, "offset");
    l = Levels(), l.gain = 0.6f;
    compare(l, "gain");
    l = Levels(), l.gamma = 2.2f;
    compare(l, "gamma");
    for (int c = 0; c < 3; ++c) {
        l = Levels(), l.channelOffset[c] = 0.3f;
        compare(l, "channel offset");
        l = Levels(), l.channelGain[c] = 1.7f;
        compare(l, "channel gain");
        l = Levels(), l.black[c] = 0.1f;
        compare(l, "black");
        l = Levels(), l.inputGain[c] = 0.4f;
        compare(l, "input gain");
        l = Levels(), l.channelGamma[c] = 0.45f;
        compare(l, "channel gamma");
    }
}

// Values for which every exchange of two steps or two parameters changes the result by hundreds.
TEST_F(KernelsLevels, AllParametersTogetherEqualTheReference)
{
    Levels l;
    l.offset = 0.05f;
    l.gain = 0.8f;
    l.gamma = 1.3f;
    const float offsets[] = {0.02f, 0.07f, 0.12f}, gains[] = {0.7f, 0.5f, 0.9f}, blacks[] = {0.03f, 0.11f, 0.2f};
    const float inputGains[] = {1.2f, 0.9f, 0.6f}, gammas[] = {0.6f, 1.5f, 2.4f};
    for (int c = 0; c < 3; ++c) {
        l.channelOffset[c] = offsets[c];
        l.channelGain[c] = gains[c];
        l.black[c] = blacks[c];
        l.inputGain[c] = inputGains[c];
        l.channelGamma[c] = gammas[c];
    }
    compare(l, "all");
}

TEST_F(KernelsLevels, BlackBelowTheValueIsZeroAndWhiteIsLimited)
{
    Levels l;
    l.black[0] = 0.5f;
    l.channelGain[1] = 3;
    const Samples in = {20000, 40000, 30000, 12345, 65535, 65535, 0, 0};
    const Samples out = onDevice(l, in);
    EXPECT_EQ(out[0], 0);
    EXPECT_EQ(out[1], 65535);
    EXPECT_NEAR(out[2], 30000, 1);
    EXPECT_EQ(out[3], 12345);
    EXPECT_NEAR(out[4], 32767, 1);
    EXPECT_EQ(out[7], 0);
}

// What is negative has no power, and what is no number is black, as is what ends below 0.
TEST_F(KernelsLevels, ColoursBelowZeroAndWithoutAPowerAreBlack)
{
    const Samples in = randomSamples(33 * 29 * 4, 8);
    for (const bool early : {true, false}) {
        Levels l;
        (early ? l.channelOffset[0] : l.offset) = -2;
        const Samples out = onDevice(l, in);
        for (std::size_t i = 0; i < in.size(); ++i) {
            if (i % 4 == 3) {
                ASSERT_EQ(out[i], in[i]);
            } else if (i % 4 == 0 || !early) {
                ASSERT_EQ(out[i], 0);
            } else {
                ASSERT_NEAR(out[i], in[i], 1);
            }
        }
    }
}

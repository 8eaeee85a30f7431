// b1 to g1 against the reference.

#include "opencldevice.h"

#include "../reference/gaussianblur_reference.h"
#include "../reference/kernels_reference.h"

#include <algorithm>

using namespace OndrelTest;
using OndrelReference::BlurDirection;
using OndrelReference::BlurEdge;

namespace
{

using KernelsBlur = OnDevice;

struct Pass {
    const char* kernel;
    BlurDirection direction;
    BlurEdge edge;
};

constexpr Pass kPasses[] = {{"b1", BlurDirection::Row, BlurEdge::Clamp}, {"c1", BlurDirection::Column, BlurEdge::Clamp},
                            {"d1", BlurDirection::Row, BlurEdge::Zero},  {"e1", BlurDirection::Column, BlurEdge::Zero},
                            {"f1", BlurDirection::Row, BlurEdge::Wrap},  {"g1", BlurDirection::Column, BlurEdge::Wrap}};

// A wrapping pass adds the length of a line once; longer filters are not for it.
bool allows(const Pass& pass, const Size& size, std::size_t taps)
{
    const unsigned int length = pass.direction == BlurDirection::Row ? size.width : size.height;
    return pass.edge != BlurEdge::Wrap || taps / 2 <= length;
}

Samples onDevice(const Pass& pass, const Size& size, const Samples& in, const std::vector<float>& weights)
{
    const Samples before = randomSamples(size.samples(), 77);
    DeviceWork work;
    Output out(work, before);
    const cl::Buffer input = work.upload(in), weightBuffer = work.upload(weights);
    work.run(work.kernel(pass.kernel, cl_uint(size.width), cl_uint(size.height), weightBuffer, cl_int(weights.size()),
                         input, out.buffer()),
             std::size_t(size.width) * size.height);
    return out.take();
}

Samples reference(const Pass& pass, const Size& size, const Samples& in, const std::vector<float>& weights)
{
    Samples out(size.samples());
    OndrelReference::blurPass(pass.direction, pass.edge, size.width, size.height, weights.data(), int(weights.size()),
                              in.data(), out.data());
    return out;
}

void compare(const std::vector<float>& weights, int bound)
{
    unsigned int seed = unsigned(weights.size());
    for (const Size& size : kSizes)
        for (const Samples& in : pictures(size, seed++))
            for (const Pass& pass : kPasses) {
                if (!allows(pass, size, weights.size()))
                    continue;
                ASSERT_TRUE(within(bound, reference(pass, size, in, weights), onDevice(pass, size, in, weights)))
                    << pass.kernel << ", " << size << ", " << weights.size() << " taps";
            }
}

// Random multiples of 1/64 with a sum of their magnitudes of at most 4: every product and every sum with 16-bit samples
// has at most 24 significant bits, so that it is exact in any order and with any contraction.
std::vector<float> exactWeights(std::size_t taps, bool negative, unsigned int seed)
{
    std::mt19937 random(seed);
    std::vector<int> parts(taps, 0);
    for (int i = 0; i < 256; ++i)
        ++parts[random() % taps];
    std::vector<float> weights;
    for (const int part : parts)
        weights.push_back(float(negative && random() % 2 ? -part : part) / 64.0f);
    return weights;
}

std::vector<float> gaussian(float radius)
{
    const std::vector<double> weights = OndrelReference::gaussianWeights(radius + 1);
    return std::vector<float>(weights.begin(), weights.end());
}

} // namespace

TEST_F(KernelsBlur, ExactSumsEqualTheReference)
{
    for (const std::size_t taps : {1u, 2u, 3u, 5u, 8u, 21u, 63u, 141u})
        for (const bool negative : {false, true})
            compare(exactWeights(taps, negative, unsigned(taps)), 0);
}

// In other sums each step may round differently, since the device may contract it. A sum of n products below 65536 is
// off by at most n * 2^-24 * 65536, here 101 / 256 < 1, so that truncated values differ by at most 1.
TEST_F(KernelsBlur, GaussiansDifferFromTheReferenceByNoMoreThanOne)
{
    for (const float radius : {0.0f, 0.5f, 1.0f, 3.0f, 10.0f, 49.0f})
        compare(gaussian(radius), 1);
}

TEST_F(KernelsBlur, OneWeightOfOneCopies)
{
    const Size size{33, 29};
    const Samples in = randomSamples(size.samples(), 5);
    for (const Pass& pass : kPasses)
        EXPECT_TRUE(within(0, in, onDevice(pass, size, in, {0, 1, 0}))) << pass.kernel;
}

TEST_F(KernelsBlur, ResultsAreTruncatedAndLimitedAtBothEnds)
{
    const Size size{5, 4};
    for (const Pass& pass : kPasses) {
        EXPECT_EQ(onDevice(pass, size, Samples(size.samples(), 3), {0.5f}), Samples(size.samples(), 1)) << pass.kernel;
        EXPECT_EQ(onDevice(pass, size, Samples(size.samples(), 65535), {1.5f}), Samples(size.samples(), 65535))
            << pass.kernel;
        EXPECT_EQ(onDevice(pass, size, Samples(size.samples(), 65535), {-1.5f}), Samples(size.samples(), 0))
            << pass.kernel;
    }
}

// Outside counts as zero, and the weights are left as they are.
TEST_F(KernelsBlur, CornersLoseColourAndAlphaWhereOutsideIsZero)
{
    const Size size{6, 5};
    const Samples in(size.samples(), 40000);
    const std::vector<float> weights = {0.25f, 0.5f, 0.25f};
    const Samples rows = onDevice(kPasses[2], size, in, weights);
    EXPECT_EQ(Samples(rows.begin(), rows.begin() + 8),
              Samples({30000, 30000, 30000, 30000, 40000, 40000, 40000, 40000}));
    const Samples both = onDevice(kPasses[3], size, rows, weights);
    EXPECT_EQ(Samples(both.begin(), both.begin() + 4), Samples(4, 22500));
}

// In every row, not in the first alone.
TEST_F(KernelsBlur, RowsWrapInThemselves)
{
    const Size size{7, 3};
    Samples in(size.samples());
    for (std::size_t i = 0; i < in.size(); ++i)
        in[i] = std::uint16_t(i / 4 + 1);
    const Samples shifted = onDevice(kPasses[4], size, in, {1, 0, 0});
    for (std::size_t pixel = 0; pixel < in.size() / 4; ++pixel)
        EXPECT_EQ(shifted[pixel * 4], pixel % 7 ? pixel : pixel + 7) << "pixel " << pixel;
}

// Slices of 16384 items and a rest.
TEST_F(KernelsBlur, PicturesOfSeveralSlicesEqualTheReference)
{
    const Size size{211, 157};
    const Samples in = randomSamples(size.samples(), 9);
    const std::vector<float> weights = exactWeights(21, true, 4);
    for (const Pass& pass : kPasses)
        EXPECT_TRUE(within(0, reference(pass, size, in, weights), onDevice(pass, size, in, weights))) << pass.kernel;
}

// Blurring on a real device against the processor.

#include "opencldevice.h"

#include "../support/testimages.h"

#include <ondrel/pixel/gaussianblur.h>

#include <algorithm>

using namespace OndrelTest;
using Ondrel::Image;
using Ondrel::RunStatus;

namespace
{

using GaussianBlurOpenCL = OnDevice;

constexpr GaussianEdge kEdges[] = {GaussianEdge::Clamp, GaussianEdge::Blank, GaussianEdge::Repeat};

// Each pass of the device truncates a sum S that the processor rounds: a difference of -1 or 0 while the error e of the
// sum in single precision is below 0.5. It has n products below 65536 with weights that are themselves off by up to n
// units: 2 * n * 2^-24 * 65536 = n / 128. The second pass adds the difference of the first (its weights add up to no
// more than 1.02) and one of its own, -1.5 - e: above -3. So the difference is -2, -1 or 0 for up to 51 taps.
constexpr int kBound = 2;
constexpr int kMostTaps = 51;

testing::AssertionResult agrees(const Image& processor, const Image& device)
{
    const Samples expected = samplesOf(processor), actual = samplesOf(device);
    if (processor.width != device.width || processor.height != device.height)
        return testing::AssertionFailure() << device.width << " x " << device.height;
    for (std::size_t i = 0; i < expected.size(); ++i)
        if (actual[i] > expected[i])
            return testing::AssertionFailure() << "pixel " << i / 4 << " exceeds " << expected[i] << ": " << actual[i];
    return within(kBound, expected, actual);
}

void compare(const Image& source, float radiusX, float radiusY, GaussianEdge edge)
{
    const QSize taps = GaussianSampleSize(radiusX, radiusY);
    ASSERT_LE(std::max(taps.width(), taps.height()), kMostTaps);
    const Image expected = GaussianBlur_CPU(source, radiusX, radiusY, edge, RunStatus());
    const Image result = GaussianBlur(source, radiusX, radiusY, edge, RunStatus());
    ASSERT_TRUE(agrees(expected, result))
        << source.width << " x " << source.height << ", radii " << radiusX << ", " << radiusY << ", edge " << int(edge);
    ASSERT_EQ(result.colorProfile, expected.colorProfile);
    ASSERT_EQ(result.rawToneCurve, expected.rawToneCurve);
}

} // namespace

// A wrapping device adds one width alone, so that radii stay below the size.
TEST_F(GaussianBlurOpenCL, EqualsTheProcessorWithinTheBoundForAllEdges)
{
    const std::pair<float, float> radii[] = {{0.0f, 3.0f}, {3.0f, 0.0f}, {0.25f, 0.25f},
                                             {1.0f, 2.5f}, {6.0f, 1.0f}, {23.0f, 17.0f}};
    unsigned int seed = 1;
    for (const Size& size : {Size{1, 1}, Size{2, 9}, Size{13, 1}, Size{33, 29}, Size{70, 50}})
        for (const auto& [radiusX, radiusY] : radii)
            for (const GaussianEdge edge : kEdges) {
                if (edge == GaussianEdge::Repeat && (radiusX >= float(size.width) || radiusY >= float(size.height)))
                    continue;
                compare(randomImage(size.width, size.height, seed++), radiusX, radiusY, edge);
            }
}

TEST_F(GaussianBlurOpenCL, PicturesOfSeveralSlicesEqualTheProcessor)
{
    for (const GaussianEdge edge : kEdges)
        compare(randomImage(211, 157, 3), 4, 7, edge);
}

TEST_F(GaussianBlurOpenCL, ReallyRunsOnTheDevice)
{
    // A sum of 0.5 and more is truncated by the device and rounded by the processor, so a random picture shows who did
    // it.
    const Image source = randomImage(70, 50, 1);
    const Image processor = GaussianBlur_CPU(source, 3, 2, GaussianEdge::Clamp, RunStatus());
    EXPECT_FALSE(samePixels(GaussianBlur(source, 3, 2, GaussianEdge::Clamp, RunStatus()), processor));
}

TEST_F(GaussianBlurOpenCL, DirectionsThatAreLeftOutEqualTheProcessor)
{
    const Image source = withMetadata(33, 29);
    for (const GaussianEdge edge : kEdges) {
        compare(source, -1, 4, edge);
        compare(source, 4, -3, edge);
        compare(source, std::numeric_limits<float>::quiet_NaN(), 4, edge);
        compare(source, 4, std::numeric_limits<float>::quiet_NaN(), edge);
    }
}

TEST_F(GaussianBlurOpenCL, NoPassAtAllIsACopy)
{
    const Image source = withMetadata(33, 29);
    const std::pair<float, float> radii[] = {{0.0f, 0.0f}, {-1.0f, -1.0f}, {-7.0f, -1.0f}};
    for (const auto& [radiusX, radiusY] : radii) {
        const Image result = GaussianBlur(source, radiusX, radiusY, GaussianEdge::Clamp, RunStatus());
        EXPECT_TRUE(samePixels(result, source));
        EXPECT_EQ(result.colorProfile, source.colorProfile);
        EXPECT_EQ(result.rawToneCurve, source.rawToneCurve);
    }
}

TEST_F(GaussianBlurOpenCL, AUniformPictureStaysUniform)
{
    for (const int value : {0, 1, 30000, 65535}) {
        Image source(33, 29);
        source.FastFill(std::uint16_t(value));
        for (const GaussianEdge edge : {GaussianEdge::Clamp, GaussianEdge::Repeat}) {
            const Samples samples = samplesOf(GaussianBlur(source, 5, 3, edge, RunStatus()));
            EXPECT_NEAR(samples[0], value, kBound);
            EXPECT_EQ(samples, Samples(samples.size(), samples[0])) << value;
        }
        const Samples blank = samplesOf(GaussianBlur(source, 5, 3, GaussianEdge::Blank, RunStatus()));
        EXPECT_LE(blank[0], value / 2);
        EXPECT_LE(blank[3], value / 2);
    }
}

TEST_F(GaussianBlurOpenCL, ShrunkImagesAreReadInTheirOwnSize)
{
    compare(shrunkImage(31, 23, 4), 3, 2, GaussianEdge::Clamp);
}

TEST_F(GaussianBlurOpenCL, ACancelledBlurIsEmpty)
{
    const int word = 1;
    const Image source = withMetadata(33, 29);
    const Image result = GaussianBlur(source, 3, 2, GaussianEdge::Clamp, RunStatus{&word});
    EXPECT_EQ(result.width, 0u);
    EXPECT_EQ(result.height, 0u);
    EXPECT_TRUE(samePixels(GaussianBlur(source, 0, 0, GaussianEdge::Clamp, RunStatus{&word}), source));
}

TEST_F(GaussianBlurOpenCL, EveryOtherWordGoesOn)
{
    const int word = 2;
    const Image source = randomImage(33, 29, 1);
    const Image expected = GaussianBlur(source, 3, 2, GaussianEdge::Clamp, RunStatus());
    EXPECT_TRUE(samePixels(GaussianBlur(source, 3, 2, GaussianEdge::Clamp, RunStatus{&word}), expected));
}

// More weights than a kernel of the device may have pixels, and radii without an end.
TEST_F(GaussianBlurOpenCL, LongFiltersEndLikeThoseOfTheProcessor)
{
    Image source(9, 7);
    source.FastFill(20000);
    for (const float radius : {300.0f, 5000.0f}) {
        const Samples samples = samplesOf(GaussianBlur(source, radius, radius, GaussianEdge::Clamp, RunStatus()));
        ASSERT_EQ(samples.size(), 9u * 7u * 4u);
        // n weights and n sums in single precision, each off by up to half a unit of 2^-24 of its value, in each pass.
        const double taps = GaussianSampleSize(radius, radius).width();
        for (const std::uint16_t sample : samples)
            EXPECT_NEAR(sample, 20000, 2 * (1 + taps / 128));
    }
}

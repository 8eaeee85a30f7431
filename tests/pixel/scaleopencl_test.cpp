// Scaling on a real device, from images and from a buffer.

#include "opencldevice.h"
#include "scalebound.h"

#include "../support/testimages.h"

#include <ondrel/pixel/scaleopencl.h>

using namespace OndrelTest;
using Ondrel::FilterMethod;
using Ondrel::Image;

namespace
{

using ScaleOpenCL = OnDevice;

const std::pair<Size, Size> kScales[] = {{{1, 1}, {6, 5}},      {{33, 29}, {70, 50}}, {{70, 50}, {33, 29}},
                                         {{70, 50}, {1, 1}},    {{70, 50}, {70, 9}},  {{66, 48}, {44, 32}},
                                         {{40, 30}, {211, 157}}};

} // namespace

// The two back ends share their boxes and grids; they differ in the order of sums too, which the bound covers.
TEST_F(ScaleOpenCL, BilinearEqualsTheProcessorWithinTheBound)
{
    for (const auto& [in, out] : kScales) {
        const Image source = randomImage(in.width, in.height, 1);
        Image expected, result;
        Scale_CPU(source, expected, out.width, out.height, FilterMethod::Bilinear);
        ASSERT_TRUE(Scale_OpenCL(source, result, out.width, out.height, FilterMethod::Bilinear));
        EXPECT_TRUE(sameScale(in, out, samplesOf(expected), samplesOf(result)));
        const Image scaled = Scale(source, out.width, out.height, FilterMethod::Bilinear);
        EXPECT_TRUE(samePixels(scaled, result)) << "the same device gives the same twice";
    }
}

TEST_F(ScaleOpenCL, NearestNeighbourEqualsTheReference)
{
    for (const auto& [in, out] : kScales) {
        const Image source = randomImage(in.width, in.height, 1);
        Image result;
        ASSERT_TRUE(Scale_OpenCL(source, result, out.width, out.height, FilterMethod::NearestNeighbor));
        Samples expected(out.samples());
        OndrelReference::scaleNearest(source.data, in.width, in.height, expected.data(), out.width, out.height);
        EXPECT_TRUE(within(0, expected, samplesOf(result))) << in << " to " << out;
    }
}

// Reductions of more than 64 times take 64 x 64 samples on a device and more on the processor.
TEST_F(ScaleOpenCL, ReductionsBeyondTheDeepestGridEqualTheReference)
{
    const Size in{400, 3}, out{2, 1};
    const Image source = randomImage(in.width, in.height, 1);
    Image result;
    ASSERT_TRUE(Scale_OpenCL(source, result, out.width, out.height, FilterMethod::Bilinear));
    Samples expected(out.samples());
    OndrelReference::scaleBilinear(source.data, in.width, in.height, expected.data(), out.width, out.height);
    EXPECT_TRUE(sameScale(in, out, expected, samplesOf(result)));
}

TEST_F(ScaleOpenCL, ShrunkImagesAreReadAndWrittenInTheirOwnSize)
{
    const Image source = shrunkImage(31, 23, 4);
    Image destination = shrunkImage(50, 40, 5), expected;
    Scale_CPU(source, expected, 50, 40, FilterMethod::Bilinear);
    ASSERT_TRUE(Scale_OpenCL(source, destination, 50, 40, FilterMethod::Bilinear));
    EXPECT_TRUE(sameScale({31, 23}, {50, 40}, samplesOf(expected), samplesOf(destination)));
}

TEST_F(ScaleOpenCL, ABufferGivesTheSameAsAnImage)
{
    for (const FilterMethod filter : {FilterMethod::NearestNeighbor, FilterMethod::Bilinear}) {
        const Image source = randomImage(70, 50, 2);
        cl::Buffer buffer = DeviceWork().upload(samplesOf(source));
        Image expected;
        ASSERT_TRUE(Scale_OpenCL(source, expected, 33, 29, filter));
        std::shared_ptr<const Image> result;
        ASSERT_TRUE(Scale_OpenCL(buffer, 70, 50, result, 33, 29, filter));
        EXPECT_TRUE(samePixels(*result, expected));
        EXPECT_EQ(result->colorProfile, Image().colorProfile);
        ASSERT_TRUE(Scale_OpenCL(buffer, 70, 50, result, 40, 31, filter));
        ASSERT_TRUE(Scale_OpenCL(source, expected, 40, 31, filter));
        EXPECT_TRUE(samePixels(*result, expected));
        EXPECT_FALSE(Scale_OpenCL(buffer, 70, 50, result, 70, 50, filter));
    }
}

TEST_F(ScaleOpenCL, BicubicIsLeftToTheProcessor)
{
    const Image source = withMetadata(20, 10);
    Image expected, result;
    EXPECT_FALSE(Scale_OpenCL(source, result, 30, 40, FilterMethod::Bicubic));
    Scale_CPU(source, expected, 30, 40, FilterMethod::Bicubic);
    EXPECT_TRUE(samePixels(Scale(source, 30, 40, FilterMethod::Bicubic), expected));
}

TEST_F(ScaleOpenCL, OnlyTheProfileIsHandedOn)
{
    const Image source = withMetadata(20, 10);
    Image result;
    ASSERT_TRUE(Scale_OpenCL(source, result, 30, 40, FilterMethod::Bilinear));
    EXPECT_EQ(result.width, 30u);
    EXPECT_EQ(result.height, 40u);
    EXPECT_EQ(result.colorProfile, source.colorProfile);
    EXPECT_EQ(result.rawToneCurve, nullptr);
    EXPECT_FALSE(result.rawHasInfo);
}

// No buffer has a size of 0: the device refuses, and the processor makes the image.
TEST_F(ScaleOpenCL, TargetsWithoutPixelsComeFromTheProcessor)
{
    const Image source = randomImage(20, 10, 3);
    Image result;
    EXPECT_FALSE(Scale_OpenCL(source, result, 0, 40, FilterMethod::Bilinear));
    const Image scaled = Scale(source, 0, 40, FilterMethod::Bilinear);
    EXPECT_EQ(scaled.width, 0u);
    EXPECT_EQ(scaled.height, 40u);
}

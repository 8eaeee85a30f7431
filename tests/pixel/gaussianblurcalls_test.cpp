// Blurring on a device that records what it is asked for and fails where the test wants.

#include "failingcalls.h"

#include "../reference/gaussianblur_reference.h"
#include "../support/testimages.h"

#include <ondrel/pixel/gaussianblur.h>

using namespace OndrelTest;
using Ondrel::Image;
using Ondrel::RunStatus;

namespace
{

constexpr unsigned int kWidth = 150, kHeight = 130; // two slices for each pass
constexpr std::size_t kBytes = std::size_t(kWidth) * kHeight * 8;

class GaussianBlurCalls : public WithFailingCalls
{
protected:
    static const RecordingDriver::Transfer& writeTo(const void* handle)
    {
        for (const RecordingDriver::Transfer& write : recorder().writes)
            if (write.buffer == handle)
                return write;
        ADD_FAILURE() << "a buffer that nothing was written to";
        static const RecordingDriver::Transfer none;
        return none;
    }

    // The weights that a kernel was given.
    static std::vector<float> weightsOf(const std::string& kernel)
    {
        const RecordingDriver::Transfer& write = writeTo(argument<const void*>(recorder(), kernel, 2));
        EXPECT_FALSE(write.blocking);
        std::vector<float> weights(write.bytesWritten.size() / sizeof(float));
        std::memcpy(weights.data(), write.bytesWritten.data(), weights.size() * sizeof(float));
        return weights;
    }
};

void expectNoMetadata(const Image& image)
{
    EXPECT_EQ(image.colorProfile, Image().colorProfile);
    EXPECT_FALSE(image.rawIsMosaic);
    EXPECT_FALSE(image.rawHasInfo);
    EXPECT_EQ(image.rawToneCurve, nullptr);
}

bool isEmpty(const Image& image)
{
    return image.width == 0 && image.height == 0 && image.data == nullptr;
}

} // namespace

TEST_F(GaussianBlurCalls, RunsOnTheDeviceWhereNothingFails)
{
    const Image source = withMetadata(kWidth, kHeight);
    const Image result = GaussianBlur(source, 3, 2, GaussianEdge::Clamp, RunStatus());
    EXPECT_TRUE(isDeviceResult(result, kWidth, kHeight));
    expectNoMetadata(result);
    EXPECT_EQ(alive(), kIdle);
}

TEST_F(GaussianBlurCalls, NeverTriesTheDeviceInTheProcessorsForm)
{
    const Image source = randomImage(20, 10, 1);
    GaussianBlur_CPU(source, 3, 2, GaussianEdge::Clamp, RunStatus());
    EXPECT_TRUE(recorder().calls.empty());
}

TEST_F(GaussianBlurCalls, EveryFailureEndsInTheResultOfTheProcessor)
{
    const Image source = withMetadata(kWidth, kHeight);
    const Image expected = GaussianBlur_CPU(source, 3, 2, GaussianEdge::Blank, RunStatus());
    expectTheProcessorsResult([&] { return GaussianBlur(source, 3, 2, GaussianEdge::Blank, RunStatus()); }, expected,
                              30, [](const Image& result) { expectNoMetadata(result); });
}

TEST_F(GaussianBlurCalls, AProgramThatDidNotBuildLeavesTheProcessor)
{
    recorder().buildResult = -11;
    ASSERT_TRUE(PixelOpenCL::instance()->setDevice(0, 0));
    const Image source = randomImage(20, 10, 1);
    const Image expected = GaussianBlur_CPU(source, 3, 2, GaussianEdge::Repeat, RunStatus());
    EXPECT_TRUE(samePixels(GaussianBlur(source, 3, 2, GaussianEdge::Repeat, RunStatus()), expected));
    EXPECT_EQ(alive(), kIdle);
}

TEST_F(GaussianBlurCalls, ChoosesTheKernelsByTheEdge)
{
    const Image source = randomImage(20, 10, 1);
    const std::pair<GaussianEdge, std::vector<std::string>> cases[] = {
        {GaussianEdge::Clamp, {"b1", "c1"}}, {GaussianEdge::Blank, {"d1", "e1"}}, {GaussianEdge::Repeat, {"f1", "g1"}}};
    for (const auto& [edge, kernels] : cases) {
        reset();
        GaussianBlur(source, 3, 2, edge, RunStatus());
        EXPECT_EQ(recorder().kernels, kernels);
        ASSERT_EQ(recorder().launches.size(), 2u);
        EXPECT_EQ(recorder().launches[0].kernel, kernels[0]);
        EXPECT_EQ(recorder().launches[1].kernel, kernels[1]);
    }
}

TEST_F(GaussianBlurCalls, AsksForBuffersAndPassesThemBetweenTheTwoPasses)
{
    const Image source = randomImage(kWidth, kHeight, 1);
    const Image result = GaussianBlur(source, 5, 2, GaussianEdge::Clamp, RunStatus());
    const QSize taps = GaussianSampleSize(5, 2);

    ASSERT_EQ(recorder().buffers.size(), 6u);
    std::multiset<std::pair<unsigned long long, std::size_t>> asked;
    for (const RecordingDriver::Buffer& buffer : recorder().buffers) {
        asked.insert({buffer.flags, buffer.bytes});
        EXPECT_EQ(buffer.host != nullptr, (buffer.flags & CL_MEM_USE_HOST_PTR) != 0);
        if (buffer.flags == (CL_MEM_READ_ONLY | CL_MEM_USE_HOST_PTR)) {
            EXPECT_EQ(buffer.host, source.data);
        }
    }
    EXPECT_EQ(asked, (std::multiset<std::pair<unsigned long long, std::size_t>>{
                         {CL_MEM_READ_ONLY | CL_MEM_USE_HOST_PTR, kBytes},
                         {CL_MEM_WRITE_ONLY | CL_MEM_USE_HOST_PTR, kBytes},
                         {CL_MEM_READ_WRITE, kBytes},
                         {CL_MEM_READ_WRITE, kBytes},
                         {CL_MEM_READ_ONLY, std::size_t(taps.width()) * 4},
                         {CL_MEM_READ_ONLY, std::size_t(taps.height()) * 4}}));

    for (const char* const kernel : {"b1", "c1"}) {
        EXPECT_EQ(argument<cl_uint>(recorder(), kernel, 0), kWidth);
        EXPECT_EQ(argument<cl_uint>(recorder(), kernel, 1), kHeight);
    }
    EXPECT_EQ(argument<cl_int>(recorder(), "b1", 3), taps.width());
    EXPECT_EQ(argument<cl_int>(recorder(), "c1", 3), taps.height());
    const void* const a = argument<const void*>(recorder(), "b1", 4);
    const void* const b = argument<const void*>(recorder(), "b1", 5);
    EXPECT_NE(a, b);
    EXPECT_EQ(argument<const void*>(recorder(), "c1", 4), b);
    EXPECT_EQ(argument<const void*>(recorder(), "c1", 5), a);

    const RecordingDriver::Transfer& write = writeTo(a);
    EXPECT_FALSE(write.blocking);
    ASSERT_EQ(write.bytes, kBytes);
    EXPECT_EQ(std::memcmp(write.bytesWritten.data(), source.data, kBytes), 0);
    ASSERT_EQ(recorder().maps.size(), 2u);
    ASSERT_EQ(recorder().reads.size(), 1u);
    EXPECT_EQ(recorder().reads[0].buffer, a);
    EXPECT_EQ(recorder().reads[0].bytes, kBytes);
    EXPECT_TRUE(recorder().reads[0].blocking);
    EXPECT_TRUE(recorder().reads[0].hasEvent);
    EXPECT_EQ(std::count_if(recorder().maps.begin(), recorder().maps.end(),
                            [](const RecordingDriver::Map& map) { return map.pointer == recorder().reads[0].pointer; }),
              1)
        << "the result is read into its map";
    ASSERT_EQ(recorder().launches.size(), 4u);
    EXPECT_EQ(recorder().launches[2].kernel, "c1");
}

// A radius of -1 or less leaves its direction out.
TEST_F(GaussianBlurCalls, OnePassReadsTheOtherBuffer)
{
    const Image source = randomImage(20, 10, 1);
    const std::pair<float, float> radii[] = {{3.0f, -2.0f}, {-2.0f, 3.0f}};
    for (const auto& [radiusX, radiusY] : radii) {
        reset();
        GaussianBlur(source, radiusX, radiusY, GaussianEdge::Clamp, RunStatus());
        const std::string kernel = radiusX > 0 ? "b1" : "c1";
        ASSERT_EQ(recorder().kernels, std::vector<std::string>{kernel});
        ASSERT_EQ(recorder().reads.size(), 1u);
        EXPECT_EQ(recorder().reads[0].buffer, argument<const void*>(recorder(), kernel, 5));
        EXPECT_EQ(recorder().writes[0].bytes, 20u * 10u * 8u);
        EXPECT_EQ(writeTo(argument<const void*>(recorder(), kernel, 4)).bytes, 20u * 10u * 8u);
    }
}

// Exponentials in double precision, the rest in single: no further from the weights of the processor than a few units
// in the last place of the greatest one.
TEST_F(GaussianBlurCalls, WeightsAreThoseOfTheProcessorInSinglePrecision)
{
    const Image source = randomImage(20, 10, 1);
    for (const float radius : {0.25f, 1.0f, 2.5f, 7.0f, 40.0f, 100.0f}) {
        reset();
        GaussianBlur(source, radius, 0, GaussianEdge::Clamp, RunStatus());
        const std::vector<double> expected = OndrelReference::gaussianWeights(radius + 1);
        const std::vector<float> weights = weightsOf("b1");
        ASSERT_EQ(weights.size(), expected.size());
        for (std::size_t i = 0; i < weights.size(); ++i) {
            EXPECT_NEAR(weights[i], expected[i], 4e-6 * expected[expected.size() / 2]) << "radius " << radius;
            EXPECT_GE(weights[i], 0.0f);
        }
        EXPECT_EQ(weightsOf("c1"), std::vector<float>({0, 1, 0})) << "the radius 0";
    }
}

TEST_F(GaussianBlurCalls, RadiiOfZeroCopyWithoutTheDevice)
{
    const Image source = withMetadata(20, 10);
    const int word = 1;
    for (const RunStatus& status : {RunStatus(), RunStatus{&word}}) {
        const Image result = GaussianBlur(source, 0, 0, GaussianEdge::Clamp, status);
        EXPECT_TRUE(samePixels(result, source));
        EXPECT_EQ(result.colorProfile, source.colorProfile);
        EXPECT_EQ(result.rawToneCurve, source.rawToneCurve);
    }
    EXPECT_TRUE(recorder().calls.empty());
}

TEST_F(GaussianBlurCalls, IsEmptyIfItIsCancelledBefore)
{
    const int word = 1;
    EXPECT_TRUE(isEmpty(GaussianBlur(randomImage(20, 10, 1), 3, 2, GaussianEdge::Clamp, RunStatus{&word})));
    EXPECT_LE(recorder().launches.size(), 1u);
    EXPECT_EQ(alive(), kIdle);
    EXPECT_TRUE(lockIsFree());
}

// Two slices in each pass: in each, the last one of the last pass too, when all work has been done.
TEST_F(GaussianBlurCalls, IsEmptyIfItIsCancelledInAnySlice)
{
    const Image source = randomImage(kWidth, kHeight, 1);
    for (std::size_t slice = 1; slice <= 4; ++slice) {
        reset();
        int word = 0;
        recorder().onLaunch = [&] { word = recorder().launches.size() == slice ? 1 : word; };
        EXPECT_TRUE(isEmpty(GaussianBlur(source, 3, 2, GaussianEdge::Clamp, RunStatus{&word}))) << slice;
        EXPECT_EQ(recorder().launches.size(), slice);
        EXPECT_EQ(alive(), kIdle);
        EXPECT_TRUE(lockIsFree());
    }
}

TEST_F(GaussianBlurCalls, IsDoneIfItIsCancelledAfterItsLastSlice)
{
    const Image source = randomImage(kWidth, kHeight, 1);
    int word = 0;
    recorder().onRead = [&] { word = 1; };
    EXPECT_TRUE(isDeviceResult(GaussianBlur(source, 3, 2, GaussianEdge::Clamp, RunStatus{&word}), kWidth, kHeight));
    EXPECT_EQ(word, 1);
}

TEST_F(GaussianBlurCalls, GoesOnForEveryOtherWord)
{
    const Image source = randomImage(20, 10, 1);
    for (const int word : {0, 2, -1})
        EXPECT_TRUE(isDeviceResult(GaussianBlur(source, 3, 2, GaussianEdge::Clamp, RunStatus{&word}), 20, 10));
}

TEST_F(GaussianBlurCalls, PicturesWithoutPixelsAreThoseOfTheProcessor)
{
    for (const Image& source : {Image(), Image(0, 7), Image(7, 0)}) {
        const Image expected = GaussianBlur_CPU(source, 3, 2, GaussianEdge::Clamp, RunStatus());
        const Image result = GaussianBlur(source, 3, 2, GaussianEdge::Clamp, RunStatus());
        EXPECT_EQ(result.width, expected.width);
        EXPECT_EQ(result.height, expected.height);
        EXPECT_EQ(alive(), kIdle);
    }
}

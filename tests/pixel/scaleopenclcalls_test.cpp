// Scaling on a device that records what it is asked for and fails where the test wants.

#include "failingcalls.h"

#include "../support/testimages.h"

#include <ondrel/pixel/scaleopencl.h>

using namespace OndrelTest;
using Ondrel::FilterMethod;
using Ondrel::Image;

namespace
{

// More than one slice of output pixels.
constexpr unsigned int kWidth = 150, kHeight = 130;

class ScaleOpenCLCalls : public WithFailingCalls
{
protected:
    // A buffer as a plug-in has it, outside of a token.
    static cl::Buffer pluginBuffer(const Borrowed& work, unsigned int width, unsigned int height)
    {
        return cl::Buffer(work.context, CL_MEM_READ_WRITE, std::size_t(width) * height * 8);
    }
};

// The hash of the colour profile is the one field of metadata that a scale hands on.
void expectOnlyTheProfileOf(const Image& source, const Image& result)
{
    EXPECT_EQ(result.colorProfile, source.colorProfile);
    EXPECT_FALSE(result.rawIsMosaic);
    EXPECT_FALSE(result.rawHasInfo);
    EXPECT_EQ(result.rawFilters, 0u);
    EXPECT_EQ(result.rawToneCurve, nullptr);
}

} // namespace

TEST_F(ScaleOpenCLCalls, RunsOnTheDeviceWhereNothingFails)
{
    const Image source = withMetadata(40, 30);
    const Image result = Scale(source, kWidth, kHeight, FilterMethod::Bilinear);
    EXPECT_TRUE(isDeviceResult(result, kWidth, kHeight));
    expectOnlyTheProfileOf(source, result);
    EXPECT_EQ(alive(), kIdle);
}

TEST_F(ScaleOpenCLCalls, EveryFailureEndsInTheResultOfTheProcessor)
{
    const Image source = withMetadata(40, 30);
    Image expected;
    Scale_CPU(source, expected, kWidth, kHeight, FilterMethod::Bilinear);
    expectTheProcessorsResult([&] { return Scale(source, kWidth, kHeight, FilterMethod::Bilinear); }, expected, 15,
                              [&](const Image& result) { expectOnlyTheProfileOf(source, result); });
}

TEST_F(ScaleOpenCLCalls, AProgramThatDidNotBuildLeavesTheProcessor)
{
    recorder().buildResult = -11;
    ASSERT_TRUE(PixelOpenCL::instance()->setDevice(0, 0));
    const Image source = randomImage(20, 10, 1);
    Image expected;
    Scale_CPU(source, expected, 30, 40, FilterMethod::Bilinear);
    EXPECT_TRUE(samePixels(Scale(source, 30, 40, FilterMethod::Bilinear), expected));
    EXPECT_EQ(alive(), kIdle);
}

TEST_F(ScaleOpenCLCalls, TriesTheDeviceForEveryFilterButNearestNeighbour)
{
    const Image source = randomImage(20, 10, 1);
    Image expected;
    Scale_CPU(source, expected, 30, 40, FilterMethod::NearestNeighbor);
    EXPECT_TRUE(samePixels(Scale(source, 30, 40, FilterMethod::NearestNeighbor), expected));
    EXPECT_TRUE(recorder().calls.empty());
    Scale_CPU(source, expected, 30, 40, FilterMethod::Bicubic);
    EXPECT_TRUE(samePixels(Scale(source, 30, 40, FilterMethod::Bicubic), expected));
    EXPECT_TRUE(recorder().calls.empty()) << "bicubic is refused before a kernel is made";
}

// The calls of one scale, in their order, with what was asked for.
TEST_F(ScaleOpenCLCalls, AsksForBuffersMapsAndTransfersAsTheContractSays)
{
    const Image source = shrunkImage(40, 30, 3);
    Image result;
    ASSERT_TRUE(Scale_OpenCL(source, result, kWidth, kHeight, FilterMethod::Bilinear));
    const std::size_t inBytes = 40 * 30 * 8, outBytes = kWidth * kHeight * 8;
    EXPECT_EQ(recorder().kernels, std::vector<std::string>{"f6"});
    EXPECT_EQ(recorder().queueProperties, std::vector<unsigned long long>{0});

    ASSERT_EQ(recorder().buffers.size(), 4u);
    const RecordingDriver::Buffer *deviceIn = nullptr, *deviceOut = nullptr;
    for (const RecordingDriver::Buffer& buffer : recorder().buffers) {
        if (buffer.host) {
            EXPECT_EQ(buffer.flags, CL_MEM_READ_ONLY | CL_MEM_USE_HOST_PTR);
            EXPECT_EQ(buffer.bytes, buffer.host == source.data ? inBytes : outBytes);
            EXPECT_TRUE(buffer.host == source.data || buffer.host == result.data);
        } else {
            EXPECT_EQ(buffer.flags, unsigned(CL_MEM_READ_WRITE));
            (buffer.bytes == inBytes ? deviceIn : deviceOut) = &buffer;
        }
    }
    ASSERT_TRUE(deviceIn && deviceOut);
    EXPECT_EQ(deviceOut->bytes, outBytes);

    ASSERT_EQ(recorder().maps.size(), 2u);
    const RecordingDriver::Map &sourceMap = recorder().maps[0], &resultMap = recorder().maps[1];
    EXPECT_EQ(sourceMap.host, source.data);
    EXPECT_EQ(sourceMap.flags, unsigned(CL_MAP_WRITE));
    EXPECT_FALSE(sourceMap.blocking);
    EXPECT_EQ(sourceMap.bytes, inBytes);
    EXPECT_EQ(resultMap.host, result.data);
    EXPECT_EQ(resultMap.flags, unsigned(CL_MAP_READ));
    EXPECT_TRUE(resultMap.blocking);
    EXPECT_EQ(resultMap.bytes, outBytes);

    ASSERT_EQ(recorder().writes.size(), 1u);
    EXPECT_EQ(recorder().writes[0].buffer, deviceIn->handle);
    EXPECT_EQ(recorder().writes[0].pointer, sourceMap.pointer);
    EXPECT_EQ(recorder().writes[0].bytes, inBytes);
    EXPECT_FALSE(recorder().writes[0].blocking);
    ASSERT_EQ(recorder().reads.size(), 1u);
    EXPECT_EQ(recorder().reads[0].buffer, deviceOut->handle);
    EXPECT_EQ(recorder().reads[0].pointer, resultMap.pointer);
    EXPECT_EQ(recorder().reads[0].bytes, outBytes);
    EXPECT_TRUE(recorder().reads[0].blocking);
    EXPECT_TRUE(recorder().reads[0].hasEvent);

    EXPECT_EQ(argument<const void*>(recorder(), "f6", 0), deviceIn->handle);
    EXPECT_EQ(argument<cl_uint>(recorder(), "f6", 1), 40u);
    EXPECT_EQ(argument<cl_uint>(recorder(), "f6", 2), 30u);
    EXPECT_EQ(argument<const void*>(recorder(), "f6", 3), deviceOut->handle);
    EXPECT_EQ(argument<cl_uint>(recorder(), "f6", 4), kWidth);
    EXPECT_EQ(argument<cl_uint>(recorder(), "f6", 5), kHeight);

    ASSERT_EQ(recorder().launches.size(), 2u);
    EXPECT_EQ(recorder().launches[0].global, 16384u);
    EXPECT_EQ(recorder().launches[1].offset, 16384u);
}

TEST_F(ScaleOpenCLCalls, NearestNeighbourHasAKernelToo)
{
    const Image source = withMetadata(40, 30);
    Image result;
    EXPECT_TRUE(Scale_OpenCL(source, result, 20, 10, FilterMethod::NearestNeighbor));
    EXPECT_EQ(recorder().kernels, std::vector<std::string>{"a6"});
    EXPECT_TRUE(isDeviceResult(result, 20, 10));
    expectOnlyTheProfileOf(source, result);
}

TEST_F(ScaleOpenCLCalls, RefusesBicubicAndUnknownFiltersWithTheLockFree)
{
    const Image source = randomImage(40, 30, 1);
    for (const FilterMethod filter : {FilterMethod::Bicubic, FilterMethod(3)}) {
        Image result;
        EXPECT_FALSE(Scale_OpenCL(source, result, 20, 10, filter));
        EXPECT_TRUE(recorder().calls.empty());
        EXPECT_EQ(alive(), kIdle);
        EXPECT_TRUE(lockIsFree());
    }
}

TEST_F(ScaleOpenCLCalls, CopiesASourceOfTheAskedSizeWithoutTheDevice)
{
    const Image source = withMetadata(40, 30);
    for (const FilterMethod filter : {FilterMethod::NearestNeighbor, FilterMethod::Bilinear, FilterMethod::Bicubic}) {
        Image result(3, 3);
        EXPECT_TRUE(Scale_OpenCL(source, result, 40, 30, filter));
        EXPECT_TRUE(samePixels(result, source));
        EXPECT_EQ(result.colorProfile, source.colorProfile);
        EXPECT_EQ(result.rawToneCurve, source.rawToneCurve);
        EXPECT_EQ(result.rawFilters, source.rawFilters);
    }
    EXPECT_TRUE(recorder().kernels.empty());
    EXPECT_TRUE(recorder().buffers.empty());
}

TEST_F(ScaleOpenCLCalls, CopiesASourceOfTheAskedSizeWithoutWaitingForTheToken)
{
    Borrowed work; // held by this thread: a second beginWork would never return
    const Image source = randomImage(4, 3, 1);
    Image result;
    EXPECT_TRUE(Scale_OpenCL(source, result, 4, 3, FilterMethod::Bilinear));
    EXPECT_TRUE(samePixels(result, source));
    EXPECT_TRUE(Scale_OpenCL(Image(), result, 4, 3, FilterMethod::Bilinear));
    EXPECT_EQ(result.width, 0u);
}

TEST_F(ScaleOpenCLCalls, CopiesASourceWithoutPixels)
{
    for (const Image& source : {Image(), Image(0, 7), Image(7, 0)}) {
        Image result(3, 3);
        EXPECT_TRUE(Scale_OpenCL(source, result, 20, 10, FilterMethod::Bilinear));
        EXPECT_EQ(result.width, source.width);
        EXPECT_EQ(result.height, source.height);
    }
    EXPECT_TRUE(recorder().calls.empty());
}

TEST_F(ScaleOpenCLCalls, KeepsADestinationOfTheAskedSize)
{
    const Image source = randomImage(40, 30, 1);
    Image result(20, 10);
    const void* const block = result.data;
    EXPECT_TRUE(Scale_OpenCL(source, result, 20, 10, FilterMethod::Bilinear));
    EXPECT_EQ(result.data, block);
    EXPECT_TRUE(isDeviceResult(result, 20, 10));
}

// No buffer can have a size of 0.
TEST_F(ScaleOpenCLCalls, LeavesTargetsWithoutPixelsToTheProcessor)
{
    const Image source = randomImage(40, 30, 1);
    const std::pair<unsigned int, unsigned int> sizes[] = {{0, 10}, {10, 0}, {0, 0}};
    for (const auto& [width, height] : sizes) {
        Image result;
        EXPECT_FALSE(Scale_OpenCL(source, result, width, height, FilterMethod::Bilinear));
        EXPECT_EQ(alive(), kIdle);
        EXPECT_TRUE(lockIsFree());
        const Image scaled = Scale(source, width, height, FilterMethod::Bilinear);
        EXPECT_EQ(scaled.width, width);
        EXPECT_EQ(scaled.height, height);
    }
}

TEST_F(ScaleOpenCLCalls, IsRefusedWithoutADevice)
{
    PixelOpenCL::instance()->disable();
    const Image source = randomImage(40, 30, 1);
    Image result, expected;
    EXPECT_FALSE(Scale_OpenCL(source, result, 20, 10, FilterMethod::Bilinear));
    EXPECT_TRUE(recorder().calls.empty());
    Scale_CPU(source, expected, 20, 10, FilterMethod::Bilinear);
    EXPECT_TRUE(samePixels(Scale(source, 20, 10, FilterMethod::Bilinear), expected));
}

TEST_F(ScaleOpenCLCalls, TakesABufferOfAPlugin)
{
    Borrowed work;
    cl::Buffer buffer = pluginBuffer(work, 40, 30);
    work.token.reset();
    std::shared_ptr<const Image> result;
    for (const auto& [filter, kernel] :
         {std::pair(FilterMethod::NearestNeighbor, "a6"), std::pair(FilterMethod::Bilinear, "f6")}) {
        reset();
        result.reset();
        ASSERT_TRUE(Scale_OpenCL(buffer, 40, 30, result, kWidth, kHeight, filter));
        ASSERT_NE(result, nullptr);
        EXPECT_TRUE(isDeviceResult(*result, kWidth, kHeight));
        EXPECT_EQ(recorder().kernels, std::vector<std::string>{kernel});
        EXPECT_EQ(argument<const void*>(recorder(), kernel, 0), buffer());
        EXPECT_EQ(argument<cl_uint>(recorder(), kernel, 1), 40u);
        EXPECT_EQ(argument<cl_uint>(recorder(), kernel, 2), 30u);
        EXPECT_EQ(argument<cl_uint>(recorder(), kernel, 4), kWidth);
        EXPECT_EQ(argument<cl_uint>(recorder(), kernel, 5), kHeight);
        ASSERT_EQ(recorder().reads.size(), 1u);
        EXPECT_EQ(argument<const void*>(recorder(), kernel, 3), recorder().reads[0].buffer);
        ASSERT_EQ(recorder().maps.size(), 1u);
        EXPECT_EQ(recorder().reads[0].pointer, recorder().maps[0].pointer);
        EXPECT_TRUE(recorder().writes.empty());
        EXPECT_EQ(result->colorProfile, Image().colorProfile);
    }
}

TEST_F(ScaleOpenCLCalls, ReplacesADestinationOfAnotherSizeAlone)
{
    Borrowed work;
    cl::Buffer buffer = pluginBuffer(work, 40, 30);
    work.token.reset();
    std::shared_ptr<const Image> result = Image(20, 10).toPtr();
    const Image* const before = result.get();
    ASSERT_TRUE(Scale_OpenCL(buffer, 40, 30, result, 20, 10, FilterMethod::Bilinear));
    EXPECT_EQ(result.get(), before);
    EXPECT_TRUE(isDeviceResult(*result, 20, 10));
    const std::shared_ptr<const Image> kept = result;
    ASSERT_TRUE(Scale_OpenCL(buffer, 40, 30, result, 20, 11, FilterMethod::Bilinear));
    EXPECT_NE(result, kept);
    EXPECT_TRUE(isDeviceResult(*result, 20, 11));
}

TEST_F(ScaleOpenCLCalls, DoesNothingForABufferWithoutPixelsOrOfTheAskedSize)
{
    Borrowed work; // held: neither may wait for it
    cl::Buffer buffer = pluginBuffer(work, 40, 30);
    reset();
    const std::shared_ptr<const Image> before = Image(5, 5).toPtr();
    std::shared_ptr<const Image> result = before;
    EXPECT_TRUE(Scale_OpenCL(buffer, 0, 30, result, 20, 10, FilterMethod::Bilinear));
    EXPECT_TRUE(Scale_OpenCL(buffer, 40, 0, result, 20, 10, FilterMethod::Bilinear));
    EXPECT_TRUE(Scale_OpenCL(buffer, 0, 0, result, 0, 0, FilterMethod::Bilinear));
    EXPECT_FALSE(Scale_OpenCL(buffer, 40, 30, result, 40, 30, FilterMethod::Bilinear));
    EXPECT_FALSE(Scale_OpenCL(buffer, 40, 30, result, 40, 30, FilterMethod::NearestNeighbor));
    EXPECT_EQ(result, before);
    EXPECT_TRUE(recorder().calls.empty());
}

TEST_F(ScaleOpenCLCalls, ReportsEveryFailureWithABufferOfAPlugin)
{
    Borrowed work;
    cl::Buffer buffer = pluginBuffer(work, 40, 30);
    work.token.reset();
    const std::string idle = alive();
    for (int number = 1;; ++number) {
        reset();
        recorder().failAt = number;
        std::shared_ptr<const Image> result;
        testing::internal::CaptureStdout();
        const bool done = Scale_OpenCL(buffer, 40, 30, result, kWidth, kHeight, FilterMethod::Bilinear);
        testing::internal::GetCapturedStdout();
        SCOPED_TRACE(recorder().failedCall);
        EXPECT_EQ(alive(), idle);
        ASSERT_TRUE(lockIsFree());
        if (recorder().failedCall.empty()) {
            EXPECT_TRUE(done);
            EXPECT_GT(number, 10);
            return;
        }
        EXPECT_TRUE(!done || mayBeIgnored(recorder().failedCall));
        ASSERT_LT(number, 100);
    }
}

TEST_F(ScaleOpenCLCalls, RefusesABufferForBicubicAndWithoutADevice)
{
    Borrowed work;
    cl::Buffer buffer = pluginBuffer(work, 40, 30);
    work.token.reset();
    std::shared_ptr<const Image> result;
    EXPECT_FALSE(Scale_OpenCL(buffer, 40, 30, result, 20, 10, FilterMethod::Bicubic));
    EXPECT_TRUE(lockIsFree());
    PixelOpenCL::instance()->disable();
    EXPECT_FALSE(Scale_OpenCL(buffer, 40, 30, result, 20, 10, FilterMethod::Bilinear));
}

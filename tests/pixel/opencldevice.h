#pragma once

#include <ondrel/core/image.h>
#include <ondrel/pixel/opencl.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <ostream>
#include <random>
#include <string>
#include <vector>

// Kernels on a device, for tests.
namespace OndrelTest
{

using Samples = std::vector<std::uint16_t>;

struct Size {
    unsigned int width, height;

    std::size_t samples() const { return std::size_t(width) * height * 4; }
};

inline std::ostream& operator<<(std::ostream& stream, const Size& size)
{
    return stream << size.width << " x " << size.height;
}

// From one pixel to a few thousand: lines, odd sides, sides around the pattern of a sensor.
const std::vector<Size> kSizes = {{1, 1}, {1, 2}, {2, 1}, {3, 2},  {2, 7},   {9, 1},   {1, 31}, {4, 5},
                                  {5, 4}, {8, 8}, {7, 9}, {31, 1}, {16, 15}, {33, 29}, {70, 50}};

// Samples of which a quarter each is 0 and 65535, the rest random.
inline Samples randomSamples(std::size_t count, unsigned int seed)
{
    std::mt19937 random(seed);
    Samples samples(count);
    for (std::uint16_t& sample : samples) {
        const std::uint32_t bits = std::uint32_t(random());
        const std::uint32_t kind = bits & 3;
        sample = kind == 0 ? std::uint16_t(0) : kind == 1 ? std::uint16_t(65535) : std::uint16_t(bits >> 16);
    }
    return samples;
}

// All 0, all 65535 and random.
inline std::vector<Samples> pictures(const Size& size, unsigned int seed)
{
    return {Samples(size.samples(), 0), Samples(size.samples(), 65535), randomSamples(size.samples(), seed)};
}

inline Samples samplesOf(const Ondrel::Image& image)
{
    return Samples(image.data, image.data + std::size_t(image.width) * image.height * 4);
}

// The greatest difference of two pictures, with the place of the first sample where it is above the bound.
inline testing::AssertionResult within(int bound, const Samples& reference, const Samples& actual)
{
    if (reference.size() != actual.size())
        return testing::AssertionFailure() << reference.size() << " and " << actual.size() << " samples";
    for (std::size_t i = 0; i < reference.size(); ++i)
        if (std::abs(int(reference[i]) - int(actual[i])) > bound)
            return testing::AssertionFailure() << "pixel " << i / 4 << ", channel " << i % 4 << ": " << reference[i]
                                               << " expected, " << actual[i] << " found";
    return testing::AssertionSuccess();
}

// Chooses the device that the tests use: of $ONDREL_TEST_OPENCL ("platform:device"), or the first one. False if there
// is none.
inline bool chooseDevice()
{
    unsigned int platform = 0, device = 0;
    if (const char* const text = std::getenv("ONDREL_TEST_OPENCL")) {
        char* end = nullptr;
        platform = unsigned(std::strtoul(text, &end, 10));
        device = *end == ':' ? unsigned(std::strtoul(end + 1, nullptr, 10)) : 0;
    }
    return PixelOpenCL::instance()->setDevice(platform, device);
}

constexpr const char* kNoDevice = "There is no OpenCL device. Install a driver (Debian: pocl-opencl-icd).";

// A fixture whose tests run with a device. Where there is none they fail: these kernels have no other check.
class OnDevice : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        // A device is kept from one suite to the next, since building the program takes long.
        cl::Context context;
        cl::Program program;
        cl::Device device;
        if (!PixelOpenCL::beginWork(context, program, device))
            chooseDevice();
    }

    void SetUp() override
    {
        cl::Context context;
        cl::Program program;
        cl::Device device;
        ASSERT_TRUE(PixelOpenCL::beginWork(context, program, device)) << kNoDevice;
    }
};

// The device, borrowed for as long as this lives, with a queue.
class DeviceWork
{
public:
    DeviceWork()
    {
        token_ = PixelOpenCL::beginWork(context_, program_, device_);
        EXPECT_TRUE(token_) << kNoDevice;
        queue_ = cl::CommandQueue(context_, device_);
    }

    cl::CommandQueue& queue() { return queue_; }
    cl::Context& context() { return context_; }
    cl::Program& program() { return program_; }
    cl::Device& device() { return device_; }

    template <typename T>
    cl::Buffer upload(const std::vector<T>& values)
    {
        cl_int error = CL_SUCCESS;
        cl::Buffer buffer(context_, CL_MEM_READ_WRITE | CL_MEM_COPY_HOST_PTR, values.size() * sizeof(T),
                          const_cast<T*>(values.data()), &error);
        EXPECT_EQ(error, CL_SUCCESS);
        return buffer;
    }

    // The kernel with its arguments set.
    template <typename... Arguments>
    cl::Kernel kernel(const char* name, const Arguments&... arguments)
    {
        cl_int error = CL_SUCCESS;
        cl::Kernel kernel(program_, name, &error);
        EXPECT_EQ(error, CL_SUCCESS) << name;
        EXPECT_EQ(kernel.getInfo<CL_KERNEL_NUM_ARGS>(), sizeof...(Arguments)) << name;
        cl_uint index = 0;
        (setArgument(kernel, index++, arguments), ...);
        return kernel;
    }

    // One work item for each of `pixels` and some more, as the library launches kernels.
    void run(cl::Kernel kernel, std::size_t pixels)
    {
        EXPECT_TRUE(RunIncrementalKernel(queue_, kernel, unsigned(pixels * 4), Ondrel::RunStatus()));
    }

    Samples download(const cl::Buffer& buffer, std::size_t count)
    {
        Samples samples(count);
        EXPECT_EQ(queue_.enqueueReadBuffer(buffer, CL_TRUE, 0, count * sizeof(std::uint16_t), samples.data()),
                  CL_SUCCESS);
        return samples;
    }

private:
    template <typename T>
    static void setArgument(cl::Kernel& kernel, cl_uint index, const T& value)
    {
        EXPECT_EQ(kernel.setArg(index, value), CL_SUCCESS) << "argument " << index;
    }

    std::unique_ptr<void, void (*)(void*)> token_{nullptr, [](void*) {}};
    cl::Context context_;
    cl::Program program_;
    cl::Device device_;
    cl::CommandQueue queue_;
};

// A picture to be written by a kernel, on the device, in a buffer that goes on behind it: RunIncrementalKernel launches
// up to 32 items too many, which must not write.
class Output
{
public:
    // `before`: what the picture holds before.
    Output(DeviceWork& work, const Samples& before)
        : work_(work)
        , count_(before.size())
        , buffer_(work.upload(padded(before)))
    {
    }

    const cl::Buffer& buffer() const { return buffer_; }

    Samples take()
    {
        Samples samples = work_.download(buffer_, count_ + kGuard);
        EXPECT_EQ(Samples(samples.begin() + std::ptrdiff_t(count_), samples.end()), Samples(kGuard, kMark))
            << "written behind the picture";
        samples.resize(count_);
        return samples;
    }

private:
    static constexpr std::size_t kGuard = 64 * 4;
    static constexpr std::uint16_t kMark = 0xA5C3;

    static Samples padded(Samples samples)
    {
        samples.resize(samples.size() + kGuard, kMark);
        return samples;
    }

    DeviceWork& work_;
    std::size_t count_;
    cl::Buffer buffer_;
};

// What a kernel of the form (w, h, in, out) or (w, h, parameters..., in, out) makes of a picture in a buffer that held
// `before`.
template <typename... Parameters>
Samples runKernel(const char* name, const Size& size, const Samples& in, const Samples& before,
                  const Parameters&... parameters)
{
    DeviceWork work;
    Output out(work, before);
    const cl::Buffer input = work.upload(in);
    work.run(work.kernel(name, cl_uint(size.width), cl_uint(size.height), parameters..., input, out.buffer()),
             std::size_t(size.width) * size.height);
    return out.take();
}

} // namespace OndrelTest

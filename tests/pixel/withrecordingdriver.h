#pragma once

#include "recordingdriver.h"

#include <ondrel/core/image.h>
#include <ondrel/pixel/opencl.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <dlfcn.h>
#include <future>
#include <memory>
#include <thread>

namespace OndrelTest
{

// The record of the driver that the loader has loaded; null if it cannot be found.
inline RecordingDriver* recordingDriver()
{
    static RecordingDriver* const recorder = [] {
        void* const library = dlopen(ONDREL_RECORDING_DRIVER, RTLD_NOW);
        void* const function = library ? dlsym(library, "ondrelRecordingDriver") : nullptr;
        return function ? reinterpret_cast<RecordingDriver* (*)()>(function)() : nullptr;
    }();
    return recorder;
}

// The three handles that a job borrows, and the token that holds the device: it goes last.
struct Borrowed {
    std::unique_ptr<void, void (*)(void*)> token{nullptr, [](void*) {}};
    cl::Context context;
    cl::Program program;
    cl::Device device;

    Borrowed() { token = PixelOpenCL::beginWork(context, program, device); }
};

inline bool isEnabled()
{
    return Borrowed().token != nullptr;
}

constexpr std::chrono::seconds kLimit(20);

// Whether another thread gets at the manager's lock. If not, the test cannot go on: the thread waits for ever.
inline bool lockIsFree()
{
    std::promise<void> reached;
    std::future<void> result = reached.get_future();
    std::thread([promise = std::move(reached)]() mutable {
        isEnabled();
        promise.set_value();
    }).detach();
    return result.wait_for(kLimit) == std::future_status::ready;
}

// Tests with the driver that computes nothing. It has two devices on the first platform, none on the second and one on
// the third.
class WithRecordingDriver : public testing::Test
{
protected:
    WithRecordingDriver()
    {
        PixelOpenCL::instance()->disable();
        if (recordingDriver())
            reset();
    }

    ~WithRecordingDriver() override { PixelOpenCL::instance()->disable(); }

    void SetUp() override
    {
        ASSERT_NE(recordingDriver(), nullptr) << "the driver of the tests is missing: " << ONDREL_RECORDING_DRIVER;
        std::vector<PixelOpenCL::Platform> platforms;
        PixelOpenCL::instance()->queryDevices(platforms);
        ASSERT_EQ(platforms.size(), RecordingDriver::kPlatforms)
            << "OCL_ICD_VENDORS must name " << ONDREL_RECORDING_DRIVER;
        ASSERT_EQ(platforms[0].devices, (std::vector<std::string>{"Alpha", "Beta"}))
            << "OCL_ICD_PLATFORM_SORT must be none";
        reset();
    }

    void TearDown() override
    {
        ASSERT_TRUE(lockIsFree());
        PixelOpenCL::instance()->disable();
        EXPECT_EQ(alive(), "");
    }

    static RecordingDriver& recorder() { return *recordingDriver(); }

    static void reset()
    {
        recorder().forget();
        recorder().devices[0] = {"Alpha", "Beta"};
        recorder().devices[2] = {"Gamma"};
    }

    // Sets the first device and clears the record.
    static void useDevice()
    {
        reset();
        ASSERT_TRUE(PixelOpenCL::instance()->setDevice(0, 0));
        reset();
    }

    // What is alive, with its number, in alphabetical order: "context 1, program 1, ".
    static std::string alive()
    {
        std::string text;
        for (const auto& [kind, count] : recorder().alive)
            if (count != 0)
                text += kind + ' ' + std::to_string(count) + ", ";
        return text;
    }
};

constexpr const char* kIdle = "context 1, program 1, "; // alive between two jobs

// The value of a kernel's argument.
template <typename T>
T argument(const RecordingDriver& recorder, const std::string& kernel, unsigned int index)
{
    const std::string& bytes = recorder.arguments.at(kernel).at(index);
    T value{};
    EXPECT_EQ(bytes.size(), sizeof value);
    std::memcpy(&value, bytes.data(), std::min(bytes.size(), sizeof value));
    return value;
}

// Whether an image holds what the driver gives out for the result of a kernel.
inline bool isDeviceResult(const Ondrel::Image& image, unsigned int width, unsigned int height)
{
    if (image.width != width || image.height != height)
        return false;
    const auto* const bytes = reinterpret_cast<const unsigned char*>(image.data);
    return std::all_of(bytes, bytes + std::size_t(width) * height * 8,
                       [](unsigned char byte) { return byte == RecordingDriver::kResult; });
}

} // namespace OndrelTest

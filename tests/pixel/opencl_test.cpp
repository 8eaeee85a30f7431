// The manager of the OpenCL device, with a driver that records what it is asked for.

#include "withrecordingdriver.h"

#include <climits>

using namespace OndrelTest;

namespace
{

class OpenCLManager : public WithRecordingDriver
{
protected:
    static PixelOpenCL& manager() { return *PixelOpenCL::instance(); }
    static bool has(const char* call) { return std::count(recorder().calls.begin(), recorder().calls.end(), call) > 0; }
};

// What a call writes to the standard output.
template <typename Call>
std::string outputOf(Call call)
{
    testing::internal::CaptureStdout();
    call();
    return testing::internal::GetCapturedStdout();
}

} // namespace

TEST_F(OpenCLManager, IsOneObject)
{
    EXPECT_NE(PixelOpenCL::instance(), nullptr);
    EXPECT_EQ(PixelOpenCL::instance(), PixelOpenCL::instance());
}

TEST_F(OpenCLManager, GivesNoTokenBeforeADeviceIsSet)
{
    Borrowed work;
    EXPECT_EQ(work.token, nullptr);
    work.token.get_deleter()(nullptr); // does nothing: the lock is free already
    EXPECT_TRUE(lockIsFree());
    EXPECT_FALSE(isEnabled());
}

TEST_F(OpenCLManager, ListsTheDevicesOfAllPlatformsInTheirOrder)
{
    std::vector<PixelOpenCL::Platform> platforms(5);
    platforms[0].devices = {"old"};
    manager().queryDevices(platforms);
    ASSERT_EQ(platforms.size(), 3u);
    EXPECT_EQ(platforms[0].devices, (std::vector<std::string>{"Alpha", "Beta"}));
    EXPECT_TRUE(platforms[1].devices.empty());
    EXPECT_EQ(platforms[2].devices, std::vector<std::string>{"Gamma"});
    EXPECT_FALSE(isEnabled());
    EXPECT_TRUE(recorder().contexts.empty());
}

TEST_F(OpenCLManager, ListingKeepsTheDevice)
{
    useDevice();
    std::vector<PixelOpenCL::Platform> platforms;
    manager().queryDevices(platforms);
    EXPECT_TRUE(isEnabled());
    EXPECT_EQ(alive(), kIdle);
}

TEST_F(OpenCLManager, MakesTheContextForTheChosenDeviceAlone)
{
    EXPECT_TRUE(manager().setDevice(0, 1));
    ASSERT_EQ(recorder().contexts.size(), 1u);
    EXPECT_EQ(recorder().contexts[0].devices, std::vector<std::string>{"Beta"});
    EXPECT_FALSE(recorder().contexts[0].hasProperties);
    EXPECT_FALSE(recorder().contexts[0].hasCallback);
    EXPECT_EQ(recorder().builtFor, std::vector<std::string>{"Beta"});
    EXPECT_EQ(recorder().buildOptions, "-cl-mad-enable");

    EXPECT_TRUE(manager().setDevice(2, 0));
    EXPECT_EQ(recorder().contexts.back().devices, std::vector<std::string>{"Gamma"});
    EXPECT_EQ(alive(), kIdle);
}

TEST_F(OpenCLManager, BuildsOneProgramFromEightTextsInTheirOrder)
{
    EXPECT_TRUE(manager().setDevice(0, 0));
    ASSERT_EQ(recorder().sources.size(), 8u);
    EXPECT_TRUE(recorder().sourcesHaveLengths);
    const char* const kernels[8][2] = {{"c0", "d0"}, {"b1", "g1"}, {"a2", "a2"}, {"a3", "j3"},
                                       {"a4", "t4"}, {"a5", "c5"}, {"a6", "g6"}, {"a7", "a7"}};
    for (std::size_t i = 0; i < 8; ++i) {
        const std::string& source = recorder().sources[i];
        EXPECT_FALSE(source.empty()) << i;
        EXPECT_EQ(source.find('\0'), std::string::npos) << i;
        for (const char* const name : kernels[i])
            EXPECT_NE(source.find(name), std::string::npos) << name << " in source " << i;
        for (std::size_t other = 0; other < 8; ++other) {
            if (other != i) {
                EXPECT_EQ(recorder().sources[other].find(std::string(kernels[i][0]) + "("), std::string::npos)
                    << kernels[i][0] << " in source " << other;
            }
        }
    }
    EXPECT_EQ(std::count(recorder().calls.begin(), recorder().calls.end(), "clCreateProgramWithSource"), 1);
    EXPECT_EQ(std::count(recorder().calls.begin(), recorder().calls.end(), "clBuildProgram"), 1);
}

// A log without text has a terminating zero and nothing else.
TEST_F(OpenCLManager, WritesNothingIfTheBuildLogIsEmpty)
{
    EXPECT_EQ(outputOf([] { EXPECT_TRUE(manager().setDevice(0, 0)); }), "");
}

TEST_F(OpenCLManager, WritesTheBuildLogUnderItsHeading)
{
    recorder().buildLog = "warning: one\nwarning: two";
    EXPECT_EQ(outputOf([] { EXPECT_TRUE(manager().setDevice(0, 0)); }),
              "OpenCL Build Log: \nwarning: one\nwarning: two\n");
}

TEST_F(OpenCLManager, StaysEnabledAfterAFailedBuild)
{
    recorder().buildResult = -11;
    recorder().buildLog = "error";
    EXPECT_EQ(outputOf([] { EXPECT_TRUE(manager().setDevice(0, 0)); }), "OpenCL Build Log: \nerror\n");
    EXPECT_TRUE(isEnabled());
    EXPECT_EQ(alive(), kIdle);
}

TEST_F(OpenCLManager, StaysEnabledWithoutABuildLog)
{
    recorder().buildLog = "never seen";
    recorder().failName = "clGetProgramBuildInfo";
    recorder().failAt = 1;
    recorder().failOn = true;
    EXPECT_EQ(outputOf([] { EXPECT_TRUE(manager().setDevice(0, 0)); }), "");
    EXPECT_TRUE(isEnabled());
}

TEST_F(OpenCLManager, SwitchesAGoodDeviceOffForNumbersPastTheEnd)
{
    const std::pair<unsigned int, unsigned int> numbers[] = {{3, 0}, {UINT_MAX, 0}, {0, 2},
                                                             {1, 0}, {0, UINT_MAX}, {UINT_MAX, UINT_MAX}};
    for (const auto& [platform, device] : numbers) {
        SCOPED_TRACE(testing::Message() << platform << ":" << device);
        EXPECT_FALSE(manager().setDevice(platform, device));
        EXPECT_FALSE(isEnabled());
        useDevice();
        EXPECT_FALSE(manager().setDevice(platform, device));
        EXPECT_FALSE(isEnabled());
        EXPECT_EQ(alive(), "");
    }
}

// Every call that setDevice makes, in turn. Only the build and its log may fail without consequence.
TEST_F(OpenCLManager, SwitchesOffWhereverSettingTheDeviceFails)
{
    for (int number = 1;; ++number) {
        useDevice();
        recorder().failAt = number;
        const bool result = manager().setDevice(0, 1);
        const std::string failed = recorder().failedCall;
        SCOPED_TRACE("failing: " + failed);
        if (failed.empty()) {
            EXPECT_TRUE(result);
            EXPECT_GT(number, 4);
            return;
        }
        const bool tolerated = failed == "clBuildProgram" || failed == "clGetProgramBuildInfo";
        EXPECT_EQ(result, tolerated);
        EXPECT_EQ(isEnabled(), tolerated);
        EXPECT_EQ(alive(), tolerated ? kIdle : "");
        EXPECT_TRUE(lockIsFree());
        ASSERT_LT(number, 50);
    }
}

TEST_F(OpenCLManager, CanBeEnabledAgainAfterAFailure)
{
    EXPECT_FALSE(manager().setDevice(9, 9));
    EXPECT_TRUE(manager().setDevice(0, 0));
    EXPECT_TRUE(isEnabled());
    manager().disable();
    EXPECT_FALSE(isEnabled());
    EXPECT_EQ(alive(), "");
    manager().disable();
    EXPECT_TRUE(manager().setDevice(0, 1));
    EXPECT_TRUE(isEnabled());
}

TEST_F(OpenCLManager, LendsItsHandlesWithReferences)
{
    useDevice();
    {
        Borrowed work;
        ASSERT_NE(work.token, nullptr);
        EXPECT_NE(work.context(), nullptr);
        EXPECT_NE(work.program(), nullptr);
        EXPECT_EQ(work.device.getInfo<CL_DEVICE_NAME>(), "Alpha");
        work.token.reset();
        manager().disable();
        EXPECT_EQ(alive(), kIdle); // the borrower's
    }
    EXPECT_EQ(alive(), "");
}

TEST_F(OpenCLManager, ANewDeviceLeavesTheHandlesOfAJobAlone)
{
    useDevice();
    Borrowed work;
    const cl_context before = work.context();
    work.token.reset();
    EXPECT_TRUE(manager().setDevice(0, 1));
    EXPECT_EQ(work.context(), before);
    EXPECT_EQ(alive(), "context 2, program 2, ");
}

TEST_F(OpenCLManager, CanBeDisabledByTheHolderOfTheLock)
{
    useDevice();
    {
        Borrowed work;
        manager().disableWhileHaveLock();
        EXPECT_EQ(alive(), kIdle);
    }
    EXPECT_EQ(alive(), "");
    EXPECT_FALSE(isEnabled());
}

// Another job, a list, a choice and a disabling all wait for the token.
TEST_F(OpenCLManager, SerialisesEverythingWithTheToken)
{
    const std::vector<void (*)()> calls = {[] { isEnabled(); },
                                           [] {
                                               std::vector<PixelOpenCL::Platform> platforms;
                                               manager().queryDevices(platforms);
                                           },
                                           [] { manager().setDevice(0, 0); }, [] { manager().disable(); }};
    for (void (*const call)() : calls) {
        useDevice();
        std::future<void> other;
        {
            Borrowed work;
            ASSERT_NE(work.token, nullptr);
            std::promise<void> started;
            std::future<void> running = started.get_future();
            other = std::async(std::launch::async, [call, &started] {
                started.set_value();
                call();
            });
            running.wait();
            EXPECT_EQ(other.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
        }
        ASSERT_EQ(other.wait_for(kLimit), std::future_status::ready);
    }
}

namespace
{

// A kernel to launch, under the token.
class IncrementalKernel : public OpenCLManager
{
protected:
    using Launches = std::vector<std::vector<std::size_t>>; // offset, global size, local size or 0

    void SetUp() override
    {
        OpenCLManager::SetUp();
        useDevice();
        work = std::make_unique<Borrowed>();
        queue = cl::CommandQueue(work->context, work->device);
        kernel = cl::Kernel(work->program, "b1");
        recorder().calls.clear();
    }

    void TearDown() override
    {
        EXPECT_EQ(recorder().alive["event"], 0);
        kernel = cl::Kernel();
        queue = cl::CommandQueue();
        work.reset();
        OpenCLManager::TearDown();
    }

    bool run(unsigned int sampleCount, const Ondrel::RunStatus& status = Ondrel::RunStatus())
    {
        recorder().launches.clear();
        return RunIncrementalKernel(queue, kernel, sampleCount, status);
    }

    static Launches launched()
    {
        Launches result;
        for (const RecordingDriver::Launch& launch : recorder().launches) {
            EXPECT_EQ(launch.dimensions, 1u);
            EXPECT_TRUE(launch.hasEvent);
            EXPECT_EQ(launch.kernel, "b1");
            result.push_back({launch.offset, launch.global, launch.local});
        }
        return result;
    }

    std::unique_ptr<Borrowed> work;
    cl::CommandQueue queue;
    cl::Kernel kernel;
};

constexpr unsigned int kThreeSlicesAndARest = 4 * (3 * 16384 + 100);

} // namespace

TEST_F(IncrementalKernel, LaunchesSlicesAndARest)
{
    const std::pair<unsigned int, Launches> cases[] = {
        {0, {{0, 32, 0}}},
        {4, {{0, 32, 0}}},
        {127, {{0, 32, 0}}},
        {128, {{0, 64, 0}}},
        {4 * 33, {{0, 64, 0}}},
        {65404, {{0, 16352, 0}}},
        {65408, {{0, 16384, 32}}},
        {65536, {{0, 16384, 32}, {16384, 32, 0}}},
        {2 * 65536 - 128, {{0, 16384, 32}, {16384, 16384, 32}}},
        {kThreeSlicesAndARest, {{0, 16384, 32}, {16384, 16384, 32}, {32768, 16384, 32}, {49152, 128, 0}}},
    };
    for (const auto& [sampleCount, expected] : cases) {
        EXPECT_TRUE(run(sampleCount));
        EXPECT_EQ(launched(), expected) << sampleCount;
    }
}

TEST_F(IncrementalKernel, LaunchesTheGreatestNumberOfSamples)
{
    EXPECT_TRUE(run(UINT_MAX));
    ASSERT_EQ(recorder().launches.size(), 65536u);
    EXPECT_EQ(recorder().launches.back().offset, 65535u * 16384u);
}

TEST_F(IncrementalKernel, WaitsForEachSliceBeforeTheNext)
{
    EXPECT_TRUE(run(kThreeSlicesAndARest));
    std::vector<std::string> expected;
    for (int i = 0; i < 4; ++i)
        expected.insert(expected.end(), {"clEnqueueNDRangeKernel", "clWaitForEvents"});
    EXPECT_EQ(recorder().calls, expected);
}

// The word is set while a slice runs; that slice is the last one, and be it the last of all.
TEST_F(IncrementalKernel, StopsAfterTheSliceInWhichItIsCancelled)
{
    for (std::size_t slice = 1; slice <= 4; ++slice) {
        int word = 0;
        recorder().onWait = [&] { word = recorder().launches.size() == slice ? 1 : word; };
        EXPECT_FALSE(run(kThreeSlicesAndARest, Ondrel::RunStatus{&word}));
        EXPECT_EQ(recorder().launches.size(), slice);
        EXPECT_EQ(recorder().alive["event"], 0);
    }
}

TEST_F(IncrementalKernel, RunsOneSliceIfItIsCancelledBefore)
{
    const int word = 1;
    for (const unsigned int sampleCount : {4u, 65408u, kThreeSlicesAndARest}) {
        EXPECT_FALSE(run(sampleCount, Ondrel::RunStatus{&word}));
        EXPECT_EQ(recorder().launches.size(), 1u) << sampleCount;
    }
}

TEST_F(IncrementalKernel, CancelsAlsoWhereNoRestIsLeft)
{
    int word = 0;
    recorder().onWait = [&] { word = recorder().launches.size() == 2 ? 1 : 0; };
    EXPECT_FALSE(run(2 * 65536 - 128, Ondrel::RunStatus{&word}));
    EXPECT_EQ(recorder().launches.size(), 2u);
}

TEST_F(IncrementalKernel, GoesOnForEveryOtherWord)
{
    for (const int word : {0, 2, -1, INT_MAX, INT_MIN, 257, 65537}) {
        EXPECT_TRUE(run(kThreeSlicesAndARest, Ondrel::RunStatus{&word})) << word;
        EXPECT_EQ(recorder().launches.size(), 4u);
    }
    EXPECT_TRUE(run(kThreeSlicesAndARest, Ondrel::RunStatus{nullptr}));
}

TEST_F(IncrementalKernel, WritesTheNumberOfAFailedLaunchAloneAndStops)
{
    for (int slice = 1; slice <= 4; ++slice) {
        recorder().calls.clear();
        recorder().failName = "clEnqueueNDRangeKernel";
        recorder().failAt = slice;
        recorder().failWith = -50 - slice;
        EXPECT_EQ(outputOf([this] { EXPECT_FALSE(run(kThreeSlicesAndARest)); }), std::to_string(-50 - slice) + "\n");
        EXPECT_EQ(recorder().launches.size(), std::size_t(slice - 1));
    }
}

TEST_F(IncrementalKernel, WritesNothingOtherwise)
{
    const int word = 1;
    EXPECT_EQ(outputOf([&] {
                  run(kThreeSlicesAndARest);
                  run(kThreeSlicesAndARest, Ondrel::RunStatus{&word});
              }),
              "");
}

TEST_F(IncrementalKernel, GoesOnIfAWaitFails)
{
    for (int slice = 1; slice <= 4; ++slice) {
        recorder().calls.clear();
        recorder().failName = "clWaitForEvents";
        recorder().failAt = slice;
        EXPECT_TRUE(run(kThreeSlicesAndARest));
        EXPECT_EQ(recorder().launches.size(), 4u);
    }
}

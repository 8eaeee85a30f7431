#pragma once

#include "withrecordingdriver.h"

#include "../support/testimages.h"

#include <functional>
#include <set>
#include <string>

namespace OndrelTest
{

// Failures after which there may be a result all the same: those of waiting and of giving the maps back.
inline bool mayBeIgnored(const std::string& call)
{
    static const std::set<std::string> calls = {"clWaitForEvents", "clEnqueueUnmapMemObject", "clFlush", "clFinish"};
    return calls.count(call) > 0;
}

// Tests of an operation on a device that is set and fails where the test wants.
class WithFailingCalls : public WithRecordingDriver
{
protected:
    void SetUp() override
    {
        WithRecordingDriver::SetUp();
        useDevice();
    }

    // Lets each call of the operation fail in turn, and then each call with all that follow, as of a device that has
    // gone away. `expected` is the processor's result; `checkMetadata` looks at the rest of each result. The
    // operation makes at least `fewestCalls`.
    static void expectTheProcessorsResult(const std::function<Ondrel::Image()>& operation,
                                          const Ondrel::Image& expected, int fewestCalls,
                                          const std::function<void(const Ondrel::Image&)>& checkMetadata)
    {
        for (const bool failOn : {false, true}) {
            int number = 1;
            while (expectSurvival(operation, expected, number, failOn, checkMetadata)) {
                ++number;
                ASSERT_LT(number, 200);
            }
            EXPECT_GT(number, fewestCalls); // the last one was not made
        }
    }

private:
    // False if there was no such call, so that nothing failed, or the test cannot go on.
    static bool expectSurvival(const std::function<Ondrel::Image()>& operation, const Ondrel::Image& expected,
                               int number, bool failOn, const std::function<void(const Ondrel::Image&)>& checkMetadata)
    {
        reset();
        recorder().failAt = number;
        recorder().failOn = failOn;
        testing::internal::CaptureStdout();
        const Ondrel::Image result = operation();
        const std::string output = testing::internal::GetCapturedStdout();
        const std::string failed = recorder().failedCall;
        SCOPED_TRACE(testing::Message() << "call " << number << ", " << failed);
        const bool isOfDevice = isDeviceResult(result, expected.width, expected.height);
        if (failed.empty()) {
            EXPECT_TRUE(isOfDevice);
            return false;
        }
        const std::string& call = recorder().calls[std::size_t(number - 1)];
        EXPECT_TRUE(samePixels(result, expected) || (mayBeIgnored(call) && isOfDevice));
        checkMetadata(result);
        if (!failOn) {
            EXPECT_EQ(output, failed == "clEnqueueNDRangeKernel" ? "-5\n" : "");
        }
        EXPECT_EQ(alive(), kIdle);
        const bool goesOn = lockIsFree() && isEnabled();
        EXPECT_TRUE(goesOn) << "the next operation is to try again";
        return goesOn;
    }
};

} // namespace OndrelTest

#include <ondrel/core/runstatus.h>
#include <ondrel/core/runtimestatistics.h>
#include <ondrel/core/simdcompatibility.h>

#include <gtest/gtest.h>

#include <cpuid.h>

#include <thread>
#include <vector>

namespace
{

TEST(RunTimeStatistics, AddsAndSubtractsFromAnyThread)
{
    const auto statistic = RunTimeStatistics::ImageMemory;
    const std::uint64_t before = RunTimeStatistics::Get(statistic);
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([statistic] {
            for (int k = 0; k < 10000; ++k) {
                RunTimeStatistics::Add(statistic, 3);
                RunTimeStatistics::Subtract(statistic, 2);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(RunTimeStatistics::Get(statistic), before + 80000);
    RunTimeStatistics::Subtract(statistic, 80000);
    EXPECT_EQ(&RunTimeStatistics::Instance(), &RunTimeStatistics::Instance());
}

TEST(RunTimeStatistics, HoldsMoreThan32Bits)
{
    const auto statistic = RunTimeStatistics::ImageMemory;
    const std::uint64_t before = RunTimeStatistics::Get(statistic);
    RunTimeStatistics::Add(statistic, 1ul << 40);
    EXPECT_EQ(RunTimeStatistics::Get(statistic) - before, 1ull << 40);
    RunTimeStatistics::Subtract(statistic, 1ul << 40);
}

TEST(SimdCompatibility, IsTheHighestBitThatTheProcessorReports)
{
    unsigned int a = 0, b = 0, c = 0, d = 0;
    ASSERT_TRUE(__get_cpuid(1, &a, &b, &c, &d));
    SIMDCompatibility expected = SIMD_None;
    if (c & (1u << 28))
        expected = SIMD_AVX;
    else if (c & (1u << 20))
        expected = SIMD_SSE42;
    else if (c & (1u << 19))
        expected = SIMD_SSE41;
    else if (c & 1u)
        expected = SIMD_SSE3;
    EXPECT_EQ(CheckSIMDCompatibility(), expected);
}

TEST(SimdCompatibility, LevelsAreOrdered)
{
    EXPECT_EQ(unsigned(SIMD_None), 0u);
    EXPECT_EQ(unsigned(SIMD_SSE3), 1u);
    EXPECT_EQ(unsigned(SIMD_SSE41), 2u);
    EXPECT_EQ(unsigned(SIMD_SSE42), 3u);
    EXPECT_EQ(unsigned(SIMD_AVX), 4u);
}

TEST(RunStatus, CannotBeCancelledByDefault)
{
    const Ondrel::RunStatus status;
    EXPECT_EQ(status.state, nullptr);
}

} // namespace

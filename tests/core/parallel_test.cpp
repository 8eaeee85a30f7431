#include <ondrel/core/parallel_p.h>

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

namespace
{

using Ondrel::ParallelEngine;

class ParallelRanges : public testing::TestWithParam<ParallelEngine>
{
protected:
    void SetUp() override { Ondrel::setParallelEngine(GetParam()); }
    void TearDown() override { Ondrel::setParallelEngine(m_before); }

private:
    const ParallelEngine m_before = Ondrel::parallelEngine();
};

TEST_P(ParallelRanges, CoverEveryIndexOnce)
{
    for (const std::size_t count : {0u, 1u, 2u, 5u, 255u, 256u, 257u, 1000u})
        for (const std::size_t grain : {0u, 1u, 3u, 256u, 5000u}) {
            std::vector<std::atomic<int>> visits(count);
            Ondrel::parallelRanges(count, grain, [&](std::size_t first, std::size_t last) {
                for (std::size_t i = first; i < last; ++i)
                    ++visits[i];
            });
            for (const auto& v : visits)
                EXPECT_EQ(v.load(), 1);
        }
}

TEST_P(ParallelRanges, NeverPassAnEmptyRange)
{
    Ondrel::parallelRanges(7, 2, [](std::size_t first, std::size_t last) { EXPECT_LT(first, last); });
    Ondrel::parallelRanges(0, 2, [](std::size_t, std::size_t) { ADD_FAILURE(); });
}

TEST_P(ParallelRanges, WorkInsideOneAnother)
{
    std::atomic<int> sum{0};
    Ondrel::parallelRanges(10, 1, [&](std::size_t first, std::size_t last) {
        for (std::size_t i = first; i < last; ++i)
            Ondrel::parallelRanges(10, 1, [&](std::size_t a, std::size_t b) { sum += int(b - a); });
    });
    EXPECT_EQ(sum.load(), 100);
}

TEST_P(ParallelRanges, RunBesideTheCallersOwnWork)
{
    for (int round = 0; round < 50; ++round) {
        std::vector<int> visits(100, 0); // no two threads write the same one
        std::thread::id ownThread;
        Ondrel::runBeside(
            [&] {
                Ondrel::parallelRanges(100, 10, [&](std::size_t first, std::size_t last) {
                    for (std::size_t i = first; i < last; ++i)
                        ++visits[i];
                });
            },
            [&] { ownThread = std::this_thread::get_id(); });
        EXPECT_EQ(visits, std::vector<int>(100, 1));
        EXPECT_EQ(ownThread, std::this_thread::get_id());
    }
}

TEST_P(ParallelRanges, PassOnWhatTheCallersOwnWorkThrows)
{
    std::atomic<int> done{0};
    for (int round = 0; round < 50; ++round)
        EXPECT_THROW(Ondrel::runBeside([&] { ++done; }, [] { throw std::runtime_error("stop"); }), std::runtime_error);
    if (GetParam() != ParallelEngine::Shuffled) {
        EXPECT_EQ(done.load(), 50); // never left running
    }
}

#ifdef __SANITIZE_THREAD__
// TBB itself is not compiled for the sanitizer, which cannot see how it hands ranges over and reports each one.
INSTANTIATE_TEST_SUITE_P(Engines, ParallelRanges, testing::Values(ParallelEngine::Threads, ParallelEngine::Shuffled));
#else
INSTANTIATE_TEST_SUITE_P(Engines, ParallelRanges,
                         testing::Values(ParallelEngine::Tbb, ParallelEngine::Threads, ParallelEngine::Shuffled));
#endif

} // namespace

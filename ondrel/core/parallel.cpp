#pragma push_macro("emit")
#undef emit
#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>
#include <tbb/task_group.h>
#pragma pop_macro("emit")

#include <ondrel/core/parallel_p.h>

#include <algorithm>
#include <atomic>
#include <random>
#include <thread>
#include <utility>
#include <vector>

namespace Ondrel
{
namespace
{

std::atomic<ParallelEngine> engine{ParallelEngine::Tbb};

using Body = std::function<void(std::size_t, std::size_t)>;
constexpr std::size_t kThreads = 4;

void runOnTbb(std::size_t count, std::size_t grain, const Body& body)
{
    // A context of its own: a cancelled task group of the caller must not leave rows undone.
    tbb::task_group_context context(tbb::task_group_context::isolated);
    // Isolated: callers may hold a lock, and a thread that waits here must not pick up a task that takes it too.
    tbb::this_task_arena::isolate([&] {
        tbb::parallel_for(
            tbb::blocked_range<std::size_t>(0, count, grain),
            [&body](const tbb::blocked_range<std::size_t>& range) { body(range.begin(), range.end()); },
            tbb::auto_partitioner(), context);
    });
}

void runOnThreads(std::size_t count, std::size_t grain, const Body& body)
{
    const std::size_t pieces = std::min(kThreads, (count + grain - 1) / grain);
    std::vector<std::thread> threads;
    for (std::size_t i = 1; i < pieces; ++i)
        threads.emplace_back(
            [&body, first = count * i / pieces, last = count * (i + 1) / pieces] { body(first, last); });
    body(0, count / pieces);
    for (std::thread& thread : threads)
        thread.join();
}

// Calls `wait` at the end of the scope, also when an exception passes.
template <typename Wait>
class WaitsAtEnd
{
public:
    explicit WaitsAtEnd(Wait wait)
        : m_wait(wait)
    {
    }
    ~WaitsAtEnd() { m_wait(); }
    WaitsAtEnd(const WaitsAtEnd&) = delete;
    WaitsAtEnd& operator=(const WaitsAtEnd&) = delete;

private:
    Wait m_wait;
};

using Work = std::function<void()>;

void besideOnTbb(const Work& beside, const Work& own)
{
    tbb::task_group_context context(tbb::task_group_context::isolated);
    tbb::this_task_arena::isolate([&] {
        tbb::task_group group(context);
        group.run(beside);
        const WaitsAtEnd wait([&group] { group.wait(); });
        own();
    });
}

void besideOnThread(const Work& beside, const Work& own)
{
    std::thread thread(beside);
    const WaitsAtEnd wait([&thread] { thread.join(); });
    own();
}

std::mt19937 nextOrder()
{
    static std::atomic<unsigned int> seed{1};
    return std::mt19937(seed++);
}

void besideShuffled(const Work& beside, const Work& own)
{
    const bool isLast = nextOrder()() % 2 == 0;
    if (!isLast)
        beside();
    own();
    if (isLast)
        beside();
}

void runShuffled(std::size_t count, std::size_t grain, const Body& body)
{
    std::vector<std::pair<std::size_t, std::size_t>> ranges;
    for (std::size_t first = 0; first < count; first += grain)
        ranges.emplace_back(first, std::min(first + grain, count));
    std::shuffle(ranges.begin(), ranges.end(), nextOrder());
    for (const auto& [first, last] : ranges)
        body(first, last);
}

} // namespace

void setParallelEngine(ParallelEngine newEngine)
{
    engine = newEngine;
}

ParallelEngine parallelEngine()
{
    return engine;
}

void parallelRanges(std::size_t count, std::size_t grain, const Body& body)
{
    if (count == 0)
        return;
    grain = std::max<std::size_t>(grain, 1);
    switch (engine.load()) {
    case ParallelEngine::Tbb:
        return runOnTbb(count, grain, body);
    case ParallelEngine::Threads:
        return runOnThreads(count, grain, body);
    case ParallelEngine::Shuffled:
        return runShuffled(count, grain, body);
    }
}

void runBeside(const Work& beside, const Work& own)
{
    switch (engine.load()) {
    case ParallelEngine::Tbb:
        return besideOnTbb(beside, own);
    case ParallelEngine::Threads:
        return besideOnThread(beside, own);
    case ParallelEngine::Shuffled:
        return besideShuffled(beside, own);
    }
}

} // namespace Ondrel

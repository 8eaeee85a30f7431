#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>

namespace OndrelBench
{

constexpr unsigned int kWidth = 6000;
constexpr unsigned int kHeight = 4000;
constexpr std::size_t kPixels = std::size_t{kWidth} * kHeight;

// Adds ns/pixel and bytes/s to a result. `bytesPerPixel` are those that the operation must read and write.
inline void report(benchmark::State& state, std::size_t pixels, std::size_t bytesPerPixel)
{
    using benchmark::Counter;
    state.counters["ns/pixel"] =
        Counter(static_cast<double>(pixels) * 1e-9, Counter::kIsIterationInvariantRate | Counter::kInvert);
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(pixels * bytesPerPixel));
}

} // namespace OndrelBench

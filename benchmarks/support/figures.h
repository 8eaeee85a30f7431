#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>

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

// Registers a benchmark that is measured by the clock on the wall, since the library works on several threads.
template <typename Body, typename... Arguments>
benchmark::internal::Benchmark* add(const std::string& name, Body body, Arguments... arguments)
{
    return benchmark::RegisterBenchmark(name.c_str(), body, arguments...)->UseRealTime()->Unit(benchmark::kMillisecond);
}

// The floor of an operation that reads and writes every pixel once: the result mapped and filled by a plain copy.
void mapAndCopy(benchmark::State& state, unsigned int width, unsigned int height);

// The same with a bare mapping of small pages, populated at once, instead of an image.
void mapSmallPagesAndCopy(benchmark::State& state, unsigned int width, unsigned int height);

} // namespace OndrelBench

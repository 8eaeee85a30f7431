#include "benchmarks/support/figures.h"

#include "benchmarks/support/benchimages.h"

#include <cstring>

#include <sys/mman.h>

namespace OndrelBench
{

void mapAndCopy(benchmark::State& state, unsigned int width, unsigned int height)
{
    const Ondrel::Image source = syntheticImage(width, height);
    for (auto _ : state) {
        Ondrel::Image result(width, height);
        std::memcpy(result.data, source.data, source.sizeBytes);
        benchmark::DoNotOptimize(result.data);
    }
    report(state, std::size_t{width} * height, 16);
}

void mapSmallPagesAndCopy(benchmark::State& state, unsigned int width, unsigned int height)
{
    const Ondrel::Image source = syntheticImage(width, height);
    for (auto _ : state) {
        void* result =
            mmap(nullptr, source.sizeBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_POPULATE, -1, 0);
        if (result == MAP_FAILED)
            return state.SkipWithError("no memory");
        std::memcpy(result, source.data, source.sizeBytes);
        benchmark::DoNotOptimize(result);
        munmap(result, source.sizeBytes);
    }
    report(state, std::size_t{width} * height, 16);
}

} // namespace OndrelBench

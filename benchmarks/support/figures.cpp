#include "benchmarks/support/figures.h"

#include "benchmarks/support/benchimages.h"

#include <cstring>

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

} // namespace OndrelBench

#include "benchmarks/support/benchimages.h"
#include "benchmarks/support/figures.h"
#include "tests/reference/image_reference.h"

#include <cstring>

namespace
{

using namespace OndrelBench;

// What every operation pays for a new result.
void mapping(benchmark::State& state)
{
    for (auto _ : state) {
        const Ondrel::Image image(kWidth, kHeight);
        benchmark::DoNotOptimize(image.data);
    }
    report(state, kPixels, 8);
}

void copy(benchmark::State& state)
{
    const Ondrel::Image image = syntheticImage(kWidth, kHeight);
    for (auto _ : state) {
        const Ondrel::Image result(image);
        benchmark::DoNotOptimize(result.data);
    }
    report(state, kPixels, 16);
}

void fill(benchmark::State& state)
{
    Ondrel::Image image(kWidth, kHeight);
    for (auto _ : state) {
        image.Fill(1, 2, 3, 65535);
        benchmark::DoNotOptimize(image.data);
    }
    report(state, kPixels, 8);
}

void fillFloor(benchmark::State& state)
{
    Ondrel::Image image(kWidth, kHeight);
    for (auto _ : state) {
        std::memset(image.data, 1, image.sizeBytes);
        benchmark::DoNotOptimize(image.data);
    }
    report(state, kPixels, 8);
}

void checkerboard(benchmark::State& state)
{
    Ondrel::Image image(kWidth, kHeight);
    for (auto _ : state) {
        Checkerboard(image, 16, 16, 1, 2, 3, 65535, 4, 5, 6, 65535);
        benchmark::DoNotOptimize(image.data);
    }
    report(state, kPixels, 8);
}

void checkerboardLiteral(benchmark::State& state)
{
    const unsigned short first[] = {1, 2, 3, 65535};
    const unsigned short second[] = {4, 5, 6, 65535};
    Ondrel::Image image(kWidth, kHeight);
    for (auto _ : state) {
        OndrelReference::checkerboard(image, 16, 16, first, second);
        benchmark::DoNotOptimize(image.data);
    }
    report(state, kPixels, 8);
}

void sampleAverage(benchmark::State& state)
{
    const Ondrel::Image image = syntheticImage(kWidth, kHeight);
    float r = 0;
    float g = 0;
    float b = 0;
    for (auto _ : state) {
        image.SampleAverageRGB(0, 0, kWidth, kHeight, r, g, b);
        benchmark::DoNotOptimize(r + g + b);
    }
    report(state, kPixels, 8);
}

} // namespace

BENCHMARK(mapping)->Name("Image/mapping")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(copy)->Name("Image/copy")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(mapAndCopy, copy, kWidth, kHeight)
    ->Name("Image/copy/floor")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(fill)->Name("Fill")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(fillFloor)->Name("Fill/floor")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(checkerboard)->Name("Checkerboard")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(checkerboardLiteral)->Name("Checkerboard/literal")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(sampleAverage)->Name("SampleAverageRGB")->UseRealTime()->Unit(benchmark::kMillisecond);

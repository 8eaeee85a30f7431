#include "benchmarks/support/benchimages.h"
#include "benchmarks/support/figures.h"
#include "tests/reference/gaussianblur_reference.h"

#include <cstring>
#include <ondrel/pixel/gaussianblur.h>
#include <string>

namespace
{

using namespace OndrelBench;
using Ondrel::Image;

void blur(benchmark::State& state, float radius)
{
    const Image source = syntheticImage(kWidth, kHeight);
    for (auto _ : state) {
        const Image result = GaussianBlur_CPU(source, radius, radius, GaussianEdge::Clamp, {});
        benchmark::DoNotOptimize(result.data);
    }
    report(state, kPixels, 16);
}

void blurLiteral(benchmark::State& state, float radius)
{
    const Image source = syntheticImage(kWidth, kHeight);
    for (auto _ : state) {
        const Image result =
            OndrelReference::gaussianBlur(source, radius, radius, OndrelReference::Outside::NearestEdgePixel);
        benchmark::DoNotOptimize(result.data);
    }
    report(state, kPixels, 16);
}

// The result mapped and filled by a copy on one thread.
void blurFloor(benchmark::State& state)
{
    const Image source = syntheticImage(kWidth, kHeight);
    for (auto _ : state) {
        Image result(kWidth, kHeight);
        std::memcpy(result.data, source.data, source.sizeBytes);
        benchmark::DoNotOptimize(result.data);
    }
    report(state, kPixels, 16);
}

const bool added = [] {
    for (const float radius : {5.0f, 29.0f, 100.0f}) {
        const int taps = GaussianSampleSize(radius, radius).width(); // 13, 61, 201
        const std::string name = "GaussianBlur_CPU/" + std::to_string(taps) + " taps";
        benchmark::RegisterBenchmark(name.c_str(), blur, radius)->UseRealTime()->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark((name + "/literal").c_str(), blurLiteral, radius)
            ->UseRealTime()
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark((name + "/floor").c_str(), blurFloor)
            ->UseRealTime()
            ->Unit(benchmark::kMillisecond);
    }
    return true;
}();

} // namespace

#include "benchmarks/support/benchimages.h"
#include "benchmarks/support/figures.h"

#include <ondrel/core/curves.h>

namespace
{

using namespace OndrelBench;

const std::vector<Ondrel::CubicBezierSpline::Point> kContrast = {{0, 0}, {16000, 9000}, {48000, 56000}, {65535, 65535}};

void curves(benchmark::State& state)
{
    const Ondrel::Image image = syntheticImage(kWidth, kHeight);
    for (auto _ : state) {
        const Ondrel::Image result = CurvesRGB(image, kContrast, kContrast, kContrast);
        benchmark::DoNotOptimize(result.data);
    }
    report(state, kPixels, 16);
}

void splineTable(benchmark::State& state)
{
    Ondrel::CubicBezierSpline spline;
    spline.setPoints(kContrast);
    std::vector<unsigned short> table;
    for (auto _ : state) {
        spline.roundedSpline(table, 65536, 65535);
        benchmark::DoNotOptimize(table.data());
    }
}

} // namespace

BENCHMARK(curves)->Name("CurvesRGB")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(mapAndCopy, curves, kWidth, kHeight)
    ->Name("CurvesRGB/floor")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(splineTable)->Name("roundedSpline")->Unit(benchmark::kMicrosecond);

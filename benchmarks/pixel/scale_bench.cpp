#include "benchmarks/support/benchimages.h"
#include "benchmarks/support/figures.h"
#include "tests/reference/scale_reference.h"

#include <algorithm>
#include <cstring>
#include <ondrel/pixel/scale.h>

namespace
{

using namespace OndrelBench;
using Ondrel::FilterMethod;
using Ondrel::Image;

struct Task {
    unsigned int fromWidth, fromHeight, width, height;
    FilterMethod filter;
};

constexpr Task kBilinearQuarter = {kWidth, kHeight, 1500, 1000, FilterMethod::Bilinear};
constexpr Task kBilinearThumbnail = {kWidth, kHeight, 182, 121, FilterMethod::Bilinear};
constexpr Task kBilinearEnlarged = {2000, 1333, 3000, 2000, FilterMethod::Bilinear};
constexpr Task kBicubicHalf = {kWidth, kHeight, 3000, 2000, FilterMethod::Bicubic};
constexpr Task kBicubicEnlarged = {2000, 1333, 3000, 2000, FilterMethod::Bicubic};
constexpr Task kNearestHalf = {kWidth, kHeight, 3000, 2000, FilterMethod::NearestNeighbor};

// Both sizes count: the source is read and the result written.
void reportTask(benchmark::State& state, const Task& task)
{
    const std::size_t from = std::size_t(task.fromWidth) * task.fromHeight;
    const std::size_t to = std::size_t(task.width) * task.height;
    report(state, std::max(from, to), 8 * (from + to) / std::max(from, to));
}

void scale(benchmark::State& state, Task task)
{
    const Image source = syntheticImage(task.fromWidth, task.fromHeight);
    for (auto _ : state) {
        const Image result = Scale(source, task.width, task.height, task.filter);
        benchmark::DoNotOptimize(result.data);
    }
    reportTask(state, task);
}

void scaleLiteral(benchmark::State& state, Task task)
{
    const Image source = syntheticImage(task.fromWidth, task.fromHeight);
    for (auto _ : state) {
        const Image result = OndrelReference::scale(source, task.width, task.height, task.filter);
        benchmark::DoNotOptimize(result.data);
    }
    reportTask(state, task);
}

// The result mapped and filled by a copy, and every pixel of the source read once.
void scaleFloor(benchmark::State& state, Task task)
{
    const Image source = syntheticImage(task.fromWidth, task.fromHeight);
    for (auto _ : state) {
        Image result(task.width, task.height);
        std::memcpy(result.data, source.data, std::min(result.sizeBytes, source.sizeBytes));
        std::uint64_t sum = 0;
        for (std::uint64_t i = 0; i < source.sizeBytes / 8; ++i) {
            std::uint64_t pixel;
            std::memcpy(&pixel, source.data + 4 * i, sizeof pixel);
            sum += pixel;
        }
        benchmark::DoNotOptimize(sum);
        benchmark::DoNotOptimize(result.data);
    }
    reportTask(state, task);
}

void draft(benchmark::State& state)
{
    const Image source = syntheticImage(kWidth, kHeight);
    for (auto _ : state) {
        const Image result = ScaleSubImageFast(source, kWidth, kHeight, 1500, 1000);
        benchmark::DoNotOptimize(result.data);
    }
    report(state, 1500 * 1000, 16);
}

void draftLiteral(benchmark::State& state)
{
    const Image source = syntheticImage(kWidth, kHeight);
    for (auto _ : state) {
        const Image result = OndrelReference::scaleSubImageFast(source, kWidth, kHeight, 1500, 1000);
        benchmark::DoNotOptimize(result.data);
    }
    report(state, 1500 * 1000, 16);
}

void canvas(benchmark::State& state)
{
    const Image source = syntheticImage(kWidth, kHeight);
    for (auto _ : state) {
        const Image result = Resize(source, kWidth + 10, kHeight - 10, 1, 2, 3, 65535);
        benchmark::DoNotOptimize(result.data);
    }
    report(state, kPixels, 16);
}

void addScale(const std::string& name, const Task& task)
{
    benchmark::RegisterBenchmark(name.c_str(), scale, task)->UseRealTime()->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark((name + "/literal").c_str(), scaleLiteral, task)
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark((name + "/floor").c_str(), scaleFloor, task)
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
}

const bool added = [] {
    addScale("Scale/bilinear to 1500x1000", kBilinearQuarter);
    addScale("Scale/bilinear to 182x121", kBilinearThumbnail);
    addScale("Scale/bilinear 2000x1333 to 3000x2000", kBilinearEnlarged);
    addScale("Scale/bicubic to 3000x2000", kBicubicHalf);
    addScale("Scale/bicubic 2000x1333 to 3000x2000", kBicubicEnlarged);
    addScale("Scale/nearest to 3000x2000", kNearestHalf);
    return true;
}();

} // namespace

BENCHMARK(draft)->Name("ScaleSubImageFast")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(draftLiteral)->Name("ScaleSubImageFast/literal")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(canvas)->Name("Resize")->UseRealTime()->Unit(benchmark::kMillisecond);

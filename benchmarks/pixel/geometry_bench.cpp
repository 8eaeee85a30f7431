#include "benchmarks/support/benchimages.h"
#include "benchmarks/support/figures.h"
#include "tests/reference/geometry_reference.h"

#include <cstring>
#include <ondrel/pixel/geometry.h>
#include <string>

namespace
{

using namespace OndrelBench;
using Ondrel::Image;
using Operation = Image (*)(const Image&);

void move(benchmark::State& state, Operation operation, unsigned int width, unsigned int height)
{
    const Image source = syntheticImage(width, height);
    for (auto _ : state) {
        const Image result = operation(source);
        benchmark::DoNotOptimize(result.data);
    }
    report(state, std::size_t(width) * height, 16);
}

// The result mapped and filled by a plain copy.
void moveFloor(benchmark::State& state)
{
    const Image source = syntheticImage(kWidth, kHeight);
    for (auto _ : state) {
        Image result(kWidth, kHeight);
        std::memcpy(result.data, source.data, source.sizeBytes);
        benchmark::DoNotOptimize(result.data);
    }
    report(state, kPixels, 16);
}

// Odd sides put every row of the result elsewhere in its cache lines.
void addMove(const std::string& name, Operation operation, Operation literal)
{
    const auto add = [](const std::string& title, Operation form, unsigned int width, unsigned int height) {
        benchmark::RegisterBenchmark(title.c_str(), move, form, width, height)
            ->UseRealTime()
            ->Unit(benchmark::kMillisecond);
    };
    add(name, operation, kWidth, kHeight);
    add(name + "/odd sides", operation, kWidth + 1, kHeight + 3);
    add(name + "/literal", literal, kWidth, kHeight);
}

const bool added = [] {
    addMove(
        "Rotate90", [](const Image& image) { return Rotate90(image, RotateSizeBounding); },
        [](const Image& image) { return OndrelReference::rotate90(image, RotateSizeBounding); });
    addMove(
        "Rotate180", [](const Image& image) { return Rotate180(image); },
        [](const Image& image) { return OndrelReference::rotate180(image); });
    addMove(
        "Rotate270", [](const Image& image) { return Rotate270(image, RotateSizeBounding); },
        [](const Image& image) { return OndrelReference::rotate270(image, RotateSizeBounding); });
    addMove(
        "HorizontalMirror", [](const Image& image) { return HorizontalMirror(image); },
        [](const Image& image) { return OndrelReference::horizontalMirror(image); });
    addMove(
        "VerticalMirror", [](const Image& image) { return VerticalMirror(image); },
        [](const Image& image) { return OndrelReference::verticalMirror(image); });
    addMove(
        "Crop", [](const Image& image) { return Crop(image, 1, 1, 1, 1); },
        [](const Image& image) { return OndrelReference::crop(image, 1, 1, 1, 1); });
    addMove(
        "Translate", [](const Image& image) { return Translate(image, -10, -10); },
        [](const Image& image) { return OndrelReference::translate(image, -10, -10); });
    return true;
}();

} // namespace

BENCHMARK(moveFloor)->Name("Whole-image geometry/floor")->UseRealTime()->Unit(benchmark::kMillisecond);

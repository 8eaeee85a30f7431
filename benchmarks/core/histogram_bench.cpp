#include "benchmarks/support/benchimages.h"
#include "benchmarks/support/figures.h"
#include "tests/reference/image_reference.h"

#include <cstring>

namespace
{

using namespace OndrelBench;

// As a curves editor asks (lightness and colours) or a histogram widget (luminance and colours).
void histogram(benchmark::State& state, bool lightness)
{
    const Ondrel::Image image = syntheticImage(kWidth, kHeight);
    Ondrel::Image::Histogram result;
    for (auto _ : state) {
        image.BuildHistogram(result, !lightness, lightness, true, true, true, 256);
        benchmark::DoNotOptimize(result.red.data());
    }
    report(state, kPixels, 8);
}

void histogramLiteral(benchmark::State& state, bool lightness)
{
    const Ondrel::Image image = syntheticImage(kWidth, kHeight);
    Ondrel::Image::Histogram result;
    for (auto _ : state) {
        OndrelReference::buildHistogram(image, result, !lightness, lightness, true, true, true, 256);
        benchmark::DoNotOptimize(result.red.data());
    }
    report(state, kPixels, 8);
}

// Reading every pixel once.
void histogramFloor(benchmark::State& state)
{
    const Ondrel::Image image = syntheticImage(kWidth, kHeight);
    for (auto _ : state) {
        std::uint64_t sum = 0;
        for (std::size_t i = 0; i < kPixels; ++i) {
            std::uint64_t pixel;
            std::memcpy(&pixel, image.data + 4 * i, sizeof pixel);
            sum += pixel;
        }
        benchmark::DoNotOptimize(sum);
    }
    report(state, kPixels, 8);
}

const bool added = [] {
    for (const bool lightness : {false, true}) {
        const std::string name = lightness ? "BuildHistogram, lightness" : "BuildHistogram, luminance";
        add(name, histogram, lightness);
        add(name + "/literal", histogramLiteral, lightness);
        add(name + "/floor", histogramFloor);
    }
    return true;
}();

} // namespace

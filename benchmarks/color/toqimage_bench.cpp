#include "benchmarks/color/colorbench.h"

#include <ondrel/color/colortransformer.h>
#include <ondrel/color/displaypacking_p.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace
{

using namespace OndrelBench;

void unmanaged(benchmark::State& state)
{
    const Ondrel::Image image = syntheticImage(kWidth, kHeight);
    for (auto _ : state) {
        const QImage result = Ondrel::ColorTransformer::toQImage(image, true);
        benchmark::DoNotOptimize(result.constBits());
    }
    report(state, kPixels, 12);
}

void unmanagedLiteral(benchmark::State& state)
{
    const Ondrel::Image image = syntheticImage(kWidth, kHeight);
    const auto rounded = [](float v) {
        return static_cast<uchar>(std::clamp(static_cast<int>(std::nearbyint(v)), 0, 255));
    };
    for (auto _ : state) {
        QImage result(kWidth, kHeight, QImage::Format_ARGB32_Premultiplied);
        uchar* bytes = result.bits();
        for (std::size_t i = 0; i < kPixels; ++i) {
            const std::uint16_t* pixel = image.data + 4 * i;
            const float scale = 1.5259022e-5f;
            const float alpha = static_cast<float>(pixel[3]) * scale;
            bytes[4 * i] = rounded(static_cast<float>(pixel[2]) * scale * alpha * 255.0f);
            bytes[4 * i + 1] = rounded(static_cast<float>(pixel[1]) * scale * alpha * 255.0f);
            bytes[4 * i + 2] = rounded(static_cast<float>(pixel[0]) * scale * alpha * 255.0f);
            bytes[4 * i + 3] = rounded(alpha * 255.0f);
        }
        benchmark::DoNotOptimize(bytes);
    }
    report(state, kPixels, 12);
}

// A new picture, each pixel read and a word written.
void unmanagedFloor(benchmark::State& state)
{
    const Ondrel::Image image = syntheticImage(kWidth, kHeight);
    for (auto _ : state) {
        QImage result(kWidth, kHeight, QImage::Format_ARGB32_Premultiplied);
        uchar* bytes = result.bits();
        for (std::size_t i = 0; i < kPixels; ++i) {
            std::uint64_t pixel;
            std::memcpy(&pixel, image.data + 4 * i, sizeof pixel);
            const auto word = static_cast<std::uint32_t>(pixel);
            std::memcpy(bytes + 4 * i, &word, sizeof word);
        }
        benchmark::DoNotOptimize(bytes);
    }
    report(state, kPixels, 12);
}

void packing(benchmark::State& state)
{
    const auto level = static_cast<SIMDCompatibility>(state.range(0));
    if (CheckSIMDCompatibility() < level) {
        state.SkipWithError("this processor lacks the instructions");
        return;
    }
    const Ondrel::Image image = syntheticImage(kWidth, kHeight);
    std::vector<unsigned char> bytes(kPixels * 4);
    for (auto _ : state) {
        Ondrel::packForDisplay(image.data, bytes.data(), kPixels, level);
        benchmark::DoNotOptimize(bytes.data());
    }
    report(state, kPixels, 12);
}

void managed(benchmark::State& state)
{
    const Ondrel::Image image = photograph();
    Ondrel::ColorManager::reload();
    benchmark::DoNotOptimize(Ondrel::ColorTransformer::toQImage(image, false)); // builds the transforms
    for (auto _ : state) {
        const QImage result = Ondrel::ColorTransformer::toQImage(image, false);
        benchmark::DoNotOptimize(result.constBits());
    }
    report(state, kPixels, 12);
}

// Little CMS alone on two threads, into memory that is there.
void managedFloor(benchmark::State& state)
{
    const Ondrel::Image image = photograph();
    std::array<unsigned char, 32> hash{};
    const Ondrel::OwnedProfile display(Ondrel::ColorManager::copyDisplayProfile(hash));
    const TwoTransforms transforms(image.colorProfile, display.get(), TYPE_RGBA_16, TYPE_RGBA_16);
    Ondrel::Image result(image);
    for (auto _ : state) {
        transforms.run(image.data, result.data, 8);
        benchmark::DoNotOptimize(result.data);
    }
    report(state, kPixels, 16);
}

} // namespace

BENCHMARK(unmanaged)->Name("toQImage/unmanaged")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(unmanagedLiteral)->Name("toQImage/unmanaged/literal")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(unmanagedFloor)->Name("toQImage/unmanaged/floor")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(packing)
    ->Name("packForDisplay")
    ->ArgName("level")
    ->Arg(SIMD_SSE42)
    ->Arg(SIMD_AVX)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(managed)->Name("toQImage/managed")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(managedFloor)->Name("toQImage/managed/floor")->UseRealTime()->Unit(benchmark::kMillisecond);

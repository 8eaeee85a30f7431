#include "benchmarks/color/colorbench.h"

#include <ondrel/color/colortransformer.h>

namespace
{

using namespace OndrelBench;

QByteArray bytesOf(const std::array<unsigned char, 32>& hash)
{
    return {reinterpret_cast<const char*>(hash.data()), static_cast<int>(hash.size())};
}

void convert(benchmark::State& state)
{
    const Ondrel::Image image = photograph();
    const QByteArray destination = bytesOf(Ondrel::DefaultColorProfileHash);
    for (auto _ : state) {
        const Ondrel::Image result = ConvertColorSpace(image, "Automatic", destination, INTENT_PERCEPTUAL);
        benchmark::DoNotOptimize(result.data);
    }
    report(state, kPixels, 16);
}

// Little CMS alone on two threads, into a new result.
void convertFloor(benchmark::State& state)
{
    const Ondrel::Image image = photograph();
    const Ondrel::OwnedProfile destination(
        Ondrel::ColorManager::copyColorProfileByHash(Ondrel::DefaultColorProfileHash));
    const TwoTransforms transforms(image.colorProfile, destination.get(), TYPE_RGBA_16, TYPE_RGBA_16);
    for (auto _ : state) {
        Ondrel::Image result(kWidth, kHeight);
        transforms.run(image.data, result.data, 8);
        benchmark::DoNotOptimize(result.data);
    }
    report(state, kPixels, 16);
}

} // namespace

BENCHMARK(convert)->Name("ConvertColorSpace")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(convertFloor)->Name("ConvertColorSpace/floor")->UseRealTime()->Unit(benchmark::kMillisecond);

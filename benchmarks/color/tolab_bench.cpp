#include "benchmarks/color/colorbench.h"

#include <ondrel/color/colorprofiles.h>

namespace
{

using namespace OndrelBench;

void toLab(benchmark::State& state)
{
    const Ondrel::Image image = photograph();
    for (auto _ : state) {
        const std::vector<float> result = Ondrel::ColorManager::toLab(image);
        benchmark::DoNotOptimize(result.data());
    }
    report(state, kPixels, 20);
}

// Little CMS alone on two threads, into a new result.
void toLabFloor(benchmark::State& state)
{
    const Ondrel::Image image = photograph();
    const Ondrel::OwnedProfile lab(Ondrel::CreateLabColorProfile());
    const TwoTransforms transforms(image.colorProfile, lab.get(), TYPE_RGBA_16, TYPE_Lab_FLT);
    for (auto _ : state) {
        std::vector<float> result(kPixels * 3);
        transforms.run(image.data, result.data(), 12);
        benchmark::DoNotOptimize(result.data());
    }
    report(state, kPixels, 20);
}

} // namespace

BENCHMARK(toLab)->Name("toLab")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(toLabFloor)->Name("toLab/floor")->UseRealTime()->Unit(benchmark::kMillisecond);

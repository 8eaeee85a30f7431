#include "benchmarks/color/colorbench.h"

#include <ondrel/color/softproof.h>

#include <thread>

namespace
{

using namespace OndrelBench;

// ProPhoto RGB again, with a gamma of 1: a device of another profile, without a file.
std::array<unsigned char, 32> deviceProfile()
{
    const Ondrel::OwnedProfile profile(Ondrel::CreateLinearProPhotoRGBColorProfile());
    return Ondrel::ColorManager::buildColorProfileHash(profile.get());
}

void proof(benchmark::State& state)
{
    const Ondrel::Image image = photograph();
    const auto hash = deviceProfile();
    const QByteArray device(reinterpret_cast<const char*>(hash.data()), static_cast<int>(hash.size()));
    for (auto _ : state) {
        const Ondrel::Image result = SoftProof(image, device, INTENT_PERCEPTUAL, false, false);
        benchmark::DoNotOptimize(result.data);
    }
    report(state, kPixels, 16);
}

// Little CMS alone on two threads: two transforms made, and a new result filled.
void proofFloor(benchmark::State& state)
{
    const Ondrel::Image image = photograph();
    std::array<unsigned char, 32> hash{};
    const Ondrel::OwnedProfile display(Ondrel::ColorManager::copyDisplayProfile(hash));
    const Ondrel::OwnedProfile source(Ondrel::ColorManager::copyColorProfileByHash(image.colorProfile));
    const Ondrel::OwnedProfile device(Ondrel::ColorManager::copyColorProfileByHash(deviceProfile()));
    for (auto _ : state) {
        Ondrel::Image result(kWidth, kHeight);
        const auto convertHalf = [&](std::size_t first) {
            const Ondrel::OwnedTransform transform(
                cmsCreateProofingTransform(source.get(), TYPE_RGBA_16, display.get(), TYPE_RGBA_16, device.get(),
                                           INTENT_PERCEPTUAL, INTENT_PERCEPTUAL, cmsFLAGS_SOFTPROOFING));
            cmsDoTransform(transform.get(), image.data + first * 4, result.data + first * 4, kPixels / 2);
        };
        std::thread other(convertHalf, kPixels / 2);
        convertHalf(0);
        other.join();
        benchmark::DoNotOptimize(result.data);
    }
    report(state, kPixels, 16);
}

} // namespace

BENCHMARK(proof)->Name("SoftProof")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(proofFloor)->Name("SoftProof/floor")->UseRealTime()->Unit(benchmark::kMillisecond);

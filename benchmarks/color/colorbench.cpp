#include "benchmarks/color/colorbench.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <thread>

namespace OndrelBench
{

std::array<unsigned char, 32> photographProfile()
{
    const Ondrel::OwnedProfile profile(Ondrel::CreateProPhotoRGBColorProfile());
    return Ondrel::ColorManager::buildColorProfileHash(profile.get());
}

Ondrel::Image photograph()
{
    Ondrel::Image image = syntheticImage(kWidth, kHeight);
    image.colorProfile = photographProfile();
    return image;
}

TwoTransforms::TwoTransforms(const std::array<unsigned char, 32>& source, void* destination, unsigned int sourceFormat,
                             unsigned int destinationFormat)
{
    const Ondrel::OwnedProfile profile(Ondrel::ColorManager::copyColorProfileByHash(source));
    for (Ondrel::OwnedTransform& transform : m_transforms)
        transform.reset(
            cmsCreateTransform(profile.get(), sourceFormat, destination, destinationFormat, INTENT_PERCEPTUAL, 0));
}

void TwoTransforms::run(const void* source, void* destination, std::size_t destinationPixelSize) const
{
    constexpr std::size_t half = kPixels / 2;
    const auto* from = static_cast<const unsigned char*>(source);
    auto* to = static_cast<unsigned char*>(destination);
    std::thread other(
        [&] { cmsDoTransform(m_transforms[1].get(), from + half * 8, to + half * destinationPixelSize, half); });
    cmsDoTransform(m_transforms[0].get(), from, to, half);
    other.join();
}

} // namespace OndrelBench

int main(int argc, char** argv)
{
    // The registry looks for the user's profiles beside the settings: not in the real ones.
    const QTemporaryDir settings;
    qputenv("XDG_CONFIG_HOME", settings.path().toLocal8Bit());
    const QCoreApplication application(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("ondrel"));
    QCoreApplication::setApplicationName(QStringLiteral("benchmarks"));
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}

// Bytes as an ICC profile: into the registry, into a conversion, to the display, and out again.

#include "checks.h"

#include <ondrel/color/colorprofiles.h>
#include <ondrel/color/colortransformer.h>

#include <QByteArray>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using Ondrel::ColorManager;
    const std::size_t profiles = OndrelFuzz::profileCount();
    const std::vector<unsigned char> bytes(data, data + size);
    Ondrel::GetICCProfileName(data, size);
    std::array<unsigned char, 32> hash{};
    if (ColorManager::addColorProfile(bytes, ColorManager::ColorProfile::Embedded, &hash)) {
        Ondrel::Image image(7, 3);
        image.FastFill(30000);
        image.colorProfile = hash;
        Ondrel::ColorTransformer::toQImage(image, false);
        ColorManager::toLab(image);
        const QByteArray name(reinterpret_cast<const char*>(hash.data()), 32);
        const QByteArray sRGB(reinterpret_cast<const char*>(Ondrel::DefaultColorProfileHash.data()), 32);
        ConvertColorSpace(image, name, sRGB, 0);
        ConvertColorSpace(image, sRGB, name, 1);
        std::vector<unsigned char> icc;
        ResourceEngine::PrepareImageForExport(image, Ondrel::EmbeddedColorProfile, icc);
        ColorManager::removeColorProfile(hash, ColorManager::ColorProfile::Embedded);
        ColorManager::reload(); // forgets the cached transforms, so that memory does not grow from input to input
    }
    OndrelFuzz::require(OndrelFuzz::profileCount() == profiles, "the registry is as it was");
    return 0;
}

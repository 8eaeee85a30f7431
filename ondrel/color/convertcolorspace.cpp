#include <ondrel/color/cmsrows_p.h>
#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>
#include <ondrel/color/colortransformer.h>
#include <ondrel/color/lcms_p.h>
#include <ondrel/core/pixelsinblock_p.h>

#include <algorithm>

namespace
{

using Hash = std::array<unsigned char, 32>;

Ondrel::Image copyWithProfile(const Ondrel::Image& image, const Hash& hash)
{
    Ondrel::Image result(image);
    result.colorProfile = hash;
    return result;
}

Ondrel::Image blackFrame(const Ondrel::Image& image, const Hash& hash)
{
    Ondrel::Image result(image.width, image.height);
    result.Fill(0, 0, 0, 65535);
    result.colorProfile = hash;
    return result;
}

bool isLab(const Ondrel::OwnedProfile& profile)
{
    return cmsGetColorSpace(profile.get()) == cmsSigLabData;
}

// False if Little CMS has no transform for this pair.
bool convertPixels(const Ondrel::Image& image, const Ondrel::PixelConversion& conversion, Ondrel::Image& result)
{
    Ondrel::ColorTransformCache cache;
    const std::size_t pixels = std::min(pixelsInBlock(image), pixelsInBlock(result));
    return Ondrel::convertRows(conversion, cache, image.width, pixels, Ondrel::kConversionGrainRows,
                               [&](void* transform, std::size_t first, std::size_t last) {
                                   Ondrel::forEachPiece(
                                       first, transform ? last : first, [&](std::size_t at, std::size_t count) {
                                           const std::uint16_t* from = image.data + at * 4;
                                           std::uint16_t* to = result.data + at * 4;
                                           cmsDoTransform(transform, from, to, static_cast<cmsUInt32Number>(count));
                                           for (std::size_t i = 3; i < count * 4; i += 4)
                                               to[i] = from[i];
                                       });
                               });
}

} // namespace

Ondrel::Image ConvertColorSpace(const Ondrel::Image& image, const QByteArray& sourceProfile,
                                const QByteArray& destinationProfile, unsigned int intent)
{
    Hash sourceHash = Ondrel::QByteArrayToColorProfileHash(sourceProfile);
    const Hash destinationHash = Ondrel::QByteArrayToColorProfileHash(destinationProfile);
    if (sourceHash == destinationHash)
        return copyWithProfile(image, destinationHash);
    if (sourceProfile == "Automatic")
        sourceHash = image.colorProfile;

    const Ondrel::OwnedProfile source(Ondrel::ColorManager::copyColorProfileByHash(sourceHash));
    const Ondrel::OwnedProfile destination(Ondrel::ColorManager::copyColorProfileByHash(destinationHash));
    if (!source || !destination)
        return blackFrame(image, destinationHash);
    if (isLab(source) && isLab(destination))
        return copyWithProfile(image, destinationHash);

    Ondrel::Image result(image.width, image.height);
    result.colorProfile = destinationHash;
    const Ondrel::PixelConversion conversion = {source.get(), Ondrel::imagePixelFormat(source.get()), destination.get(),
                                                Ondrel::imagePixelFormat(destination.get()), intent};
    if (!convertPixels(image, conversion, result))
        result.Fill(0, 0, 0, 65535);
    return result;
}

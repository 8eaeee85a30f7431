#include <ondrel/color/cmsrows_p.h>
#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>
#include <ondrel/color/colortransformer.h>
#include <ondrel/color/lcms_p.h>

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
    Ondrel::ColorTransformCache cache;
    if (!Ondrel::convertImage(Ondrel::transformMaker(conversion), cache, image, result))
        result.Fill(0, 0, 0, 65535);
    return result;
}

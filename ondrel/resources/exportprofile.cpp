#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>
#include <ondrel/resources/profileconversion_p.h>
#include <ondrel/resources/resourceengine.h>

#include <utility>

bool ResourceEngine::PrepareImageForExport(const Ondrel::Image& image,
                                           const std::array<unsigned char, 32>& colorProfile,
                                           std::vector<unsigned char>& iccProfile)
{
    using Ondrel::ColorManager;
    if (colorProfile == Ondrel::NoneColorProfile)
        return true;
    const Ondrel::OwnedProfile own(ColorManager::copyColorProfileByHash(image.colorProfile));
    if (!own)
        return true;
    if (colorProfile == Ondrel::EmbeddedColorProfile) {
        Ondrel::GetICCProfileData(own.get(), iccProfile);
        return true;
    }
    const Ondrel::OwnedProfile target(ColorManager::copyColorProfileByHash(colorProfile));
    if (!target)
        return true;
    // Taken before a transform is built, which can change what Little CMS saves of a table profile.
    std::vector<unsigned char> bytes;
    Ondrel::GetICCProfileData(target.get(), bytes);
    // In place, through the const reference: callers hand in a copy of their own, and so save another one here.
    // Pixels in a profile that cannot be embedded would be read as something else.
    if (!bytes.empty() && Ondrel::convertPixels(const_cast<Ondrel::Image&>(image), own.get(), target.get()))
        iccProfile = std::move(bytes);
    return true;
}

#include <ondrel/resources/embeddedprofile_p.h>

namespace Ondrel
{

bool validateRecord(const std::shared_ptr<ResourceEngine::ImageInfo>& info, OwnedProfile& profile)
{
    void* handle = nullptr;
    const bool valid = info->format == ResourceEngine::FormatRAW ? ResourceEngine::ValidateRawImage(info, &handle)
                                                                 : ResourceEngine::ValidateImage(info, &handle);
    profile.reset(handle);
    if (profile && (!valid || cmsGetColorSpace(profile.get()) != cmsSigRgbData))
        profile.reset();
    return valid;
}

} // namespace Ondrel

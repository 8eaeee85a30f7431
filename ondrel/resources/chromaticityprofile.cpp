#include <ondrel/resources/chromaticityprofile_p.h>

namespace Ondrel
{

OwnedProfile createChromaticityProfile(const cmsCIExyY& whitePoint, const cmsCIExyYTRIPLE& primaries,
                                       cmsToneCurve* const curves[3], const char* description)
{
    OwnedProfile profile(cmsCreateRGBProfile(&whitePoint, &primaries, curves));
    if (!profile)
        return profile;
    const OwnedMLU text(cmsMLUalloc(nullptr, 1));
    if (text && cmsMLUsetASCII(text.get(), "en", "US", description))
        cmsWriteTag(profile.get(), cmsSigProfileDescriptionTag, text.get());
    return profile;
}

} // namespace Ondrel

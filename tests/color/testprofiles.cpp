#include "testprofiles.h"

#include <lcms2.h>

#include <algorithm>
#include <cstring>

namespace OndrelTest
{

void CloseProfile::operator()(void* profile) const
{
    cmsCloseProfile(profile);
}

Profile rgbProfile(double gamma, const std::string& description)
{
    const cmsCIExyY white = {0.3127, 0.3290, 1.0};
    const cmsCIExyYTRIPLE primaries = {{0.64, 0.33, 1.0}, {0.30, 0.60, 1.0}, {0.15, 0.06, 1.0}};
    cmsToneCurve* const curve = cmsBuildGamma(nullptr, gamma);
    cmsToneCurve* const curves[3] = {curve, curve, curve};
    Profile profile(cmsCreateRGBProfile(&white, &primaries, curves));
    cmsFreeToneCurve(curve);
    if (description.empty()) {
        cmsWriteTag(profile.get(), cmsSigProfileDescriptionTag, nullptr);
        return profile;
    }
    cmsMLU* const text = cmsMLUalloc(nullptr, 1);
    cmsMLUsetASCII(text, "en", "US", description.c_str());
    cmsWriteTag(profile.get(), cmsSigProfileDescriptionTag, text);
    cmsMLUfree(text);
    return profile;
}

Profile greyProfile()
{
    cmsToneCurve* const curve = cmsBuildGamma(nullptr, 2.2);
    Profile profile(cmsCreateGrayProfile(cmsD50_xyY(), curve));
    cmsFreeToneCurve(curve);
    return profile;
}

Profile labProfile()
{
    return Profile(cmsCreateLab4Profile(nullptr));
}

Profile cmykProfile()
{
    return Profile(cmsCreateInkLimitingDeviceLink(cmsSigCmykData, 300));
}

Profile reopened(const Profile& profile)
{
    const Bytes bytes = savedBytes(profile.get());
    return Profile(cmsOpenProfileFromMem(bytes.data(), cmsUInt32Number(bytes.size())));
}

Bytes savedBytes(void* profile)
{
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile, nullptr, &size);
    Bytes bytes(size);
    cmsSaveProfileToMem(profile, bytes.data(), &size);
    return bytes;
}

QByteArray toByteArray(const Hash& hash)
{
    return QByteArray(reinterpret_cast<const char*>(hash.data()), int(hash.size()));
}

Hash wordHash(const char* word)
{
    Hash hash{};
    std::copy_n(word, std::min<std::size_t>(std::strlen(word), 32), hash.begin());
    return hash;
}

} // namespace OndrelTest

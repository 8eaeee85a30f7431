#include <ondrel/color/colorprofiles.h>
#include <ondrel/color/lcms_p.h>

#include <algorithm>

namespace Ondrel
{
namespace
{

void describe(cmsHPROFILE profile, const char* text)
{
    const OwnedMLU description(cmsMLUalloc(nullptr, 1));
    if (!profile || !description)
        return;
    cmsMLUsetASCII(description.get(), "en", "US", text);
    cmsWriteTag(profile, cmsSigProfileDescriptionTag, description.get());
}

void linearize(cmsHPROFILE profile)
{
    // A parametric curve: cmsBuildGamma would store a table.
    const cmsFloat64Number parameters[] = {1.0, 0.0};
    const OwnedToneCurve linear(cmsBuildParametricToneCurve(nullptr, 1, parameters));
    if (!profile || !linear)
        return;
    for (const cmsTagSignature tag : {cmsSigRedTRCTag, cmsSigGreenTRCTag, cmsSigBlueTRCTag})
        cmsWriteTag(profile, tag, linear.get());
}

} // namespace

void* CreateProPhotoRGBColorProfile()
{
    const cmsCIExyYTRIPLE primaries = {
        {0.7347, 0.2653, 0.28804}, {0.1596, 0.8404, 0.711874}, {0.0366, 0.0001, 0.000086}};
    const OwnedToneCurve gamma(cmsBuildGamma(nullptr, 1.8));
    if (!gamma)
        return nullptr;
    cmsToneCurve* const curves[3] = {gamma.get(), gamma.get(), gamma.get()};
    cmsHPROFILE profile = cmsCreateRGBProfile(cmsD50_xyY(), &primaries, curves);
    describe(profile, "ProPhoto RGB");
    return profile;
}

void* CreateLinearProPhotoRGBColorProfile()
{
    void* profile = CreateProPhotoRGBColorProfile();
    describe(profile, "Linear ProPhoto RGB");
    linearize(profile);
    return profile;
}

void* Create_sRGBColorProfile()
{
    return cmsCreate_sRGBProfile();
}

void* CreateLinear_sRGBColorProfile()
{
    void* profile = Create_sRGBColorProfile();
    describe(profile, "Linear sRGB");
    linearize(profile);
    return profile;
}

void* CreateLabColorProfile()
{
    cmsHPROFILE profile = cmsCreateLab2Profile(cmsD50_xyY());
    describe(profile, "CIELAB D50 built-in");
    return profile;
}

std::vector<std::vector<unsigned char>> EnumerateSystemColorProfiles()
{
    return {};
}

QString GetICCProfileName(const unsigned char* data, unsigned long size)
{
    const OwnedProfile profile = openProfile(data, size);
    if (!profile)
        return {};
    std::array<char, 513> text{};
    cmsGetProfileInfoASCII(profile.get(), cmsInfoDescription, "en", "US", text.data(), 512);
    return QString::fromLatin1(text.data());
}

void GetICCProfileData(void* profile, std::vector<unsigned char>& data)
{
    data.clear();
    cmsUInt32Number size = 0;
    if (!profile || !cmsSaveProfileToMem(profile, nullptr, &size))
        return;
    data.resize(size);
    if (!cmsSaveProfileToMem(profile, data.data(), &size))
        data.clear();
}

void* CopyICCProfile(void* profile)
{
    std::vector<unsigned char> data;
    GetICCProfileData(profile, data);
    return openProfile(data).release();
}

unsigned int renderingIntentFromString(const QString& name)
{
    if (name == QLatin1String("Relative Colorimetric"))
        return INTENT_RELATIVE_COLORIMETRIC;
    if (name == QLatin1String("Saturation"))
        return INTENT_SATURATION;
    if (name == QLatin1String("Absolute Colorimetric"))
        return INTENT_ABSOLUTE_COLORIMETRIC;
    return INTENT_PERCEPTUAL;
}

std::array<unsigned char, 32> QByteArrayToColorProfileHash(const QByteArray& bytes)
{
    std::array<unsigned char, 32> hash{};
    std::copy_n(bytes.begin(), std::min<std::size_t>(static_cast<std::size_t>(bytes.size()), hash.size()),
                hash.begin());
    return hash;
}

} // namespace Ondrel

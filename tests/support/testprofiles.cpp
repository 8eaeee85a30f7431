#include "testprofiles.h"

#include <algorithm>
#include <cstring>

namespace OndrelTest
{

void CloseProfile::operator()(void* profile) const
{
    cmsCloseProfile(profile);
}

namespace
{

void describe(void* profile, const std::string& description)
{
    cmsMLU* const text = cmsMLUalloc(nullptr, 1);
    cmsMLUsetASCII(text, "en", "US", description.c_str());
    cmsWriteTag(profile, cmsSigProfileDescriptionTag, text);
    cmsMLUfree(text);
}

// An RGB profile with sRGB primaries. Frees the curve.
Profile profileWithCurve(cmsToneCurve* curve)
{
    const cmsCIExyY white = {0.3127, 0.3290, 1.0};
    const cmsCIExyYTRIPLE primaries = {{0.64, 0.33, 1.0}, {0.30, 0.60, 1.0}, {0.15, 0.06, 1.0}};
    cmsToneCurve* const curves[3] = {curve, curve, curve};
    Profile profile(cmsCreateRGBProfile(&white, &primaries, curves));
    cmsFreeToneCurve(curve);
    return profile;
}

struct TableShape {
    unsigned int channels;
    unsigned int darkest; // the lightness that all ink or light together has
};

// Any function will do that is neither constant nor the same for all channels.
int sampleTable(const cmsUInt16Number in[], cmsUInt16Number out[], void* tableShape)
{
    const TableShape& shape = *static_cast<const TableShape*>(tableShape);
    unsigned int sum = 0;
    for (unsigned int i = 0; i < shape.channels; ++i)
        sum += in[i];
    const unsigned int mean = sum / shape.channels;
    out[0] = static_cast<cmsUInt16Number>(65535 - mean + mean * shape.darkest / 65535);
    out[1] = static_cast<cmsUInt16Number>(24000 + in[0] / 4);
    out[2] = static_cast<cmsUInt16Number>(42000 - in[shape.channels - 1] / 4);
    return 1;
}

void writeTable(void* profile, cmsTagSignature tag, TableShape shape)
{
    cmsPipeline* const pipeline = cmsPipelineAlloc(nullptr, shape.channels, 3);
    cmsStage* const table = cmsStageAllocCLut16bit(nullptr, shape.channels > 5 ? 2 : 5, shape.channels, 3, nullptr);
    cmsStageSampleCLut16bit(table, sampleTable, &shape, 0);
    cmsPipelineInsertStage(pipeline, cmsAT_END, cmsStageAllocToneCurves(nullptr, shape.channels, nullptr));
    cmsPipelineInsertStage(pipeline, cmsAT_END, table);
    cmsPipelineInsertStage(pipeline, cmsAT_END, cmsStageAllocToneCurves(nullptr, 3, nullptr));
    cmsWriteTag(profile, tag, pipeline);
    cmsPipelineFree(pipeline);
}

} // namespace

Profile rgbProfile(double gamma, const std::string& description)
{
    Profile profile = profileWithCurve(cmsBuildGamma(nullptr, gamma));
    if (description.empty()) {
        cmsWriteTag(profile.get(), cmsSigProfileDescriptionTag, nullptr);
        return profile;
    }
    describe(profile.get(), description);
    return profile;
}

Profile flatProfile()
{
    const cmsUInt16Number table[] = {0, 0, 16384, 32768, 65535};
    return profileWithCurve(cmsBuildTabulatedToneCurve16(nullptr, 5, table));
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

Profile tableProfile(cmsColorSpaceSignature space)
{
    const unsigned int channels = cmsChannelsOf(space);
    Profile profile(cmsCreateProfilePlaceholder(nullptr));
    cmsSetProfileVersion(profile.get(), 4.3);
    cmsSetDeviceClass(profile.get(), cmsSigInputClass);
    cmsSetColorSpace(profile.get(), space);
    cmsSetPCS(profile.get(), cmsSigLabData);
    describe(profile.get(), "Table of " + std::to_string(channels));
    writeTable(profile.get(), cmsSigAToB0Tag, {channels, 0});
    writeTable(profile.get(), cmsSigAToB1Tag, {channels, 20000});
    writeTable(profile.get(), cmsSigAToB2Tag, {channels, 40000});
    return profile;
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

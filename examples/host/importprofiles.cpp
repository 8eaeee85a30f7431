#include "importprofiles.h"

#include "lcmshandles.h"

#include <ondrel/color/colorprofiles.h>

#include <algorithm>
#include <memory>

namespace Host
{
namespace
{

struct FreeCurve {
    void operator()(cmsToneCurve* curve) const { cmsFreeToneCurve(curve); }
};
struct FreePipeline {
    void operator()(cmsPipeline* pipeline) const { cmsPipelineFree(pipeline); }
};
using Curve = std::unique_ptr<cmsToneCurve, FreeCurve>;
using Pipeline = std::unique_ptr<cmsPipeline, FreePipeline>;

// As Little CMS resamples a profile of four inks.
constexpr cmsUInt32Number kGridPoints = 17;

FileBytes savedBytes(const Profile& profile)
{
    FileBytes bytes;
    if (profile)
        Ondrel::GetICCProfileData(profile.get(), bytes);
    constexpr std::ptrdiff_t date = 24; // in the header, twelve bytes
    if (bytes.size() > date + 12)
        std::fill_n(bytes.begin() + date, 12, static_cast<unsigned char>(0));
    return bytes;
}

FileBytes makeGreyProfile()
{
    const cmsFloat64Number parameters[] = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
    const Curve curve(cmsBuildParametricToneCurve(nullptr, 4, parameters));
    return savedBytes(Profile(curve ? cmsCreateGrayProfile(cmsD50_xyY(), curve.get()) : nullptr));
}

cmsInt32Number sampleInks(const cmsUInt16Number in[], cmsUInt16Number out[], void* toLab)
{
    constexpr double full = 65535;
    double rgb[3];
    for (int i = 0; i < 3; ++i)
        rgb[i] = (1 - in[i] / full) * (1 - in[3] / full);
    cmsDoTransform(toLab, rgb, out, 1);
    return 1;
}

// Null without memory.
Pipeline inkTable()
{
    const Profile srgb(Ondrel::Create_sRGBColorProfile()), lab(cmsCreateLab2Profile(nullptr));
    const Transform toLab(srgb && lab ? cmsCreateTransform(srgb.get(), TYPE_RGB_DBL, lab.get(), TYPE_LabV2_16,
                                                           INTENT_RELATIVE_COLORIMETRIC, cmsFLAGS_NOOPTIMIZE)
                                      : nullptr);
    Pipeline pipeline(cmsPipelineAlloc(nullptr, 4, 3));
    cmsStage* const table = cmsStageAllocCLut16bit(nullptr, kGridPoints, 4, 3, nullptr);
    const bool ok = toLab && pipeline && table && cmsStageSampleCLut16bit(table, sampleInks, toLab.get(), 0) &&
                    cmsPipelineInsertStage(pipeline.get(), cmsAT_END, table); // which owns it then
    if (!ok && table)
        cmsStageFree(table);
    return ok ? std::move(pipeline) : nullptr;
}

FileBytes makeInkProfile()
{
    const Pipeline table = inkTable();
    const Profile profile(cmsCreateProfilePlaceholder(nullptr));
    if (!table || !profile)
        return {};
    cmsSetProfileVersion(profile.get(), 2.1); // of version 4, a perceptual black that no such inks have is assumed
    cmsSetDeviceClass(profile.get(), cmsSigOutputClass);
    cmsSetColorSpace(profile.get(), cmsSigCmykData);
    cmsSetPCS(profile.get(), cmsSigLabData);
    const bool ok = cmsWriteTag(profile.get(), cmsSigMediaWhitePointTag, cmsD50_XYZ()) &&
                    cmsWriteTag(profile.get(), cmsSigAToB0Tag, table.get());
    return ok ? savedBytes(profile) : FileBytes();
}

} // namespace

const FileBytes& greyProfile()
{
    static const FileBytes bytes = makeGreyProfile();
    return bytes;
}

const FileBytes& inkProfile()
{
    static const FileBytes bytes = makeInkProfile();
    return bytes;
}

} // namespace Host

#include <ondrel/color/colorprofiles.h>
#include <ondrel/resources/chromaticityprofile_p.h>
#include <ondrel/resources/tiffprofile_p.h>

#include <vector>

namespace Ondrel
{
namespace
{

constexpr std::size_t kMostCurveEntries = 65530; // Little CMS takes no more
constexpr std::size_t kThinning = 16;

OwnedToneCurve toneCurve(const std::uint16_t* table, std::size_t entries)
{
    if (entries <= kMostCurveEntries)
        return OwnedToneCurve(cmsBuildTabulatedToneCurve16(nullptr, cmsUInt32Number(entries), table));
    std::vector<std::uint16_t> thinned;
    for (std::size_t i = 0; i < entries; i += kThinning)
        thinned.push_back(table[i]);
    thinned.push_back(table[entries - 1]);
    return OwnedToneCurve(cmsBuildTabulatedToneCurve16(nullptr, cmsUInt32Number(thinned.size()), thinned.data()));
}

OwnedProfile chromaticityProfile(TIFF* tiff, std::uint16_t bits)
{
    const float* white = nullptr;
    const float* primary = nullptr;
    if (!TIFFGetField(tiff, TIFFTAG_WHITEPOINT, &white) || !TIFFGetField(tiff, TIFFTAG_PRIMARYCHROMATICITIES, &primary))
        return nullptr;
    if (bits > 16) // libtiff would make a default table of 2^32 entries
        return nullptr;
    const std::uint16_t* tables[3] = {nullptr, nullptr, nullptr}; // of a grey file libtiff sets the first alone
    if (!TIFFGetFieldDefaulted(tiff, TIFFTAG_TRANSFERFUNCTION, &tables[0], &tables[1], &tables[2]) || !tables[0])
        return nullptr;
    OwnedToneCurve curves[3];
    for (int i = 0; i < 3; ++i)
        curves[i] = toneCurve(tables[i] ? tables[i] : tables[0], std::size_t(1) << bits);
    if (!curves[0] || !curves[1] || !curves[2])
        return nullptr;
    const cmsCIExyY whitePoint{white[0], white[1], 1.0};
    const cmsCIExyYTRIPLE primaries{
        {primary[0], primary[1], 1.0}, {primary[2], primary[3], 1.0}, {primary[4], primary[5], 1.0}};
    cmsToneCurve* const pointers[3] = {curves[0].get(), curves[1].get(), curves[2].get()};
    return createChromaticityProfile(whitePoint, primaries, pointers, "TIFF Image RGB");
}

OwnedProfile assumedProfile(unsigned int type)
{
    if (type == PT_GRAY) {
        const OwnedToneCurve gamma(cmsBuildGamma(nullptr, 2.2));
        return OwnedProfile(gamma ? cmsCreateGrayProfile(cmsD50_xyY(), gamma.get()) : nullptr);
    }
    if (type == PT_RGB)
        return OwnedProfile(Create_sRGBColorProfile());
    if (type == PT_LabV2)
        return OwnedProfile(CreateLabColorProfile());
    return nullptr;
}

OwnedProfile anyProfile(TIFF* tiff, const TiffLayout& layout)
{
    std::uint32_t size = 0;
    const unsigned char* icc = nullptr;
    OwnedProfile profile;
    if (TIFFGetField(tiff, TIFFTAG_ICCPROFILE, &size, &icc))
        profile = openProfile(icc, size);
    else
        profile = chromaticityProfile(tiff, layout.fileBits);
    if (!profile)
        profile = assumedProfile(layout.type);
    return profile;
}

} // namespace

OwnedProfile createTiffProfile(TIFF* tiff, const TiffLayout& layout)
{
    OwnedProfile profile = anyProfile(tiff, layout);
    if (profile && unsigned(_cmsLCMScolorSpace(cmsGetColorSpace(profile.get()))) != layout.type)
        profile.reset();
    return profile;
}

} // namespace Ondrel

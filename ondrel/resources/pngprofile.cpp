#include <ondrel/color/colorprofiles.h>
#include <ondrel/resources/chromaticityprofile_p.h>
#include <ondrel/resources/pngprofile_p.h>

namespace Ondrel
{
namespace
{

constexpr double kDefaultGamma = 0.45454545454545453; // a curve's exponent as it stands, not a file gamma

OwnedProfile chromaticityProfile(const PngColours& c)
{
    const cmsCIExyY white{c.white[0], c.white[1], 1.0};
    const cmsCIExyYTRIPLE primaries{
        {c.red[0], c.red[1], 1.0}, {c.green[0], c.green[1], 1.0}, {c.blue[0], c.blue[1], 1.0}};
    const double gamma = !c.gamma ? kDefaultGamma : c.fileGamma != 0.0 ? 1.0 / c.fileGamma : 0.0;
    const OwnedToneCurve curve(cmsBuildGamma(nullptr, gamma));
    if (!curve)
        return nullptr;
    cmsToneCurve* const curves[3] = {curve.get(), curve.get(), curve.get()};
    return createChromaticityProfile(white, primaries, curves, "PNG Image RGB");
}

} // namespace

void readPngColours(png_const_structp png, png_infop info, PngColours& c)
{
    c.srgb = png_get_valid(png, info, PNG_INFO_sRGB) != 0;
    png_charp name = nullptr;
    int compression = 0;
    png_bytep icc = nullptr;
    png_uint_32 iccSize = 0;
    if (png_get_iCCP(png, info, &name, &compression, &icc, &iccSize) == PNG_INFO_iCCP) {
        c.icc = icc;
        c.iccSize = iccSize;
    }
    c.chromaticities = png_get_cHRM(png, info, &c.white[0], &c.white[1], &c.red[0], &c.red[1], &c.green[0], &c.green[1],
                                    &c.blue[0], &c.blue[1]) == PNG_INFO_cHRM;
    c.gamma = png_get_gAMA(png, info, &c.fileGamma) == PNG_INFO_gAMA;
}

OwnedProfile createPngProfile(const PngColours& colours)
{
    OwnedProfile profile;
    if (colours.srgb)
        profile.reset(Create_sRGBColorProfile());
    else if (colours.icc)
        profile = openProfile(colours.icc, colours.iccSize);
    else if (colours.chromaticities)
        profile = chromaticityProfile(colours);
    if (!profile)
        profile.reset(Create_sRGBColorProfile());
    return profile;
}

} // namespace Ondrel

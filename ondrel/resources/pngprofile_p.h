#pragma once

#include <ondrel/color/lcms_p.h>

#include <png.h>

namespace Ondrel
{

// What a PNG file says about its colours: plain data, filled behind the libpng boundary.
struct PngColours {
    bool srgb;
    const unsigned char* icc; // belongs to libpng; null if there is none
    unsigned int iccSize;
    bool chromaticities;
    double white[2], red[2], green[2], blue[2]; // x and y
    bool gamma;
    double fileGamma;
};

void readPngColours(png_const_structp png, png_infop info, PngColours& colours);

// The first of the sRGB, iCCP and cHRM chunks decides. sRGB without any, and if what they say makes no profile.
OwnedProfile createPngProfile(const PngColours& colours);

} // namespace Ondrel

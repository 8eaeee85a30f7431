#pragma once

#include <ondrel/ondrel_export.h>

namespace Ondrel
{

// Colours between RGB, 0 to 1 each, and hue (degrees), saturation and lightness (0 to 1), after A. R. Smith, "Color
// gamut transform pairs" (1978), in its bi-hexcone form.
struct Rgb {
    double red = 0, green = 0, blue = 0;
};
struct Hsl {
    double hue = 0, saturation = 0, lightness = 0;
};

// Grey, black and white have a hue and a saturation of 0.
ONDREL_EXPORT Hsl toHsl(const Rgb& color);

// A hue outside of 0 to 360 gives the grey of the lightness' lower end of the chroma.
ONDREL_EXPORT Rgb toRgb(const Hsl& color);

} // namespace Ondrel

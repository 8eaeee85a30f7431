#pragma once

#include <ondrel/color/lcms_p.h>

namespace Ondrel
{

// The RGB profile of an image file that gives its colours by white point, primaries and tone curves instead of an ICC
// profile. `curves` holds the three of red, green and blue, which may be one object and stay the caller's. Null if
// Little CMS refuses the values, as it does those of a null curve.
OwnedProfile createChromaticityProfile(const cmsCIExyY& whitePoint, const cmsCIExyYTRIPLE& primaries,
                                       cmsToneCurve* const curves[3], const char* description);

} // namespace Ondrel

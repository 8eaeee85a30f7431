#pragma once

#include <ondrel/color/lcms_p.h>
#include <ondrel/core/image.h>

namespace Ondrel
{

// Converts all pixels in place, perceptually and on the calling thread; alpha stays. False, with the pixels as they
// were, if a profile is null or Little CMS has no conversion between RGB samples of the two.
[[nodiscard]] bool convertPixels(Image& image, void* source, void* destination);

} // namespace Ondrel

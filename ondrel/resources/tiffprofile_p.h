#pragma once

#include <ondrel/color/lcms_p.h>
#include <ondrel/resources/tifflayout_p.h>

#include <tiffio.h>

namespace Ondrel
{

// The profile of a TIFF file's samples: the embedded one; else one made of white point, primaries and transfer
// function; else one assumed for the colour model. Null if there is none of the file's colour model.
OwnedProfile createTiffProfile(TIFF* tiff, const TiffLayout& layout);

} // namespace Ondrel

#pragma once

#include <ondrel/core/image.h>

namespace Ondrel
{

// Fill a destination that has pixels with the filtered source, which has them too, as Scale_CPU tells.
void scaleBilinear(Image const& source, Image& destination);
void scaleBicubic(Image const& source, Image& destination);

} // namespace Ondrel

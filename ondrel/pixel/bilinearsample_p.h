#pragma once

#include <ondrel/core/image.h>

namespace Ondrel
{

// The four pixels around (x, y), edges repeated, mixed by the fractions of x and y: across first, then down. rgba gets
// premultiplied colours and alpha in the range 0 to 1; zeros for a position that is not finite.
void bilinearSamplePremultiplied(Image const& image, float x, float y, float* rgba);

} // namespace Ondrel

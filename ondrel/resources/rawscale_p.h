#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/image.h>

namespace Ondrel
{

// Maps the first three samples of each pixel from black..maximum to 0..65535, in single precision: (sample - black) *
// (65535 / (maximum - black)), truncated and limited, and 0 where that is not a number. The difference of the levels is
// unsigned. Alpha becomes 65535. Spreads over the threads of the pool.
ONDREL_EXPORT void ScaleColors(unsigned int black, unsigned int maximum, Ondrel::Image& image);

} // namespace Ondrel

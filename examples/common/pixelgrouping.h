#pragma once

#include "mosaic.h"

#include <ondrel/core/runstatus.h>

namespace Examples
{

// A Bayer mosaic with each value in the channel of its color, and its filter word as the picture lies.
struct Mosaic {
    Ondrel::Image image;
    unsigned int filters = 0;
};

// The two forms of the same interpolation, Patterned Pixel Grouping, with equal results: green first, then red and
// blue. A border of two pixels keeps what `picture` holds, which has the size of the mosaic.

// False if OpenCL is off, the device cannot do it, or the work was cancelled.
bool demosaicOnDevice(const Mosaic& mosaic, Ondrel::Image& picture, const Ondrel::RunStatus& status = {});

void demosaicOnProcessor(const Mosaic& mosaic, Ondrel::Image& picture, const Ondrel::RunStatus& status = {});

} // namespace Examples

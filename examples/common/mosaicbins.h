#pragma once

#include "mosaic.h"

#include <ondrel/core/runstatus.h>

namespace Examples
{

// The side of the smallest square of photosites that holds every color wherever it lies on the sensor: 2 for a Bayer, 3
// for an X-Trans mosaic.
unsigned int binSide(const Ondrel::Image& raw);

// A small picture of a Bayer or X-Trans mosaic without any interpolation: each pixel is, color by color, the mean of
// the photosites in a square of binSide(), rounded, halves up. Sides that are no multiple are rounded up, and the last
// squares moved inwards. The mosaic must have at least binSide() pixels in each direction. Opaque, without metadata;
// after a cancel the rest is left out.
Ondrel::Image binned(const Ondrel::Image& raw, const Ondrel::RunStatus& status);

} // namespace Examples

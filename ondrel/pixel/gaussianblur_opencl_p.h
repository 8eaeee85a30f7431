#pragma once

#include <ondrel/core/image.h>
#include <ondrel/core/runstatus.h>
#include <ondrel/pixel/gaussianblur.h>

namespace Ondrel
{

// GaussianBlur on the device of PixelOpenCL. False, with `result` of no value, if OpenCL is off, nothing is to be
// filtered, the driver refuses a step, or `status` asks to stop.
bool blurOnDevice(Image const& image, Image& result, float radiusX, float radiusY, GaussianEdge edge,
                  RunStatus const& status);

} // namespace Ondrel

#pragma once

#include <ondrel/core/cubicbezierspline.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace Ondrel
{

// The public description of a stored image. Sizes are in pixels, as decoded: after a JPEG's orientation has been
// applied and with the sides of a portrait RAW exchanged. The RAW members mean what the members of Ondrel::Image with
// the same names mean, and keep their zero values for every image that is no RAW file.
struct ImageInfo {
    std::uint32_t width = 0, height = 0;
    bool rawIsMosaic = false;
    std::uint32_t rawFilters = 0;
    bool rawHasInfo = false;
    float rawPreMultipliers[3] = {0, 0, 0};
    float rawCameraMultipliers[3] = {0, 0, 0};
    bool rawIdentityMatrix = false;
    std::shared_ptr<const std::vector<CubicBezierSpline::Point>> rawToneCurve; // shared, never changed; null if none
};

} // namespace Ondrel

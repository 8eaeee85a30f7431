#pragma once

#include <cstdint>
#include <memory>
#include <ondrel/core/cubicbezierspline.h>
#include <vector>
namespace Ondrel
{
struct ImageInfo {
    std::uint32_t width = 0, height = 0;
    bool rawIsMosaic = false;
    std::uint32_t rawFilters = 0;
    bool rawHasInfo = false;
    float rawPreMultipliers[3] = {0, 0, 0};
    float rawCameraMultipliers[3] = {0, 0, 0};
    bool rawIdentityMatrix = false;
    std::shared_ptr<const std::vector<CubicBezierSpline::Point>> rawToneCurve;
};
} // namespace Ondrel

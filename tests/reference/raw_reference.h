#pragma once

#include <ondrel/core/cubicbezierspline.h>
#include <ondrel/core/image.h>

#include <array>
#include <memory>
#include <vector>

class LibRaw;

// Camera RAW files, one pixel and one formula at a time, with a LibRaw of its own.
namespace OndrelReference
{

struct RawInfo {
    bool isMosaic = false;
    unsigned int filters = 0;
    std::array<float, 3> preMultipliers{}, cameraMultipliers{};
    bool identityMatrix = false;
    std::shared_ptr<std::vector<Ondrel::CubicBezierSpline::Point>> toneCurve;
};

RawInfo rawInfo(const LibRaw& raw);

// The linear profile of a camera, which the caller closes. Null for a singular matrix.
void* rawColorProfile(const LibRaw& raw);
void* rawColorProfile(const double (&colorMatrix)[3][3]); // XYZ to camera

void scaleColors(unsigned int black, unsigned int maximum, Ondrel::Image& image);

// The image turned as `flip`, in LibRaw's terms, asks for, and the `rawRotation` that goes with it.
Ondrel::Image turned(const Ondrel::Image& image, int flip);
unsigned int rawRotation(int flip);

// Everything of a file. Empty if LibRaw refuses to open it.
Ondrel::Image processRaw(const std::vector<unsigned char>& file);

// Whether LibRaw opens and unpacks a file.
bool isRaw(const std::vector<unsigned char>& file);

} // namespace OndrelReference

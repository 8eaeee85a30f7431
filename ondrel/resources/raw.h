#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/cubicbezierspline.h>
#include <ondrel/core/image.h>
#include <ondrel/core/runstatus.h>
#include <ondrel/resources/resourceid.h>

#include <array>
#include <memory>
#include <vector>

class LibRaw;

// Camera RAW files as the store decodes them: unpacked, scaled and turned upright, but not developed. White balance and
// demosaicing are left to whoever uses the image, by its RAW description.

namespace Ondrel
{

// Names the profile of a RAW image whose camera has no usable colour matrix: the built-in linear sRGB, since the
// samples are linear.
extern ONDREL_EXPORT const std::array<unsigned char, 32> DefaultRawColorProfileHash;

} // namespace Ondrel

// Decodes a RAW resource of the store. Each pixel of a mosaic holds its photosite in the sample of its colour, both
// greens in sample 1, and 0 in the other two; an image of a monochrome sensor has three equal samples, any other all
// three colours. The camera's black and white levels become 0 and 65535, values between them are truncated, and alpha
// is 65535. The image is turned as the camera was held, with the mosaic as it is: `rawRotation` tells by which turn,
// and `rawFilters` and `rawXTrans` are those of the sensor before it. `colorProfile` is that of GetRawColorProfile, or
// DefaultRawColorProfileHash; the store has registered the former while it keeps the resource.
//
// A resource that LibRaw cannot open gives an empty image and a line on standard error; one that cannot be unpacked is
// black. A run cannot be cancelled: `status` is not read. The store must not be locked by the calling thread; otherwise
// any number of calls may run at once, on threads with stacks of any usual size. Throws std::bad_alloc.
ONDREL_EXPORT Ondrel::Image ProcessRaw(Ondrel::ResourceId id, const Ondrel::RunStatus& status);

// Takes the RAW description of an opened file from LibRaw, in the terms of the members of Ondrel::Image. The
// multipliers are three floats each, red, green and blue. In `filters`, the pattern word of LibRaw, two bits a
// photosite, the second green (3) has become the first (1). `cameraMultipliers` are those of the shot if all are above
// 0, else the same as `preMultipliers`; three zeros become 2, 1, 1.5. `toneCurve` holds the strictly rising
// start of LibRaw's curve without its last entry, turned by 180 degrees. It is null if that start is a single entry,
// and if all entries are their own indices, up to and with the one that ends the start.
ONDREL_EXPORT void GetRawInfo(const LibRaw& raw, bool& isMosaic, unsigned int& filters, bool& hasInfo,
                              float* preMultipliers, float* cameraMultipliers, bool& identityMatrix,
                              std::shared_ptr<const std::vector<Ondrel::CubicBezierSpline::Point>>& toneCurve);

// The linear RGB profile of a camera, "RAW Image RGB", as a cmsHPROFILE that the caller closes: the primaries are the
// rows of the inverse of the transposed colour matrix, the white point is that of 6503.6 K. Null if the determinant of
// the matrix is not above 1e-12 in magnitude, or if Little CMS refuses the primaries.
ONDREL_EXPORT void* GetRawColorProfile(const LibRaw& raw);

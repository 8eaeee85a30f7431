#pragma once

#include <ondrel/color/cmstransform.h>

#include <cstddef>
#include <functional>

namespace Ondrel
{

// What a transform converts: two profiles, the pixel formats of both sides, and the intent.
struct PixelConversion {
    void* source;
    unsigned int sourceFormat;
    void* destination;
    unsigned int destinationFormat;
    unsigned int intent;
};

// The format of an image's pixels in a profile: Lab with an extra channel or RGBA, 16 bits. A null profile counts as
// RGBA.
unsigned int imagePixelFormat(void* profile);

// Calls body(transform, first, last) on several threads for disjoint ranges of pixels that together are [0, pixels) and
// begin and end at rows. The transform is the calling thread's own, from the cache, and built at its first use; it is
// null if Little CMS cannot build it. A task has at least `grainRows` rows. False if any transform was null.
bool convertRows(const PixelConversion& conversion, ColorTransformCache& cache, std::size_t width, std::size_t pixels,
                 std::size_t grainRows,
                 const std::function<void(void* transform, std::size_t first, std::size_t last)>& body);

constexpr std::size_t kConversionGrainRows = 256;

// Pixels that are converted and post-processed while they are in the first-level cache.
constexpr std::size_t kConversionPiece = 2048;

// Calls body(first, count) for consecutive pieces of [first, last).
template <typename Body>
void forEachPiece(std::size_t first, std::size_t last, Body body)
{
    for (; first < last; first += kConversionPiece)
        body(first, first + kConversionPiece < last ? kConversionPiece : last - first);
}

} // namespace Ondrel

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

// Builds a transform, or null if Little CMS cannot. Called on the thread that will use it.
using TransformMaker = std::function<void*()>;
TransformMaker transformMaker(const PixelConversion& conversion);

// Calls body(transform, first, last) on several threads for disjoint ranges of pixels that together are [0, pixels) and
// begin and end at rows. The transform is the calling thread's own, from the cache, and made at its first use. A task
// has at least `grainRows` rows. False if any transform was null.
bool convertRows(const TransformMaker& make, ColorTransformCache& cache, std::size_t width, std::size_t pixels,
                 std::size_t grainRows,
                 const std::function<void(void* transform, std::size_t first, std::size_t last)>& body);

// Converts the pixels of one image into another of its size and copies their alpha. False if any transform was null;
// pixels of the result are then left as they were.
bool convertImage(const TransformMaker& make, ColorTransformCache& cache, const Image& image, Image& result);

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

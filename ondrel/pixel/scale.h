#pragma once

#include <ondrel/ondrel_export.h>

#include <QString>
#include <ondrel/core/image.h>
#include <ondrel/pixel/pixelfetch.h>

namespace Ondrel
{

// How a scaled pixel is found. The values are those that hosts store; any other value leaves pixels unwritten.
enum class FilterMethod : unsigned int { NearestNeighbor = 0, Bilinear = 1, Bicubic = 2 };

} // namespace Ondrel

// Every function here runs on the calling thread, holds no lock (but for Scale on a device) and reads its source and
// writes its result alone, so calls on different images may run on any number of threads. An image whose block is
// smaller than its sides say (see Ondrel::Image) counts as one without pixels. No failure is reported but
// std::bad_alloc.

// "Nearest Neighbor", "Bilinear" and "Bicubic", compared exactly; any other text gives NearestNeighbor.
ONDREL_EXPORT Ondrel::FilterMethod InterpolationToFilter(QString const& name);

// The source scaled to width x height pixels. The result carries the colour
// profile hash of the source and no other metadata. A source of the asked size or without pixels is copied whole, with
// all metadata; a side of 0 gives an image without pixels. See Scale_CPU for the values. Bilinear runs on the device of
// PixelOpenCL where there is one (see Scale_OpenCL), waiting for it if it is in use, and on the processor otherwise.
ONDREL_EXPORT Ondrel::Image Scale(Ondrel::Image const& source, unsigned int width, unsigned int height,
                                  Ondrel::FilterMethod filter);

// The same on the processor. A destination that has the asked size keeps its block and its RAW description; any other
// is replaced. Source and destination must not be the same image.
//
// Nearest neighbour copies the pixel at (round(x * sx), round(y * sy)), halves upward, limited to the image, where s is
// source size / target size. The product is one of floats.
//
// The other two work on premultiplied floats, all in single precision, where one output pixel covers a box of the
// source. Bilinear: from x * sx - 0.5 to (x + 1) * sx - 0.5, its middle at (x + 0.5) * sx - 0.5. If neither side of the
// box exceeds 1.5 pixels, the value is the bilinear sample at the middle, else BilinearSupersampleMultiplied. Bicubic:
// from (x - 0.5) * sx - 0.5 to (x + 1.5) * sx - 0.5, the same middle; BicubicSample up to sides of 2.0, above it
// BicubicSupersampleMultiplied. Colours are then divided by alpha (multiplied by its reciprocal, 0 for alpha 0) and
// stored truncated: above 1 gives 65535, not above 0 gives 0.
ONDREL_EXPORT void Scale_CPU(Ondrel::Image const& source, Ondrel::Image& destination, unsigned int width,
                             unsigned int height, Ondrel::FilterMethod filter);

// Average of the box (xs[0], xs[2]) x (ys[0], ys[2]), in pixels, where the centre of pixel 0 is at 0; xs[1] and ys[1]
// are not read. rgba gets red, green, blue, premultiplied, then alpha, in the range 0 to 1.
//
// The box is cut into quadrants, until none is more than 1.5 pixels wide or high; the value of a quadrant is the
// bilinear sample at its centre. Each average is ((top left + top right) + bottom left) + bottom right, times 0.25. The
// cost grows with the square of the longer side. A box that is not finite gives zeros.
ONDREL_EXPORT void BilinearSupersampleMultiplied(Ondrel::Image const& image, float* xs, float* ys, float* rgba);

// The same with BicubicSample, for a box of twice the extent: the four points lie at 0.375 and 0.625 of each side, and
// each is handled as a box of a quarter of the sides while that exceeds 2.0 pixels. Values may lie outside 0 to 1.
ONDREL_EXPORT void BicubicSupersampleMultiplied(Ondrel::Image const& image, float* xs, float* ys, float* rgba);

// Separable cubic convolution of 4 x 4 pixels around (x, y), each row first (R. G. Keys, "Cubic convolution
// interpolation for digital image processing", IEEE Transactions on Acoustics, Speech, and Signal Processing 29, 1981,
// with a = -0.5). `Fetch` is GetPixelAsFloatRGBAPremultiplied or GetPixelAsFloatRGBABlankPremultiplied. rgba gets
// premultiplied colours and alpha, which may overshoot 0 and 1. A position that is not finite gives zeros.
template <void (*Fetch)(Ondrel::Image const&, int, int, float*)>
ONDREL_EXPORT void BicubicSample(Ondrel::Image const& image, float x, float y, float* rgba);

// A quick draft of the top left sourceWidth x sourceHeight pixels (cut to the image) in width x height pixels, without
// filter and without metadata. Pixel x is copied from (x + 0.5) * s - 0.5, rounded to even, where s is the size of the
// part / (target size + 0.5) in single precision. If width and height both equal the width of the part, the result is
// instead a copy of the whole source, metadata included. If the source or any argument is 0, so is the result.
ONDREL_EXPORT Ondrel::Image ScaleSubImageFast(Ondrel::Image const& source, unsigned int sourceWidth,
                                              unsigned int sourceHeight, unsigned int width, unsigned int height);

// The size that a user's resize settings ask for. `unit` is "Percentage" (of the image, 100 is its own size; rounded,
// halves upward) or "Pixels" (times pixelFactor, truncated); any other gives 0 x 0. `aspect` is "Ignore" (both sides as
// asked), "Keep" (the image's aspect, inside the asked size); any other text keeps the aspect and covers the asked
// size. Then each side is limited to 15000 by itself, and last comes 0 x 0 if the image has a side of 0; what is
// negative or not a number counts as 0. Both results are always written.
ONDREL_EXPORT void CalculateScaleSize(QString const& unit, QString aspect, unsigned int imageWidth,
                                      unsigned int imageHeight, float percentWidth, float percentHeight,
                                      unsigned int pixelWidth, unsigned int pixelHeight, float pixelFactor,
                                      unsigned int& width, unsigned int& height);

// The canvas of the source cut or extended at its right and bottom edges; what is new has the given colour. The result
// carries no metadata. A source of the asked size is copied with all metadata; one without pixels gives the colour
// alone.
ONDREL_EXPORT Ondrel::Image Resize(Ondrel::Image const& source, unsigned int width, unsigned int height,
                                   unsigned short r, unsigned short g, unsigned short b, unsigned short a);

// Cuts the image to its top left pixels inside its own block. Block and metadata stay. To be called only after
// Ondrel::Image::canSafelyResize has allowed it, and to shrink: a growing row overwrites those that are still to move.
ONDREL_EXPORT void ResizeInPlace(Ondrel::Image& image, unsigned int width, unsigned int height);

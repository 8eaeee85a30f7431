#pragma once

#include <ondrel/ondrel_export.h>

#include <QSize>
#include <ondrel/core/image.h>
#include <ondrel/core/runstatus.h>

// What lies outside of a picture that is blurred: the nearest edge pixel, zero in all four channels, or the picture
// again, without end. Any other value counts as Clamp.
enum class GaussianEdge : unsigned int { Clamp = 0, Blank = 1, Repeat = 2 };

// A Gaussian blur with a radius, in pixels, for each direction. The four channels are blurred alike and without
// premultiplication. The filter is a truncated Gaussian, lowered until it is zero at the radius + 1:
//
//     R = radius + 1, sigma = R / sqrt(2 ln 100), N = trunc(3 sigma + 1)      in single precision
//     w[i] = exp(-i^2 / (2 sigma^2)) - exp(-R^2 / (2 sigma^2))                in double precision, -N <= i <= N;
//                                                                             0 where i > R
//     weights: max(w[i] / sum of all w, 0)
//
// Every row is filtered first, then every column of what came out. A sample is the sum of double(sample) * weight in
// the order of the pixels, in double precision, rounded to 16 bits (halves away from zero, at most 65535) after each
// direction. The result is the same to the last bit for every set of vector instructions and every number of threads;
// the C library's exp is the only part that is not written here.
//
// The weights add up to 1 for whole radii. For a fractional radius N may lie beyond R; the weight there is below zero,
// takes part in the sum and is then dropped, so that the picture gets a little brighter (by 1.9 percent for two radii
// of 0.25).
//
// Both radii 0: a copy of the image with all its metadata, whatever `status` says. Otherwise a result without metadata:
// no colour profile, no RAW description. One radius 0: that direction is filtered with weights that leave it as it is.
// A radius of -1 or less, or one that is not a number, leaves its direction out; if that is so for both, the result is
// a copy with all metadata. A radius above 524288 counts as 524288. An image without pixels, or whose block is smaller
// than its sides say, is not read: the result is transparent black of its size or, if columns are filtered, empty.
//
// If the word of `status` is 1 when the call begins, the result is an empty image. A blur that has begun on the
// processor runs to its end. The rows are shared among all cores. Calls on any number of threads may read the same
// image. std::bad_alloc is thrown if memory is short.
//
// GaussianBlur first tries the device of PixelOpenCL, waiting for it if it is in use, and falls back to the processor
// if that is off or refuses a step. There the word of `status` is looked at after every 16384 pixels of a pass. The
// device sums in single precision and truncates after each direction, so that its samples are up to 2 below or 1 above
// those of the processor; and for Repeat it repeats the image once on each side, which suffices while N is not above
// the size in that direction.
ONDREL_EXPORT Ondrel::Image GaussianBlur(Ondrel::Image const& image, float radiusX, float radiusY, GaussianEdge edge,
                                         Ondrel::RunStatus const& status);

// The same on the processor.
ONDREL_EXPORT Ondrel::Image GaussianBlur_CPU(Ondrel::Image const& image, float radiusX, float radiusY,
                                             GaussianEdge edge, Ondrel::RunStatus const& status);

// The number of weights in each direction, 2 N + 1: a pixel has influence up to N pixels away. Always odd; 3 x 3 for
// the radii 0. Radii below -1 give what the formula gives, down to negative numbers. A radius that is not a number
// gives 1; what exceeds an int is limited to -2147483647 and 2147483647.
ONDREL_EXPORT QSize GaussianSampleSize(float radiusX, float radiusY);

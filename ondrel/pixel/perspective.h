#pragma once

#include <ondrel/ondrel_export.h>

#include <Eigen/Core>
#include <QSize>
#include <memory>
#include <ondrel/core/image.h>
#include <ondrel/core/rect.h>
#include <ondrel/pixel/geometry.h>
#include <ondrel/pixel/scale.h>

// Projective transforms and free rotation, by inverse mapping. A matrix maps source positions to output positions in
// homogeneous coordinates (R. Hartley, A. Zisserman, "Multiple View Geometry in Computer Vision", 2004, chapter 2). All
// run on the calling thread and only read their source, so any number of threads may call them. An image whose block is
// smaller than its sides say (see Ondrel::Image) counts as one without pixels.

// The size of the result of a transform.
enum TransformSize : unsigned int {
    TransformSizeKeep = 0,     // RectT<float>(0, 0, width, height)
    TransformSizeBounding = 1, // the bounding box of the source's corners under the matrix
};

// Resamples the source into `output` and returns the rectangle of pixels written, in the coordinates of `output`, its
// x, y, width and height each rounded, halves upward; by that it may reach one pixel beyond the image. The output has
// the width and height of the rectangle of CalculateTransformOutputBoundingRect at float(scale), truncated.
//
// `scale` is the size of the source and the output relative to the picture that the matrix is made for.
//
// `region` is a rectangle to refresh: its corners, divided by float(scale), go through the matrix and are multiplied by
// it, and the bounding box of that is written, as far as it lies in the output. An `output` of the right size is
// then kept and written in place, through whatever else shares it: nobody may read it meanwhile, and it must not be the
// source. With RectT<int>::invalid(), and for an output of another size or none, `output` becomes a new image that is
// written whole; images that others share stay as they are. The result carries no metadata.
//
// The position p of the output lies at inverse(p / scale + c + 0.5) * scale - 0.5 in the source, where c is the upper
// left corner of that rectangle (which is not divided by the scale). The pixel (x, y) comes from the quadrilateral that
// its corners (x, y) to (x + 1, y + 1) have in the source, where source pixel (i, j) is sampled at (i, j): so the
// identity is exact for the nearest neighbour alone, and other filters shift it by half a pixel. Positions are doubles,
// pixels premultiplied floats.
//  - NearestNeighbor copies the pixel at the position of (x, y), rounded with halves upward. Where that is outside the
//    source the output keeps what it has.
//  - Bilinear takes one sample at the position of the pixel's middle, Bicubic likewise BicubicSample, pixels outside
//    the source being transparent black. If two neighbouring corners are more than 1.5 source pixels apart in x or y,
//    both average instead the bilinear samples at the centres of quarters of the quadrilateral; a quarter that is still
//    as long is cut again, up to five times in all. The result is stored as by Scale_CPU; outside the source it is 0.
// Any other filter writes nothing. Any other `size` gives an output without pixels.
//
// A scale of 0 gives RectT<int>::invalid() and changes nothing. So do sides of the output that are negative, not a
// number or above the range of int, and an output of 2^30 pixels or more. A matrix with a determinant not above 1e-12
// in magnitude has no inverse: the output then is as if everything were outside the source. So are positions that are
// not finite. Throws std::bad_alloc without memory for the result, and `output` then is what it was.
ONDREL_EXPORT Ondrel::RectT<int> Transform(Ondrel::Image const& image, Ondrel::RectT<int> region, double scale,
                                           TransformSize size, Ondrel::FilterMethod filter,
                                           Eigen::Matrix<double, 3, 3> const& matrix,
                                           std::shared_ptr<const Ondrel::Image>& output);

// The rectangle of the output of a transform, fractions kept, for a picture of width x height pixels at the given
// scale. Its left and upper edge may be negative. The box starts from RectT<float>::initializeBoundingBox, so a side
// where all corners are negative ends at the smallest positive float instead. Any other `size` leaves `rect` as it is.
ONDREL_EXPORT void CalculateTransformOutputBoundingRect(unsigned int width, unsigned int height, float scale,
                                                        TransformSize size, Eigen::Matrix<double, 3, 3> const& matrix,
                                                        Ondrel::RectT<float>& rect);

// The size of a picture turned by an angle in degrees, negative ones too. RotateSizeKeep gives the size itself; by
// exact quarter turns its sides are exchanged, by exact half turns kept, in every other mode. Otherwise sides are
// truncated. (0, 0) for a size with a side below 1, an angle that is not finite (but for RotateSizeKeep) and any other
// mode.
ONDREL_EXPORT QSize CalculateRotateSize(QSize const& size, float angle, RotateSize mode);

// The picture turned counter-clockwise by an angle in degrees about its middle, on a canvas of CalculateRotateSize,
// without metadata. Exact quarter and half turns move pixels; every other angle, 0 too, resamples them by Transform. An
// image without pixels if a side of the canvas is 0, the angle is not finite, or the canvas has 2^30 pixels or more.
// Sine and cosine of other angles come from the C library, whose last bits may depend on the processor.
ONDREL_EXPORT Ondrel::Image Rotate(Ondrel::Image const& image, float angle, RotateSize mode,
                                   Ondrel::FilterMethod filter);

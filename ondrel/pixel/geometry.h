#pragma once

#include <ondrel/ondrel_export.h>

#include <QSize>
#include <ondrel/core/image.h>
#include <ondrel/core/rect.h>

// Exact moves of whole pixels. Every result is a new image without metadata, but that of SubImage carries the colour
// profile hash. All run on the calling thread and only read their source, so any number of threads may call them. Of an
// image without pixels all make an empty image; one whose block is smaller than its sides say (see Ondrel::Image)
// counts as such. Without memory for the result they throw std::bad_alloc.

// The size of the result of a rotation.
enum RotateSize : unsigned int {
    RotateSizeKeep = 0,      // that of the source: what falls outside is lost, corners are transparent
    RotateSizeBounding = 1,  // the bounding box of the turned image
    RotateSizeInscribed = 2, // the largest upright rectangle inside the turned image
};

// (width - left - right, height - top - bottom), or (-1, -1) if a margin or the sum of two opposite ones is not below
// the side that it is cut from. All values are compared as unsigned 32-bit numbers, sums included.
ONDREL_EXPORT QSize CalculateCropSize(QSize const& size, unsigned int left, unsigned int top, unsigned int right,
                                      unsigned int bottom);

// The image without the given margins; empty where CalculateCropSize refuses.
ONDREL_EXPORT Ondrel::Image Crop(Ondrel::Image const& image, unsigned int left, unsigned int top, unsigned int right,
                                 unsigned int bottom);

// The part of a rectangle that lies inside the image, with the colour profile hash of the source; an empty image with
// that hash if there is none.
ONDREL_EXPORT Ondrel::Image SubImage(Ondrel::Image const& image, unsigned int x, unsigned int y, unsigned int width,
                                     unsigned int height);

// The same; a negative coordinate becomes a large unsigned one, so that nothing is left.
ONDREL_EXPORT Ondrel::Image SubImage(Ondrel::Image const& image, Ondrel::RectT<int> const& rect);

// Left and right exchanged.
ONDREL_EXPORT Ondrel::Image HorizontalMirror(Ondrel::Image const& image);

// Top and bottom exchanged.
ONDREL_EXPORT Ondrel::Image VerticalMirror(Ondrel::Image const& image);

// (width + max(dx, 0), height + max(dy, 0)); (0, 0) for a size with a side below 1, and for a result that does not fit
// an int.
ONDREL_EXPORT QSize CalculateTranslateSize(QSize const& size, int dx, int dy);

// The image moved on a transparent canvas of that size. A positive shift leaves room at the left or top; a negative one
// drops columns or rows there and leaves the room at the other side.
ONDREL_EXPORT Ondrel::Image Translate(Ondrel::Image const& image, int dx, int dy);

// Counter-clockwise by a quarter: source pixel (x, y) goes to (y, width - 1 - x). With RotateSizeKeep the turned
// picture is centred on a canvas of the source's size; of an odd difference the extra column or row is lost at the
// right or bottom. Any other mode exchanges the sides.
ONDREL_EXPORT Ondrel::Image Rotate90(Ondrel::Image const& image, RotateSize mode);

// By a half: (x, y) goes to (width - 1 - x, height - 1 - y).
ONDREL_EXPORT Ondrel::Image Rotate180(Ondrel::Image const& image);

// Clockwise by a quarter: (x, y) goes to (height - 1 - y, x). `mode` as for Rotate90.
ONDREL_EXPORT Ondrel::Image Rotate270(Ondrel::Image const& image, RotateSize mode);

#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/image.h>
#include <ondrel/core/rect.h>
#include <vector>

namespace Ondrel
{

// A colour at a position from 0 to 1; samples from 0 to 65535, not premultiplied.
struct GradientStop {
    float position = 0;
    unsigned short red = 0, green = 0, blue = 0, alpha = 0;
};

// How the colours of two stops are mixed. Any value but the first mixes by lightness, chroma and hue.
enum GradientColorInterpolation : unsigned int {
    GradientColorInterpolationRGB = 0, // the samples as they are
    GradientColorInterpolationLCH = 1, // CIE L*C*h, along the shorter arc of hues
};

} // namespace Ondrel

// Start and end point, as fractions of the image's width and height.
struct GradientLinearGeometry {
    float x1 = 0, y1 = 0, x2 = 0, y2 = 0;
};

// An ellipse and its focal point. Centre, radii and the focal point's offset from the centre are fractions of the
// image's width and height; the angle is in radians.
struct GradientRadialGeometry {
    float centerX = 0, centerY = 0, radiusX = 0, radiusY = 0, angle = 0, focalX = 0, focalY = 0;
};

// Both renderers replace the pixels of `rect`, as far as it lies in the image; what was there does not shine through.
// Geometry refers to the whole image, and pixel (x, y) is computed at exactly (x, y). The stops must have gone through
// SanitizeGradientStops; of others nothing is promised but that they do no harm.
//
// A pixel gets its share t of the way from the first to the last stop, all in single precision and limited to 0 to 1. A
// curve of more than one knot replaces t by table[trunc(t * 65535)] / 65535, where the table of 65536 entries is its
// roundedSpline. Between stop p and the next one n, the first whose position is above t, f is
// (t - p.position) / (n.position - p.position), and each sample is trunc(n * f + p * (1 - f)); from the last stop on it
// is that stop's. A t that is not a number, as between equal points, takes the last stop too.
//
// With GradientColorInterpolationLCH lightness, chroma and hue are mixed so in CIE L*a*b*, and alpha as above. Colours
// are converted by the absolute colorimetric intent with the image's profile, or the display's or else sRGB if that
// profile is of a Lab space. Hues go through sin, cos and atan2 of the C library, whose last bits may depend on the
// processor; all else does not. An image whose profile is unknown, or does not fit RGB samples, is filled with 0 as a
// whole, alpha too.
//
// Pixels are computed on the calling thread; only the conversion from Lab runs on several. Throws std::bad_alloc
// without memory for tables and rows. An image whose block is smaller than its sides say counts as one without pixels.

// t is the projection of the pixel on the line from the start to the end point.
ONDREL_EXPORT void GradientLinear(Ondrel::Image& image, Ondrel::RectT<int> const& rect,
                                  GradientLinearGeometry const& geometry,
                                  std::vector<Ondrel::GradientStop> const& stops,
                                  Ondrel::GradientColorInterpolation interpolation,
                                  std::vector<Ondrel::CubicBezierSpline::Point> const& curve);

// t is the share of the way from the focal point through the pixel to the edge of the ellipse. A focal point beyond the
// ellipse is moved to its edge. The pixel is turned about the centre by the angle, then y is scaled so that the ellipse
// becomes a circle of radius rx. A radius of 0 counts as one pixel.
ONDREL_EXPORT void GradientRadial(Ondrel::Image& image, Ondrel::RectT<int> const& rect,
                                  GradientRadialGeometry const& geometry,
                                  std::vector<Ondrel::GradientStop> const& stops,
                                  Ondrel::GradientColorInterpolation interpolation,
                                  std::vector<Ondrel::CubicBezierSpline::Point> const& curve);

// Sorts the stops by position (equal ones keep their order), puts the first at 0 and the last at 1, and moves each of
// the others to at least 1.5259022e-5 (a 65535th) behind the one before, but not beyond 1; what stands behind a stop at
// exactly 1 is removed. No stops become opaque black and opaque white, a single one is doubled. A position that is not
// a number counts as 0.
ONDREL_EXPORT void SanitizeGradientStops(std::vector<Ondrel::GradientStop>& stops);

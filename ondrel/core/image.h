#pragma once

#include <ondrel/ondrel_export.h>

#include <QColor>
#include <QImage>
#include <array>
#include <cstdint>
#include <memory>
#include <ondrel/core/cubicbezierspline.h>
#include <vector>

namespace Ondrel
{

// The pixel container: four interleaved 16-bit samples a pixel (red, green, blue, alpha), 0 to 65535, not
// premultiplied, rows from top to bottom without gaps. Pixel (x, y) begins at data[(y * width + x) * 4].
//
// An image has no lock. Const operations may run on any number of threads at once, and threads may write disjoint
// pixels of one image.
//
// `sizeBytes` is computed as width * height * 4 in unsigned 32-bit arithmetic, widened and doubled, so images of 2^30
// pixels and more wrap; the operations of this class never touch memory beyond it. Wherever a block of pixels is
// needed and the system refuses it, std::bad_alloc is thrown and nothing stays counted in
// RunTimeStatistics::ImageMemory; an assignment then leaves its target empty.
class ONDREL_EXPORT Image
{
public:
    // A vector is empty (not asked for) or holds one counter for each bin.
    struct Histogram {
        std::vector<unsigned int> luminance, lightness, red, green, blue;
    };

    std::uint32_t width = 0;                      // pixels in a row
    std::uint32_t height = 0;                     // rows
    std::uint64_t sizeBytes = 0;                  // of the block as it was mapped; an in-place shrink keeps it
    std::uint16_t* data = nullptr;                // the block, owned; null for an image without pixels
    std::array<unsigned char, 32> colorProfile{}; // hash of the pixels' profile in ColorManager; all zero: none

    // What the pixels' RAW file said. rawPreMultipliers (daylight) and rawCameraMultipliers (as shot) are in the order
    // red, green, blue. rawRotation: 0 none, 1 180 degrees, 2 270 degrees, 3 90 degrees. rawToneCurve is shared
    // between copies and never changed once it is made.
    bool rawIsMosaic = false;
    std::uint32_t rawFilters = 0;
    bool rawHasInfo = false;
    float rawPreMultipliers[3] = {0, 0, 0};
    float rawCameraMultipliers[3] = {0, 0, 0};
    bool rawIdentityMatrix = false;
    std::uint32_t rawRotation = 0;
    unsigned char rawXTrans[6][6] = {};
    std::shared_ptr<std::vector<CubicBezierSpline::Point>> rawToneCurve;

    Image();

    // Transparent black, without metadata.
    Image(unsigned int width, unsigned int height);

    // The pixels of a QImage that has one 32-bit ARGB word a pixel; the format is not looked at and nothing is
    // unpremultiplied. Each channel value v becomes trunc(v / 255.0 * 65535.0). No metadata.
    explicit Image(QImage image); // explicit: job overloads on QImage and Image results must not be ambiguous

    // Copies the whole block, also after an in-place shrink, and the metadata.
    Image(Image const& other);

    // Takes the block and exchanges the metadata: the source is left without pixels and with this image's metadata.
    Image(Image&& other) noexcept;

    // As the constructors. Copying between equal `sizeBytes` keeps the block. Moving gives the old block back first
    // and clears rawIsMosaic, rawFilters and rawHasInfo, so that the source receives these three cleared; an image
    // moved to itself ends without pixels.
    Image& operator=(Image const& other);
    Image& operator=(Image&& other) noexcept;
    ~Image();

    // Whether the block is large enough for the new width with the present height, and for the new height with the
    // present width. That is the condition for moving rows within the block when an image shrinks.
    bool canSafelyResize(unsigned int newWidth, unsigned int newHeight) const;

    // Whether `other` can be assigned without a new block: equal `sizeBytes`, and room for its size.
    bool canSafelyAssignInPlace(Image const& other) const;

    // A deep copy, to be shared.
    std::shared_ptr<const Image> toPtr() const;

    // Sets every pixel, or those of a rectangle clipped to the image. x + w and y + h are 32-bit sums: a rectangle
    // whose sum wraps to or below its start fills nothing.
    void Fill(unsigned short r, unsigned short g, unsigned short b, unsigned short a);
    void Fill(unsigned short r, unsigned short g, unsigned short b, unsigned short a, unsigned int x, unsigned int y,
              unsigned int w, unsigned int h);

    // Sets every sample, alpha too.
    void FastFill(unsigned short value);

    // The mean colour of a box of pixels, 0 to 1 but for rounding, alpha ignored. A box that starts left of or above
    // the image is moved to the edge, not shortened; what lies beyond the right or lower edge is left out. False, with
    // the outputs unchanged, if no pixel is left. The sum runs in single precision from pixel to pixel, in row order.
    bool SampleAverageRGB(int x, int y, int w, int h, float& r, float& g, float& b) const;

    // Counts all pixels, transparent ones too, into `bins` equal classes. All five vectors are cleared first; those
    // asked for are filled, unless the image or `bins` is 0. With s = (bins - 1) / 65535.0 the bin is trunc(v * s) for
    // red, green, blue and luminance (0.299 R + 0.587 G + 0.114 B, truncated; green and red summed in single, blue
    // added in double precision; never above the last bin), and trunc(v * s + 0.5) for lightness, which is the mean of
    // the least and the greatest colour sample, halves down. A large image is counted on several threads.
    void BuildHistogram(Histogram& histogram, bool luminance, bool lightness, bool red, bool green, bool blue,
                        unsigned int bins) const;
};

} // namespace Ondrel

// A chequered backdrop of two colours. A corner of four cells lies at the middle of the image, half the width and half
// the height rounded up. A cell size of 0 leaves the first colour alone. The form for a QImage paints the second
// colour over the first one with QPainter, and so blends it where it is transparent.
ONDREL_EXPORT void Checkerboard(Ondrel::Image& image, unsigned int cellWidth, unsigned int cellHeight,
                                unsigned short r1, unsigned short g1, unsigned short b1, unsigned short a1,
                                unsigned short r2, unsigned short g2, unsigned short b2, unsigned short a2);
ONDREL_EXPORT void Checkerboard(QImage& image, unsigned int cellWidth, unsigned int cellHeight, QColor const& colorA,
                                QColor const& colorB);

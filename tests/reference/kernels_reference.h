#pragma once

#include <cstdint>

// The kernels of the OpenCL programs on the processor, in plain loops over all pixels. A picture is a buffer in the
// layout of Ondrel::Image: width * height pixels of four samples (red, green, blue, alpha), rows from top to bottom
// without gaps. `in` and `out` are different buffers; `out` must exist in full, since some kernels leave a part of it
// as it is.
namespace OndrelReference
{

using Sample = std::uint16_t;

// c0 and d0, to be run in this order into the same `out`: Patterned Pixel Grouping, first green and alpha, then red and
// blue. `filters` is the usual word of a Bayer sensor, two bits for each pixel of a pattern of 8 rows and 2 columns: 0
// red, 1 green, 2 blue. `in` holds each sensor value in the channel of its colour; other channels are not read. The two
// pixels next to each edge are left as they are.
void demosaicGreen(unsigned int w, unsigned int h, unsigned int filters, const Sample* in, Sample* out);
void demosaicRedBlue(unsigned int w, unsigned int h, unsigned int filters, const Sample* in, Sample* out);

// b1, d1, f1 (rows) and c1, e1, g1 (columns), in this order of edges: one direction of a separable filter, the sample
// in the middle of the `taps` weights being the pixel itself. Sums are in single precision and truncated to 16 bits,
// from 0 to 65535. For BlurEdge::Wrap, taps / 2 is at most the length of a row (a column).
enum class BlurDirection { Row, Column };
enum class BlurEdge { Clamp, Zero, Wrap };
void blurPass(BlurDirection direction, BlurEdge edge, unsigned int w, unsigned int h, const float* weights, int taps,
              const Sample* in, Sample* out);

// a2, in the order of its arguments. Arrays are red, green, blue.
struct Levels {
    float offset = 0, channelOffset[3] = {0, 0, 0};
    float gain = 1, channelGain[3] = {1, 1, 1};
    float black[3] = {0, 0, 0};
    float inputGain[3] = {1, 1, 1};
    float gamma = 1, channelGamma[3] = {1, 1, 1};
};

// Results below 0 are 0, and so are those that are no number, as the power of what is negative.
void levels(const Levels& levels, unsigned int pixelCount, const Sample* in, Sample* out);

// a3 to j3 for the radii 1 to 10; any radius here.
void median(int radius, unsigned int w, unsigned int h, const Sample* in, Sample* out);

// a4 to j4 and k4 to t4 for the radii 1 to 10; any radius here. `mask`: (2 * radius + 1) squared bytes of 0 or 1.
void erode(int radius, unsigned int w, unsigned int h, const Sample* in, Sample* out, const unsigned char* mask);
void dilate(int radius, unsigned int w, unsigned int h, const Sample* in, Sample* out, const unsigned char* mask);

// a5, b5, c5. w and h are those of `in`; after a quarter turn `out` is h wide.
void halfTurn(unsigned int w, unsigned int h, const Sample* in, Sample* out);
void quarterTurnCounterClockwise(unsigned int w, unsigned int h, const Sample* in, Sample* out);
void quarterTurnClockwise(unsigned int w, unsigned int h, const Sample* in, Sample* out);

// a6 and f6.
void scaleNearest(const Sample* in, unsigned int inW, unsigned int inH, Sample* out, unsigned int outW,
                  unsigned int outH);
void scaleBilinear(const Sample* in, unsigned int inW, unsigned int inH, Sample* out, unsigned int outW,
                   unsigned int outH);

// How often f6 cuts a box of this size, in pixels: 0 where it takes one sample, else the level whose grid is
// 2^level x 2^level samples.
int supersampleLevel(float boxWidth, float boxHeight);

// a7, over `pixelCount` pixels.
void unsharpMask(float amount, int threshold, unsigned int pixelCount, const Sample* in, const Sample* blurred,
                 Sample* out);

} // namespace OndrelReference

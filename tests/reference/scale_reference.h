#pragma once

#include <ondrel/pixel/scale.h>

namespace OndrelReference
{

// Scale_CPU: pixel for pixel, sample for sample.
Ondrel::Image scale(const Ondrel::Image& source, unsigned int width, unsigned int height, Ondrel::FilterMethod filter);

Ondrel::Image scaleSubImageFast(const Ondrel::Image& source, unsigned int sourceWidth, unsigned int sourceHeight,
                                unsigned int width, unsigned int height);

// One bilinear sample at (x, y) with clamped coordinates: premultiplied red, green, blue, then alpha.
void bilinearSample(const Ondrel::Image& image, float x, float y, float* rgba);
void bicubicSample(const Ondrel::Image& image, float x, float y, float* rgba);
void bilinearSupersample(const Ondrel::Image& image, const float* xs, const float* ys, float* rgba);
void bicubicSupersample(const Ondrel::Image& image, const float* xs, const float* ys, float* rgba);

} // namespace OndrelReference

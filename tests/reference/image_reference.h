#pragma once

#include <ondrel/core/image.h>

namespace OndrelReference
{

// Image::BuildHistogram, one pass for each histogram that is asked for.
void buildHistogram(const Ondrel::Image& image, Ondrel::Image::Histogram& histogram, bool luminance, bool lightness,
                    bool red, bool green, bool blue, unsigned int bins);

// The chequered backdrop, decided pixel by pixel from the cell in which it lies.
void checkerboard(Ondrel::Image& image, unsigned int cellWidth, unsigned int cellHeight, const unsigned short* first,
                  const unsigned short* second);

} // namespace OndrelReference

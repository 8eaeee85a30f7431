#pragma once

#include <ondrel/ondrel_export.h>

#include <QString>
#include <ondrel/core/image.h>
#include <ondrel/pixel/pixelfetch.h>
namespace Ondrel
{
enum class FilterMethod : unsigned int { NearestNeighbor = 0, Bilinear = 1, Bicubic = 2 };
}
ONDREL_EXPORT Ondrel::FilterMethod InterpolationToFilter(QString const& name);
ONDREL_EXPORT Ondrel::Image Scale(Ondrel::Image const& source, unsigned int width, unsigned int height,
                                  Ondrel::FilterMethod filter);
ONDREL_EXPORT void Scale_CPU(Ondrel::Image const& source, Ondrel::Image& destination, unsigned int width,
                             unsigned int height, Ondrel::FilterMethod filter);
ONDREL_EXPORT void BilinearSupersampleMultiplied(Ondrel::Image const& image, float* xs, float* ys, float* rgba);
ONDREL_EXPORT void BicubicSupersampleMultiplied(Ondrel::Image const& image, float* xs, float* ys, float* rgba);
template <void (*Fetch)(Ondrel::Image const&, int, int, float*)>
ONDREL_EXPORT void BicubicSample(Ondrel::Image const& image, float x, float y, float* rgba);
ONDREL_EXPORT Ondrel::Image ScaleSubImageFast(Ondrel::Image const& source, unsigned int sourceWidth,
                                              unsigned int sourceHeight, unsigned int width, unsigned int height);
ONDREL_EXPORT void CalculateScaleSize(QString const& unit, QString aspect, unsigned int imageWidth,
                                      unsigned int imageHeight, float percentWidth, float percentHeight,
                                      unsigned int pixelWidth, unsigned int pixelHeight, float pixelFactor,
                                      unsigned int& width, unsigned int& height);
ONDREL_EXPORT Ondrel::Image Resize(Ondrel::Image const& source, unsigned int width, unsigned int height,
                                   unsigned short r, unsigned short g, unsigned short b, unsigned short a);
ONDREL_EXPORT void ResizeInPlace(Ondrel::Image& image, unsigned int width, unsigned int height);
// rgba of the samplers: premultiplied red, green, blue, then alpha

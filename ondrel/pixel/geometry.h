#pragma once

#include <ondrel/ondrel_export.h>

#include <QSize>
#include <ondrel/core/image.h>
#include <ondrel/core/rect.h>
enum RotateSize : unsigned int { RotateSizeKeep = 0, RotateSizeBounding = 1, RotateSizeInscribed = 2 };
ONDREL_EXPORT QSize CalculateCropSize(QSize const& size, unsigned int left, unsigned int top, unsigned int right,
                                      unsigned int bottom);
ONDREL_EXPORT Ondrel::Image Crop(Ondrel::Image const& image, unsigned int left, unsigned int top, unsigned int right,
                                 unsigned int bottom);
ONDREL_EXPORT Ondrel::Image SubImage(Ondrel::Image const& image, unsigned int x, unsigned int y, unsigned int width,
                                     unsigned int height);
ONDREL_EXPORT Ondrel::Image SubImage(Ondrel::Image const& image, Ondrel::RectT<int> const& rect);
ONDREL_EXPORT Ondrel::Image HorizontalMirror(Ondrel::Image const& image);
ONDREL_EXPORT Ondrel::Image VerticalMirror(Ondrel::Image const& image);
ONDREL_EXPORT QSize CalculateTranslateSize(QSize const& size, int dx, int dy);
ONDREL_EXPORT Ondrel::Image Translate(Ondrel::Image const& image, int dx, int dy);
ONDREL_EXPORT Ondrel::Image Rotate90(Ondrel::Image const& image, RotateSize mode);
ONDREL_EXPORT Ondrel::Image Rotate180(Ondrel::Image const& image);
ONDREL_EXPORT Ondrel::Image Rotate270(Ondrel::Image const& image, RotateSize mode);

#pragma once

#include <ondrel/pixel/geometry.h>

// Whole-image moves, one pixel at a time by their formulas.
namespace OndrelReference
{

Ondrel::Image crop(const Ondrel::Image& image, unsigned int left, unsigned int top, unsigned int right,
                   unsigned int bottom);
Ondrel::Image horizontalMirror(const Ondrel::Image& image);
Ondrel::Image verticalMirror(const Ondrel::Image& image);
Ondrel::Image translate(const Ondrel::Image& image, int dx, int dy);
Ondrel::Image rotate90(const Ondrel::Image& image, RotateSize mode); // counter-clockwise
Ondrel::Image rotate180(const Ondrel::Image& image);
Ondrel::Image rotate270(const Ondrel::Image& image, RotateSize mode);

} // namespace OndrelReference

#pragma once

#include <ondrel/pixel/painter.h>

#include <vector>

namespace OndrelReference
{

// A brush and its weights, (2 * radius + 1) squared in rows.
struct Brush {
    unsigned short red = 0, green = 0, blue = 0, alpha = 65535, radius = 10;
    float hardness = 1.0f;
    double cutoff = 4.0, falloff = 0.3;
    float opacity = 1.0f;
    std::vector<float> mask;

    void buildMask();
};

// Stamps the brush at (x, y), or erases with it.
void stamp(Ondrel::Image& image, const Brush& brush, int x, int y, bool draw);

// Sweeps the brush along a segment that is not of zero length; every pixel of `area` is looked at.
void sweep(Ondrel::Image& image, const Brush& brush, QPoint from, QPoint to, const Ondrel::RectT<int>& area);

// Composes the whole of `source` over `target` at (x, y).
void compose(Ondrel::Image& target, int x, int y, const Ondrel::Image& source, float opacity);

} // namespace OndrelReference

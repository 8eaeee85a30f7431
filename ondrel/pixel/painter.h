#pragma once

#include <ondrel/ondrel_export.h>

#include <QPoint>
#include <ondrel/core/image.h>
#include <ondrel/core/rect.h>
#include <vector>

// Draws on an image that it does not own: a soft round brush, at points and along lines, and other images. All drawing
// is "over" on pixels that are not premultiplied (T. Porter, T. Duff, "Compositing Digital Images", SIGGRAPH 1984),
// computed in single precision and stored truncated, limited to 0 to 65535. Where the resulting alpha is 0 the pixel
// stays as it is, since its colour is not defined.
//
// Without an image, and on one whose block is smaller than its sides say, nothing is drawn. A painter is used from one
// thread at a time, on an image that no one else writes.
class ONDREL_EXPORT PixelPainter
{
public:
    // The image may be null and must outlive its use here. The brush is black, radius 10, and has only the first 100
    // weights of its mask until setBrush is called: what lies beyond them does not draw.
    PixelPainter(Ondrel::Image* image);

    // Draws on another image from now on, with the same brush. It may be null and must outlive its use here.
    void setImage(Ondrel::Image* image);

    // The image that is drawn on; null if there is none. Not owned.
    Ondrel::Image* image() const;

    // Scales the alpha of everything drawn, from 0 to 1; 1 at the start. It is not limited: results outside the range
    // of a sample are, and with what is not a number nothing useful is drawn.
    void setOpacity(float opacity);

    // Colour, radius in pixels and profile of the brush. Inside trunc(radius * hardness), with a hardness of at most
    // 0.99, it is solid; from there, with v growing from 0 to 1 at the radius, its weight is exp(-v^2 / (2 falloff^2))
    // less the value of that at v = cutoff, and 0 beyond cutoff. Equal values leave the mask as it is. The mask has
    // (2 * radius + 1)^2 weights of four bytes, 64 GiB for the largest radius; the last row and column are 0. Throws
    // std::bad_alloc without memory for it. A radius of 0 draws nothing.
    void setBrush(unsigned short r, unsigned short g, unsigned short b, unsigned short a, unsigned short radius,
                  float hardness, double cutoff, double falloff);

    // Stamps the brush on the pixels from point - radius to point + radius - 1.
    void drawPoint(QPoint const& point) const;

    // Takes trunc(weight * alpha / 65535 * opacity * 65535) from the alpha of the same pixels, down to 0. Colours stay.
    void erasePoint(QPoint const& point) const;

    // drawPoint or erasePoint.
    void drawOrErasePoint(QPoint const& point, bool draw) const;

    // Sweeps the brush along a segment; each pixel gets the weight at its distance from it, once. A segment without
    // length acts as one stamp. Returns the rectangle of the pixels looked at, right and bottom not included: the box
    // around the segment widened and lengthened by the radius, its corners rounded, cut to the image; an empty one
    // without an image.
    Ondrel::RectT<int> drawLine(QPoint from, QPoint to);

    // RectT(x - radius, y - radius, 2 * radius, 2 * radius), with `clip` cut to RectT(0, 0, width, height), which
    // leaves a size of zero if they are disjoint. Edges are limited to the range of int.
    static Ondrel::RectT<int> pointBoundingRect(QPoint point, unsigned short radius, bool clip, unsigned int width,
                                                unsigned int height);

    // The same for the brush and the image; an empty rectangle if `clip` is set and there is no image.
    Ondrel::RectT<int> pointBoundingRect(QPoint point, bool clip) const;

    // Draws width x height pixels of `source` from (sourceX, sourceY) on at (x, y), as far as they lie in both images;
    // nothing for a width or height below 1. Colours are not converted: profile hashes are not looked at. A source that
    // is the target itself is read as it changes.
    void drawImage(int x, int y, int sourceX, int sourceY, int width, int height, Ondrel::Image const& source);

    // Draws the whole source.
    void drawImage(int x, int y, Ondrel::Image const& source);

    // Replaces pixels by those of the source, as far as it fits; without copyAlpha the target keeps its alpha. Nothing
    // happens if (x, y) is outside the image.
    void copyImage(unsigned int x, unsigned int y, Ondrel::Image const& source, bool copyAlpha);

    // The same with alpha, for the part that SubImage cuts from the source. A negative x or y is outside the image; a
    // width or height below 1 copies nothing.
    void copyImage(int x, int y, int sourceX, int sourceY, int width, int height, Ondrel::Image const& source);

private:
    float strength() const;
    std::vector<float> const& wholeMask(std::vector<float>& space) const;
    void stamp(QPoint const& point, bool draw) const;
    Ondrel::RectT<int> sweptRect(QPoint from, QPoint to) const;

    Ondrel::Image* m_image;
    unsigned short m_red = 0;
    unsigned short m_green = 0;
    unsigned short m_blue = 0;
    unsigned short m_alpha = 65535;
    unsigned short m_radius = 10;
    float m_hardness = 1.0f;
    double m_cutoff = 4.0;
    double m_falloff = 0.3;
    float m_opacity = 1.0f;
    std::vector<float> m_mask;
};

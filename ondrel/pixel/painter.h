#pragma once

#include <ondrel/ondrel_export.h>

#include <QPoint>
#include <ondrel/core/image.h>
#include <ondrel/core/rect.h>
#include <vector>
class ONDREL_EXPORT PixelPainter
{
public:
    PixelPainter(Ondrel::Image* image);
    void setImage(Ondrel::Image* image);
    Ondrel::Image* image() const;
    void setOpacity(float opacity);
    void setBrush(unsigned short r, unsigned short g, unsigned short b, unsigned short a, unsigned short radius,
                  float hardness, double cutoff, double falloff);
    void drawPoint(QPoint const& point) const;
    void erasePoint(QPoint const& point) const;
    void drawOrErasePoint(QPoint const& point, bool draw) const;
    Ondrel::RectT<int> drawLine(QPoint from, QPoint to);
    static Ondrel::RectT<int> pointBoundingRect(QPoint point, unsigned short radius, bool clip, unsigned int width,
                                                unsigned int height);
    Ondrel::RectT<int> pointBoundingRect(QPoint point, bool clip) const;
    void drawImage(int x, int y, int sourceX, int sourceY, int width, int height, Ondrel::Image const& source);
    void drawImage(int x, int y, Ondrel::Image const& source);
    void copyImage(unsigned int x, unsigned int y, Ondrel::Image const& source, bool copyAlpha);
    void copyImage(int x, int y, int sourceX, int sourceY, int width, int height, Ondrel::Image const& source);
};

#pragma once

#include "viewrendering.h"

#include <QGraphicsItem>

namespace Host
{

// A picture in the scene of a view, where a unit is a pixel of the primary picture at full size whatever the size of
// what is painted; from a line on, another picture may lie over it. Shrunk smoothly, and enlarged to plain squares.
class PictureItem : public QGraphicsItem
{
public:
    struct Layer {
        RenderedPicture picture;
        QRectF place;
    };

    void setLayers(QSize fullSize, const Layer& below, const Layer& above, double aboveFrom);
    QRectF boundingRect() const override; // of the full size
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

private:
    QSize m_fullSize;
    Layer m_below, m_above;
    double m_aboveFrom = 0; // of the scene
};

// Where a picture of one size lies if it is to be compared with another: over it, as large as fits in its middle. Sizes
// that differ by rounding only count as equal in aspect.
QRectF placeOver(QSize size, QSize other);

} // namespace Host

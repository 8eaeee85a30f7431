#include "pictureitem.h"

#include <QPainter>
#include <QStyleOptionGraphicsItem>

#include <cmath>

namespace Host
{
namespace
{

constexpr double kSquares = 2; // from this magnification on single pixels are to be seen

void paintLayer(QPainter& painter, const PictureItem::Layer& layer)
{
    if (layer.picture.isNull() || layer.place.isEmpty())
        return;
    // With the ratio of device pixels to those of the window.
    const double scale = QStyleOptionGraphicsItem::levelOfDetailFromTransform(painter.deviceTransform());
    const double across = layer.place.width() * scale;
    const QImage& image = layer.picture.forWidth(across);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, across < kSquares * image.width());
    painter.drawImage(layer.place, image);
}

} // namespace

void PictureItem::setLayers(QSize fullSize, const Layer& below, const Layer& above, double aboveFrom)
{
    if (fullSize != m_fullSize)
        prepareGeometryChange();
    m_fullSize = fullSize;
    m_below = below;
    m_above = above;
    m_aboveFrom = aboveFrom;
    update();
}

QRectF PictureItem::boundingRect() const
{
    return QRectF(QPointF(0, 0), m_fullSize);
}

void PictureItem::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*)
{
    const bool isSplit = !m_above.picture.isNull();
    const QRectF area = boundingRect();
    painter->save();
    if (isSplit)
        painter->setClipRect(area.intersected(QRectF(area.topLeft(), QPointF(m_aboveFrom, area.bottom()))));
    paintLayer(*painter, m_below);
    if (isSplit) {
        painter->setClipRect(area.intersected(QRectF(QPointF(m_aboveFrom, area.top()), area.bottomRight())));
        paintLayer(*painter, m_above);
    }
    painter->restore();
}

QRectF placeOver(QSize size, QSize other)
{
    if (size.isEmpty() || other.isEmpty())
        return QRectF();
    const QRectF whole(QPointF(0, 0), other);
    const double height = double(other.width()) * size.height() / size.width();
    if (std::abs(height - other.height()) <= 1 + double(other.width()) / size.width())
        return whole;
    QRectF place(QPointF(0, 0), QSizeF(size).scaled(other, Qt::KeepAspectRatio));
    place.moveCenter(whole.center());
    return place;
}

} // namespace Host

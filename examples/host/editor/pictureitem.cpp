#include "pictureitem.h"

#include <QPainter>
#include <QStyleOptionGraphicsItem>
#include <QWidget>

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

// In pixels of the device, above the picture.
void paintMarks(QPainter& painter, const PictureItem::Layer& layer, const QRectF& inView)
{
    if (!layer.picture.marks || layer.place.isEmpty())
        return;
    const QSize size = layer.picture.marks->size();
    const QTransform toDevice = painter.deviceTransform();
    const QTransform fromPicture =
        QTransform::fromScale(layer.place.width() / size.width(), layer.place.height() / size.height()) *
        QTransform::fromTranslate(layer.place.x(), layer.place.y()) * toDevice;
    const QRect area = toDevice.mapRect(inView & layer.place).toAlignedRect();
    const QImage marks = layer.picture.marks->on(area, fromPicture);
    if (marks.isNull())
        return;
    const QTransform before = painter.worldTransform();
    painter.setWorldTransform(toDevice.inverted() * before);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
    painter.drawImage(area.topLeft(), marks);
    painter.setWorldTransform(before);
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

void PictureItem::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget* widget)
{
    const bool isSplit = !m_above.picture.isNull();
    const QRectF area = boundingRect();
    const QRect window = widget ? widget->rect() : painter->window();
    const QRectF inView = painter->worldTransform().inverted().mapRect(QRectF(window)) & area;
    const auto paintPart = [&](const Layer& layer, const QRectF& part) {
        if (isSplit)
            painter->setClipRect(area & part);
        paintLayer(*painter, layer);
        paintMarks(*painter, layer, inView & part);
    };
    painter->save();
    paintPart(m_below, isSplit ? QRectF(area.topLeft(), QPointF(m_aboveFrom, area.bottom())) : area);
    if (isSplit)
        paintPart(m_above, QRectF(QPointF(m_aboveFrom, area.top()), area.bottomRight()));
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

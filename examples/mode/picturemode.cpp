#include "picturemode.h"

#include <QKeyEvent>
#include <QPainter>

void PictureMode::hide(bool closing)
{
    giveUp();
    ModeInterface::hide(closing);
}

bool PictureMode::nudge(int, int)
{
    return false;
}

void PictureMode::viewKeyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        return giveUp();
    const int step = event->modifiers().testFlag(Qt::ShiftModifier) ? 10 : 1;
    const int dx = event->key() == Qt::Key_Right ? step : event->key() == Qt::Key_Left ? -step : 0;
    const int dy = event->key() == Qt::Key_Down ? step : event->key() == Qt::Key_Up ? -step : 0;
    if ((dx == 0 && dy == 0) || !nudge(dx, dy))
        event->ignore();
}

void PictureMode::viewDrawOverCanvas(QPainter* painter, const QRectF&)
{
    if (!ready())
        return;
    painter->save();
    painter->resetTransform(); // lines and handles keep their size on screen at every zoom
    painter->setRenderHint(QPainter::Antialiasing);
    draw(*painter);
    painter->restore();
}

QTransform PictureMode::pictureToView() const
{
    QTransform transform;
    transformSeries.transformFromBaseToChild(0, transform);
    return transform * transformFromRealToView();
}

std::optional<QPointF> PictureMode::pictureAt(const QPointF& viewPoint) const
{
    QPointF point;
    if (!transformSeries.mapFromChildToBaseNoClip(0, mapFromViewToReal(viewPoint), point))
        return std::nullopt;
    return point;
}

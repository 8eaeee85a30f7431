#include "canvasview.h"
#include "canvas.h"

#include <QMouseEvent>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace Viewer
{
namespace
{

constexpr int kFineGrid = 20, kCoarseGrid = 100;

void drawGrid(QPainter& painter, const QRectF& rect, int step, const QColor& color)
{
    painter.setPen(QPen(color, 0));
    const auto first = [step](qreal edge) { return int(std::floor(edge / step)); };
    for (int x = first(rect.left()) * step; x < rect.right(); x += step)
        painter.drawLine(QPointF(x, rect.top()), QPointF(x, rect.bottom()));
    for (int y = first(rect.top()) * step; y < rect.bottom(); y += step)
        painter.drawLine(QPointF(rect.left(), y), QPointF(rect.right(), y));
}

} // namespace

CanvasView::CanvasView(Canvas& canvas)
    : QGraphicsView(&canvas)
    , m_canvas(canvas)
{
    setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    setFrameShape(QFrame::NoFrame);
    setDragMode(QGraphicsView::RubberBandDrag);
    setTransformationAnchor(QGraphicsView::AnchorUnderMouse);
    setWindowTitle("Ondrel nodes");
}

QImage CanvasView::picture(double scale)
{
    const QRectF all = scene()->itemsBoundingRect().adjusted(-40, -40, 40, 40).toAlignedRect();
    QImage image((all.size() * scale).toSize(), QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHints(renderHints());
    painter.scale(scale, scale);
    painter.translate(-all.topLeft());
    drawBackground(&painter, all);
    painter.resetTransform();
    scene()->render(&painter, QRectF(image.rect()), all);
    return image;
}

void CanvasView::drawBackground(QPainter* painter, const QRectF& rect)
{
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing, false);
    painter->fillRect(rect, QColor(32, 32, 32));
    if (painter->worldTransform().m11() > 0.5)
        drawGrid(*painter, rect, kFineGrid, QColor(36, 36, 36));
    drawGrid(*painter, rect, kCoarseGrid, QColor(42, 42, 42));
    painter->restore();
}

bool CanvasView::focusNextPrevChild(bool next)
{
    return m_canvas.moveFocus(next) || QGraphicsView::focusNextPrevChild(next);
}

void CanvasView::wheelEvent(QWheelEvent* event)
{
    const qreal wanted = transform().m11() * std::pow(1.0015, event->angleDelta().y());
    const qreal factor = std::clamp(wanted, 0.1, 4.0) / transform().m11();
    scale(factor, factor);
    event->accept();
}

void CanvasView::mousePressEvent(QMouseEvent* event)
{
    m_lastPosition = event->pos();
    QGraphicsView::mousePressEvent(event);
}

void CanvasView::mouseMoveEvent(QMouseEvent* event)
{
    if (event->buttons().testFlag(Qt::MiddleButton)) {
        const QPoint moved = event->pos() - m_lastPosition;
        horizontalScrollBar()->setValue(horizontalScrollBar()->value() - moved.x());
        verticalScrollBar()->setValue(verticalScrollBar()->value() - moved.y());
    }
    m_lastPosition = event->pos();
    QGraphicsView::mouseMoveEvent(event);
}

} // namespace Viewer

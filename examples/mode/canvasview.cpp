#include "canvasview.h"

#include <ondrel/nodes/modeinterface.h>

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <cmath>

void CanvasItem::setPicture(const QImage& picture, QSize realSize)
{
    prepareGeometryChange();
    m_picture = picture;
    m_realSize = realSize;
    update();
}

QRectF CanvasItem::boundingRect() const
{
    return QRectF(QPointF(0, 0), m_realSize);
}

void CanvasItem::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*)
{
    painter->drawImage(boundingRect(), m_picture);
}

CanvasView::CanvasView(QGraphicsScene* scene)
    : QGraphicsView(scene)
{
    setFrameShape(QFrame::NoFrame);
    setBackgroundBrush(QColor(32, 32, 32));
    setViewportUpdateMode(QGraphicsView::FullViewportUpdate); // the mode draws everywhere
    setTransformationAnchor(QGraphicsView::NoAnchor);
    // The scene is always larger than the view, and transforms for modes count on scroll bars in use.
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setFocusPolicy(Qt::StrongFocus);
}

void CanvasView::setMode(Ondrel::ModeInterface* mode)
{
    m_mode = mode;
    viewport()->unsetCursor();
    viewport()->update();
}

void CanvasView::drawForeground(QPainter* painter, const QRectF& rect)
{
    if (m_mode)
        m_mode->viewDrawOverCanvas(painter, rect);
}

void CanvasView::mousePressEvent(QMouseEvent* event)
{
    if (m_mode)
        m_mode->viewMousePressEvent(event);
}

void CanvasView::mouseMoveEvent(QMouseEvent* event)
{
    if (m_mode)
        m_mode->viewMouseMoveEvent(event);
}

void CanvasView::mouseReleaseEvent(QMouseEvent* event)
{
    if (m_mode)
        m_mode->viewMouseReleaseEvent(event);
}

void CanvasView::keyPressEvent(QKeyEvent* event)
{
    event->accept();
    m_inKeyPress = true;
    if (m_mode)
        m_mode->viewKeyPressEvent(event);
    else
        event->ignore();
    m_inKeyPress = false;
}

void CanvasView::wheelEvent(QWheelEvent* event)
{
    Q_EMIT zoomWanted(std::pow(1.0015, event->angleDelta().y()), event->position().toPoint());
    event->accept();
}

void CanvasView::resizeEvent(QResizeEvent* event)
{
    QGraphicsView::resizeEvent(event);
    Q_EMIT resized();
}

bool CanvasView::viewportEvent(QEvent* event)
{
    if (event->type() == QEvent::Leave && m_mode)
        m_mode->viewMouseLeaveEvent(event);
    return QGraphicsView::viewportEvent(event);
}

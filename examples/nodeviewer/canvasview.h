#pragma once

#include <QGraphicsView>

namespace Viewer
{

class Canvas;

// Shows a canvas on a grid. The wheel zooms at the mouse, the middle button moves the canvas, a drag on the empty
// canvas selects.
class CanvasView : public QGraphicsView
{
    Q_OBJECT
public:
    explicit CanvasView(Canvas& canvas);

    // All nodes with some room around them, a pixel a scene unit.
    QImage picture(double scale);

protected:
    void drawBackground(QPainter* painter, const QRectF& rect) override;
    bool focusNextPrevChild(bool next) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    Canvas& m_canvas;
    QPoint m_lastPosition;
};

} // namespace Viewer

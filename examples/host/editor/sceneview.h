#pragma once

#include "scene.h"

#include <QGraphicsView>

namespace Host
{

// The canvas of nodes. The wheel zooms at the mouse, the middle button moves the canvas, a drag on the empty canvas
// selects. Keys that edit are the window's actions, but for Tab, which walks through the controls of a node, and
// without one asks for the search.
class SceneView : public QGraphicsView
{
    Q_OBJECT
public:
    explicit SceneView(Scene& scene);
    void fit(const QRectF& area);
    void zoomBy(double factor, ViewportAnchor anchor); // as far as the limits allow
    QPointF pointerInScene() const;                    // or the middle, where the pointer is elsewhere

Q_SIGNALS:
    void searchWanted(QPointF at);
    void menuWanted(QPointF at); // of the canvas, or of what lies there

protected:
    void paintEvent(QPaintEvent* event) override;
    void drawBackground(QPainter* painter, const QRectF& rect) override;
    bool focusNextPrevChild(bool next) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QPointF selectedPoint() const;

    Scene& m_scene;
    QPoint m_lastPosition;
};

} // namespace Host

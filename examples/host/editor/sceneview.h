#pragma once

#include "scene.h"

#include <QGraphicsView>

#include <optional>

namespace Host
{

// What a view shows of the canvas.
struct CanvasPlace {
    double zoom = 1; // device-independent pixels a unit of the canvas
    QPointF center;  // on the canvas
    bool operator==(const CanvasPlace& other) const { return zoom == other.zoom && center == other.center; }
};

// The canvas of nodes. The wheel zooms at the mouse, the middle button moves the canvas, a drag on the empty canvas
// selects. Keys that edit are the window's actions, but for Tab, which walks through the controls of a node, and
// without one asks for the search.
class SceneView : public QGraphicsView
{
    Q_OBJECT
public:
    explicit SceneView(Scene& scene);
    void fit(const QRectF& area);
    void fitAllNodes(); // with room for the pictures of new ones, which make them taller when they have been computed
    void zoomBy(double factor, ViewportAnchor anchor); // as far as the limits allow
    QPointF pointerInScene() const;                    // or the middle, where the pointer is elsewhere

    // The place that was set, to the last bit, until the user moves or zooms the canvas; a resized view keeps it in its
    // middle. One that lies beyond the limits is brought to them.
    CanvasPlace place() const;
    void setPlace(const CanvasPlace& place);

Q_SIGNALS:
    void searchWanted(QPointF at);
    void menuWanted(QPointF at); // of the canvas, or of what lies there

protected:
    void paintEvent(QPaintEvent* event) override;
    void drawBackground(QPainter* painter, const QRectF& rect) override;
    void resizeEvent(QResizeEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    struct Position { // in which whole pixels a place is shown
        QTransform transform;
        QPoint scrolled;
        bool operator==(const Position& other) const
        {
            return transform == other.transform && scrolled == other.scrolled;
        }
    };
    QPointF selectedPoint() const;
    Position position() const;
    bool isWherePlaced() const { return m_place && m_placedAt == position(); }

    Scene& m_scene;
    QPoint m_lastPosition;
    std::optional<CanvasPlace> m_place; // the last that was set
    Position m_placedAt;
};

} // namespace Host

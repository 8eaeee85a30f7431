#pragma once

#include <QTimer>
#include <QWidget>

namespace Host
{

class Scene;
class SceneView;

// All nodes and frames in a corner of the canvas, and the part that is in view; the mouse moves it.
class MiniMap : public QWidget
{
    Q_OBJECT
public:
    MiniMap(Scene& scene, SceneView& view);

    QPointF toMap(const QPointF& scenePoint) const;

protected:
    bool eventFilter(QObject* object, QEvent* event) override; // of the viewport, whose corner it keeps
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private Q_SLOTS:
    void follow(); // the canvas

private:
    QRectF areaInView() const;
    QTransform sceneToMap() const;
    void place();

    Scene& m_scene;
    SceneView& m_view;
    QRectF m_area; // of the scene that is shown
    QTimer m_timer;
};

} // namespace Host

#pragma once

#include <QGraphicsItem>
#include <QGraphicsView>
#include <QImage>

namespace Ondrel
{
class ModeInterface;
}

// The picture in the scene: a unit is a pixel of the picture at full size, whatever the size of what is painted.
class CanvasItem : public QGraphicsItem
{
public:
    void setPicture(const QImage& picture, QSize realSize);
    QRectF boundingRect() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

private:
    QImage m_picture;
    QSize m_realSize;
};

// Shows the canvas, hands its events to the mode, and lets the mode draw over it.
class CanvasView : public QGraphicsView
{
    Q_OBJECT
public:
    explicit CanvasView(QGraphicsScene* scene);
    void setMode(Ondrel::ModeInterface* mode); // null for none; not owned
    Ondrel::ModeInterface* mode() const { return m_mode; }
    bool isInKeyPress() const { return m_inKeyPress; } // what the mode does now, it does by a key

Q_SIGNALS:
    void zoomWanted(double factor, QPoint anchor);
    void resized();

protected:
    void drawForeground(QPainter* painter, const QRectF& rect) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool viewportEvent(QEvent* event) override;

private:
    Ondrel::ModeInterface* m_mode = nullptr;
    bool m_inKeyPress = false;
};

#pragma once

#include "evaluation.h"
#include "viewrendering.h"
#include "worker.h"

#include <QGraphicsScene>
#include <QWidget>

class CanvasItem;
class CanvasView;
class QLabel;
class QMouseEvent;

namespace Host
{

// A view of a picture: rendered for the display, zoomed by the wheel at the mouse, moved by the middle button, with the
// colour under the mouse below it, in the picture's own space and in Lab.
class ImagePane : public QWidget
{
    Q_OBJECT
public:
    explicit ImagePane(QWidget* parent = nullptr);

    // The newest picture, small or at full size; a null image clears the view. Pictures are rendered in the background,
    // the newest of those that wait; picture() is the one on the screen.
    void setPicture(const Picture& picture);
    void setSecondPicture(const Picture& picture); // to compare with
    const Picture& picture() const { return m_picture; }
    const QImage& rendered() const { return m_rendered; } // what is on the screen
    bool isBusy() const { return m_rendering; }

    const ViewOptions& options() const { return m_options; }
    void setOptions(const ViewOptions& options);
    CanvasView& view() { return *m_view; }
    CanvasItem& canvas() { return *m_canvas; }
    double zoom() const { return m_zoom; } // screen pixels a pixel of full size

    // The scale that suffices for a picture of this full size as it is shown now.
    double scaleFor(QSize fullSize) const;

public Q_SLOTS:
    void fit();
    void setZoom(double zoom, QPoint anchor);

Q_SIGNALS:
    void zoomChanged();
    void pictureShown(); // another one than before
    void optionsChanged();
    void placed(); // the zoom or the size of the picture may be another one

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private Q_SLOTS:
    void placeScene();

private:
    void render();
    void show(const Picture& picture, const QImage& rendered);
    bool moveWipe(const QMouseEvent& event);
    double fittingZoom(QSize fullSize) const;
    void showColour(QPointF position);

    QGraphicsScene m_scene;
    CanvasItem* m_canvas; // the scene's
    CanvasView* m_view;
    QLabel* m_readOut;
    Picture m_picture;
    QImage m_rendered;
    Picture m_newest, m_second;
    ViewOptions m_options;
    bool m_rendering = false;
    bool m_again = false; // something has changed since the rendering began
    QPoint m_lastPosition;
    double m_zoom = 1;
    bool m_fitting = true;
    Worker m_worker; // the first to go: its end waits for what runs
};

} // namespace Host

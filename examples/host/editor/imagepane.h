#pragma once

#include "panerenderer.h"

#include <QGraphicsScene>
#include <QWidget>

#include <optional>

class CanvasView;
class QLabel;
class QMouseEvent;

namespace Host
{

class PictureItem;
class WipeHandle;

// A view of a picture: rendered for the display, zoomed by the wheel at the mouse, moved by the middle button, with the
// colour under the mouse below it, in the picture's own space and in Lab. A second picture can be compared with it: in
// its place, behind a line that is dragged, or in a view beside it that shows the same part.
class ImagePane : public QWidget
{
    Q_OBJECT
public:
    explicit ImagePane(QWidget* parent = nullptr);

    // The newest picture, small or at full size; a null image clears the view. Pictures are rendered in the background,
    // the newest of those that wait; picture() is the one on the screen.
    void setPicture(const Picture& picture);
    void setSecondPicture(const Picture& picture); // to compare with
    const Picture& picture() const { return m_renderer.first().picture; }
    const Picture& secondPicture() const { return m_renderer.second().picture; }
    const Picture& shownPicture() const; // the second one where that is shown in the place of the first
    QImage rendered() const;             // what is on the screen of picture(), in its pixels
    QImage secondRendered() const;
    PaneRenderer& renderer() { return m_renderer; }
    bool isBusy() const { return m_renderer.isBusy(); }

    const ViewOptions& options() const { return m_options; }
    void setOptions(const ViewOptions& options);
    CanvasView& view() { return *m_view; }
    CanvasView& secondView() { return *m_secondView; } // hidden but side by side
    PictureItem& canvas() { return *m_canvas; }
    double zoom() const { return m_zoom; } // window pixels a pixel of full size

    // The scale that suffices for a picture of this full size as it is shown now, on the pixels of the device.
    double scaleFor(QSize fullSize) const;

public Q_SLOTS:
    void fit();
    void showPixels(); // one pixel of the device for each of the picture
    void setZoom(double zoom, QPoint anchor);
    void scrollBy(QPoint way);                              // in pixels of the view
    void readOutAt(const std::optional<QPointF>& position); // of the scene of view(); clears it for none

Q_SIGNALS:
    void zoomChanged();
    void pictureShown(); // another one than before
    void optionsChanged();
    void placed(); // the zoom or the size of the picture may be another one

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private Q_SLOTS:
    void takeRendered();
    void placeScene();
    void placeWipe();
    void moveWipe(double viewX);

private:
    struct Found { // under the mouse
        const Picture* picture;
        QPointF position; // in its full size
    };

    void addView(CanvasView& view);
    void arrange();
    ViewOptions::Compare compare() const; // what the pictures that are there allow
    void setWipe(double part);
    void handleMouse(CanvasView& view, const QMouseEvent& event);
    double fittingZoom(QSize fullSize) const;
    double pixelZoom() const { return 1 / devicePixelRatioF(); }
    Found found(bool inSecondView, QPointF scenePosition) const;
    void showColour(const Found& found);
    void showZoom();

    QGraphicsScene m_scene, m_secondScene;
    PictureItem* m_canvas; // the scene's
    PictureItem* m_secondCanvas;
    CanvasView* m_view;
    CanvasView* m_secondView;
    QLabel* m_caption; // over the view
    QLabel* m_secondCaption;
    WipeHandle* m_wipe;
    QLabel* m_readOut;
    QLabel* m_zoomText;
    QSize m_fullSize; // of what the scene is placed for
    ViewOptions m_options;
    QPoint m_lastPosition;
    double m_zoom = 1;
    bool m_fitting = true;
    PaneRenderer m_renderer; // the first to go: its end waits for what runs
};

} // namespace Host

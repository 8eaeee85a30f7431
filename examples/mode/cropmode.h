#pragma once

#include "cropframe.h"
#include "picturemode.h"

#include <QPointer>

#include <optional>

class CropPanel;
class QLabel;
class QPolygonF;
class QRubberBand;

// Cutting a rectangle out of a picture that is shown behind a rotation and a perspective. The frame is kept in pixels
// of the crop node's picture; everything on screen goes through the series that the host hands over.
//
// Drag a handle, or the inside, with the left button; Escape gives the drag up. The arrow keys move the frame by a
// pixel, by ten with Shift; Space chooses a handle that they move instead, one after the other, with Shift the one
// before. Plus and minus zoom, the middle button scrolls, and with the zoom tool a drag shows a part of the picture as
// large as fits, or, with Alt, makes all that is in view fit there.
class CropMode : public PictureMode
{
    Q_OBJECT
public:
    enum Field : unsigned long { FrameField = 0 }; // of the crop node

    explicit CropMode(QObject* parent = nullptr);

    const Rect& frame() const { return m_frame; }
    Aspect aspect() const { return m_aspect; }

    // Where a handle stands in the view; nothing before the geometry is known.
    std::optional<QPointF> handleInView(Handle handle) const;

    // Puts the frame there and tells the host; no step of undo. Undo steps end here, and the host when it loads a
    // value.
    void setFrame(const Rect& frame);

    void initialize(QGraphicsView* view, QGraphicsScene* scene, QGraphicsItem* canvasItem) override;
    void createDockWidgets(std::vector<QDockWidget*>& widgets) override;
    void createToolButtons(std::vector<QToolButton*>& buttons) override;
    QWidget* createStatusBarWidget() override;
    void canvasGeometryChanged(const QSize& displaySize, const QSize& realSize,
                               const Ondrel::TransformSeries& series) override;
    void currentToolAboutToChange() override;
    void currentToolChanged(const QString& tool) override;
    void nodeInputChanged(unsigned long fieldIndex, const QVariant& value) override;
    void viewMousePressEvent(QMouseEvent* event) override;
    void viewMouseMoveEvent(QMouseEvent* event) override;
    void viewMouseReleaseEvent(QMouseEvent* event) override;
    void viewMouseLeaveEvent(QEvent* event) override;
    void viewKeyPressEvent(QKeyEvent* event) override;
    QString modeName() const override;

Q_SIGNALS:
    void frameChanged();

public Q_SLOTS:
    void chooseAspect(float width, float height); // as a step of undo
    void resetFrame();                            // to the whole picture, as a step of undo

protected:
    bool nudge(int dx, int dy) override;
    void giveUp() override;
    void draw(QPainter& painter) override;
    void showFrame(const Rect& frame); // without telling the host
    virtual void tellFrame();          // as the value of FrameField

private:
    struct DragState {
        Handle handle;
        Rect before;
        QPointF start; // in the picture
    };

    std::optional<Handle> handleAt(const QPointF& viewPoint) const;
    QPolygonF outline(const Rect& frame) const;
    void chooseHandle(int by);
    void finish(const QString& text, int kind, const Rect& before);
    void updateCursor(const QPointF& viewPoint);
    void zoomBy(const QRect& area, bool outwards);
    void drawShade(QPainter& painter) const;
    void drawFrame(QPainter& painter) const;
    void drawHandles(QPainter& painter) const;

    Rect m_frame = Rect::invalid();
    Aspect m_aspect;
    std::optional<DragState> m_drag;
    std::optional<Handle> m_hovered;
    Handle m_byKeys = Handle::Inside;
    bool m_zooming = false; // the zoom tool is chosen
    std::optional<QPoint> m_zoomStart;
    std::optional<QPoint> m_scrollFrom;
    QPointer<QRubberBand> m_rubberBand; // a child of the view
};

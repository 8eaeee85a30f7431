#pragma once

#include <ondrel/core/image.h>
#include <ondrel/core/rect.h>
#include <ondrel/work/undoadapter.h>

#include <QGraphicsScene>
#include <QMainWindow>
#include <QVariant>

#include <memory>
#include <vector>

namespace Ondrel
{
class MemoryAwareUndoCommand;
}
class CanvasItem;
class CanvasView;
class CropMode;
class QAction;
class QDockWidget;
class QToolBar;

// What a host does for a mode: it owns the value of the edited node, the canvas and the undo stack, answers requests,
// and says what has changed.
class Window : public QMainWindow
{
    Q_OBJECT
public:
    typedef Ondrel::RectT<int> Rect; // spelled in slots as modes spell it in signals

    explicit Window(std::shared_ptr<const Ondrel::Image> photograph);
    ~Window() override;

    CanvasView& view() { return *m_view; }
    CropMode& mode() { return *m_mode; }
    Ondrel::MemoryBoundedUndoStack& undoStack() { return m_undoStack; }
    const Rect& frame() const { return m_frame; } // the value of the crop node
    double zoom() const { return m_zoom; }
    void chooseTool(const QString& name); // "crop" or "zoom"

public Q_SLOTS:
    void setEditing(bool editing); // the mode is shown, or its result
    void setZoom(double zoom, QPoint anchor);
    void fitPicture();

private Q_SLOTS:
    void takeUndoCommand(Ondrel::MemoryAwareUndoCommand* command);
    void storeValue(size_t fieldIndex, QVariant value, Rect updatedRect);
    void translateCanvas(QPoint offset);
    void stepZoom(int direction);
    void zoomToRect(const QPoint& topLeft, const QPoint& bottomRight, int direction);
    void updateCanvas();
    void placeScene();

private:
    void addMode();
    void addActions();
    void renderCanvas();
    Rect shownFrame() const;
    QPoint viewMiddle() const;

    std::shared_ptr<const Ondrel::Image> m_photograph;
    Rect m_frame;
    Ondrel::MemoryBoundedUndoStack m_undoStack;
    QGraphicsScene m_scene;
    CanvasItem* m_canvas;              // the scene's
    CanvasView* m_view;                // the window's
    CropMode* m_mode;                  // the window's
    QToolBar* m_tools = nullptr;       // the window's
    QAction* m_edit = nullptr;         // the window's
    std::vector<QDockWidget*> m_docks; // the window's
    bool m_editing = true;
    bool m_fitting = true; // the zoom follows the size of the window
    double m_zoom = 1;
};

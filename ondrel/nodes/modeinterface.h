#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/image.h>
#include <ondrel/core/rect.h>
#include <ondrel/nodes/transformseries.h>

#include <QKeySequence>
#include <QMetaType>
#include <QObject>
#include <QPoint>
#include <QPointF>
#include <QSize>
#include <QString>
#include <QTransform>
#include <QVariant>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

class QDockWidget;
class QEvent;
class QGraphicsItem;
class QGraphicsScene;
class QGraphicsView;
class QKeyEvent;
class QMouseEvent;
class QPainter;
class QRectF;
class QToolButton;
class QWidget;

namespace Ondrel
{

class MemoryAwareUndoCommand;

// A set of tools that takes over the image view while one node is edited: what the host calls, what the mode tells the
// host, and the arithmetic between the spaces of the view.
//
//  - Real: pixels of the image at full resolution, over realSize.
//  - Display: pixels of the image as the host renders it at the present zoom, over displaySize; one is a pixel of the
//    screen.
//  - Scene: of the QGraphicsScene; the canvas item stands at its pos(), and lengths times the scale of the view's
//    transform are display pixels.
//  - View: whole pixels of the QGraphicsView, as in mouse events.
//
// The mapping operations need sizes, so they are for after the first canvasGeometryChanged(); sides of 0, and a view
// without scale, give infinite coordinates or such that are no numbers. User-interface thread only.
class ONDREL_EXPORT ModeInterface : public QObject
{
    Q_OBJECT
public:
    typedef Ondrel::RectT<int> Rect; // the name under which signals have it

    explicit ModeInterface(QObject* parent = nullptr);
    ~ModeInterface() override = 0;

    // Once, after construction. The mode owns none of the three. An override calls this, as it does in show(),
    // canvasGeometryChanged() and canvasChanged(): the mapping operations read what these store.
    virtual void initialize(QGraphicsView* view, QGraphicsScene* scene, QGraphicsItem* canvasItem);

    // What the mode adds to the host's window: nothing here. The host owns what it is given.
    virtual void createDockWidgets(std::vector<QDockWidget*>& widgets);
    virtual void createToolButtons(std::vector<QToolButton*>& buttons);
    virtual QWidget* createStatusBarWidget(); // null

    // The mode becomes active on a node, and is left.
    virtual void show(unsigned long nodeId);
    virtual void hide(bool closing);

    // The zoom, the image's size or the route from the edited node to the one on display has changed; the canvas image
    // was replaced. In any order and at any time while the mode is shown.
    virtual void canvasGeometryChanged(const QSize& displaySize, const QSize& realSize,
                                       const Ondrel::TransformSeries& series);
    virtual void canvasChanged(const std::shared_ptr<const Ondrel::Image>& canvas);

    virtual void currentToolAboutToChange();
    virtual void currentToolChanged(const QString& tool);
    virtual void nodeInputChanged(unsigned long fieldIndex, const QVariant& value); // from elsewhere

    virtual void viewMousePressEvent(QMouseEvent* event);
    virtual void viewMouseMoveEvent(QMouseEvent* event);
    virtual void viewMouseReleaseEvent(QMouseEvent* event);
    virtual void viewMouseLeaveEvent(QEvent* event);
    virtual void viewKeyPressEvent(QKeyEvent* event);
    virtual void viewDrawOverCanvas(QPainter* painter, const QRectF& rect); // in the view's foreground

    virtual bool previewMode() const;    // false
    virtual bool isPaintingMode() const; // false
    virtual QString modeName() const = 0;

    // inputValueChanged() for another node, from outside of the mode.
    void emitInputValueChanged(unsigned long nodeId, unsigned long fieldIndex, Ondrel::RectT<int> updatedRect);

    // A checkable, auto-raised button without parent, which the caller owns. The icon is a file name in
    // Platform::IconsDirectory().
    static QToolButton* createToolButton(const QString& toolTip, const QString& iconFileName,
                                         const QKeySequence& shortcut);

    // Real and display by the ratio of both sizes, rounded to single precision, and so is each product. View points are
    // rounded to whole pixels on the way in and out.
    QPointF mapFromRealToDisplay(QPointF p) const;
    QPointF mapFromDisplayToReal(QPointF p) const;
    QPointF scaleFromSceneToDisplay(QPointF p) const; // a length: the canvas item's place plays no part
    QPointF scaleFromDisplayToScene(QPointF p) const;
    QPointF mapFromSceneToDisplay(QPointF p) const;
    QPointF mapFromDisplayToScene(QPointF p) const;
    QPointF mapFromSceneToReal(QPointF p) const;
    QPointF mapFromRealToScene(QPointF p) const;
    QPointF mapFromViewToDisplay(QPointF p) const;
    QPointF mapFromViewToReal(QPointF p) const;
    QPointF mapFromDisplayToView(QPointF p) const;
    QPointF mapFromRealToView(QPointF p) const;

    // The same as transforms, without the rounding of view points. They agree with the maps above as long as the view's
    // scroll bars are in use: a scene smaller than the view is centred beside them.
    QTransform transformFromRealToDisplay() const;
    QTransform transformFromDisplayToReal() const;
    QTransform transformFromDisplayToView() const;
    QTransform transformFromRealToView() const;

    // By how much a real length shrinks on the canvas, at most 1 in each direction whatever the zoom.
    void scaleFromRealToCanvas(float& scaleX, float& scaleY) const;

Q_SIGNALS:
    // A finished step of undo, which is the host's from now on.
    void newUndoCommand(Ondrel::MemoryAwareUndoCommand* undoCommand);

    // The mode has set an input of the edited node, or of the named one, and the graph is to be computed again for a
    // rectangle; for all if it is invalid. Wrap a number in a QVariant, or it is taken for the id of a node.
    void inputValueChanged(size_t fieldIndex, QVariant value, Rect updatedRect = Rect::invalid());
    void inputValueChangedNoUpdate(size_t fieldIndex, QVariant value);  // nothing to compute
    void inputValueChangedNoValue(size_t fieldIndex, Rect updatedRect); // no new value
    void inputValueChanged(std::uint64_t nodeId, size_t fieldIndex, Rect updatedRect);

    void requestCanvasUpdate();
    void requestCanvasTranslate(QPoint offset);
    void requestCanvasZoomStep(int direction); // in or out
    void requestCanvasZoomRect(const QPoint& viewTopLeft, const QPoint& viewBottomRight, int direction);

protected:
    QGraphicsView* view = nullptr;
    QGraphicsScene* scene = nullptr;
    QGraphicsItem* canvasItem = nullptr;
    unsigned long nodeId = 0;
    QSize displaySize;
    QSize realSize;
    std::shared_ptr<const Ondrel::Image> canvas;
    Ondrel::TransformSeries transformSeries; // from the edited node to the one on display
};

} // namespace Ondrel

Q_DECLARE_METATYPE(Ondrel::RectT<int>)

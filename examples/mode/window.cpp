#include "window.h"

#include "canvasview.h"
#include "cropmode.h"
#include "picture.h"
#include "route.h"

#include <ondrel/color/colortransformer.h>

#include <QAction>
#include <QDockWidget>
#include <QScrollBar>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>

#include <algorithm>
#include <cmath>

namespace
{

constexpr std::size_t kUndoBytes = 1 << 20;
constexpr double kSmallestZoom = 0.05, kLargestZoom = 3;

} // namespace

Window::Window(std::shared_ptr<const Ondrel::Image> photograph)
    : m_photograph(std::move(photograph))
    , m_frame(0, 0, int(m_photograph->width), int(m_photograph->height))
    , m_undoStack(kUndoBytes)
    , m_canvas(new CanvasItem)
    , m_view(new CanvasView(&m_scene))
    , m_mode(new CropMode(this))
{
    setWindowTitle(tr("Ondrel crop"));
    m_scene.addItem(m_canvas);
    setCentralWidget(m_view);
    addActions();
    addMode();
    connect(m_view, &CanvasView::zoomWanted, this,
            [this](double factor, QPoint anchor) { setZoom(m_zoom * factor, anchor); });
    connect(m_view, SIGNAL(resized()), this, SLOT(placeScene()));
    renderCanvas();
}

Window::~Window()
{
    m_view->setMode(nullptr); // children die in the order in which they were made, the view before the mode
}

void Window::addActions()
{
    m_tools = addToolBar(tr("Tools"));
    m_tools->setMovable(false);
    QAction* undo = m_undoStack.createUndoAction(this);
    undo->setShortcut(QKeySequence::Undo);
    QAction* redo = m_undoStack.createRedoAction(this);
    redo->setShortcut(QKeySequence::Redo);
    m_edit = new QAction(tr("Edit crop"), this);
    m_edit->setShortcut(QKeySequence("E"));
    m_edit->setCheckable(true);
    m_edit->setChecked(true);
    connect(m_edit, SIGNAL(toggled(bool)), this, SLOT(setEditing(bool)));
    QAction* fit = new QAction(tr("Fit"), this);
    fit->setShortcut(QKeySequence("F"));
    connect(fit, SIGNAL(triggered()), this, SLOT(fitPicture()));
    m_tools->addActions({undo, redo, m_edit, fit});
    m_tools->addSeparator();
}

void Window::addMode()
{
    m_mode->initialize(m_view, &m_scene, m_canvas);
    m_mode->createDockWidgets(m_docks);
    for (QDockWidget* dock : m_docks)
        addDockWidget(Qt::RightDockWidgetArea, dock);
    std::vector<QToolButton*> buttons;
    m_mode->createToolButtons(buttons);
    for (QToolButton* button : buttons) {
        button->setAutoExclusive(true);
        m_tools->addWidget(button);
        connect(button, &QToolButton::toggled, this, [this, button](bool on) {
            if (!on)
                return;
            m_mode->currentToolAboutToChange();
            m_mode->currentToolChanged(button->objectName());
        });
    }
    if (QWidget* status = m_mode->createStatusBarWidget())
        statusBar()->addPermanentWidget(status);
    connect(m_mode, SIGNAL(newUndoCommand(Ondrel::MemoryAwareUndoCommand*)), this,
            SLOT(takeUndoCommand(Ondrel::MemoryAwareUndoCommand*)));
    connect(m_mode, SIGNAL(inputValueChanged(size_t, QVariant, Rect)), this, SLOT(storeValue(size_t, QVariant, Rect)));
    connect(m_mode, SIGNAL(requestCanvasUpdate()), this, SLOT(updateCanvas()));
    connect(m_mode, SIGNAL(requestCanvasTranslate(QPoint)), this, SLOT(translateCanvas(QPoint)));
    connect(m_mode, SIGNAL(requestCanvasZoomStep(int)), this, SLOT(stepZoom(int)));
    connect(m_mode, SIGNAL(requestCanvasZoomRect(QPoint, QPoint, int)), this, SLOT(zoomToRect(QPoint, QPoint, int)));
    m_view->setMode(m_mode);
    m_mode->show(Route::CropNode);
    chooseTool("crop");
}

void Window::chooseTool(const QString& name)
{
    if (auto* button = m_tools->findChild<QToolButton*>(name))
        button->setChecked(true);
}

void Window::setEditing(bool editing)
{
    if (editing == m_editing)
        return;
    m_editing = editing;
    m_edit->setChecked(editing);
    if (editing)
        m_mode->show(Route::CropNode);
    else
        m_mode->hide(false);
    m_view->setMode(editing ? m_mode : nullptr);
    for (QDockWidget* dock : m_docks)
        dock->setEnabled(editing);
    renderCanvas();
    if (m_fitting)
        fitPicture();
}

// While the frame is edited, all of the photograph is shown.
Window::Rect Window::shownFrame() const
{
    return m_editing ? Ondrel::RectT<int>(0, 0, int(m_photograph->width), int(m_photograph->height)) : m_frame;
}

void Window::renderCanvas()
{
    const auto canvas = std::make_shared<const Ondrel::Image>(renderPicture(*m_photograph, shownFrame(), m_zoom));
    const QSize realSize = Route::stepsFor(shownFrame().size()).perspective.size;
    m_canvas->setPicture(Ondrel::ColorTransformer::toQImage(*canvas, false), realSize);
    m_view->setTransform(QTransform::fromScale(m_zoom, m_zoom));
    placeScene();
    const QSize photograph(int(m_photograph->width), int(m_photograph->height));
    Ondrel::TransformSeries series;
    Route::graphFor(photograph, shownFrame()).buildTransformSeries(Route::CropNode, Route::PerspectiveNode, series);
    m_mode->canvasGeometryChanged(QSize(int(canvas->width), int(canvas->height)), realSize, series);
    m_mode->canvasChanged(canvas);
    m_view->viewport()->update();
}

// Room around the picture in every direction, so that it can be scrolled anywhere at any zoom.
void Window::placeScene()
{
    const QSizeF room = QSizeF(m_view->viewport()->size()) / m_zoom;
    m_scene.setSceneRect(m_canvas->boundingRect().adjusted(-room.width(), -room.height(), room.width(), room.height()));
    if (m_fitting)
        fitPicture();
}

QPoint Window::viewMiddle() const
{
    return m_view->viewport()->rect().center();
}

void Window::setZoom(double zoom, QPoint anchor)
{
    const QPointF fixed = m_view->mapToScene(anchor);
    m_fitting = false;
    m_zoom = std::clamp(zoom, kSmallestZoom, kLargestZoom);
    renderCanvas();
    translateCanvas(anchor - m_view->mapFromScene(fixed));
}

void Window::fitPicture()
{
    const QSize view = m_view->viewport()->size();
    const QSizeF picture = m_canvas->boundingRect().size();
    if (view.isEmpty() || picture.isEmpty())
        return;
    const double wanted =
        std::min({view.width() * 0.94 / picture.width(), view.height() * 0.94 / picture.height(), 1.0});
    m_fitting = false; // no way back here while the canvas is rendered
    if (std::abs(wanted - m_zoom) > 1e-9) {
        m_zoom = std::clamp(wanted, kSmallestZoom, kLargestZoom);
        renderCanvas();
    }
    m_view->centerOn(m_canvas);
    m_fitting = true;
    m_view->viewport()->update();
}

void Window::takeUndoCommand(Ondrel::MemoryAwareUndoCommand* command)
{
    m_undoStack.push(std::unique_ptr<Ondrel::MemoryAwareUndoCommand>(command));
}

void Window::storeValue(size_t fieldIndex, QVariant value, Rect)
{
    if (fieldIndex == CropMode::FrameField)
        m_frame = value.value<Ondrel::RectT<int>>();
    if (!m_editing)
        renderCanvas();
}

void Window::translateCanvas(QPoint offset)
{
    m_view->horizontalScrollBar()->setValue(m_view->horizontalScrollBar()->value() - offset.x());
    m_view->verticalScrollBar()->setValue(m_view->verticalScrollBar()->value() - offset.y());
}

void Window::stepZoom(int direction)
{
    setZoom(direction < 0 ? m_zoom / 1.25 : m_zoom * 1.25, viewMiddle());
}

void Window::zoomToRect(const QPoint& topLeft, const QPoint& bottomRight, int direction)
{
    const QRect area = QRect(topLeft, bottomRight).normalized();
    const QSize view = m_view->viewport()->size();
    const double factor =
        std::min(double(view.width()) / std::max(1, area.width()), double(view.height()) / std::max(1, area.height()));
    const QPointF middle = m_view->mapToScene(area.center());
    setZoom(direction < 0 ? m_zoom / factor : m_zoom * factor, area.center());
    m_view->centerOn(middle);
}

void Window::updateCanvas()
{
    m_view->viewport()->update();
}

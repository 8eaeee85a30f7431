#include "sceneview.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QScrollBar>
#include <QTimer>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace Host
{
namespace
{

constexpr int kGrid = 100;
constexpr int kPictureHeight = 130;
constexpr double kSmallest = 0.05, kLargest = 4;

} // namespace

SceneView::SceneView(Scene& scene)
    : QGraphicsView(&scene)
    , m_scene(scene)
{
    setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    setFrameShape(QFrame::NoFrame);
    setDragMode(QGraphicsView::RubberBandDrag);
    setViewportUpdateMode(QGraphicsView::SmartViewportUpdate);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setSceneRect(-20000, -20000, 40000, 40000);
    viewport()->setMouseTracking(true);
    setAccessibleName(tr("Nodes"));
    setAcceptDrops(false); // files are the window's
    viewport()->setAcceptDrops(false);
}

void SceneView::fit(const QRectF& area)
{
    if (area.isEmpty())
        return;
    fitInView(area.adjusted(-40, -40, 40, 40), Qt::KeepAspectRatio);
    setPlace({std::min(transform().m11(), 1.0), area.center()});
}

SceneView::Position SceneView::position() const
{
    return {transform(), QPoint(horizontalScrollBar()->value(), verticalScrollBar()->value())};
}

CanvasPlace SceneView::place() const
{
    if (isWherePlaced())
        return *m_place;
    return {transform().m11(), mapToScene(viewport()->rect()).boundingRect().center()};
}

void SceneView::setPlace(const CanvasPlace& place)
{
    const QRectF limits = sceneRect();
    CanvasPlace within;
    within.zoom = std::clamp(place.zoom, kSmallest, kLargest);
    within.center = QPointF(std::clamp(place.center.x(), limits.left(), limits.right()),
                            std::clamp(place.center.y(), limits.top(), limits.bottom()));
    setTransform(QTransform::fromScale(within.zoom, within.zoom));
    centerOn(within.center);
    m_place = within;
    m_placedAt = position();
}

// Also while a window is being built and has not its size yet.
void SceneView::resizeEvent(QResizeEvent* event)
{
    const bool keeps = isWherePlaced();
    QGraphicsView::resizeEvent(event);
    if (keeps)
        setPlace(*m_place);
}

void SceneView::fitAllNodes()
{
    const QRectF all = m_scene.nodesRect({}) | m_scene.frames().area();
    fit(all.isEmpty() ? all : all.adjusted(0, 0, 0, kPictureHeight));
}

QPointF SceneView::pointerInScene() const
{
    const QPoint position = viewport()->mapFromGlobal(QCursor::pos());
    return mapToScene(viewport()->rect().contains(position) ? position : viewport()->rect().center());
}

void SceneView::paintEvent(QPaintEvent* event)
{
    m_scene.pictures().beginFrame(event->rect());
    QGraphicsView::paintEvent(event);
    m_scene.pictures().endFrame();
    if (m_scene.pictures().isUnfinished())
        QTimer::singleShot(0, viewport(), SLOT(update()));
}

void SceneView::drawBackground(QPainter* painter, const QRectF& rect)
{
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing, false);
    painter->fillRect(rect, QColor(32, 32, 32));
    painter->setPen(QPen(QColor(42, 42, 42), 0));
    const auto first = [](qreal edge) { return int(std::floor(edge / kGrid)) * kGrid; };
    for (int x = first(rect.left()); x < rect.right(); x += kGrid)
        painter->drawLine(QPointF(x, rect.top()), QPointF(x, rect.bottom()));
    for (int y = first(rect.top()); y < rect.bottom(); y += kGrid)
        painter->drawLine(QPointF(rect.left(), y), QPointF(rect.right(), y));
    painter->restore();
}

bool SceneView::focusNextPrevChild(bool next)
{
    if (!m_scene.moveFocus(next) && next)
        Q_EMIT searchWanted(pointerInScene());
    return true;
}

void SceneView::wheelEvent(QWheelEvent* event)
{
    zoomBy(std::pow(1.0015, event->angleDelta().y()), AnchorUnderMouse);
    event->accept();
}

void SceneView::zoomBy(double factor, ViewportAnchor anchor)
{
    const double zoom = transform().m11();
    const double possible = std::clamp(zoom * factor, kSmallest, kLargest) / zoom;
    setTransformationAnchor(anchor);
    scale(possible, possible);
}

void SceneView::mousePressEvent(QMouseEvent* event)
{
    m_lastPosition = event->pos();
    const bool opensMenu = event->button() == Qt::RightButton && !m_scene.itemAt(mapToScene(event->pos()), transform());
    if (event->button() == Qt::MiddleButton || opensMenu) // neither of them begins a rubber band
        event->accept();
    else
        QGraphicsView::mousePressEvent(event);
}

void SceneView::mouseMoveEvent(QMouseEvent* event)
{
    if (event->buttons().testFlag(Qt::MiddleButton)) {
        const QPoint moved = event->pos() - m_lastPosition;
        horizontalScrollBar()->setValue(horizontalScrollBar()->value() - moved.x());
        verticalScrollBar()->setValue(verticalScrollBar()->value() - moved.y());
    }
    m_lastPosition = event->pos();
    QGraphicsView::mouseMoveEvent(event);
}

void SceneView::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && m_scene.thingAt(mapToScene(event->pos())).isNothing())
        Q_EMIT searchWanted(mapToScene(event->pos()));
    else
        QGraphicsView::mouseDoubleClickEvent(event);
}

// Where the menu of the selected thing opens.
QPointF SceneView::selectedPoint() const
{
    const CanvasThing thing = m_scene.selectedThing();
    if (const PreviewNode* const node = m_scene.item(thing.node))
        return node->scenePos() + QPointF(20, 10);
    if (const FrameItem* const frame = m_scene.frames().item(thing.frame))
        return frame->scenePos() + QPointF(20, 10);
    return thing.wire ? m_scene.wires().middleOf(*thing.wire) : pointerInScene();
}

bool SceneView::viewportEvent(QEvent* event)
{
    if (event->type() == QEvent::Leave)
        m_scene.wires().setLit(std::nullopt);
    return QGraphicsView::viewportEvent(event);
}

// A line that is being edited has a menu of its own.
void SceneView::contextMenuEvent(QContextMenuEvent* event)
{
    if (m_scene.focusItem())
        return QGraphicsView::contextMenuEvent(event);
    const bool isKey = event->reason() == QContextMenuEvent::Keyboard;
    Q_EMIT menuWanted(isKey ? selectedPoint() : mapToScene(event->pos()));
    event->accept();
}

// The scroll area would scroll by the arrows and eat them.
void SceneView::keyPressEvent(QKeyEvent* event)
{
    event->ignore();
    if (scene()->focusItem())
        QGraphicsView::keyPressEvent(event);
    else if (event->key() == Qt::Key_Escape) {
        if (!m_scene.dropLooseWire())
            m_scene.select({});
        event->accept();
    }
}

} // namespace Host

#include "minimap.h"

#include "scene.h"
#include "sceneview.h"

#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>

namespace Host
{
namespace
{

constexpr QSize kSize(200, 130);
constexpr int kMargin = 10;
constexpr double kRoom = 100; // scene units around the nodes
constexpr int kDelay = 40;    // milliseconds between two pictures

} // namespace

MiniMap::MiniMap(Scene& scene, SceneView& view)
    : QWidget(&view)
    , m_scene(scene)
    , m_view(view)
{
    setObjectName("miniMapPanel");
    setAccessibleName(tr("Overview of the nodes"));
    setToolTip(tr("All nodes; drag to move the canvas"));
    setFixedSize(kSize);
    setCursor(Qt::ArrowCursor);
    m_timer.setSingleShot(true);
    m_timer.setInterval(kDelay);
    connect(&m_timer, SIGNAL(timeout()), this, SLOT(follow()));
    view.viewport()->installEventFilter(this);
    place();
}

void MiniMap::place()
{
    const QRect viewport = m_view.viewport()->geometry();
    move(viewport.right() - width() - kMargin, viewport.bottom() - height() - kMargin);
}

// Whatever moves or changes on the canvas is painted there.
bool MiniMap::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::Resize)
        place();
    if (event->type() == QEvent::Paint && isVisible() && !m_timer.isActive())
        m_timer.start();
    return QWidget::eventFilter(object, event);
}

QRectF MiniMap::areaInView() const
{
    return m_view.mapToScene(m_view.viewport()->rect()).boundingRect();
}

void MiniMap::follow()
{
    const QRectF area = m_scene.nodesRect({}) | m_scene.frames().area();
    m_area = area.adjusted(-kRoom, -kRoom, kRoom, kRoom) | areaInView();
    update();
}

QTransform MiniMap::sceneToMap() const
{
    const QRectF room = QRectF(rect()).adjusted(4, 4, -4, -4);
    const double scale =
        std::min(room.width() / std::max(1.0, m_area.width()), room.height() / std::max(1.0, m_area.height()));
    return QTransform::fromTranslate(-m_area.center().x(), -m_area.center().y()) * QTransform::fromScale(scale, scale) *
           QTransform::fromTranslate(room.center().x(), room.center().y());
}

QPointF MiniMap::toMap(const QPointF& scenePoint) const
{
    return sceneToMap().map(scenePoint);
}

void MiniMap::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), QColor(20, 20, 20, 225));
    const QTransform transform = sceneToMap();
    for (const auto& [id, frame] : m_scene.frames().items()) {
        painter.fillRect(transform.mapRect(frame->area()), QColor(110, 110, 116, 70));
        painter.fillRect(transform.mapRect(QRectF(frame->area().topLeft(), QSizeF(frame->area().width(), 28))),
                         QColor(110, 110, 116));
    }
    for (const auto& [id, node] : m_scene.nodeItems())
        painter.fillRect(transform.mapRect(node->mapRectToScene(node->rect())),
                         node->isSelected() ? QColor(255, 204, 0) : QColor(138, 138, 138));
    painter.setPen(QColor(201, 198, 198));
    painter.setBrush(QColor(255, 255, 255, 18));
    painter.drawRect(transform.mapRect(areaInView()).adjusted(0, 0, -1, -1));
    painter.setPen(QColor(70, 69, 69));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void MiniMap::mousePressEvent(QMouseEvent* event)
{
    event->accept();
    if (event->button() == Qt::LeftButton)
        m_view.centerOn(sceneToMap().inverted().map(event->localPos()));
}

void MiniMap::mouseMoveEvent(QMouseEvent* event)
{
    event->accept();
    if (event->buttons().testFlag(Qt::LeftButton))
        m_view.centerOn(sceneToMap().inverted().map(event->localPos()));
}

void MiniMap::wheelEvent(QWheelEvent* event)
{
    event->accept(); // the canvas would zoom about a point that is not below the mouse
}

} // namespace Host

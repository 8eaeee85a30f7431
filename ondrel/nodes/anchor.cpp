#include <ondrel/core/platform.h>
#include <ondrel/nodes/anchor.h>

#include <QCursor>
#include <QFileInfo>
#include <QGraphicsSceneMouseEvent>
#include <QSvgRenderer>

namespace Ondrel
{
namespace
{

// One set for all anchors: a graph holds hundreds of them.
struct Renderers {
    QSvgRenderer disconnected;
    QSvgRenderer connected;
    QSvgRenderer interacting;
};

Renderers& renderers()
{
    static Renderers shared;
    return shared;
}

// A renderer that has no picture yet gets another chance with each new anchor. What is no file is not tried, since the
// renderer would print a warning.
void loadIfNeeded(QSvgRenderer& renderer, const QString& fileName)
{
    const QString path = Platform::IconsDirectory() + fileName;
    if (!renderer.isValid() && QFileInfo(path).isFile() && QFileInfo(path).isReadable())
        renderer.load(path);
}

} // namespace

Anchor::Anchor(QGraphicsItem* parent, IODirection direction)
    : QGraphicsRectItem(parent)
    , m_direction(direction)
{
    setCursor(Qt::ArrowCursor);
    setAcceptHoverEvents(true);
    loadIfNeeded(renderers().disconnected, QStringLiteral("node_anchor_disconnected.svg"));
    loadIfNeeded(renderers().connected, QStringLiteral("node_anchor_connected.svg"));
    loadIfNeeded(renderers().interacting, QStringLiteral("node_anchor_connected_selected.svg"));
}

void Anchor::setConnected(bool connected)
{
    m_connected = connected;
    update();
}

void Anchor::setInteracting(bool interacting)
{
    if (m_interacting == interacting)
        return;
    m_interacting = interacting;
    update();
}

void Anchor::paint(QPainter* painter, const QStyleOptionGraphicsItem* /*option*/, QWidget* /*widget*/)
{
    QSvgRenderer& unmarked = m_connected ? renderers().connected : renderers().disconnected;
    (m_interacting ? renderers().interacting : unmarked).render(painter, rect());
}

// The toolkit's handlers are left out of all three: they would pass the press on to the node, which would move.

void Anchor::mousePressEvent(QGraphicsSceneMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        Q_EMIT mousePressEvent(this, event);
}

void Anchor::mouseReleaseEvent(QGraphicsSceneMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        Q_EMIT mouseReleaseEvent(this, event);
}

void Anchor::mouseMoveEvent(QGraphicsSceneMouseEvent* event)
{
    Q_EMIT mouseMoveEvent(this, event);
}

} // namespace Ondrel

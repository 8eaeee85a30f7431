#include "nodepicture.h"

#include <QGraphicsItem>
#include <QPainter>
#include <QStyleOptionGraphicsItem>

#include <cmath>

namespace Host
{
namespace
{

constexpr int kTime = 6;                    // milliseconds of a frame
constexpr qint64 kBytes = qint64(96) << 20; // for all pictures
constexpr qreal kLargest = 2;               // beyond that a node is one of few, and its picture large
constexpr double kSame = 1e-6;              // of two scales
const QColor kUnknown(76, 75, 75);          // a node that no frame had time for yet

// An item and all in it. The toolkit's own way leaves out what is not exposed just then.
void drawTree(QPainter& painter, QGraphicsItem& item)
{
    if (!item.isVisible())
        return;
    const QList<QGraphicsItem*> children = item.childItems();
    const auto drawChildren = [&](bool behind) {
        for (QGraphicsItem* const child : children) {
            if (child->flags().testFlag(QGraphicsItem::ItemStacksBehindParent) != behind)
                continue;
            painter.save();
            painter.setTransform(child->itemTransform(&item), true);
            drawTree(painter, *child);
            painter.restore();
        }
    };
    drawChildren(true);
    if (!item.flags().testFlag(QGraphicsItem::ItemHasNoContents)) {
        QStyleOptionGraphicsItem option;
        option.exposedRect = item.boundingRect();
        option.rect = option.exposedRect.toAlignedRect();
        option.state = item.isEnabled() ? QStyle::State_Enabled : QStyle::State_None;
        option.state.setFlag(QStyle::State_Selected, item.isSelected());
        option.state.setFlag(QStyle::State_HasFocus, item.hasFocus());
        option.state.setFlag(QStyle::State_MouseOver, item.isUnderMouse());
        painter.save();
        painter.setOpacity(item.effectiveOpacity());
        item.paint(&painter, &option, nullptr);
        painter.restore();
    }
    drawChildren(false);
}

} // namespace

void NodePictures::beginFrame(const QRect& exposed)
{
    m_exposed = exposed;
    m_clock.start();
    m_isInFrame = true;
    m_hasRendered = false;
    m_unfinished = false;
    ++m_frame;
}

bool NodePictures::mayRender() const
{
    return !m_hasRendered || m_clock.elapsed() < kTime;
}

// Pictures that are not in view go first; those that are may take as much as they need.
void NodePictures::makeRoom(qint64 bytes)
{
    if (m_bytes + bytes <= kBytes)
        return;
    for (NodePicture* const picture : m_all) {
        if (picture->m_lastFrame + 1 < m_frame)
            picture->release();
    }
}

NodePicture::NodePicture(QGraphicsItem& node, NodePictures& shared)
    : m_node(node)
    , m_shared(shared)
{
    m_shared.m_all.insert(this);
}

NodePicture::~NodePicture()
{
    release();
    m_shared.m_all.erase(this);
}

void NodePicture::release()
{
    m_shared.m_bytes -= bytes();
    m_picture = QPixmap();
    m_stale = true;
}

void NodePicture::sourceChanged(ChangeFlags)
{
    m_stale = true;
}

bool NodePicture::isSharp(qreal scale) const
{
    return !m_stale && std::abs(m_scale / scale - 1) < kSame;
}

void NodePicture::draw(QPainter* painter)
{
    if (!m_shared.m_isInFrame)
        return drawSource(painter);
    const QRectF bounds = sourceBoundingRect(Qt::LogicalCoordinates);
    const QRectF place = painter->worldTransform().mapRect(bounds);
    if (place.intersects(QRectF(painter->viewport())))
        m_lastFrame = m_shared.m_frame;
    if (!place.intersects(QRectF(m_shared.m_exposed)))
        return;
    const qreal scale = painter->worldTransform().m11() * painter->device()->devicePixelRatioF();
    if (scale > kLargest)
        return drawSource(painter);
    if (!isSharp(scale)) {
        if (m_shared.mayRender())
            render(*painter, bounds, scale);
        else
            m_shared.m_unfinished = true;
    }
    painter->save();
    painter->setOpacity(1); // the picture has it
    if (m_picture.isNull())
        painter->fillRect(bounds, kUnknown);
    else
        drawPicture(*painter, scale);
    painter->restore();
}

// As large as it is on the screen, on whole pixels from the node's corner.
void NodePicture::render(QPainter& painter, const QRectF& bounds, qreal scale)
{
    const QRect pixels = QRectF(bounds.topLeft() * scale, bounds.size() * scale).toAlignedRect();
    m_shared.m_hasRendered = true;
    release();
    m_shared.makeRoom(qint64(pixels.width()) * pixels.height() * 4);
    QPixmap picture(pixels.size());
    picture.fill(Qt::transparent);
    QPainter inside(&picture);
    inside.setRenderHints(painter.renderHints());
    inside.setWorldTransform(QTransform::fromScale(scale, scale) *
                             QTransform::fromTranslate(-pixels.left(), -pixels.top()));
    drawTree(inside, m_node);
    inside.end();
    m_picture = picture;
    m_offset = pixels.topLeft();
    m_scale = scale;
    m_stale = false;
    m_shared.m_bytes += bytes();
}

// Pixel on pixel where it has the size of the screen.
void NodePicture::drawPicture(QPainter& painter, qreal scale) const
{
    const qreal ratio = painter.device()->devicePixelRatioF();
    const QPointF corner = painter.worldTransform().map(QPointF(0, 0)) * ratio;
    const qreal zoom = scale / m_scale;
    const bool isExact = std::abs(zoom - 1) < kSame;
    const QPointF at = isExact ? QPointF(corner.toPoint() + m_offset) : corner + QPointF(m_offset) * zoom;
    painter.setWorldTransform(QTransform());
    painter.drawPixmap(QRectF(at / ratio, QSizeF(m_picture.size()) * (isExact ? 1 : zoom) / ratio), m_picture,
                       QRectF(m_picture.rect()));
}

} // namespace Host

#include "frameitem.h"

#include <QCursor>
#include <QGraphicsSceneHoverEvent>
#include <QGraphicsSceneMouseEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QTextCursor>
#include <QTextDocument>

#include <algorithm>

namespace Host
{
namespace
{

constexpr double kTitleHeight = 28;
constexpr double kCorner = 18;
constexpr double kMargin = 8; // of the title
constexpr int kTextSize = 15;
const QSizeF kLeastSize(120, 80);

QFont titleFont()
{
    QFont font;
    font.setPixelSize(kTextSize);
    return font;
}

} // namespace

FrameTitle::FrameTitle(QGraphicsItem* parent)
    : QGraphicsTextItem(parent)
{
    setFont(titleFont());
    setDefaultTextColor(QColor(240, 238, 238));
    hide();
}

void FrameTitle::begin(const QString& title)
{
    m_before = title;
    setPlainText(title);
    setTextInteractionFlags(Qt::TextEditorInteraction);
    show();
    setFocus(Qt::MouseFocusReason);
    QTextCursor cursor(document());
    cursor.select(QTextCursor::Document);
    setTextCursor(cursor);
}

void FrameTitle::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        setPlainText(m_before);
    if (event->key() == Qt::Key_Escape || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        clearFocus();
    else
        QGraphicsTextItem::keyPressEvent(event);
}

void FrameTitle::focusOutEvent(QFocusEvent* event)
{
    QGraphicsTextItem::focusOutEvent(event);
    if (event->reason() == Qt::PopupFocusReason || textInteractionFlags() == Qt::NoTextInteraction)
        return; // its own context menu
    setTextInteractionFlags(Qt::NoTextInteraction);
    hide();
    Q_EMIT done(toPlainText().simplified());
}

FrameItem::FrameItem(quint64 id)
    : m_id(id)
    , m_editor(new FrameTitle(this))
{
    setAcceptHoverEvents(true);
    m_editor->setPos(kMargin - m_editor->document()->documentMargin(), 0);
    connect(m_editor, &FrameTitle::done, this, &FrameItem::endEditing);
}

void FrameItem::show(const FrameRecord& record)
{
    m_title = record.title;
    setArea(record.area);
}

QRectF FrameItem::area() const
{
    return QRectF(pos(), m_size);
}

// The larger frame lies below, so that the title of one inside it can be reached.
void FrameItem::setArea(const QRectF& area)
{
    prepareGeometryChange();
    setPos(area.topLeft());
    m_size = area.size();
    setZValue(-2 - std::min(1.0, area.width() * area.height() / 1e9));
    update();
}

QRectF FrameItem::titleArea() const
{
    return mapRectToScene(titleBar());
}

QSizeF FrameItem::leastSize()
{
    return kLeastSize;
}

void FrameItem::setMarked(bool marked)
{
    m_marked = marked;
    update();
}

QRectF FrameItem::titleBar() const
{
    return QRectF(0, 0, m_size.width(), kTitleHeight);
}

QRectF FrameItem::corner() const
{
    return QRectF(m_size.width() - kCorner, m_size.height() - kCorner, kCorner, kCorner);
}

QRectF FrameItem::boundingRect() const
{
    return QRectF(QPointF(), m_size).adjusted(-1, -1, 1, 1);
}

QPainterPath FrameItem::shape() const
{
    QPainterPath path;
    path.addRect(titleBar());
    path.addRect(corner());
    return path;
}

void FrameItem::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*)
{
    const QColor outline = m_marked ? QColor(255, 204, 0) : QColor(84, 83, 83);
    QPainterPath whole;
    whole.addRoundedRect(QRectF(QPointF(), m_size), 6, 6);
    painter->fillPath(whole, QColor(110, 110, 116, 48));
    painter->setClipRect(titleBar(), Qt::IntersectClip);
    painter->fillPath(whole, QColor(56, 56, 58));
    painter->setClipping(false);
    painter->setPen(QPen(outline, m_marked ? 2 : 1));
    painter->setBrush(Qt::NoBrush);
    painter->drawPath(whole);
    const QPointF end(m_size.width() - 4, m_size.height() - 4);
    for (const double length : {5.0, 9.0, 13.0})
        painter->drawLine(end - QPointF(length, 0), end - QPointF(0, length));
    if (m_editor->isVisible())
        return;
    painter->setFont(titleFont());
    painter->setPen(QColor(201, 198, 198));
    const QRectF room = titleBar().adjusted(kMargin, 0, -kMargin, 0);
    painter->drawText(room, Qt::AlignLeft | Qt::AlignVCenter,
                      painter->fontMetrics().elidedText(m_title, Qt::ElideRight, int(room.width())));
}

void FrameItem::editTitle()
{
    m_editor->begin(m_title);
    update();
}

void FrameItem::endEditing(const QString& title)
{
    update();
    if (!title.isEmpty() && title != m_title)
        Q_EMIT titleEdited(m_id, title);
}

void FrameItem::mousePressEvent(QGraphicsSceneMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return QGraphicsObject::mousePressEvent(event);
    m_resizes = corner().contains(event->pos());
    m_sizeBefore = m_size;
    Q_EMIT pressed(m_id);
}

void FrameItem::mouseMoveEvent(QGraphicsSceneMouseEvent* event)
{
    const QPointF way = event->scenePos() - event->buttonDownScenePos(Qt::LeftButton);
    if (m_resizes)
        setArea(QRectF(pos(), (m_sizeBefore + QSizeF(way.x(), way.y())).expandedTo(kLeastSize)));
    else
        Q_EMIT moved(m_id, way);
}

void FrameItem::mouseReleaseEvent(QGraphicsSceneMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        Q_EMIT released(m_id);
}

void FrameItem::mouseDoubleClickEvent(QGraphicsSceneMouseEvent* event)
{
    if (titleBar().contains(event->pos()))
        editTitle();
}

void FrameItem::hoverMoveEvent(QGraphicsSceneHoverEvent* event)
{
    setCursor(corner().contains(event->pos()) ? Qt::SizeFDiagCursor : Qt::ArrowCursor);
}

} // namespace Host

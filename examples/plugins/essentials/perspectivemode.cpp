#include "perspectivemode.h"

#include "values.h"

#include <QGraphicsView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace Essentials
{
namespace
{

enum Field : unsigned long { CornersField = 2, SizeField = 3 }; // of nodes/perspective.xml
constexpr qreal kReach = 12;

} // namespace

QString PerspectiveMode::modeName() const
{
    return tr("Perspective");
}

std::optional<QPointF> PerspectiveMode::cornerInView(std::size_t corner) const
{
    if (!ready())
        return std::nullopt;
    const QPointF& at = m_corners[corner];
    return pictureToView().map(QPointF(at.x() * pictureSize().width(), at.y() * pictureSize().height()));
}

void PerspectiveMode::nodeInputChanged(unsigned long fieldIndex, const QVariant& value)
{
    if (fieldIndex == SizeField)
        m_growing = choice({{"size", value}}, "size", {"Same Size", "Whole Picture"}) == 1;
    if (fieldIndex != CornersField)
        return;
    Corners corners = {QPointF(0, 0), QPointF(1, 0), QPointF(1, 1), QPointF(0, 1)};
    const QVariantList list = value.toList();
    for (int i = 0; i < 4; ++i) {
        if (list.value(i).canConvert<QPointF>())
            corners[std::size_t(i)] = list[i].toPointF();
    }
    showCorners(corners);
}

void PerspectiveMode::showCorners(const Corners& corners)
{
    m_corners = corners;
    Q_EMIT requestCanvasUpdate();
}

void PerspectiveMode::tell()
{
    QVariantList list;
    for (const QPointF& corner : m_corners)
        list.append(corner);
    Q_EMIT inputValueChanged(CornersField, QVariant(list));
}

void PerspectiveMode::giveUp()
{
    if (m_beforeDrag)
        showCorners(*std::exchange(m_beforeDrag, std::nullopt));
}

bool PerspectiveMode::nudge(int dx, int dy)
{
    if (!ready() || m_beforeDrag)
        return true;
    Corners corners = m_corners;
    corners[m_corner] += QPointF(double(dx) / pictureSize().width(), double(dy) / pictureSize().height());
    showCorners(corners);
    tell();
    return true;
}

void PerspectiveMode::viewMousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || !ready())
        return;
    for (std::size_t i = 0; i < m_corners.size(); ++i) {
        if ((*cornerInView(i) - event->localPos()).manhattanLength() > kReach)
            continue;
        m_corner = i;
        m_beforeDrag = m_corners;
        Q_EMIT requestCanvasUpdate();
        return;
    }
}

void PerspectiveMode::viewMouseMoveEvent(QMouseEvent* event)
{
    const std::optional<QPointF> point = m_beforeDrag ? pictureAt(event->localPos()) : std::nullopt;
    if (!point)
        return;
    Corners corners = m_corners;
    corners[m_corner] = QPointF(point->x() / pictureSize().width(), point->y() / pictureSize().height());
    showCorners(corners);
}

void PerspectiveMode::viewMouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && m_beforeDrag && *std::exchange(m_beforeDrag, std::nullopt) != m_corners)
        tell();
}

void PerspectiveMode::viewKeyPressEvent(QKeyEvent* event)
{
    if (event->key() != Qt::Key_Space)
        return PictureMode::viewKeyPressEvent(event);
    m_corner = (m_corner + 1) % m_corners.size();
    Q_EMIT requestCanvasUpdate();
}

void PerspectiveMode::draw(QPainter& painter)
{
    QPolygonF outline;
    for (std::size_t i = 0; i < m_corners.size(); ++i)
        outline << *cornerInView(i);
    painter.setPen(QPen(QColor(255, 204, 0), 1.5));
    painter.drawPolygon(outline);
    for (std::size_t i = 0; i < m_corners.size(); ++i) {
        painter.setBrush(i == m_corner ? QColor(255, 255, 255) : QColor(255, 204, 0));
        painter.drawEllipse(outline[int(i)], 6, 6);
    }
}

} // namespace Essentials

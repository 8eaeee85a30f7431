#include "perspectivemode.h"

#include "corners.h"
#include "values.h"

#include <QGraphicsView>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

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

QWidget* PerspectiveMode::createStatusBarWidget()
{
    return new QLabel(tr("Drag a corner; Space chooses one, the arrow keys move it, Escape gives up"));
}

// The route of the picture to the view leads through the node as it is, but the corners lie in what it makes.
QTransform PerspectiveMode::resultToView() const
{
    Corners corners = kUnmoved;
    QPolygonF from, to;
    for (std::size_t i = 0; i < corners.size(); ++i) {
        corners[i] = {m_applied[i].x(), m_applied[i].y()};
        from << QPointF(kUnmoved[i].x() * pictureSize().width(), kUnmoved[i].y() * pictureSize().height());
        to << QPointF(m_applied[i].x() * pictureSize().width(), m_applied[i].y() * pictureSize().height());
    }
    QTransform toPicture;
    const bool isBypassed = previewMode();
    if (isBypassed || !isConvex(corners) || !QTransform::quadToQuad(to, from, toPicture))
        return pictureToView();
    return toPicture * pictureToView();
}

std::optional<QPointF> PerspectiveMode::cornerInView(std::size_t corner) const
{
    if (!ready())
        return std::nullopt;
    const QPointF& at = m_corners[corner];
    return resultToView().map(QPointF(at.x() * pictureSize().width(), at.y() * pictureSize().height()));
}

void PerspectiveMode::nodeInputChanged(unsigned long fieldIndex, const QVariant& value)
{
    if (fieldIndex == SizeField)
        m_growing = choice({{"size", value}}, "size", {"Same Size", "Whole Picture"}) == 1;
    if (fieldIndex != CornersField)
        return;
    Points corners = {QPointF(0, 0), QPointF(1, 0), QPointF(1, 1), QPointF(0, 1)};
    const QVariantList list = value.toList();
    for (int i = 0; i < 4; ++i) {
        if (list.value(i).canConvert<QPointF>())
            corners[std::size_t(i)] = list[i].toPointF();
    }
    m_applied = corners;
    showCorners(corners);
}

void PerspectiveMode::showCorners(const Points& corners)
{
    m_corners = corners;
    Q_EMIT requestCanvasUpdate();
}

void PerspectiveMode::tell()
{
    m_applied = m_corners; // the host answers at once
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
    Points corners = m_corners;
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
    if (!m_beforeDrag)
        return;
    const QPointF point = resultToView().inverted().map(event->localPos());
    const auto limited = [](double part) { return std::clamp(part, kLeastCorner, kGreatestCorner); };
    Points corners = m_corners;
    corners[m_corner] =
        QPointF(limited(point.x() / pictureSize().width()), limited(point.y() / pictureSize().height()));
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
    const std::size_t by = event->modifiers().testFlag(Qt::ShiftModifier) ? m_corners.size() - 1 : 1;
    m_corner = (m_corner + by) % m_corners.size();
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

#include "cropmode.h"

#include "cropcommand.h"
#include "croppanel.h"

#include <QDockWidget>
#include <QGraphicsView>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QRubberBand>
#include <QToolButton>

#include <algorithm>
#include <cmath>

namespace
{

constexpr qreal kHandleSide = 9;
constexpr qreal kReach = 8; // how far beside a handle a press still takes it

const QColor kLine(255, 204, 0);

Qt::CursorShape cursorFor(const QPointF& direction)
{
    // The picture is turned and tilted, so the shape follows the direction on screen.
    const double degrees = std::atan2(direction.y(), direction.x()) * 180 / 3.14159265358979323846;
    const int eighth = (int(std::lround(degrees / 45)) + 8) % 4;
    static const Qt::CursorShape shapes[] = {Qt::SizeHorCursor, Qt::SizeFDiagCursor, Qt::SizeVerCursor,
                                             Qt::SizeBDiagCursor};
    return shapes[eighth];
}

} // namespace

CropMode::CropMode(QObject* parent)
    : PictureMode(parent)
{
}

QString CropMode::modeName() const
{
    return tr("Crop");
}

void CropMode::initialize(QGraphicsView* view, QGraphicsScene* scene, QGraphicsItem* canvasItem)
{
    PictureMode::initialize(view, scene, canvasItem);
    view->viewport()->setMouseTracking(true); // for the cursor over handles
}

void CropMode::createDockWidgets(std::vector<QDockWidget*>& widgets)
{
    auto* dock = new QDockWidget(tr("Crop"));
    dock->setObjectName("crop");
    dock->setWidget(new CropPanel(*this, dock));
    widgets.push_back(dock);
}

void CropMode::createToolButtons(std::vector<QToolButton*>& buttons)
{
    buttons.push_back(createToolButton(tr("Crop (C)"), "mode_crop.svg", QKeySequence("C")));
    buttons.back()->setObjectName("crop");
    buttons.push_back(createToolButton(tr("Zoom (Z)"), "mode_zoom.svg", QKeySequence("Z")));
    buttons.back()->setObjectName("zoom");
}

QWidget* CropMode::createStatusBarWidget()
{
    auto* label = new QLabel;
    label->setObjectName("frame");
    const auto showText = [this, label] {
        label->setText(
            tr("%1 x %2 at %3, %4").arg(m_frame.width()).arg(m_frame.height()).arg(m_frame.left()).arg(m_frame.top()));
    };
    connect(this, &CropMode::frameChanged, label, showText);
    showText();
    return label;
}

void CropMode::canvasGeometryChanged(const QSize& newDisplaySize, const QSize& newRealSize,
                                     const Ondrel::TransformSeries& series)
{
    const QSize before = pictureSize();
    PictureMode::canvasGeometryChanged(newDisplaySize, newRealSize, series);
    if (pictureSize() != before && m_frame.isInvalid())
        showFrame(Rect(QPoint(0, 0), pictureSize()));
}

void CropMode::currentToolAboutToChange()
{
    giveUp();
}

void CropMode::currentToolChanged(const QString& tool)
{
    m_zooming = tool == "zoom";
    view->viewport()->setCursor(m_zooming ? Qt::CrossCursor : Qt::ArrowCursor);
}

void CropMode::nodeInputChanged(unsigned long fieldIndex, const QVariant& value)
{
    if (fieldIndex == FrameField && value.canConvert<Rect>())
        showFrame(value.value<Rect>());
}

void CropMode::setFrame(const Rect& frame)
{
    showFrame(frame);
    tellFrame();
}

void CropMode::tellFrame()
{
    Q_EMIT inputValueChanged(FrameField, QVariant::fromValue(m_frame));
}

void CropMode::showFrame(const Rect& frame)
{
    m_frame = frame;
    Q_EMIT frameChanged();
    Q_EMIT requestCanvasUpdate();
}

void CropMode::finish(const QString& text, int kind, const Rect& before)
{
    if (m_frame == before)
        return;
    tellFrame();
    Q_EMIT newUndoCommand(new CropCommand(*this, text, CropCommand::Kind(kind), before, m_frame));
}

void CropMode::chooseAspect(float width, float height)
{
    m_aspect = {width, height};
    const Rect before = m_frame;
    showFrame(fitted(m_frame, m_aspect));
    finish(tr("Change crop ratio"), CropCommand::Drag, before);
}

void CropMode::resetFrame()
{
    if (!ready())
        return;
    const Rect before = m_frame;
    showFrame(fitted(Rect(QPoint(0, 0), pictureSize()), m_aspect));
    finish(tr("Reset crop"), CropCommand::Drag, before);
}

bool CropMode::nudge(int dx, int dy)
{
    if (!ready() || m_drag)
        return true;
    const Rect before = m_frame;
    showFrame(dragged(m_frame, m_byKeys, QPointF(dx, dy), pictureSize(), m_aspect));
    finish(m_byKeys == Handle::Inside ? tr("Move crop") : tr("Change crop"), CropCommand::Nudge, before);
    return true;
}

// The handles clockwise, then the inside.
void CropMode::chooseHandle(int by)
{
    const int count = int(kHandles.size()) + 1;
    m_byKeys = Handle((int(m_byKeys) + by + count) % count);
    Q_EMIT requestCanvasUpdate();
}

void CropMode::giveUp()
{
    if (m_drag)
        showFrame(std::exchange(m_drag, std::nullopt)->before);
    m_zoomStart.reset();
    if (m_rubberBand)
        m_rubberBand->hide();
}

std::optional<QPointF> CropMode::handleInView(Handle handle) const
{
    if (!ready())
        return std::nullopt;
    return pictureToView().map(handle == Handle::Inside ? m_frame.centerF() : handlePosition(m_frame, handle));
}

std::optional<Handle> CropMode::handleAt(const QPointF& viewPoint) const
{
    if (!ready())
        return std::nullopt;
    // Corners before edges: where a small frame has its handles on one spot, a corner can open it again.
    static const Handle order[] = {Handle::BottomRight, Handle::TopLeft, Handle::TopRight, Handle::BottomLeft,
                                   Handle::Top,         Handle::Right,   Handle::Bottom,   Handle::Left};
    const QTransform toView = pictureToView();
    for (const Handle handle : order) {
        const QPointF apart = toView.map(handlePosition(m_frame, handle)) - viewPoint;
        if (std::max(std::abs(apart.x()), std::abs(apart.y())) <= kReach)
            return handle;
    }
    if (outline(m_frame).containsPoint(viewPoint, Qt::OddEvenFill))
        return Handle::Inside;
    return std::nullopt;
}

void CropMode::updateCursor(const QPointF& viewPoint)
{
    const std::optional<Handle> handle = handleAt(viewPoint);
    if (handle != m_hovered) {
        m_hovered = handle;
        Q_EMIT requestCanvasUpdate();
    }
    if (!handle)
        view->viewport()->setCursor(Qt::ArrowCursor);
    else if (handle == Handle::Inside)
        view->viewport()->setCursor(Qt::SizeAllCursor);
    else
        view->viewport()->setCursor(cursorFor(*handleInView(*handle) - *handleInView(Handle::Inside)));
}

void CropMode::viewMousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::MiddleButton) {
        m_scrollFrom = event->pos();
        return;
    }
    if (event->button() != Qt::LeftButton || !ready())
        return;
    if (m_zooming) {
        m_zoomStart = event->pos();
        if (!m_rubberBand)
            m_rubberBand = new QRubberBand(QRubberBand::Rectangle, view->viewport());
        m_rubberBand->setGeometry(QRect(event->pos(), QSize()));
        m_rubberBand->show();
        return;
    }
    const std::optional<Handle> handle = handleAt(event->localPos());
    const std::optional<QPointF> point = pictureAt(event->localPos());
    if (handle && point)
        m_drag = DragState{*handle, m_frame, *point};
}

void CropMode::viewMouseMoveEvent(QMouseEvent* event)
{
    if (m_scrollFrom) {
        Q_EMIT requestCanvasTranslate(event->pos() - *m_scrollFrom);
        m_scrollFrom = event->pos();
        return;
    }
    if (m_zoomStart && m_rubberBand)
        m_rubberBand->setGeometry(QRect(*m_zoomStart, event->pos()).normalized());
    else if (m_drag) {
        // Always from where the drag began, so that a pointer that returns brings the frame back.
        if (const std::optional<QPointF> point = pictureAt(event->localPos()))
            showFrame(dragged(m_drag->before, m_drag->handle, *point - m_drag->start, pictureSize(), m_aspect));
    } else if (!m_zooming)
        updateCursor(event->localPos());
}

void CropMode::viewMouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::MiddleButton)
        m_scrollFrom.reset();
    if (event->button() != Qt::LeftButton)
        return;
    if (m_zoomStart) {
        const QRect area = QRect(*m_zoomStart, event->pos()).normalized();
        giveUp();
        zoomBy(area, event->modifiers().testFlag(Qt::AltModifier));
        return;
    }
    if (const std::optional<DragState> drag = std::exchange(m_drag, std::nullopt))
        finish(drag->handle == Handle::Inside ? tr("Move crop") : tr("Change crop"), CropCommand::Drag, drag->before);
}

void CropMode::viewMouseLeaveEvent(QEvent*)
{
    if (m_hovered) {
        m_hovered.reset();
        Q_EMIT requestCanvasUpdate();
    }
}

void CropMode::zoomBy(const QRect& area, bool outwards)
{
    const int direction = outwards ? -1 : 1;
    if (area.width() < 4 && area.height() < 4)
        Q_EMIT requestCanvasZoomStep(direction); // a click
    else
        Q_EMIT requestCanvasZoomRect(area.topLeft(), area.bottomRight(), direction);
}

void CropMode::viewKeyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Plus)
        Q_EMIT requestCanvasZoomStep(1);
    else if (event->key() == Qt::Key_Minus)
        Q_EMIT requestCanvasZoomStep(-1);
    else if (event->key() == Qt::Key_Space)
        chooseHandle(event->modifiers().testFlag(Qt::ShiftModifier) ? -1 : 1);
    else
        PictureMode::viewKeyPressEvent(event);
}

QPolygonF CropMode::outline(const Rect& frame) const
{
    const QTransform toView = pictureToView();
    QPolygonF polygon;
    for (const Handle corner : {Handle::TopLeft, Handle::TopRight, Handle::BottomRight, Handle::BottomLeft})
        polygon << toView.map(handlePosition(frame, corner));
    return polygon;
}

void CropMode::draw(QPainter& painter)
{
    drawShade(painter);
    drawFrame(painter);
    drawHandles(painter);
}

void CropMode::drawShade(QPainter& painter) const
{
    // A pixel of the view wider than the picture, whose place is rounded to whole ones.
    const QTransform toView = pictureToView();
    const int more = int(std::ceil(1 / std::max(1e-3, std::hypot(toView.m11(), toView.m12()))));
    const QSize size = pictureSize() + QSize(2 * more, 2 * more);
    QPainterPath outside;
    outside.addPolygon(outline(Rect(QPoint(-more, -more), size)));
    outside.closeSubpath();
    QPainterPath inside;
    inside.addPolygon(outline(m_frame));
    inside.closeSubpath();
    painter.fillPath(outside.subtracted(inside), QColor(0, 0, 0, 150));
}

void CropMode::drawFrame(QPainter& painter) const
{
    const QTransform toView = pictureToView();
    painter.setPen(QPen(QColor(255, 255, 255, 110), 1));
    for (int third = 1; third < 3; ++third) {
        const qreal x = m_frame.left() + m_frame.width() * third / 3.0;
        const qreal y = m_frame.top() + m_frame.height() * third / 3.0;
        painter.drawLine(toView.map(QPointF(x, m_frame.top())), toView.map(QPointF(x, m_frame.bottom())));
        painter.drawLine(toView.map(QPointF(m_frame.left(), y)), toView.map(QPointF(m_frame.right(), y)));
    }
    painter.setPen(QPen(kLine, 1.5));
    painter.setBrush(Qt::NoBrush);
    painter.drawPolygon(outline(m_frame));
}

void CropMode::drawHandles(QPainter& painter) const
{
    const QTransform toView = pictureToView();
    for (const Handle handle : kHandles) {
        const bool active = m_drag ? m_drag->handle == handle : m_hovered == handle || m_byKeys == handle;
        QRectF box(0, 0, kHandleSide, kHandleSide);
        box.moveCenter(toView.map(handlePosition(m_frame, handle)));
        painter.setPen(QPen(QColor(32, 32, 32), 1));
        painter.setBrush(active ? QColor(255, 255, 255) : kLine);
        painter.drawRect(box);
    }
}

#include "paintmode.h"

#include <ondrel/widgets/colorpushbutton.h>

#include <QDockWidget>
#include <QGraphicsView>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace Essentials
{
namespace
{

constexpr unsigned long kStrokes = 2; // among the fields of nodes/paint.xml
constexpr int kLargest = 2000;
constexpr double kStep = 1.25; // of the size, with each key
constexpr int kWay = 4;        // in pixels of the view, with each key
constexpr int kEdge = 20;      // of the view, that the cursor does not reach

} // namespace

QString PaintMode::modeName() const
{
    return tr("Paint");
}

void PaintMode::createDockWidgets(std::vector<QDockWidget*>& widgets)
{
    auto* const dock = new QDockWidget(tr("Brush"));
    dock->setObjectName("brush");
    auto* const panel = new QWidget(dock);
    auto* const button = new Ondrel::ColorPushButton(true, panel);
    button->setObjectName("color");
    button->setAccessibleName(tr("Brush color"));
    button->setColor(m_color);
    auto* const help = new QLabel(
        tr("[ and ]: size\nShift+[ and ]: hardness\nArrow keys: move the brush\nSpace: put it down, lift it"), panel);
    auto* const layout = new QVBoxLayout(panel);
    layout->addWidget(new QLabel(tr("Color"), panel));
    layout->addWidget(button);
    layout->addWidget(help);
    layout->addStretch();
    connect(button, SIGNAL(valueChanged(Ondrel::Color)), this, SLOT(chooseColor(Ondrel::Color)));
    dock->setWidget(panel);
    widgets.push_back(dock);
}

QWidget* PaintMode::createStatusBarWidget()
{
    auto* const label = new QLabel;
    label->setObjectName("brush");
    const auto showText = [this, label] {
        label->setText(tr("Brush %1 px, hardness %2 %").arg(m_size).arg(m_tenths * 10));
    };
    connect(this, &PaintMode::brushChanged, label, showText);
    showText();
    return label;
}

void PaintMode::chooseColor(const Ondrel::Color& color)
{
    m_color = color;
}

void PaintMode::setBrush(int size, int tenths)
{
    m_size = std::clamp(size, 1, kLargest);
    m_tenths = std::clamp(tenths, 0, 10);
    Q_EMIT brushChanged();
    Q_EMIT requestCanvasUpdate();
}

void PaintMode::giveUp()
{
    m_points.clear();
    m_isLowered = false;
    Q_EMIT requestCanvasUpdate();
}

void PaintMode::nodeInputChanged(unsigned long fieldIndex, const QVariant& value)
{
    if (fieldIndex == kStrokes)
        m_strokes = value.toList();
}

void PaintMode::viewMousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || !ready())
        return;
    if (m_isLowered)
        finishStroke();
    if (const std::optional<QPointF> point = pictureAt(event->localPos()))
        m_points = QPolygonF({*point});
    Q_EMIT requestCanvasUpdate();
}

void PaintMode::viewMouseMoveEvent(QMouseEvent* event)
{
    m_pointer = event->localPos();
    if (m_isLowered)
        return; // a touched mouse does not spoil what the keys paint
    m_cursor.reset();
    const std::optional<QPointF> point = ready() && !m_points.isEmpty() ? pictureAt(event->localPos()) : std::nullopt;
    if (point)
        m_points.append(*point);
    Q_EMIT requestCanvasUpdate();
}

void PaintMode::viewMouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && !m_points.isEmpty() && !m_isLowered)
        finishStroke();
}

void PaintMode::finishStroke()
{
    QVariantList points;
    for (const QPointF& point : std::exchange(m_points, QPolygonF()))
        points.append(point);
    m_isLowered = false;
    m_strokes.append(QVariantMap{
        {"size", m_size}, {"hardness", hardness()}, {"color", QVariant::fromValue(m_color)}, {"points", points}});
    Q_EMIT inputValueChanged(kStrokes, QVariant(m_strokes));
}

// Where the mouse has been last, or in the middle of the view, but in the picture.
void PaintMode::placeCursor()
{
    if (m_cursor)
        return;
    const std::optional<QPointF> point = pictureAt(m_pointer.value_or(view->viewport()->rect().center()));
    const QPointF at = point.value_or(QPointF(0, 0));
    m_cursor = QPointF(std::clamp(at.x(), 0.0, double(pictureSize().width())),
                       std::clamp(at.y(), 0.0, double(pictureSize().height())));
}

// Moves the canvas where the cursor would leave the view.
void PaintMode::showCursor()
{
    const QPoint at = pictureToView().map(*m_cursor).toPoint();
    const QRect room = view->viewport()->rect().adjusted(kEdge, kEdge, -kEdge, -kEdge);
    const QPoint inside(std::clamp(at.x(), room.left(), std::max(room.left(), room.right())),
                        std::clamp(at.y(), room.top(), std::max(room.top(), room.bottom())));
    if (inside != at)
        Q_EMIT requestCanvasTranslate(inside - at);
    Q_EMIT requestCanvasUpdate();
}

bool PaintMode::nudge(int dx, int dy)
{
    bool isInvertible = false;
    const QTransform toPicture = pictureToView().inverted(&isInvertible);
    if (!ready() || !isInvertible || (!m_points.isEmpty() && !m_isLowered))
        return true;
    placeCursor();
    const QPointF at = toPicture.map(pictureToView().map(*m_cursor) + QPointF(dx, dy) * kWay);
    m_cursor = QPointF(std::clamp(at.x(), 0.0, double(pictureSize().width())),
                       std::clamp(at.y(), 0.0, double(pictureSize().height())));
    if (m_isLowered)
        m_points.append(*m_cursor);
    showCursor();
    return true;
}

void PaintMode::lowerOrLift()
{
    if (m_isLowered)
        return finishStroke();
    if (!ready() || !m_points.isEmpty())
        return;
    placeCursor();
    m_points = QPolygonF({*m_cursor});
    m_isLowered = true;
    showCursor();
}

void PaintMode::viewMouseLeaveEvent(QEvent*)
{
    m_pointer.reset();
    Q_EMIT requestCanvasUpdate();
}

void PaintMode::viewKeyPressEvent(QKeyEvent* event)
{
    const int larger = std::max(m_size + 1, int(std::lround(m_size * kStep)));
    switch (event->key()) {
    case Qt::Key_BracketLeft:
        return setBrush(int(m_size / kStep), m_tenths);
    case Qt::Key_BracketRight:
        return setBrush(larger, m_tenths);
    case Qt::Key_BraceLeft: // with Shift
        return setBrush(m_size, m_tenths - 1);
    case Qt::Key_BraceRight:
        return setBrush(m_size, m_tenths + 1);
    case Qt::Key_Space:
        if (!event->isAutoRepeat())
            lowerOrLift();
        return;
    default:
        PictureMode::viewKeyPressEvent(event);
    }
}

double PaintMode::brushInView() const
{
    const QTransform toView = pictureToView();
    return m_size / 2.0 * std::sqrt(std::abs(toView.m11() * toView.m22() - toView.m12() * toView.m21()));
}

// The stroke is shown as a line until the node has painted it.
void PaintMode::draw(QPainter& painter)
{
    if (!m_points.isEmpty()) {
        const QColor color = QColor::fromRgba64(
            QRgba64::fromRgba64(m_color.red, m_color.green, m_color.blue, quint16(m_color.alpha * 0.8)));
        painter.setPen(QPen(color, 2 * brushInView(), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        const QPolygonF line = pictureToView().map(m_points);
        line.size() == 1 ? painter.drawPoint(line.front()) : painter.drawPolyline(line);
    }
    if (m_cursor)
        drawBrush(painter, pictureToView().map(*m_cursor));
    else if (m_pointer)
        drawBrush(painter, *m_pointer);
}

// With a cross for the keys, whose brush may be small and lie anywhere.
void PaintMode::drawBrush(QPainter& painter, const QPointF& at) const
{
    painter.setPen(QPen(QColor(255, 255, 255, 200), 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(at, brushInView(), brushInView());
    if (!m_cursor)
        return;
    const double reach = m_isLowered ? 4 : 8;
    for (const QColor& color : {QColor(0, 0, 0, 160), QColor(255, 255, 255)}) {
        painter.setPen(QPen(color, color.alpha() == 255 ? 1 : 3));
        painter.drawLine(at - QPointF(reach, 0), at + QPointF(reach, 0));
        painter.drawLine(at - QPointF(0, reach), at + QPointF(0, reach));
    }
}

} // namespace Essentials

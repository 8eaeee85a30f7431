#include "panecursor.h"

#include "arrowkeys.h"
#include "imagepane.h"

#include "../../mode/canvasview.h"

#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>
#include <cmath>

namespace Host
{
namespace
{

constexpr int kSide = 21;   // of the cross
constexpr int kScroll = 60; // pixels of the view
constexpr int kEdge = 20;   // of the view, that the cross does not reach

} // namespace

PaneCursor::PaneCursor(ImagePane& pane)
    : QWidget(pane.view().viewport())
    , m_pane(pane)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFixedSize(kSide, kSide);
    hide();
    pane.view().installEventFilter(this);
    pane.view().viewport()->installEventFilter(this);
    connect(&pane, SIGNAL(placed()), this, SLOT(follow()));
    connect(&pane, SIGNAL(pictureShown()), this, SLOT(follow()));
    for (const QScrollBar* const bar : {pane.view().horizontalScrollBar(), pane.view().verticalScrollBar()})
        connect(bar, SIGNAL(valueChanged(int)), this, SLOT(follow()));
}

// The pointer has the read-out as soon as it moves.
bool PaneCursor::eventFilter(QObject* object, QEvent* event)
{
    if (object == &m_pane.view() && event->type() == QEvent::KeyPress)
        return press(*static_cast<QKeyEvent*>(event)) || QWidget::eventFilter(object, event);
    if (object == m_pane.view().viewport() && event->type() == QEvent::MouseMove)
        end();
    return QWidget::eventFilter(object, event);
}

bool PaneCursor::press(const QKeyEvent& event)
{
    const QPointF direction = arrowDirection(event.key());
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    if (!direction.isNull() && modifiers == Qt::ControlModifier) {
        m_pane.scrollBy((direction * kScroll).toPoint());
        return true;
    }
    if (m_pane.view().mode() || !m_pane.picture().image)
        return false;
    if (event.key() == Qt::Key_Escape && m_position) {
        end();
        m_pane.readOutAt(std::nullopt);
        return true;
    }
    if (direction.isNull() || (modifiers != Qt::NoModifier && modifiers != Qt::ShiftModifier))
        return false;
    move(modifiers == Qt::ShiftModifier ? direction * 10 : direction);
    return true;
}

// The first key puts it to the middle of the view. The middle of a pixel is where it stays.
void PaneCursor::move(QPointF direction)
{
    CanvasView& view = m_pane.view();
    const QSize size = m_pane.picture().fullSize;
    const auto onto = [](double at, int length) { return std::floor(std::clamp(at, 0.0, length - 1.0)) + 0.5; };
    const double step = std::max(1.0, std::round(1 / m_pane.zoom()));
    const QPointF at = m_position ? *m_position + direction * step : view.mapToScene(view.viewport()->rect().center());
    m_position = QPointF(onto(at.x(), size.width()), onto(at.y(), size.height()));
    const QPoint inView = view.mapFromScene(*m_position);
    const QRect room = view.viewport()->rect().adjusted(kEdge, kEdge, -kEdge, -kEdge);
    const QPoint inside(std::clamp(inView.x(), room.left(), std::max(room.left(), room.right())),
                        std::clamp(inView.y(), room.top(), std::max(room.top(), room.bottom())));
    if (inside != inView)
        m_pane.scrollBy(inView - inside);
    follow();
}

void PaneCursor::follow()
{
    if (!m_position)
        return;
    if (m_pane.view().mode() || !m_pane.picture().image)
        return end();
    const QPoint middle = m_pane.view().mapFromScene(*m_position);
    setGeometry(QRect(middle - QPoint(kSide / 2, kSide / 2), size()));
    show();
    m_pane.readOutAt(m_position);
}

void PaneCursor::end()
{
    m_position.reset();
    hide();
}

void PaneCursor::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const int middle = kSide / 2;
    for (const auto& [color, width] : {std::pair(QColor(14, 14, 14, 200), 3), std::pair(QColor(255, 204, 0), 1)}) {
        painter.setPen(QPen(color, width));
        for (const int side : {-1, 1}) { // free in the middle
            painter.drawLine(middle + side * 3, middle, middle + side * middle, middle);
            painter.drawLine(middle, middle + side * 3, middle, middle + side * middle);
        }
    }
}

} // namespace Host

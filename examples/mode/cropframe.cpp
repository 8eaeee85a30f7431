#include "cropframe.h"

#include <QtGlobal>

#include <algorithm>
#include <cmath>

namespace
{

using Frame = Ondrel::RectT<int>;

bool movesLeft(Handle handle)
{
    return handle == Handle::TopLeft || handle == Handle::Left || handle == Handle::BottomLeft;
}

bool movesRight(Handle handle)
{
    return handle == Handle::TopRight || handle == Handle::Right || handle == Handle::BottomRight;
}

bool movesTop(Handle handle)
{
    return handle == Handle::TopLeft || handle == Handle::Top || handle == Handle::TopRight;
}

bool movesBottom(Handle handle)
{
    return handle == Handle::BottomLeft || handle == Handle::Bottom || handle == Handle::BottomRight;
}

// The library's dragging lets an edge pass the opposite one. Here it stops a pixel before.
QPointF limited(const Frame& frame, Handle handle, QPointF delta)
{
    if (movesLeft(handle))
        delta.setX(std::min<qreal>(delta.x(), frame.width() - 1));
    if (movesRight(handle))
        delta.setX(std::max<qreal>(delta.x(), 1 - frame.width()));
    if (movesTop(handle))
        delta.setY(std::min<qreal>(delta.y(), frame.height() - 1));
    if (movesBottom(handle))
        delta.setY(std::max<qreal>(delta.y(), 1 - frame.height()));
    return delta;
}

Frame moved(Frame frame, QPointF delta, QSize picture)
{
    const int dx = qBound(-frame.left(), qRound(delta.x()), std::max(-frame.left(), picture.width() - frame.right()));
    const int dy = qBound(-frame.top(), qRound(delta.y()), std::max(-frame.top(), picture.height() - frame.bottom()));
    frame.translate(dx, dy);
    return frame;
}

// With a ratio, a frame can also shrink to nothing across the direction of the drag.
bool usable(const Frame& frame, QSize picture)
{
    return frame.width() >= 1 && frame.height() >= 1 && frame.left() >= 0 && frame.top() >= 0 &&
           frame.right() <= picture.width() && frame.bottom() <= picture.height();
}

} // namespace

QString handleName(Handle handle)
{
    static const char* const names[] = {"top-left", "top",         "top-right", "right", "bottom-right",
                                        "bottom",   "bottom-left", "left",      "inside"};
    return names[int(handle)];
}

QPointF handlePosition(const Frame& frame, Handle handle)
{
    const QPointF middle = frame.centerF();
    const qreal x = movesLeft(handle) ? frame.left() : movesRight(handle) ? frame.right() : middle.x();
    const qreal y = movesTop(handle) ? frame.top() : movesBottom(handle) ? frame.bottom() : middle.y();
    return QPointF(x, y);
}

Frame dragged(const Frame& frame, Handle handle, QPointF delta, QSize picture, Aspect aspect)
{
    if (handle == Handle::Inside)
        return moved(frame, delta, picture);
    const QPointF d = limited(frame, handle, delta);
    const int w = picture.width(), h = picture.height();
    const float aw = aspect.width, ah = aspect.height;
    Frame result = frame;
    switch (handle) {
    case Handle::TopLeft:
        result.adjustTopLeft(d, w, h, aw, ah);
        break;
    case Handle::TopRight:
        result.adjustTopRight(d, w, h, aw, ah);
        break;
    case Handle::BottomLeft:
        result.adjustBottomLeft(d, w, h, aw, ah);
        break;
    case Handle::BottomRight:
        result.adjustBottomRight(d, w, h, aw, ah);
        break;
    // With a ratio, the upper and left edges measure from the limit, which therefore is the opposite edge.
    case Handle::Top:
        result.adjustTop(float(d.y()), w, frame.bottom(), aw, ah);
        break;
    case Handle::Left:
        result.adjustLeft(float(d.x()), frame.right(), h, aw, ah);
        break;
    case Handle::Right:
        result.adjustRight(float(d.x()), w, h, aw, ah);
        break;
    case Handle::Bottom:
        result.adjustBottom(float(d.y()), w, h, aw, ah);
        break;
    case Handle::Inside:
        break;
    }
    return usable(result, picture) ? result : frame;
}

Frame fitted(const Frame& frame, Aspect aspect)
{
    if (!aspect.locked())
        return frame;
    const double ratio = double(aspect.width) / double(aspect.height);
    const int width = std::clamp(int(std::lround(frame.height() * ratio)), 1, std::max(1, frame.width()));
    const int height = std::clamp(int(std::lround(width / ratio)), 1, std::max(1, frame.height()));
    return Frame(frame.left() + (frame.width() - width) / 2, frame.top() + (frame.height() - height) / 2, width,
                 height);
}

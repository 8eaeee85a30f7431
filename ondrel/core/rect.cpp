#include <ondrel/core/rect.h>
#include <ondrel/core/rectdrag_p.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace Ondrel
{
using namespace RectNumbers;

template <typename T>
RectT<T>::RectT() = default;

template <typename T>
RectT<T>::RectT(T x, T y, T w, T h)
    : m_left(x)
    , m_top(y)
    , m_right(sum(x, w))
    , m_bottom(sum(y, h))
{
}

template <typename T>
RectT<T>::RectT(QPoint const& topLeft, QSize const& size)
    : RectT(T(topLeft.x()), T(topLeft.y()), T(size.width()), T(size.height()))
{
}

template <typename T>
RectT<T>::RectT(QPointF const& topLeft, QSizeF const& size)
    : m_left(truncated<T>(topLeft.x()))
    , m_top(truncated<T>(topLeft.y()))
    , m_right(truncated<T>(topLeft.x() + size.width()))
    , m_bottom(truncated<T>(topLeft.y() + size.height()))
{
}

template <typename T>
RectT<T>::RectT(QPoint const& a, QPoint const& b)
    : m_left(T(std::min(a.x(), b.x())))
    , m_top(T(std::min(a.y(), b.y())))
    , m_right(T(std::max(a.x(), b.x())))
    , m_bottom(T(std::max(a.y(), b.y())))
{
}

template <typename T>
RectT<T>::RectT(QPointF const& a, QPointF const& b)
    : m_left(std::min(truncated<T>(a.x()), truncated<T>(b.x())))
    , m_top(std::min(truncated<T>(a.y()), truncated<T>(b.y())))
    , m_right(std::max(truncated<T>(a.x()), truncated<T>(b.x())))
    , m_bottom(std::max(truncated<T>(a.y()), truncated<T>(b.y())))
{
}

template <typename T>
bool RectT<T>::operator==(RectT const& other) const
{
    return m_left == other.m_left && m_top == other.m_top && m_right == other.m_right && m_bottom == other.m_bottom;
}

template <typename T>
RectT<T> RectT<T>::invalid()
{
    return RectT(-1, -1, -1, -1);
}

template <typename T>
RectT<T> RectT<T>::unionRects(std::vector<RectT> const& rects)
{
    RectT result;
    result.initializeBoundingBox();
    for (const RectT& rect : rects)
        result.addRect(rect);
    return result;
}

template <typename T>
RectT<T> RectT<T>::intersectRects(std::vector<RectT> const& rects)
{
    RectT result;
    result.initializeMaxRangeBox();
    for (const RectT& rect : rects)
        result.subtractRect(rect);
    return result;
}

// numeric_limits<float>::min() is the smallest positive number. Hosts rely on that limit.
template <typename T>
void RectT<T>::initializeBoundingBox()
{
    m_left = m_top = std::numeric_limits<T>::max();
    m_right = m_bottom = std::numeric_limits<T>::min();
}

template <typename T>
void RectT<T>::initializeMaxRangeBox()
{
    m_left = m_top = std::numeric_limits<T>::min();
    m_right = m_bottom = std::numeric_limits<T>::max();
}

template <typename T>
T RectT<T>::x() const
{
    return m_left;
}

template <typename T>
T RectT<T>::y() const
{
    return m_top;
}

template <typename T>
T RectT<T>::left() const
{
    return m_left;
}

template <typename T>
T RectT<T>::top() const
{
    return m_top;
}

template <typename T>
T RectT<T>::right() const
{
    return m_right;
}

template <typename T>
T RectT<T>::bottom() const
{
    return m_bottom;
}

template <typename T>
T RectT<T>::width() const
{
    return difference(m_right, m_left);
}

template <typename T>
T RectT<T>::height() const
{
    return difference(m_bottom, m_top);
}

// By edges: the width of a start box does not fit 32 bits.
template <typename T>
bool RectT<T>::isInvalid() const
{
    return m_right < m_left || m_bottom < m_top;
}

template <typename T>
QPoint RectT<T>::topLeft() const
{
    return {truncated<int>(m_left), truncated<int>(m_top)};
}

template <typename T>
QPoint RectT<T>::topRight() const
{
    return {truncated<int>(m_right), truncated<int>(m_top)};
}

template <typename T>
QPoint RectT<T>::bottomRight() const
{
    return {truncated<int>(m_right), truncated<int>(m_bottom)};
}

template <typename T>
QPoint RectT<T>::bottomLeft() const
{
    return {truncated<int>(m_left), truncated<int>(m_bottom)};
}

template <typename T>
QPointF RectT<T>::topLeftF() const
{
    return {qreal(m_left), qreal(m_top)};
}

template <typename T>
QPointF RectT<T>::topRightF() const
{
    return {qreal(m_right), qreal(m_top)};
}

template <typename T>
QPointF RectT<T>::bottomRightF() const
{
    return {qreal(m_right), qreal(m_bottom)};
}

template <typename T>
QPointF RectT<T>::bottomLeftF() const
{
    return {qreal(m_left), qreal(m_bottom)};
}

template <typename T>
QPoint RectT<T>::center() const
{
    if constexpr (std::is_same_v<T, int>)
        return {sum(m_left, width() / 2), sum(m_top, height() / 2)};
    const QPointF exact = centerF();
    return {truncated<int>(exact.x()), truncated<int>(exact.y())};
}

template <typename T>
QPointF RectT<T>::centerF() const
{
    const float centerX = float(m_left) + float(width()) * 0.5f;
    const float centerY = float(m_top) + float(height()) * 0.5f;
    return {qreal(centerX), qreal(centerY)};
}

template <typename T>
QSize RectT<T>::size() const
{
    return {truncated<int>(width()), truncated<int>(height())};
}

template <typename T>
float RectT<T>::radius() const
{
    const QPoint middle = center();
    const float dx = float(middle.x()) - float(m_left);
    const float dy = float(middle.y()) - float(m_top);
    return std::sqrt(dx * dx + dy * dy);
}

template <typename T>
void RectT<T>::setLeft(T v)
{
    m_left = v;
}

template <typename T>
void RectT<T>::setTop(T v)
{
    m_top = v;
}

template <typename T>
void RectT<T>::setRight(T v)
{
    m_right = v;
}

template <typename T>
void RectT<T>::setBottom(T v)
{
    m_bottom = v;
}

template <typename T>
void RectT<T>::setTopLeft(QPoint const& p)
{
    m_left = T(p.x());
    m_top = T(p.y());
}

template <typename T>
void RectT<T>::setTopLeft(QPointF const& p)
{
    m_left = halfAdded<T>(p.x());
    m_top = halfAdded<T>(p.y());
}

template <typename T>
void RectT<T>::setTopRight(QPoint const& p)
{
    m_right = T(p.x());
    m_top = T(p.y());
}

template <typename T>
void RectT<T>::setBottomRight(QPoint const& p)
{
    m_right = T(p.x());
    m_bottom = T(p.y());
}

template <typename T>
void RectT<T>::setBottomLeft(QPoint const& p)
{
    m_left = T(p.x());
    m_bottom = T(p.y());
}

template <typename T>
void RectT<T>::setSize(T w, T h)
{
    m_right = sum(m_left, w);
    m_bottom = sum(m_top, h);
}

template <typename T>
void RectT<T>::adjust(T dLeft, T dTop, T dRight, T dBottom)
{
    m_left = sum(m_left, dLeft);
    m_top = sum(m_top, dTop);
    m_right = sum(m_right, dRight);
    m_bottom = sum(m_bottom, dBottom);
}

template <typename T>
void RectT<T>::translate(T dx, T dy)
{
    adjust(dx, dy, dx, dy);
}

template <typename T>
void RectT<T>::addPoint(QPoint const& p)
{
    m_left = std::min(m_left, T(p.x()));
    m_right = std::max(m_right, T(p.x()));
    m_top = std::min(m_top, T(p.y()));
    m_bottom = std::max(m_bottom, T(p.y()));
}

template <typename T>
void RectT<T>::addPoint(QPointF const& p)
{
    if (p.x() < double(m_left))
        m_left = truncated<T>(p.x());
    if (p.x() > double(m_right))
        m_right = truncated<T>(p.x());
    if (p.y() < double(m_top))
        m_top = truncated<T>(p.y());
    if (p.y() > double(m_bottom))
        m_bottom = truncated<T>(p.y());
}

template <typename T>
void RectT<T>::addPoint(float x, float y)
{
    if constexpr (std::is_same_v<T, int>)
        addPoint(QPoint(halfAdded<int>(double(x)), halfAdded<int>(double(y))));
    else
        addPoint(QPointF(qreal(x), qreal(y)));
}

template <typename T>
void RectT<T>::addRect(RectT const& other)
{
    m_left = std::min(m_left, other.m_left);
    m_top = std::min(m_top, other.m_top);
    m_right = std::max(m_right, other.m_right);
    m_bottom = std::max(m_bottom, other.m_bottom);
}

template <typename T>
void RectT<T>::subtractRect(RectT const& other)
{
    m_left = std::max(m_left, other.m_left);
    m_top = std::max(m_top, other.m_top);
    m_right = std::min(m_right, other.m_right);
    m_bottom = std::min(m_bottom, other.m_bottom);
    m_left = std::min(m_left, m_right);
    m_top = std::min(m_top, m_bottom);
}

template <typename T>
bool RectT<T>::contains(QPoint const& p) const
{
    return m_left <= T(p.x()) && T(p.x()) <= m_right && m_top <= T(p.y()) && T(p.y()) <= m_bottom;
}

template <typename T>
bool RectT<T>::intersects(RectT const& other) const
{
    const QPoint a = center();
    const QPoint b = other.center();
    return closer(a.x(), b.x(), width(), other.width()) && closer(a.y(), b.y(), height(), other.height());
}

template <typename T>
void RectT<T>::adjustTopLeft(QPointF delta, T limitX, T limitY, float aspectWidth, float aspectHeight)
{
    dragCorner(MovedEdge<T>{m_left, m_right, limitX, false, delta.x()},
               MovedEdge<T>{m_top, m_bottom, limitY, false, delta.y()}, aspectWidth, aspectHeight);
}

template <typename T>
void RectT<T>::adjustTopRight(QPointF delta, T limitX, T limitY, float aspectWidth, float aspectHeight)
{
    dragCorner(MovedEdge<T>{m_right, m_left, limitX, true, delta.x()},
               MovedEdge<T>{m_top, m_bottom, limitY, false, delta.y()}, aspectWidth, aspectHeight);
}

template <typename T>
void RectT<T>::adjustBottomLeft(QPointF delta, T limitX, T limitY, float aspectWidth, float aspectHeight)
{
    dragCorner(MovedEdge<T>{m_left, m_right, limitX, false, delta.x()},
               MovedEdge<T>{m_bottom, m_top, limitY, true, delta.y()}, aspectWidth, aspectHeight);
}

template <typename T>
void RectT<T>::adjustBottomRight(QPointF delta, T limitX, T limitY, float aspectWidth, float aspectHeight)
{
    dragCorner(MovedEdge<T>{m_right, m_left, limitX, true, delta.x()},
               MovedEdge<T>{m_bottom, m_top, limitY, true, delta.y()}, aspectWidth, aspectHeight);
}

// The top and left edges measure their length from the limit, the bottom and right ones from the opposite edge.
template <typename T>
void RectT<T>::adjustTop(float delta, T limitX, T limitY, float aspectWidth, float aspectHeight)
{
    dragEdge(MovedEdge<T>{m_top, limitY, limitY, false, double(delta)}, CrossEdges<T>{m_left, m_right, limitX},
             aspectHeight, aspectWidth);
}

template <typename T>
void RectT<T>::adjustLeft(float delta, T limitX, T limitY, float aspectWidth, float aspectHeight)
{
    dragEdge(MovedEdge<T>{m_left, limitX, limitX, false, double(delta)}, CrossEdges<T>{m_top, m_bottom, limitY},
             aspectWidth, aspectHeight);
}

template <typename T>
void RectT<T>::adjustRight(float delta, T limitX, T limitY, float aspectWidth, float aspectHeight)
{
    dragEdge(MovedEdge<T>{m_right, m_left, limitX, true, double(delta)}, CrossEdges<T>{m_top, m_bottom, limitY},
             aspectWidth, aspectHeight);
}

template <typename T>
void RectT<T>::adjustBottom(float delta, T limitX, T limitY, float aspectWidth, float aspectHeight)
{
    dragEdge(MovedEdge<T>{m_bottom, m_top, limitY, true, double(delta)}, CrossEdges<T>{m_left, m_right, limitX},
             aspectHeight, aspectWidth);
}

template class RectT<int>;
template class RectT<float>;

} // namespace Ondrel

#pragma once

#include <ondrel/ondrel_export.h>

#include <QPoint>
#include <QPointF>
#include <QSize>
#include <QSizeF>
#include <vector>

namespace Ondrel
{

// A rectangle stored by its four edges; T is int or float, and both are compiled into the library. Width and height
// are differences of edges, so a rectangle at left 0 with width 10 has right 10, and contains() accepts 10.
//
// A value class without locks. Arithmetic of int edges wraps at 32 bits; a coordinate that is truncated to int and
// does not fit becomes the nearest int, NaN becomes 0.
template <typename T>
class ONDREL_EXPORT RectT
{
public:
    RectT(); // all edges 0

    // From the upper left corner and a size. The forms with points of doubles add in double; int edges are truncated.
    RectT(T x, T y, T w, T h);
    RectT(QPoint const& topLeft, QSize const& size);
    RectT(QPointF const& topLeft, QSizeF const& size);

    // From two opposite corners in any order; never invalid. Int edges are truncated first.
    RectT(QPoint const& a, QPoint const& b);
    RectT(QPointF const& a, QPointF const& b);

    bool operator==(RectT const& other) const; // all four edges, exactly

    static RectT invalid(); // RectT(-1, -1, -1, -1)

    // addRect() of all elements on a start box; subtractRect() of all elements on a range box, in order.
    static RectT unionRects(std::vector<RectT> const& rects);
    static RectT intersectRects(std::vector<RectT> const& rects);

    // A start box is invalid, and the first point or rectangle added makes it real. A range box spans the whole range,
    // for subtractRect() to shrink. For float, the low limit of both is the smallest positive normal number, not the
    // most negative one: a start box keeps that as its right and lower edge when all points are negative.
    void initializeBoundingBox();
    void initializeMaxRangeBox();

    T x() const;
    T y() const;
    T left() const;
    T top() const;
    T right() const;
    T bottom() const;
    T width() const;
    T height() const;
    bool isInvalid() const; // right < left or bottom < top; a size of 0 is valid

    // Corners; the QPoint forms truncate toward zero.
    QPoint topLeft() const;
    QPoint topRight() const;
    QPoint bottomRight() const;
    QPoint bottomLeft() const;
    QPointF topLeftF() const;
    QPointF topRightF() const;
    QPointF bottomRightF() const;
    QPointF bottomLeftF() const;

    // Int: left + width / 2 in integers. Float: centerF() truncated.
    QPoint center() const;
    QPointF centerF() const; // left + width * 0.5 in single precision
    QSize size() const;      // truncated
    float radius() const;    // from center() to the upper left corner, single precision

    // One edge, or the two edges of one corner; the others stay. setTopLeft(QPointF) rounds int edges as
    // trunc(v + 0.5). setSize() moves the right and lower edge.
    void setLeft(T v);
    void setTop(T v);
    void setRight(T v);
    void setBottom(T v);
    void setTopLeft(QPoint const& p);
    void setTopLeft(QPointF const& p);
    void setTopRight(QPoint const& p);
    void setBottomRight(QPoint const& p);
    void setBottomLeft(QPoint const& p);
    void setSize(T w, T h);

    void adjust(T dLeft, T dTop, T dRight, T dBottom);
    void translate(T dx, T dy);

    // Moves edges outward until the point lies inside or on an edge. For int edges, the form for QPointF compares in
    // double and truncates what moves; the form for floats rounds as trunc(v + 0.5) first.
    void addPoint(QPoint const& p);
    void addPoint(QPointF const& p);
    void addPoint(float x, float y);

    void addRect(RectT const& other); // the union

    // The intersection, in spite of the name. Edges that cross collapse onto the right or lower one, so the result of
    // valid rectangles is valid, of zero size if they are disjoint.
    void subtractRect(RectT const& other);

    bool contains(QPoint const& p) const; // both ends inclusive

    // Whether twice the distance of the centres, center(), is below the sum of the sizes on both axes.
    bool intersects(RectT const& other) const;

    // Dragging of a corner or an edge by a pointer's movement. The moved edges stay within 0 and the limit. Int edges
    // move by the delta rounded, halves upward.
    //
    // With both aspect values above 0 the ratio is held. A corner keeps the opposite corner where it is, and the axis
    // that asks for the larger change drives the other one; where the other has no room, the driving edge gives way.
    // A delta of exactly zero changes nothing, not even an edge outside the limits. An edge takes its length from the
    // limit (top and left) or the opposite edge (bottom and right), keeps the cross axis centred, and shifts it inside
    // the limits.
    void adjustTopLeft(QPointF delta, T limitX, T limitY, float aspectWidth, float aspectHeight);
    void adjustTopRight(QPointF delta, T limitX, T limitY, float aspectWidth, float aspectHeight);
    void adjustBottomLeft(QPointF delta, T limitX, T limitY, float aspectWidth, float aspectHeight);
    void adjustBottomRight(QPointF delta, T limitX, T limitY, float aspectWidth, float aspectHeight);
    void adjustTop(float delta, T limitX, T limitY, float aspectWidth, float aspectHeight);
    void adjustLeft(float delta, T limitX, T limitY, float aspectWidth, float aspectHeight);
    void adjustRight(float delta, T limitX, T limitY, float aspectWidth, float aspectHeight);
    void adjustBottom(float delta, T limitX, T limitY, float aspectWidth, float aspectHeight);

private:
    T m_left = 0;
    T m_top = 0;
    T m_right = 0;
    T m_bottom = 0;
};

extern template class RectT<int>;
extern template class RectT<float>;

} // namespace Ondrel

#pragma once

#include <QPoint>
#include <QPointF>
#include <QSize>
#include <QSizeF>
#include <vector>
namespace Ondrel
{
template <typename T>
class RectT
{ // instantiated for int and float
public:
    RectT();
    RectT(T x, T y, T w, T h);
    RectT(QPoint const& topLeft, QSize const& size);
    RectT(QPointF const& topLeft, QSizeF const& size);
    RectT(QPoint const& a, QPoint const& b);
    RectT(QPointF const& a, QPointF const& b);
    bool operator==(RectT const& other) const;

    static RectT invalid();
    static RectT unionRects(std::vector<RectT> const& rects);
    static RectT intersectRects(std::vector<RectT> const& rects);
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
    bool isInvalid() const;
    QPoint topLeft() const;
    QPoint topRight() const;
    QPoint bottomRight() const;
    QPoint bottomLeft() const;
    QPointF topLeftF() const;
    QPointF topRightF() const;
    QPointF bottomRightF() const;
    QPointF bottomLeftF() const;
    QPoint center() const;
    QPointF centerF() const;
    QSize size() const;
    float radius() const;

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
    void addPoint(QPoint const& p);
    void addPoint(QPointF const& p);
    void addPoint(float x, float y);
    void addRect(RectT const& other);
    void subtractRect(RectT const& other);
    bool contains(QPoint const& p) const;
    bool intersects(RectT const& other) const;

    void adjustTopLeft(QPointF delta, T limitX, T limitY, float aspectWidth, float aspectHeight);
    void adjustTopRight(QPointF delta, T limitX, T limitY, float aspectWidth, float aspectHeight);
    void adjustBottomLeft(QPointF delta, T limitX, T limitY, float aspectWidth, float aspectHeight);
    void adjustBottomRight(QPointF delta, T limitX, T limitY, float aspectWidth, float aspectHeight);
    void adjustTop(float delta, T limitX, T limitY, float aspectWidth, float aspectHeight);
    void adjustLeft(float delta, T limitX, T limitY, float aspectWidth, float aspectHeight);
    void adjustRight(float delta, T limitX, T limitY, float aspectWidth, float aspectHeight);
    void adjustBottom(float delta, T limitX, T limitY, float aspectWidth, float aspectHeight);
};
} // namespace Ondrel

// RectT<int> passes through signals: Q_DECLARE_METATYPE(Ondrel::RectT<int>) stands in the header that needs it

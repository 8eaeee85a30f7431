#pragma once

#include <ondrel/core/rect.h>

#include <QPointF>
#include <QSize>
#include <QString>

#include <array>

// What a pointer can take hold of: the eight handles, clockwise, and the inside.
enum class Handle { TopLeft, Top, TopRight, Right, BottomRight, Bottom, BottomLeft, Left, Inside };

inline constexpr std::array<Handle, 8> kHandles = {Handle::TopLeft,    Handle::Top,         Handle::TopRight,
                                                   Handle::Right,      Handle::BottomRight, Handle::Bottom,
                                                   Handle::BottomLeft, Handle::Left};

// A ratio of width to height, or none if one of them is 0.
struct Aspect {
    float width = 0;
    float height = 0;
    bool locked() const { return width > 0 && height > 0; }
    bool operator==(const Aspect& other) const { return width == other.width && height == other.height; }
};

// "top-left" and so on, and "inside".
QString handleName(Handle handle);

// Where a handle of the frame stands, in the coordinates of the picture.
QPointF handlePosition(const Ondrel::RectT<int>& frame, Handle handle);

// The frame after its handle was moved by `delta` pixels of a picture of the given size. It stays in the picture, keeps
// a pixel in each direction, and holds the ratio if that is locked. The inside moves the frame as it is.
Ondrel::RectT<int> dragged(const Ondrel::RectT<int>& frame, Handle handle, QPointF delta, QSize picture, Aspect aspect);

// The largest frame of that ratio around the middle of `frame` that fits into it; `frame` itself without a ratio.
Ondrel::RectT<int> fitted(const Ondrel::RectT<int>& frame, Aspect aspect);

#pragma once

#include <QLineF>
#include <QtGlobal>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

// The arithmetic of RectT: how its numbers are rounded, and how a pointer drags its corners and edges.

namespace Ondrel::RectNumbers
{

// Int sums wrap at 32 bits; signed overflow would be undefined.
inline int sum(int a, int b)
{
    return static_cast<int>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

inline float sum(float a, float b)
{
    return a + b;
}

inline int difference(int a, int b)
{
    return static_cast<int>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

inline float difference(float a, float b)
{
    return a - b;
}

// Toward zero for int, the nearest int if it does not fit, 0 for NaN. Narrowed for float.
template <typename T>
T truncated(double v)
{
    if constexpr (std::is_same_v<T, int>) {
        constexpr double low = std::numeric_limits<int>::min();
        constexpr double high = std::numeric_limits<int>::max();
        return std::isnan(v) ? 0 : static_cast<int>(std::clamp(v, low, high));
    } else {
        return static_cast<float>(v);
    }
}

// trunc(v + 0.5) for int, so -0.7 gives 0; narrowed for float.
template <typename T>
T halfAdded(double v)
{
    return truncated<T>(std::is_same_v<T, int> ? v + 0.5 : v);
}

// Rounds halves upward for int, also below zero; keeps the value for float.
template <typename T>
double roundedDelta(double d)
{
    if constexpr (std::is_same_v<T, int>) {
        if (!(d < 0))
            return std::trunc(d + 0.5);
        const double below = std::trunc(d - 1.0);
        return below + std::trunc(d - below + 0.5);
    } else {
        return d;
    }
}

inline bool closer(int centerA, int centerB, int lengthA, int lengthB)
{
    return 2 * std::abs(std::int64_t{centerA} - centerB) < std::int64_t{lengthA} + lengthB;
}

inline bool closer(int centerA, int centerB, float lengthA, float lengthB)
{
    return static_cast<float>(2 * std::abs(std::int64_t{centerA} - centerB)) < lengthA + lengthB;
}

// An edge that a pointer moves by `delta`, and the fixed edge from which its length is measured. `high` edges (right,
// bottom) lie on the far side of the anchor.
template <typename T>
struct MovedEdge {
    T& position;
    const T anchor;
    const T limit;
    const bool high;
    const double delta;

    T moved() const
    {
        const double target = static_cast<double>(position) + roundedDelta<T>(delta);
        return truncated<T>(std::min(std::max(target, 0.0), static_cast<double>(limit)));
    }
    float lengthAt(T p) const { return static_cast<float>(high ? difference(p, anchor) : difference(anchor, p)); }
    T at(float length) const
    {
        const T whole = truncated<T>(std::trunc(static_cast<double>(length)));
        return high ? sum(anchor, whole) : difference(anchor, whole);
    }
    // For a length that keeps its fraction until the edge is known.
    T truncatedAt(float length) const
    {
        const float exact = high ? static_cast<float>(anchor) + length : static_cast<float>(anchor) - length;
        return truncated<T>(std::trunc(static_cast<double>(exact)));
    }
    float room() const { return static_cast<float>(high ? difference(limit, anchor) : anchor); }
    // Above 0 toward the anchor, so that the rectangle shrinks.
    double inward() const { return high ? -delta : delta; }
};

template <typename T>
struct CrossEdges {
    T& low;
    T& high;
    const T limit;
};

// Whether x drives y, when a corner moves and the aspect is held.
inline bool drivesX(double dx, double dy, double lengthX, double lengthY)
{
    if (dx > 0 && dy > 0)
        return lengthY > lengthX;
    if (dx < 0 && dy < 0)
        return lengthX > lengthY;
    return dy >= 0 && (dx < 0 || (dx == 0 && dy > 0));
}

// `driver` has moved to `driverAt`; the other edge follows with `ratio` times its length. Where the other edge has no
// room for that, it stays at `followerAt` and the driver comes back to the length that fits.
template <typename T>
void followDriver(const MovedEdge<T>& driver, T driverAt, const MovedEdge<T>& follower, T followerAt, float ratio,
                  float inverseRatio)
{
    const float length = std::trunc(ratio * driver.lengthAt(driverAt));
    if (length < 0) {
        driverAt = driver.anchor;
        followerAt = follower.anchor;
    } else if (follower.room() < length) {
        driverAt = driver.truncatedAt(follower.room() * inverseRatio);
    } else {
        followerAt = follower.at(length);
    }
    driver.position = driverAt;
    follower.position = followerAt;
}

template <typename T>
void dragCorner(const MovedEdge<T>& x, const MovedEdge<T>& y, float aspectWidth, float aspectHeight)
{
    if (x.delta == 0.0 && y.delta == 0.0)
        return;
    const T newX = x.moved();
    const T newY = y.moved();
    if (!(aspectWidth > 0) || !(aspectHeight > 0)) {
        x.position = newX;
        y.position = newY;
        return;
    }
    const auto aw = static_cast<double>(aspectWidth);
    const auto ah = static_cast<double>(aspectHeight);
    const double lengthX = QLineF(0, 0, x.delta, x.delta * ah / aw).length();
    const double lengthY = QLineF(0, 0, y.delta * aw / ah, y.delta).length();
    if (drivesX(x.inward(), y.inward(), lengthX, lengthY))
        followDriver(x, newX, y, newY, aspectHeight / aspectWidth, aspectWidth / aspectHeight);
    else
        followDriver(y, newY, x, newX, aspectWidth / aspectHeight, aspectHeight / aspectWidth);
}

// `alongAspect` belongs to the axis that the edge moves on.
template <typename T>
void dragEdge(const MovedEdge<T>& edge, const CrossEdges<T>& cross, float alongAspect, float crossAspect)
{
    T at = edge.moved();
    if (!(alongAspect > 0) || !(crossAspect > 0)) {
        edge.position = at;
        return;
    }
    T length = truncated<T>(std::trunc(static_cast<double>(crossAspect / alongAspect * edge.lengthAt(at))));
    bool oneLower = false;
    if (length > cross.limit) {
        length = cross.limit;
        at = edge.truncatedAt(alongAspect / crossAspect * static_cast<float>(cross.limit));
        // Halving an odd limit twice loses one, which would leave a gap.
        if constexpr (std::is_same_v<T, int>)
            oneLower = length % 2 != 0;
    }
    if (length < 0) {
        length = 0;
        at = edge.anchor;
    }
    const T center = sum(cross.low, difference(cross.high, cross.low) / 2);
    T low = difference(center, length / 2);
    T high = sum(center, length / 2);
    if (oneLower)
        low = difference(low, T(1));
    if (low < 0) {
        high = difference(high, low);
        low = 0;
    } else if (high > cross.limit) {
        low = difference(low, difference(high, cross.limit));
        high = cross.limit;
    }
    edge.position = at;
    cross.low = low;
    cross.high = high;
}

} // namespace Ondrel::RectNumbers

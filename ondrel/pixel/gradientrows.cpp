#include <ondrel/pixel/gradientrows_p.h>

#include <algorithm>
#include <cmath>

namespace Ondrel::GradientRows
{
namespace
{

float limited(float t)
{
    return t < 0.0f ? 0.0f : t > 1.0f ? 1.0f : t;
}

float positionIn(RadialEllipse const& e, float x, float y)
{
    const float turnedX = e.cosine * (x - e.centerX) - e.sine * (y - e.centerY) + e.centerX;
    const float turnedY = e.cosine * (y - e.centerY) + e.sine * (x - e.centerX) + e.centerY;
    float dirX = turnedX - e.focalX;
    float dirY = (turnedY - e.focalY) * e.ratio;
    const float distance = std::sqrt(dirX * dirX + dirY * dirY);
    if (distance != 0.0f) {
        dirX /= distance;
        dirY /= distance;
    }
    const float ox = turnedX - e.centerX;
    const float oy = (turnedY - e.centerY) * e.ratio;
    const float b = dirX * ox + dirY * oy;
    const float q = ox * ox + oy * oy - e.rx * e.rx;
    if (q >= 0.0f && b > 0.0f)
        return 1.0f;
    const float disc = b * b - q;
    if (disc < 0.0f)
        return 0.0f;
    const float total = std::sqrt(disc) - b + distance;
    return total == 0.0f ? 0.0f : limited(distance / total);
}

} // namespace

void positions(LinearAxis const& axis, int x, int y, std::size_t count, float* t)
{
    for (std::size_t i = 0; i < count; ++i)
        t[i] = limited((float(x + int(i)) * axis.ux + float(y) * axis.uy - axis.offset) * axis.factor);
}

void positions(RadialEllipse const& ellipse, int x, int y, std::size_t count, float* t)
{
    for (std::size_t i = 0; i < count; ++i)
        t[i] = positionIn(ellipse, float(x + int(i)), float(y));
}

void mixPixels(Ramp const& ramp, const float* t, std::size_t count, std::uint16_t* to)
{
    for (std::size_t i = 0; i < count; ++i, to += 4) {
        float mixed[4];
        ramp.mix(t[i], mixed);
        for (int c = 0; c < 4; ++c)
            to[c] = std::uint16_t(mixed[c]);
    }
}

} // namespace Ondrel::GradientRows

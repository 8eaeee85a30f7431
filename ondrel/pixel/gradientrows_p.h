#pragma once

#include <cstddef>
#include <cstdint>
#include <ondrel/core/image.h>
#include <ondrel/pixel/gradient.h>
#include <vector>

// The loops of gradients over the pixels of a row, all in single precision, on the widest vectors that the processor
// has, with results that do not depend on which those are.

namespace Ondrel::GradientRows
{

// Positions are computed for so many pixels at a time, and buffers for them have this size.
constexpr std::size_t kRun = 1024;

// A geometry in pixels of one image.
struct LinearAxis {
    LinearAxis(Image const& image, GradientLinearGeometry const& geometry);
    float ux, uy, offset, factor;
};

struct RadialEllipse {
    RadialEllipse(Image const& image, GradientRadialGeometry const& geometry);
    float centerX, centerY, rx, ratio, sine, cosine, focalX, focalY;
    bool isOrdinary; // nothing is so large or small that products of offsets leave the range of normal numbers
};

// Positions from 0 to 1, or not a number, of `count` pixels, at most kRun, from (x, y) on. `t` has room for kRun. The
// pixels at `ahead`, if not null, are fetched into the cache meanwhile, since the divider is busy but the memory is
// not.
void positions(LinearAxis const& axis, int x, int y, std::size_t count, float* t, const std::uint16_t* ahead);
void positions(RadialEllipse const& ellipse, int x, int y, std::size_t count, float* t, const std::uint16_t* ahead);

// The row that has the same positions as row y, column by column, but for the signs of zeros, which change no colour; a
// negative number if none is known. That row's twin is y.
inline int twinRow(LinearAxis const&, int)
{
    return -1;
}
int twinRow(RadialEllipse const& ellipse, int y);

// Stops with `channels` values each, ready to be looked up.
class Ramp
{
public:
    struct Stop {
        float position;
        float channels[4];
    };

    explicit Ramp(std::vector<Stop> stops);

    // The first stop whose position is above t, the first of all left out; the number of stops if there is none.
    std::size_t firstAbove(float t) const;

    // The channels at a position, not rounded.
    void mix(float t, float* channels) const;

    std::vector<Stop> const& stops() const { return m_stops; }

    // Stop i is the first above exactly the positions from limit(i - 1) up to, not including, limit(i). Stop 0 is above
    // none; infinite for the number of stops.
    float limit(std::size_t i) const { return m_limits[i]; }

private:
    std::vector<Stop> m_stops;
    std::vector<float> m_limits; // the highest position up to each stop
};

// Stores the mixed and truncated channels of `count` pixels.
void mixPixels(Ramp const& ramp, const float* t, std::size_t count, std::uint16_t* to);

} // namespace Ondrel::GradientRows

#pragma once

#include <cmath>
#include <cstdint>

// The arithmetic that the samplers of single boxes and the row scaler share. Every operation is one of single
// precision, in the order written: results are compared to the last bit.

namespace Ondrel
{

// How a filter covers the source and when it takes more than one sample of a box.
struct BilinearBoxes {
    static constexpr int taps = 2;         // source pixels that a sample reads along one axis
    static constexpr float before = 0.0f;  // the box of output x starts at (x - before) * step - 0.5
    static constexpr float after = 1.0f;   // and ends at (x + after) * step - 0.5
    static constexpr float largest = 1.5f; // a longer box takes more samples
    static constexpr float first = 0.25f;  // where they lie in the box
    static constexpr float second = 0.75f;
    static constexpr float share = 0.5f; // side of a sample's own box
    static constexpr float halfShare = 0.25f;
};

struct BicubicBoxes {
    static constexpr int taps = 4;
    static constexpr float before = 0.5f;
    static constexpr float after = 1.5f;
    static constexpr float largest = 2.0f;
    static constexpr float first = 0.375f;
    static constexpr float second = 0.625f;
    static constexpr float share = 0.25f;
    static constexpr float halfShare = 0.125f;
};

// One side of a box.
struct Span {
    float low, high;
    float length() const { return high - low; }
};

template <typename Boxes>
Span spanOfOutput(std::uint32_t position, float step)
{
    const float p = float(position);
    return {(p - Boxes::before) * step - 0.5f, (p + Boxes::after) * step - 0.5f};
}

inline float middleOfOutput(std::uint32_t position, float step)
{
    return (float(position) + 0.5f) * step - 0.5f;
}

// A box with such a side is not sampled once, at its middle, but at four points.
template <typename Boxes>
bool isWide(Span span)
{
    return span.length() > Boxes::largest;
}

// The four points of a box with such a side are boxes themselves.
template <typename Boxes>
bool splitsAgain(Span span)
{
    return span.length() * Boxes::share > Boxes::largest;
}

template <typename Boxes>
float pointOf(Span span, int index)
{
    return span.low + (index == 0 ? Boxes::first : Boxes::second) * span.length();
}

template <typename Boxes>
Span childOf(Span span, int index)
{
    const float centre = pointOf<Boxes>(span, index);
    const float half = Boxes::halfShare * span.length();
    return {centre - half, centre + half};
}

// Un-premultiplies and stores one pixel.
inline void storeUnpremultiplied(const float* rgba, std::uint16_t* pixel)
{
    const auto stored = [](float v) -> std::uint16_t {
        return v > 1.0f ? std::uint16_t(65535) : v > 0.0f ? std::uint16_t(v * 65535.0f) : std::uint16_t(0);
    };
    // Also for the negative alpha of an overshoot, whose colours are divided by it all the same.
    const float inverse = rgba[3] == 0.0f ? 0.0f : 1.0f / rgba[3];
    for (int c = 0; c < 3; ++c)
        pixel[c] = stored(rgba[c] * inverse);
    pixel[3] = stored(rgba[3]);
}

} // namespace Ondrel

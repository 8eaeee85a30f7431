// Included once for every instruction set: see scalerows.cpp.

#if defined(ONDREL_PIXEL_SCALEPIXELS_P_H) == defined(HWY_TARGET_TOGGLE)
#ifdef ONDREL_PIXEL_SCALEPIXELS_P_H
#undef ONDREL_PIXEL_SCALEPIXELS_P_H
#else
#define ONDREL_PIXEL_SCALEPIXELS_P_H
#endif

#include <cstring>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Ondrel::ScaleRows
{
namespace HWY_NAMESPACE
{

// Vectors of whole pixels. Highway's fallback has vectors of one lane, which cannot hold a pixel; there four floats
// take its place.
#if HWY_TARGET == HWY_SCALAR

struct Pixels {
    float lane[4];
};
constexpr std::size_t kPixels = 1;

template <typename Operation>
HWY_INLINE Pixels eachLane(Operation operation)
{
    Pixels result;
    for (int c = 0; c < 4; ++c)
        result.lane[c] = operation(c);
    return result;
}

HWY_INLINE Pixels add(Pixels a, Pixels b)
{
    return eachLane([&](int c) { return a.lane[c] + b.lane[c]; });
}
HWY_INLINE Pixels subtract(Pixels a, Pixels b)
{
    return eachLane([&](int c) { return a.lane[c] - b.lane[c]; });
}
HWY_INLINE Pixels multiply(Pixels a, Pixels b)
{
    return eachLane([&](int c) { return a.lane[c] * b.lane[c]; });
}
HWY_INLINE Pixels allOf(float v)
{
    return eachLane([&](int) { return v; });
}
HWY_INLINE Pixels load(const float* from)
{
    return eachLane([&](int c) { return from[c]; });
}
HWY_INLINE void save(Pixels v, float* to)
{
    std::memcpy(to, v.lane, sizeof v.lane);
}
HWY_INLINE Pixels gather(const float* row, const std::int32_t* index)
{
    return load(row + std::ptrdiff_t(*index) * 4);
}
HWY_INLINE Pixels onePerPixel(const float* values)
{
    return allOf(*values);
}
template <std::size_t>
HWY_INLINE Pixels premultiplied(const std::uint16_t* from)
{
    const float alpha = float(from[3]) / 65535.0f;
    return eachLane([&](int c) { return c == 3 ? alpha : float(from[c]) / 65535.0f * alpha; });
}
template <std::size_t>
HWY_INLINE void storeUnpremultiplied(const float* from, std::uint16_t* to)
{
    const float inverse = from[3] == 0.0f ? 0.0f : 1.0f / from[3];
    for (int c = 0; c < 4; ++c) {
        const float v = from[c] * (c == 3 ? 1.0f : inverse);
        to[c] = v > 1.0f ? std::uint16_t(65535) : v > 0.0f ? std::uint16_t(v * 65535.0f) : std::uint16_t(0);
    }
}
template <std::size_t>
HWY_INLINE void savePremultiplied(const std::uint16_t* from, float* to)
{
    save(premultiplied<1>(from), to);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

template <std::size_t pixels>
using Tag = hn::FixedTag<float, pixels * 4>;
constexpr std::size_t kPixels = HWY_LANES(float) / 4;
using Pixels = hn::Vec<Tag<kPixels>>;

HWY_INLINE Pixels add(Pixels a, Pixels b)
{
    return hn::Add(a, b);
}
HWY_INLINE Pixels subtract(Pixels a, Pixels b)
{
    return hn::Sub(a, b);
}
HWY_INLINE Pixels multiply(Pixels a, Pixels b)
{
    return hn::Mul(a, b);
}
HWY_INLINE Pixels allOf(float v)
{
    return hn::Set(Tag<kPixels>(), v);
}
HWY_INLINE Pixels load(const float* from)
{
    return hn::LoadU(Tag<kPixels>(), from);
}
HWY_INLINE void save(Pixels v, float* to)
{
    hn::StoreU(v, Tag<kPixels>(), to);
}

// Pixels index[0], index[1]... of a row.
template <std::size_t pixels>
HWY_INLINE hn::Vec<Tag<pixels>> gatherPixels(const float* row, const std::int32_t* index)
{
    if constexpr (pixels == 1)
        return hn::LoadU(Tag<1>(), row + std::ptrdiff_t(*index) * 4);
    else
        return hn::Combine(Tag<pixels>(), gatherPixels<pixels / 2>(row, index + pixels / 2),
                           gatherPixels<pixels / 2>(row, index));
}
HWY_INLINE Pixels gather(const float* row, const std::int32_t* index)
{
    return gatherPixels<kPixels>(row, index);
}

// values[0] in all lanes of the first pixel, values[1] in those of the second...
template <std::size_t pixels>
HWY_INLINE hn::Vec<Tag<pixels>> spread(const float* values)
{
    if constexpr (pixels == 1)
        return hn::Set(Tag<1>(), *values);
    else
        return hn::Combine(Tag<pixels>(), spread<pixels / 2>(values + pixels / 2), spread<pixels / 2>(values));
}
HWY_INLINE Pixels onePerPixel(const float* values)
{
    return spread<kPixels>(values);
}

// `colour` for red, green and blue, and 1 for alpha.
template <class D, class V = hn::Vec<D>>
HWY_INLINE V factorOfColours(D d, V colour)
{
    const hn::RebindToUnsigned<D> du;
    const auto isAlpha = hn::Eq(hn::And(hn::Iota(du, 0), hn::Set(du, 3)), hn::Set(du, 3));
    return hn::IfThenElse(hn::RebindMask(d, isAlpha), hn::Set(d, 1.0f), colour);
}

template <std::size_t pixels>
HWY_INLINE void savePremultiplied(const std::uint16_t* from, float* to)
{
    const Tag<pixels> d;
    const hn::Rebind<std::uint16_t, Tag<pixels>> d16;
    const auto integers = hn::PromoteTo(hn::Rebind<std::int32_t, Tag<pixels>>(), hn::LoadU(d16, from));
    const auto v = hn::Div(hn::ConvertTo(d, integers), hn::Set(d, 65535.0f));
    hn::StoreU(hn::Mul(v, factorOfColours(d, hn::Broadcast<3>(v))), d, to);
}

template <std::size_t pixels>
HWY_INLINE void storeUnpremultiplied(const float* from, std::uint16_t* to)
{
    const Tag<pixels> d;
    const auto one = hn::Set(d, 1.0f);
    const auto v = hn::LoadU(d, from);
    const auto alpha = hn::Broadcast<3>(v);
    const auto inverse = hn::IfThenZeroElse(hn::Eq(alpha, hn::Zero(d)), hn::Div(one, alpha));
    const auto colour = hn::Mul(v, factorOfColours(d, inverse));
    // Not above 0, so not a number too, gives 0; above 1 gives 1.
    const auto limited = hn::Min(hn::IfThenElseZero(hn::Gt(colour, hn::Zero(d)), colour), one);
    const auto integers =
        hn::ConvertTo(hn::Rebind<std::int32_t, Tag<pixels>>(), hn::Mul(limited, hn::Set(d, 65535.0f)));
    const hn::Rebind<std::uint16_t, Tag<pixels>> d16;
    hn::StoreU(hn::DemoteTo(d16, integers), d16, to);
}

#endif

} // namespace HWY_NAMESPACE
} // namespace Ondrel::ScaleRows
HWY_AFTER_NAMESPACE();

#endif

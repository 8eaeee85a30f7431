// Included once for every instruction set: see scalerows.cpp.

#if defined(ONDREL_PIXEL_SCALEPIXELS_P_H) == defined(HWY_TARGET_TOGGLE)
#ifdef ONDREL_PIXEL_SCALEPIXELS_P_H
#undef ONDREL_PIXEL_SCALEPIXELS_P_H
#else
#define ONDREL_PIXEL_SCALEPIXELS_P_H
#endif

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <hwy/highway.h>
#include <type_traits>

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
HWY_INLINE Pixels premultipliedAt(const std::uint16_t* const* from, std::ptrdiff_t offset)
{
    return premultiplied<1>(*from + offset * 4);
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

// v / 65535 for each whole v up to 65535, rounded as a division rounds it: the quotient is v * (2^-16 + 2^-32 + 2^-48
// + ...). The first product is exact; the second, which decides ties, differs from the rest of the series too little to
// matter, as trying all values shows.
template <class D, class V = hn::Vec<D>>
HWY_INLINE V dividedBy65535(D d, V v)
{
    return hn::Add(hn::Mul(v, hn::Set(d, 0x1p-16f)), hn::Mul(v, hn::Set(d, 0x1.0001p-32f)));
}

// From one or more stored pixels.
template <class D, class V = hn::Vec<D>>
HWY_INLINE V premultiplied(D d, hn::Vec<hn::Rebind<std::uint16_t, D>> samples)
{
    const auto v = dividedBy65535(d, hn::ConvertTo(d, hn::PromoteTo(hn::Rebind<std::int32_t, D>(), samples)));
    return hn::Mul(v, factorOfColours(d, hn::Broadcast<3>(v)));
}

template <std::size_t pixels>
HWY_INLINE void savePremultiplied(const std::uint16_t* from, float* to)
{
    const Tag<pixels> d;
    hn::StoreU(premultiplied(d, hn::LoadU(hn::Rebind<std::uint16_t, Tag<pixels>>(), from)), d, to);
}

template <std::size_t pixels>
HWY_INLINE hn::Vec<hn::FixedTag<std::uint16_t, pixels * 4>> samplesAt(const std::uint16_t* const* from,
                                                                      std::ptrdiff_t offset)
{
    const hn::FixedTag<std::uint16_t, pixels * 4> d;
    if constexpr (pixels == 1)
        return hn::LoadU(d, *from + offset * 4);
    else
        return hn::Combine(d, samplesAt<pixels / 2>(from + pixels / 2, offset), samplesAt<pixels / 2>(from, offset));
}

// The stored pixels at from[0] + offset pixels, from[1] + offset pixels...
HWY_INLINE Pixels premultipliedAt(const std::uint16_t* const* from, std::ptrdiff_t offset)
{
    return premultiplied(Tag<kPixels>(), samplesAt<kPixels>(from, offset));
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

// How far a sample lies from the inner one of its neighbours, prepared once for all of them. A sum is formed from left
// to right, as it is written in a contract.
class Linear
{
public:
    HWY_INLINE explicit Linear(Pixels fraction)
        : m_near(subtract(allOf(1.0f), fraction))
        , m_far(fraction)
    {
    }
    HWY_INLINE Pixels operator()(const Pixels* p) const { return add(multiply(p[0], m_near), multiply(p[1], m_far)); }

private:
    Pixels m_near, m_far;
};

class Cubic
{
public:
    HWY_INLINE explicit Cubic(Pixels fraction)
        : m_t(fraction)
        , m_t2(multiply(m_t, m_t))
        , m_t3(multiply(m_t2, m_t))
    {
    }
    HWY_INLINE Pixels operator()(const Pixels* p) const
    {
        const Pixels half = allOf(0.5f);
        const Pixels threeHalves = allOf(1.5f);
        const Pixels half0 = multiply(half, p[0]);
        const Pixels half3 = multiply(half, p[3]);
        const Pixels slope = subtract(multiply(half, p[2]), half0);
        const Pixels square =
            subtract(add(subtract(p[0], multiply(allOf(2.5f), p[1])), multiply(allOf(2.0f), p[2])), half3);
        const Pixels cube =
            add(subtract(subtract(multiply(threeHalves, p[1]), half0), multiply(threeHalves, p[2])), half3);
        return add(add(add(p[1], multiply(slope, m_t)), multiply(square, m_t2)), multiply(cube, m_t3));
    }

private:
    Pixels m_t, m_t2, m_t3;
};

template <int taps>
using Curve = std::conditional_t<taps == 2, Linear, Cubic>;

} // namespace HWY_NAMESPACE
} // namespace Ondrel::ScaleRows
HWY_AFTER_NAMESPACE();

#endif

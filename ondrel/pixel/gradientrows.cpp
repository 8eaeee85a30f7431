#include <ondrel/pixel/gradientrows_p.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "ondrel/pixel/gradientrows.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <algorithm>
#include <limits>

HWY_BEFORE_NAMESPACE();
namespace Ondrel::GradientRows
{
namespace HWY_NAMESPACE
{
namespace hn = hwy::HWY_NAMESPACE;

using Floats = hn::ScalableTag<float>;
using Integers = hn::Rebind<std::uint32_t, Floats>;
using Vector = hn::Vec<Floats>;

// Leaves what is not a number as it is.
HWY_INLINE Vector limited(Vector t)
{
    const Floats d;
    t = hn::IfThenZeroElse(hn::Lt(t, hn::Zero(d)), t);
    return hn::IfThenElse(hn::Gt(t, hn::Set(d, 1.0f)), hn::Set(d, 1.0f), t);
}

// The columns x, x + 1...
HWY_INLINE Vector columns(int x)
{
    const Floats d;
    const hn::Rebind<std::int32_t, Floats> di;
    return hn::ConvertTo(d, hn::Add(hn::Set(di, x), hn::Iota(di, 0)));
}

// Positions of the pixels of a row. Each kind of gradient has one, and `at` gives the positions from a column on.
class LinearPlaces
{
public:
    HWY_INLINE LinearPlaces(LinearAxis const& axis, int y)
        : m_ux(hn::Set(Floats(), axis.ux))
        , m_down(hn::Set(Floats(), float(y) * axis.uy))
        , m_offset(hn::Set(Floats(), axis.offset))
        , m_factor(hn::Set(Floats(), axis.factor))
    {
    }

    HWY_INLINE Vector at(int x) const
    {
        const auto along = hn::Add(hn::Mul(columns(x), m_ux), m_down);
        return limited(hn::Mul(hn::Sub(along, m_offset), m_factor));
    }

private:
    Vector m_ux, m_down, m_offset, m_factor;
};

// Where nothing is turned, all pixels of a row have the same offsets downward; only signs of zeros differ from those of
// the general form.
template <bool isUpright>
class RadialPlaces
{
public:
    HWY_INLINE RadialPlaces(RadialEllipse const& e, int y)
        : m_centerX(hn::Set(Floats(), e.centerX))
        , m_centerY(hn::Set(Floats(), e.centerY))
        , m_focalX(hn::Set(Floats(), e.focalX))
        , m_focalY(hn::Set(Floats(), e.focalY))
        , m_ratio(hn::Set(Floats(), e.ratio))
        , m_rx2(hn::Set(Floats(), e.rx * e.rx))
        , m_sine(hn::Set(Floats(), e.sine))
        , m_cosine(hn::Set(Floats(), e.cosine))
        , m_sineDown(hn::Set(Floats(), e.sine * (float(y) - e.centerY)))
        , m_cosineDown(hn::Set(Floats(), e.cosine * (float(y) - e.centerY)))
        , m_isOrdinary(e.isOrdinary)
    {
        const float turnedY = e.cosine * (float(y) - e.centerY) + e.centerY;
        m_uprightPy = hn::Set(Floats(), (turnedY - e.focalY) * e.ratio);
        m_uprightOy = hn::Set(Floats(), (turnedY - e.centerY) * e.ratio);
    }

    HWY_INLINE Vector at(int x) const
    {
        const Floats d;
        const auto zero = hn::Zero(d);
        const auto one = hn::Set(d, 1.0f);
        const auto dx = hn::Sub(columns(x), m_centerX);
        Vector turnedX, py, oy;
        if constexpr (isUpright) {
            turnedX = hn::Add(dx, m_centerX);
            py = m_uprightPy;
            oy = m_uprightOy;
        } else {
            turnedX = hn::Add(hn::Sub(hn::Mul(m_cosine, dx), m_sineDown), m_centerX);
            const auto turnedY = hn::Add(hn::Add(m_cosineDown, hn::Mul(m_sine, dx)), m_centerY);
            py = hn::Mul(hn::Sub(turnedY, m_focalY), m_ratio);
            oy = hn::Mul(hn::Sub(turnedY, m_centerY), m_ratio);
        }
        const auto px = hn::Sub(turnedX, m_focalX);
        const auto ox = hn::Sub(turnedX, m_centerX);
        const auto q = hn::Sub(hn::Add(hn::Mul(ox, ox), hn::Mul(oy, oy)), m_rx2);
        if (m_isOrdinary &&
            hn::AllTrue(d, hn::And(hn::Ge(q, zero), certainlyHeadsAway(hn::Mul(px, ox), hn::Mul(py, oy)))))
            return one;

        const auto distance = hn::Sqrt(hn::Add(hn::Mul(px, px), hn::Mul(py, py)));
        // At the focal point itself both are 0, and stay so.
        const auto divisor = hn::IfThenElse(hn::Eq(distance, zero), one, distance);
        const auto b = hn::Add(hn::Mul(hn::Div(px, divisor), ox), hn::Mul(hn::Div(py, divisor), oy));
        const auto disc = hn::Sub(hn::Mul(b, b), q);
        const auto isBeside = hn::Lt(disc, zero);
        const auto remaining = hn::Sub(hn::Sqrt(hn::IfThenZeroElse(isBeside, disc)), b);
        const auto total = hn::Add(remaining, distance);
        const auto share = hn::IfThenZeroElse(hn::Or(hn::Eq(total, zero), isBeside), limited(hn::Div(distance, total)));
        const auto isOutside = hn::And(hn::Ge(q, zero), hn::Gt(b, zero));
        return hn::IfThenElse(isOutside, one, share);
    }

private:
    // b is the sum of both products, each with one factor divided by a length. In an ordinary ellipse offsets are below
    // 1e16, so the parts of a product that matters, above 1e-10, stay normal numbers even when divided by a length.
    // There rounding changes no more than a few of the last bits of b in relation to the larger product, and so not the
    // sign of a sum that is not much smaller.
    HWY_INLINE hn::Mask<Floats> certainlyHeadsAway(Vector alongX, Vector alongY) const
    {
        const Floats d;
        const auto sum = hn::Add(alongX, alongY);
        const auto larger = hn::Max(hn::Abs(alongX), hn::Abs(alongY));
        return hn::And(hn::Gt(sum, hn::Mul(larger, hn::Set(d, 1e-3f))), hn::Gt(sum, hn::Set(d, 1e-6f)));
    }

    Vector m_centerX, m_centerY, m_focalX, m_focalY, m_ratio, m_rx2, m_sine, m_cosine, m_sineDown, m_cosineDown;
    Vector m_uprightPy, m_uprightOy;
    bool m_isOrdinary;
};

constexpr std::size_t kLinePixels = 8; // in a line of the cache

template <typename Places>
HWY_INLINE void Store(Places const& places, int x, std::size_t count, float* t, const std::uint16_t* ahead)
{
    const Floats d;
    for (std::size_t i = 0; i < count; i += hn::Lanes(d)) {
        for (std::size_t pixel = i; ahead && pixel < std::min(i + hn::Lanes(d), count); pixel += kLinePixels)
            hwy::Prefetch(ahead + pixel * 4);
        hn::StoreU(places.at(x + int(i)), d, t + i);
    }
}

// Two stops in all lanes.
class Segment
{
public:
    HWY_INLINE Segment(Ramp const& ramp, std::size_t above)
    {
        const Floats d;
        const bool isLast = above == ramp.stops().size();
        Ramp::Stop const& previous = ramp.stops()[above - 1];
        Ramp::Stop const& next = isLast ? previous : ramp.stops()[above];
        m_low = hn::Set(d, ramp.limit(above - 1));
        m_high = hn::Set(d, ramp.limit(above));
        m_from = hn::Set(d, previous.position);
        // Beyond the last stop the share is 0.
        m_length = hn::Set(d, isLast ? std::numeric_limits<float>::infinity() : next.position - previous.position);
        for (int c = 0; c < 4; ++c) {
            m_previous[c] = hn::Set(d, previous.channels[c]);
            m_next[c] = hn::Set(d, next.channels[c]);
        }
    }

    HWY_INLINE bool holdsAll(Vector t) const
    {
        const Floats d;
        return hn::AllTrue(d, hn::And(hn::Ge(t, m_low), hn::Lt(t, m_high)));
    }

    HWY_INLINE void mix(Vector t, std::uint16_t* to) const
    {
        const Floats d;
        const Integers du;
        const auto share = hn::Div(hn::Sub(t, m_from), m_length);
        const auto rest = hn::Sub(hn::Set(d, 1.0f), share);
        const auto low = hn::Set(du, 0xFFFFu);
        const auto redGreen = hn::Or(hn::And(channel(0, share, rest), low), hn::ShiftLeft<16>(channel(1, share, rest)));
        const auto blueAlpha =
            hn::Or(hn::And(channel(2, share, rest), low), hn::ShiftLeft<16>(channel(3, share, rest)));
        hn::StoreInterleaved2(redGreen, blueAlpha, du, reinterpret_cast<std::uint32_t*>(to));
    }

private:
    // The truncated sample in the lower half. In a float of 2^23 and more the last bit stands for 1, so adding that
    // much leaves a whole number in the lower bits; a conversion to integers would guard against overflow first.
    HWY_INLINE hn::Vec<Integers> channel(int c, Vector share, Vector rest) const
    {
        const auto mixed = hn::Add(hn::Mul(m_next[c], share), hn::Mul(m_previous[c], rest));
        return hn::BitCast(Integers(), hn::Add(hn::Floor(mixed), hn::Set(Floats(), 0x1p23f)));
    }

    Vector m_low, m_high, m_from, m_length, m_previous[4], m_next[4];
};

void mixOneByOne(Ramp const& ramp, const float* t, std::size_t count, std::uint16_t* to)
{
    for (std::size_t i = 0; i < count; ++i) {
        float mixed[4];
        ramp.mix(t[i], mixed);
        for (int c = 0; c < 4; ++c)
            to[i * 4 + std::size_t(c)] = std::uint16_t(mixed[c]);
    }
}

void LinearPositions(LinearAxis const& axis, int x, int y, std::size_t count, float* t, const std::uint16_t* ahead)
{
    Store(LinearPlaces(axis, y), x, count, t, ahead);
}

void RadialPositions(RadialEllipse const& ellipse, int x, int y, std::size_t count, float* t,
                     const std::uint16_t* ahead)
{
    if (ellipse.isOrdinary && ellipse.sine == 0.0f && ellipse.cosine == 1.0f)
        Store(RadialPlaces<true>(ellipse, y), x, count, t, ahead);
    else
        Store(RadialPlaces<false>(ellipse, y), x, count, t, ahead);
}

// Neighbours mostly lie between the same two stops.
void MixPixels(Ramp const& ramp, const float* t, std::size_t count, std::uint16_t* to)
{
    const Floats d;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t i = 0;
    while (i < count) {
        const Segment segment(ramp, ramp.firstAbove(t[i]));
        for (; i + lanes <= count && segment.holdsAll(hn::LoadU(d, t + i)); i += lanes)
            segment.mix(hn::LoadU(d, t + i), to + i * 4);
        const std::size_t rest = std::min(lanes, count - i);
        mixOneByOne(ramp, t + i, rest, to + i * 4);
        i += rest;
    }
}

} // namespace HWY_NAMESPACE
} // namespace Ondrel::GradientRows
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Ondrel::GradientRows
{

HWY_EXPORT(LinearPositions);
HWY_EXPORT(RadialPositions);
HWY_EXPORT(MixPixels);

void positions(LinearAxis const& axis, int x, int y, std::size_t count, float* t, const std::uint16_t* ahead)
{
    HWY_DYNAMIC_DISPATCH(LinearPositions)(axis, x, y, count, t, ahead);
}

void positions(RadialEllipse const& ellipse, int x, int y, std::size_t count, float* t, const std::uint16_t* ahead)
{
    HWY_DYNAMIC_DISPATCH(RadialPositions)(ellipse, x, y, count, t, ahead);
}

void mixPixels(Ramp const& ramp, const float* t, std::size_t count, std::uint16_t* to)
{
    HWY_DYNAMIC_DISPATCH(MixPixels)(ramp, t, count, to);
}

} // namespace Ondrel::GradientRows
#endif

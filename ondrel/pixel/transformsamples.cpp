#include <ondrel/pixel/transformsamples_p.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "ondrel/pixel/transformsamples.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <ondrel/pixel/scalepixels_p.h>

HWY_BEFORE_NAMESPACE();
namespace Ondrel::TransformSamples
{
namespace HWY_NAMESPACE
{
namespace hn = hwy::HWY_NAMESPACE;
using namespace ScaleRows::HWY_NAMESPACE;

using Doubles = hn::ScalableTag<double>;

// One coordinate along a row, before the homogeneous divide.
class Ramp
{
public:
    HWY_INLINE Ramp(double perX, double perY, double constant, double y)
        : m_perX(hn::Set(Doubles(), perX))
        , m_row(hn::Set(Doubles(), perY * y))
        , m_constant(hn::Set(Doubles(), constant))
    {
    }
    HWY_INLINE hn::Vec<Doubles> at(hn::Vec<Doubles> x) const
    {
        return hn::Add(hn::Add(hn::Mul(m_perX, x), m_row), m_constant);
    }

private:
    hn::Vec<Doubles> m_perX, m_row, m_constant;
};

void Project(const double* rows, double x, double y, std::size_t count, PlaceRow& to)
{
    const Doubles d;
    const Ramp u(rows[0], rows[1], rows[2], y);
    const Ramp v(rows[3], rows[4], rows[5], y);
    const Ramp w(rows[6], rows[7], rows[8], y);
    // Division by exactly 1 changes nothing.
    const bool divides = rows[6] != 0.0 || rows[7] != 0.0 || rows[8] != 1.0;
    for (std::size_t i = 0; i < count; i += hn::Lanes(d)) {
        const auto at = hn::Add(hn::Set(d, x), hn::Iota(d, double(i)));
        auto placeX = u.at(at);
        auto placeY = v.at(at);
        if (divides) {
            const auto divisor = w.at(at);
            placeX = hn::Div(placeX, divisor);
            placeY = hn::Div(placeY, divisor);
        }
        hn::Store(placeX, d, to.x + i);
        hn::Store(placeY, d, to.y + i);
    }
}

void SplitLinear(const double* positions, std::size_t count, std::int32_t* whole, float* rest)
{
    const Doubles d;
    for (std::size_t i = 0; i < count; i += hn::Lanes(d)) {
        const auto position = hn::Load(d, positions + i);
        const auto floored = hn::Floor(position);
        hn::StoreU(hn::DemoteTo(hn::Rebind<std::int32_t, Doubles>(), floored), hn::Rebind<std::int32_t, Doubles>(),
                   whole + i);
        hn::StoreU(hn::DemoteTo(hn::Rebind<float, Doubles>(), hn::Sub(position, floored)), hn::Rebind<float, Doubles>(),
                   rest + i);
    }
}

void SplitCubic(const double* positions, std::size_t count, std::int32_t* whole, float* rest)
{
    const Doubles d;
    const hn::Rebind<float, Doubles> df;
    const hn::Rebind<std::int32_t, Doubles> di;
    for (std::size_t i = 0; i < count; i += hn::Lanes(d)) {
        const auto position = hn::DemoteTo(df, hn::Load(d, positions + i));
        const auto floored = hn::Floor(position);
        hn::StoreU(hn::ConvertTo(di, floored), di, whole + i);
        hn::StoreU(hn::Sub(position, floored), df, rest + i);
    }
}

void RoundNearest(const double* positions, std::size_t count, std::int32_t* whole)
{
    const Doubles d;
    const hn::Rebind<std::int32_t, Doubles> di;
    for (std::size_t i = 0; i < count; i += hn::Lanes(d)) {
        const auto floored = hn::Floor(hn::Add(hn::Load(d, positions + i), hn::Set(d, 0.5)));
        hn::StoreU(hn::DemoteTo(di, floored), di, whole + i);
    }
}

template <int taps>
HWY_INLINE void Mix(Neighbours const& neighbours, std::size_t count, ScaleRows::PixelQuad* to)
{
    float* out = ScaleRows::floatsOf(to);
    for (std::size_t i = 0; i < count; i += kPixels) {
        const Curve<taps> across(onePerPixel(neighbours.fx + i));
        Pixels rows[taps];
        for (int j = 0; j < taps; ++j) {
            Pixels p[taps];
            for (int tap = 0; tap < taps; ++tap)
                p[tap] = premultipliedAt(neighbours.rows[j] + i, tap);
            rows[j] = across(p);
        }
        save(Curve<taps>(onePerPixel(neighbours.fy + i))(rows), out + i * 4);
    }
}

void MixLinear(Neighbours const& neighbours, std::size_t count, ScaleRows::PixelQuad* to)
{
    Mix<2>(neighbours, count, to);
}

void MixCubic(Neighbours const& neighbours, std::size_t count, ScaleRows::PixelQuad* to)
{
    Mix<4>(neighbours, count, to);
}

} // namespace HWY_NAMESPACE
} // namespace Ondrel::TransformSamples
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Ondrel::TransformSamples
{

HWY_EXPORT(Project);
HWY_EXPORT(SplitLinear);
HWY_EXPORT(SplitCubic);
HWY_EXPORT(RoundNearest);
HWY_EXPORT(MixLinear);
HWY_EXPORT(MixCubic);

void project(Eigen::Matrix<double, 3, 3> const& mapping, double x, double y, std::size_t count, PlaceRow& to)
{
    const Eigen::Matrix<double, 3, 3, Eigen::RowMajor> rows = mapping;
    HWY_DYNAMIC_DISPATCH(Project)(rows.data(), x, y, count, to);
}

void splitLinear(const double* positions, std::size_t count, std::int32_t* whole, float* rest)
{
    HWY_DYNAMIC_DISPATCH(SplitLinear)(positions, count, whole, rest);
}

void splitCubic(const double* positions, std::size_t count, std::int32_t* whole, float* rest)
{
    HWY_DYNAMIC_DISPATCH(SplitCubic)(positions, count, whole, rest);
}

void roundNearest(const double* positions, std::size_t count, std::int32_t* whole)
{
    HWY_DYNAMIC_DISPATCH(RoundNearest)(positions, count, whole);
}

void mixLinear(Neighbours const& neighbours, std::size_t count, ScaleRows::PixelQuad* to)
{
    HWY_DYNAMIC_DISPATCH(MixLinear)(neighbours, count, to);
}

void mixCubic(Neighbours const& neighbours, std::size_t count, ScaleRows::PixelQuad* to)
{
    HWY_DYNAMIC_DISPATCH(MixCubic)(neighbours, count, to);
}

} // namespace Ondrel::TransformSamples
#endif

#include <ondrel/pixel/gaussianblurrows_p.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "ondrel/pixel/gaussianblurrows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Ondrel::BlurRows
{
namespace HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

// A point is a whole number of vectors.
using Doubles = hn::ScalableTag<double>;
using Ints = hn::Rebind<std::int32_t, Doubles>;
using Samples = hn::Rebind<std::uint16_t, Doubles>;
using Vector = hn::Vec<Doubles>;
constexpr std::size_t kLanes = HWY_LANES(double);
// Two vectors a row give enough independent additions, and with the loaded rows fit the 16 registers of AVX2.
constexpr std::size_t kVectors = 2;
constexpr std::size_t kStep = kVectors * kLanes;

HWY_INLINE Vector loadSamples(const std::uint16_t* from)
{
    return hn::PromoteTo(Doubles(), hn::PromoteTo(Ints(), hn::LoadU(Samples(), from)));
}

HWY_INLINE void storeSamples(hn::Vec<Ints> samples, std::uint16_t* to)
{
    hn::StoreU(hn::DemoteTo(Samples(), samples), Samples(), to);
}

// The half of a sum that is not below 0, halves away from zero: floor(2 s) + 1 over 2 is floor(s + 0.5) without the
// rounding of that addition, which would take the number below a half upward. May exceed 65535.
HWY_INLINE hn::Vec<Ints> roundedHalf(Vector doubledSum)
{
    const Ints d;
    return hn::ShiftRight<1>(hn::Add(hn::DemoteTo(d, doubledSum), hn::Set(d, 1)));
}

// Four samples or a vector full of them, whichever is less: what lies side by side in a row of pixels and in a point.
using FewSamples = hn::CappedTag<std::uint16_t, (kLanes < 4 ? kLanes : 4)>;

// One vector of a point: samples `offset` to `offset` + kLanes, of one row or of two.
HWY_INLINE Vector gatherPixels(const std::uint16_t* const* rows, std::size_t x, std::size_t offset)
{
#if HWY_MAX_BYTES == 64
    const auto low = hn::LoadU(FewSamples(), rows[offset / 4] + x * 4);
    const auto high = hn::LoadU(FewSamples(), rows[offset / 4 + 1] + x * 4);
    return hn::PromoteTo(Doubles(), hn::PromoteTo(Ints(), hn::Combine(Samples(), high, low)));
#else
    return loadSamples(rows[offset / 4] + x * 4 + offset % 4);
#endif
}

HWY_INLINE void scatterPixels(Vector v, double* const* rows, std::size_t x, std::size_t offset)
{
#if HWY_MAX_BYTES == 64
    const hn::Half<Doubles> half;
    hn::StoreU(hn::LowerHalf(half, v), half, rows[offset / 4] + x * 4);
    hn::StoreU(hn::UpperHalf(half, v), half, rows[offset / 4 + 1] + x * 4);
#else
    hn::StoreU(v, Doubles(), rows[offset / 4] + x * 4 + offset % 4);
#endif
}

void GatherLine(const std::uint16_t* const* rows, std::size_t count, double* to)
{
    for (std::size_t x = 0; x < count; ++x)
        for (std::size_t offset = 0; offset < kPoint; offset += kLanes)
            hn::StoreU(gatherPixels(rows, x, offset), Doubles(), to + x * kPoint + offset);
}

void Promote(const std::uint16_t* from, std::size_t count, double* to)
{
    std::size_t i = 0;
    for (; i + kLanes <= count; i += kLanes)
        hn::StoreU(loadSamples(from + i), Doubles(), to + i);
    for (; i < count; ++i)
        to[i] = double(from[i]);
}

void Demote(const double* from, std::size_t count, std::uint16_t* to)
{
    std::size_t i = 0;
    for (; i + kLanes <= count; i += kLanes)
        storeSamples(hn::DemoteTo(Ints(), hn::LoadU(Doubles(), from + i)), to + i);
    for (; i < count; ++i)
        to[i] = std::uint16_t(from[i]);
}

// The sums of kBlock neighbours over kVectors vectors of samples. Each row is loaded once for all of them.
struct BlockSums {
    Vector sums[kBlock][kVectors];

    // Takes up a row: the sum `i` has weight[-i] for it. It is the first of `last`, if `begins`, and is added to those
    // from `first` to `last` else. A first product stands for itself: no product is below 0, so none is -0.
    template <int first, int last, bool begins>
    HWY_INLINE void add(const double* row, const double* weight)
    {
        Vector v[kVectors];
        for (std::size_t k = 0; k < kVectors; ++k)
            v[k] = hn::LoadU(Doubles(), row + k * kLanes);
        for (int i = first; i <= last; ++i) {
            const Vector w = hn::Set(Doubles(), weight[-i]);
            for (std::size_t k = 0; k < kVectors; ++k) {
                const Vector product = hn::Mul(v[k], w);
                sums[i][k] = begins && i == last ? product : hn::Add(sums[i][k], product);
            }
        }
    }
};

template <typename RowAt>
HWY_INLINE BlockSums sumBlock(RowAt rowAt, Weights weights)
{
    static_assert(kBlock == 4, "the rows that begin and end a block are written out");
    BlockSums block;
    const double* const w = weights.doubled;
    const std::size_t n = weights.count;
    block.add<0, 0, true>(rowAt(0), w);
    block.add<0, 1, true>(rowAt(1), w + 1);
    block.add<0, 2, true>(rowAt(2), w + 2);
    if (n == 3) {
        block.add<1, 3, true>(rowAt(3), w + 3);
    } else {
        block.add<0, 3, true>(rowAt(3), w + 3);
        for (std::size_t i = 4; i < n; ++i)
            block.add<0, 3, false>(rowAt(i), w + i);
        block.add<1, 3, false>(rowAt(n), w + n);
    }
    block.add<2, 3, false>(rowAt(n + 1), w + n + 1);
    block.add<3, 3, false>(rowAt(n + 2), w + n + 2);
    return block;
}

void ConvolveLine(const double* line, std::size_t count, Weights weights, double* const* to)
{
    const auto most = hn::Set(Ints(), 65535);
    for (std::size_t p = 0; p < count; p += kBlock)
        for (std::size_t offset = 0; offset < kPoint; offset += kStep) {
            const double* const from = line + p * kPoint + offset;
            const auto block = sumBlock([from](std::size_t i) HWY_ATTR { return from + i * kPoint; }, weights);
            for (std::size_t i = 0; i < kBlock; ++i)
                for (std::size_t k = 0; k < kVectors; ++k) {
                    const auto samples = hn::Min(roundedHalf(block.sums[i][k]), most);
                    scatterPixels(hn::PromoteTo(Doubles(), samples), to, p + i, offset + k * kLanes);
                }
        }
}

void ConvolveRows(const double* const* rows, std::size_t count, Weights weights, std::uint16_t* const* to)
{
    for (std::size_t offset = 0; offset < count; offset += kStep) {
        const auto block = sumBlock([rows, offset](std::size_t i) HWY_ATTR { return rows[i] + offset; }, weights);
        for (std::size_t i = 0; i < kBlock; ++i)
            for (std::size_t k = 0; k < kVectors; ++k)
                storeSamples(roundedHalf(block.sums[i][k]), to[i] + offset + k * kLanes);
    }
}

void AccumulatePoint(const std::uint16_t* point, std::ptrdiff_t step, Weights weights, double* sums)
{
    constexpr std::size_t kParts = kPoint / kLanes;
    Vector sum[kParts];
    for (std::size_t k = 0; k < kParts; ++k)
        sum[k] = hn::LoadU(Doubles(), sums + k * kLanes);
    for (std::size_t i = 0; i < weights.count; ++i, point += step) {
        const Vector w = hn::Set(Doubles(), weights.doubled[i]);
        for (std::size_t k = 0; k < kParts; ++k)
            sum[k] = hn::Add(sum[k], hn::Mul(loadSamples(point + k * kLanes), w));
    }
    for (std::size_t k = 0; k < kParts; ++k)
        hn::StoreU(sum[k], Doubles(), sums + k * kLanes);
}

void RoundPoint(const double* sums, std::uint16_t* to)
{
    for (std::size_t k = 0; k < kPoint; k += kLanes)
        storeSamples(roundedHalf(hn::LoadU(Doubles(), sums + k)), to + k);
}

} // namespace HWY_NAMESPACE
} // namespace Ondrel::BlurRows
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Ondrel::BlurRows
{

HWY_EXPORT(Promote);
HWY_EXPORT(Demote);
HWY_EXPORT(GatherLine);
HWY_EXPORT(ConvolveLine);
HWY_EXPORT(ConvolveRows);
HWY_EXPORT(AccumulatePoint);
HWY_EXPORT(RoundPoint);

void promote(const std::uint16_t* from, std::size_t count, double* to)
{
    HWY_DYNAMIC_DISPATCH(Promote)(from, count, to);
}

void demote(const double* from, std::size_t count, std::uint16_t* to)
{
    HWY_DYNAMIC_DISPATCH(Demote)(from, count, to);
}

void gatherLine(const std::uint16_t* const* rows, std::size_t count, double* to)
{
    HWY_DYNAMIC_DISPATCH(GatherLine)(rows, count, to);
}

void convolveLine(const double* line, std::size_t count, Weights weights, double* const* to)
{
    HWY_DYNAMIC_DISPATCH(ConvolveLine)(line, count, weights, to);
}

void convolveRows(const double* const* rows, std::size_t count, Weights weights, std::uint16_t* const* to)
{
    HWY_DYNAMIC_DISPATCH(ConvolveRows)(rows, count, weights, to);
}

void accumulatePoint(const std::uint16_t* point, std::ptrdiff_t step, Weights weights, double* sums)
{
    HWY_DYNAMIC_DISPATCH(AccumulatePoint)(point, step, weights, sums);
}

void roundPoint(const double* sums, std::uint16_t* to)
{
    HWY_DYNAMIC_DISPATCH(RoundPoint)(sums, to);
}

} // namespace Ondrel::BlurRows
#endif

#include <ondrel/pixel/scalerows_p.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "ondrel/pixel/scalerows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <ondrel/pixel/scalepixels_p.h>

HWY_BEFORE_NAMESPACE();
namespace Ondrel::ScaleRows
{
namespace HWY_NAMESPACE
{

void Premultiply(const std::uint16_t* from, std::size_t count, float* to)
{
    std::size_t i = 0;
    for (; i + kPixels <= count; i += kPixels)
        savePremultiplied<kPixels>(from + i * 4, to + i * 4);
    for (; i < count; ++i)
        savePremultiplied<1>(from + i * 4, to + i * 4);
}

void Store(const PixelQuad* from, std::size_t count, std::uint16_t* to)
{
    const float* samples = floatsOf(from);
    std::size_t i = 0;
    for (; i + kPixels <= count; i += kPixels)
        storeUnpremultiplied<kPixels>(samples + i * 4, to + i * 4);
    for (; i < count; ++i)
        storeUnpremultiplied<1>(samples + i * 4, to + i * 4);
}

template <int taps>
void MixAcross(const float* row, Positions positions, PixelQuad* to)
{
    float* out = floatsOf(to);
    for (std::size_t i = 0; i < positions.count; i += kPixels) {
        Pixels p[taps];
        for (int tap = 0; tap < taps; ++tap)
            p[tap] = gather(row + tap * 4, positions.first + i);
        save(Curve<taps>(onePerPixel(positions.fraction + i))(p), out + i * 4);
    }
}

// One vector of samples between rows, `offset` floats from their start.
template <int taps>
HWY_INLINE Pixels sampleDown(Column<taps> const& column, Curve<taps> const& curve, std::size_t offset)
{
    Pixels p[taps];
    for (int tap = 0; tap < taps; ++tap)
        p[tap] = load(floatsOf(column.rows[tap]) + offset);
    return curve(p);
}

template <int taps>
void MixDown(Column<taps> const& column, std::size_t count, PixelQuad* to)
{
    const Curve<taps> curve(allOf(column.fraction));
    float* out = floatsOf(to);
    for (std::size_t i = 0; i < count * 16; i += kPixels * 4)
        save(sampleDown<taps>(column, curve, i), out + i);
}

// Runs `sampleAt(offset)` over pairs of runs; see averageDown in the header.
template <typename SampleAt>
HWY_INLINE void averagePairs(std::size_t run, std::size_t pairs, Half half, float* out, SampleAt sampleAt)
{
    const std::size_t runFloats = run * 16;
    const Pixels quarter = allOf(0.25f);
    for (std::size_t pair = 0; pair < pairs; ++pair) {
        const std::size_t start = 2 * pair * runFloats;
        float* to = out + pair * runFloats;
        if (half == Half::Upper) {
            for (std::size_t i = 0; i < runFloats; i += kPixels * 4)
                save(add(sampleAt(start + i), sampleAt(start + runFloats + i)), to + i);
        } else {
            for (std::size_t i = 0; i < runFloats; i += kPixels * 4)
                save(multiply(add(add(load(to + i), sampleAt(start + i)), sampleAt(start + runFloats + i)), quarter),
                     to + i);
        }
    }
}

template <int taps>
void AverageDown(Column<taps> const& column, std::size_t run, std::size_t pairs, Half half, PixelQuad* to)
{
    const Curve<taps> curve(allOf(column.fraction));
    averagePairs(run, pairs, half, floatsOf(to),
                 [&](std::size_t offset) HWY_ATTR { return sampleDown<taps>(column, curve, offset); });
}

void Average(const PixelQuad* from, std::size_t run, std::size_t pairs, Half half, PixelQuad* to)
{
    const float* samples = floatsOf(from);
    averagePairs(run, pairs, half, floatsOf(to), [&](std::size_t offset) HWY_ATTR { return load(samples + offset); });
}

void MixAcross2(const float* row, Positions positions, PixelQuad* to)
{
    MixAcross<2>(row, positions, to);
}

void MixAcross4(const float* row, Positions positions, PixelQuad* to)
{
    MixAcross<4>(row, positions, to);
}

void MixDown2(Column<2> const& column, std::size_t count, PixelQuad* to)
{
    MixDown<2>(column, count, to);
}

void MixDown4(Column<4> const& column, std::size_t count, PixelQuad* to)
{
    MixDown<4>(column, count, to);
}

void AverageDown2(Column<2> const& column, std::size_t run, std::size_t pairs, Half half, PixelQuad* to)
{
    AverageDown<2>(column, run, pairs, half, to);
}

void AverageDown4(Column<4> const& column, std::size_t run, std::size_t pairs, Half half, PixelQuad* to)
{
    AverageDown<4>(column, run, pairs, half, to);
}

} // namespace HWY_NAMESPACE
} // namespace Ondrel::ScaleRows
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Ondrel::ScaleRows
{

HWY_EXPORT(Premultiply);
HWY_EXPORT(Store);
HWY_EXPORT(MixAcross2);
HWY_EXPORT(MixAcross4);
HWY_EXPORT(MixDown2);
HWY_EXPORT(MixDown4);
HWY_EXPORT(AverageDown2);
HWY_EXPORT(AverageDown4);
HWY_EXPORT(Average);

void premultiply(const std::uint16_t* from, std::size_t count, float* to)
{
    HWY_DYNAMIC_DISPATCH(Premultiply)(from, count, to);
}

void store(const PixelQuad* from, std::size_t count, std::uint16_t* to)
{
    HWY_DYNAMIC_DISPATCH(Store)(from, count, to);
}

void mixAcross2(const float* row, Positions positions, PixelQuad* to)
{
    HWY_DYNAMIC_DISPATCH(MixAcross2)(row, positions, to);
}

void mixAcross4(const float* row, Positions positions, PixelQuad* to)
{
    HWY_DYNAMIC_DISPATCH(MixAcross4)(row, positions, to);
}

void mixDown(Column<2> const& column, std::size_t count, PixelQuad* to)
{
    HWY_DYNAMIC_DISPATCH(MixDown2)(column, count, to);
}

void mixDown(Column<4> const& column, std::size_t count, PixelQuad* to)
{
    HWY_DYNAMIC_DISPATCH(MixDown4)(column, count, to);
}

void averageDown(Column<2> const& column, std::size_t run, std::size_t pairs, Half half, PixelQuad* to)
{
    HWY_DYNAMIC_DISPATCH(AverageDown2)(column, run, pairs, half, to);
}

void averageDown(Column<4> const& column, std::size_t run, std::size_t pairs, Half half, PixelQuad* to)
{
    HWY_DYNAMIC_DISPATCH(AverageDown4)(column, run, pairs, half, to);
}

void average(const PixelQuad* from, std::size_t run, std::size_t pairs, Half half, PixelQuad* to)
{
    HWY_DYNAMIC_DISPATCH(Average)(from, run, pairs, half, to);
}

} // namespace Ondrel::ScaleRows
#endif

#include <ondrel/core/histogrambins_p.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "ondrel/core/histogrambins.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Ondrel
{
namespace HWY_NAMESPACE
{
namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET != HWY_SCALAR // whose vectors of one lane cannot hold a pixel

using Pixels = hn::ScalableTag<std::uint64_t>; // a pixel, or one number of it, in each lane
using Numbers = hn::Vec<Pixels>;

struct Samples {
    Numbers red, green, blue; // below 2^16
};

HWY_INLINE Samples samplesOf(Numbers pixels)
{
    const auto low = hn::Set(Pixels(), 0xFFFF);
    return {hn::And(pixels, low), hn::And(hn::ShiftRight<16>(pixels), low), hn::And(hn::ShiftRight<32>(pixels), low)};
}

HWY_INLINE Numbers lightnessOf(const Samples& samples)
{
    const hn::Repartition<std::uint16_t, Pixels> d16;
    const auto r = hn::BitCast(d16, samples.red);
    const auto g = hn::BitCast(d16, samples.green);
    const auto b = hn::BitCast(d16, samples.blue);
    const auto least = hn::BitCast(Pixels(), hn::Min(hn::Min(r, g), b));
    const auto greatest = hn::BitCast(Pixels(), hn::Max(hn::Max(r, g), b));
    return hn::ShiftRight<1>(hn::Add(least, greatest));
}

HWY_INLINE Numbers luminanceOf(const Samples& samples)
{
    const hn::Repartition<std::int32_t, Pixels> di32;
    const hn::Repartition<float, Pixels> df32;
    const hn::Repartition<double, Pixels> df64;
    // Each second float is 0.
    const auto red = hn::ConvertTo(df32, hn::BitCast(di32, samples.red));
    const auto green = hn::ConvertTo(df32, hn::BitCast(di32, samples.green));
    const auto greenAndRed = hn::Add(hn::Mul(green, hn::Set(df32, 0.587f)), hn::Mul(red, hn::Set(df32, 0.299f)));
    const auto widened = hn::PromoteTo(df64, hn::LowerHalf(hn::ConcatEven(df32, greenAndRed, greenAndRed)));

    // The integers below 2^52 are the low bits of a double between 2^52 and 2^53.
    const auto offset = hn::Set(df64, 4503599627370496.0);
    const auto blue = hn::Sub(hn::BitCast(df64, hn::Or(samples.blue, hn::BitCast(Pixels(), offset))), offset);
    const auto luminance = hn::Trunc(hn::Add(hn::Mul(blue, hn::Set(df64, 0.114)), widened));
    return hn::And(hn::BitCast(Pixels(), hn::Add(luminance, offset)), hn::Set(Pixels(), 0xFFFF));
}

// v * factor with 32 fractional bits.
HWY_INLINE Numbers scaled(Numbers v, Numbers factor)
{
    const hn::Repartition<std::uint32_t, Pixels> d32;
    return hn::MulEven(hn::BitCast(d32, v), hn::BitCast(d32, factor));
}

template <FourthBin fourth>
HWY_INLINE Numbers binsOf(Numbers pixels, Numbers factor)
{
    const Samples samples = samplesOf(pixels);
    Numbers fourthBin;
    if constexpr (fourth == FourthBin::Luminance) {
        fourthBin = scaled(luminanceOf(samples), factor);
    } else {
        const auto half = hn::Set(Pixels(), std::uint64_t{1} << 31);
        fourthBin = hn::Add(scaled(lightnessOf(samples), factor), half);
    }
    const auto red = hn::ShiftRight<32>(scaled(samples.red, factor));
    const auto green = hn::ShiftRight<32>(scaled(samples.green, factor));
    const auto blue = hn::ShiftRight<32>(scaled(samples.blue, factor));
    return hn::Or(hn::Or(red, hn::ShiftLeft<16>(green)),
                  hn::Or(hn::ShiftLeft<32>(blue), hn::ShiftLeft<48>(hn::ShiftRight<32>(fourthBin))));
}

#endif

template <FourthBin fourth>
HWY_INLINE void binsOfOne(const std::uint16_t* pixel, std::uint64_t factor, std::uint16_t* bins)
{
    for (std::size_t c = 0; c < 3; ++c)
        bins[c] = static_cast<std::uint16_t>(pixel[c] * factor >> 32);
    if constexpr (fourth == FourthBin::Luminance)
        bins[3] = static_cast<std::uint16_t>(Ondrel::luminanceOf(pixel) * factor >> 32);
    else
        bins[3] = static_cast<std::uint16_t>((Ondrel::lightnessOf(pixel) * factor + (std::uint64_t{1} << 31)) >> 32);
}

template <FourthBin fourth>
HWY_INLINE void binsOfAll(const std::uint16_t* samples, std::size_t count, std::uint32_t factor, std::uint16_t* bins)
{
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const hn::Repartition<std::uint16_t, Pixels> d16;
    const auto factors = hn::Set(Pixels(), factor);
    const std::size_t step = hn::Lanes(Pixels());
    for (; i + step <= count; i += step) {
        const auto pixels = hn::BitCast(Pixels(), hn::LoadU(d16, samples + 4 * i));
        hn::StoreU(hn::BitCast(d16, binsOf<fourth>(pixels, factors)), d16, bins + 4 * i);
    }
#endif
    for (; i < count; ++i)
        binsOfOne<fourth>(samples + 4 * i, factor, bins + 4 * i);
}

void BinsOfPixels(const std::uint16_t* samples, std::size_t count, std::uint32_t factor, FourthBin fourth,
                  std::uint16_t* bins)
{
    if (fourth == FourthBin::Luminance)
        binsOfAll<FourthBin::Luminance>(samples, count, factor, bins);
    else
        binsOfAll<FourthBin::Lightness>(samples, count, factor, bins);
}

} // namespace HWY_NAMESPACE
} // namespace Ondrel
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Ondrel
{

HWY_EXPORT(BinsOfPixels);

void binsOfPixels(const std::uint16_t* samples, std::size_t count, std::uint32_t factor, FourthBin fourth,
                  std::uint16_t* bins)
{
    HWY_DYNAMIC_DISPATCH(BinsOfPixels)(samples, count, factor, fourth, bins);
}

} // namespace Ondrel
#endif

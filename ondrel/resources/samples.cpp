#include <ondrel/resources/samples_p.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "ondrel/resources/samples.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Ondrel
{
namespace HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

void SamplesFromBytes(const std::uint8_t* in, std::size_t count, std::uint16_t* out)
{
    const hn::ScalableTag<std::uint16_t> samples;
    const hn::Rebind<std::uint8_t, decltype(samples)> bytes;
    const std::size_t lanes = hn::Lanes(samples);
    std::size_t i = 0;
    for (; i < count && reinterpret_cast<std::uintptr_t>(out + i) % (lanes * sizeof *out) != 0; ++i)
        out[i] = sampleFromByte(in[i]);
    for (; i + lanes <= count; i += lanes) {
        const auto v = hn::PromoteTo(samples, hn::LoadU(bytes, in + i));
        hn::Stream(hn::Or(hn::ShiftLeft<8>(v), v), samples, out + i);
    }
    hwy::FlushStream();
    for (; i < count; ++i)
        out[i] = sampleFromByte(in[i]);
}

void BytesRounded(const std::uint16_t* in, std::size_t count, std::uint8_t* out)
{
    const hn::ScalableTag<std::uint16_t> samples;
    const hn::RebindToSigned<decltype(samples)> narrowed;
    const hn::Rebind<std::uint8_t, decltype(samples)> bytes;
    const std::size_t lanes = hn::Lanes(samples);
    const auto half = hn::Set(samples, 128);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        const auto v = hn::SaturatedAdd(hn::LoadU(samples, in + i), half);
        const auto quotient = hn::ShiftRight<8>(hn::Sub(v, hn::ShiftRight<8>(v)));
        hn::StoreU(hn::DemoteTo(bytes, hn::BitCast(narrowed, quotient)), bytes, out + i);
    }
    for (; i < count; ++i)
        out[i] = byteRounded(in[i]);
}

} // namespace HWY_NAMESPACE
} // namespace Ondrel
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Ondrel
{

HWY_EXPORT(SamplesFromBytes);
HWY_EXPORT(BytesRounded);

void samplesFromBytes(const std::uint8_t* in, std::size_t count, std::uint16_t* out)
{
    HWY_DYNAMIC_DISPATCH(SamplesFromBytes)(in, count, out);
}

void bytesRounded(const std::uint16_t* in, std::size_t count, std::uint8_t* out)
{
    HWY_DYNAMIC_DISPATCH(BytesRounded)(in, count, out);
}

} // namespace Ondrel
#endif

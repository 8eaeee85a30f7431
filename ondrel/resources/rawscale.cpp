#include <ondrel/core/parallel_p.h>
#include <ondrel/resources/decodelimits_p.h>
#include <ondrel/resources/rawscale_p.h>

#include <cstddef>
#include <cstdint>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "ondrel/resources/rawscale.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Ondrel
{
namespace HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

// Scales whole vectors and gives the number of samples that it has scaled.
template <class D>
HWY_INLINE std::size_t ScaleVectors(D floats, std::uint16_t* samples, std::size_t count, float offset, float factor)
{
    const hn::Rebind<std::int32_t, D> integers;
    const hn::Rebind<std::uint16_t, D> shorts;
    std::uint16_t opaque[hn::MaxLanes(shorts) + 3]; // room for one lane to begin at any sample of a pixel
    for (std::size_t i = 0; i < hn::MaxLanes(shorts) + 3; ++i)
        opaque[i] = i % 4 == 3 ? 65535 : 0;
    const auto most = hn::Set(floats, 65535.0f);
    const auto vOffset = hn::Set(floats, offset), vFactor = hn::Set(floats, factor);
    const std::size_t lanes = hn::Lanes(floats);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        const auto in = hn::ConvertTo(floats, hn::PromoteTo(integers, hn::LoadU(shorts, samples + i)));
        const auto v = hn::Mul(hn::Sub(in, vOffset), vFactor);
        // Comparisons, not Min and Max: what is not a number becomes 0 on every processor.
        const auto positive = hn::IfThenElseZero(hn::Gt(v, hn::Zero(floats)), v);
        const auto limited = hn::IfThenElse(hn::Gt(positive, most), most, positive);
        const auto out = hn::DemoteTo(shorts, hn::ConvertTo(integers, limited));
        hn::StoreU(hn::Or(out, hn::LoadU(shorts, opaque + i % 4)), shorts, samples + i);
    }
    return i;
}

void ScaleSamples(std::uint16_t* samples, std::size_t count, float offset, float factor)
{
    const std::size_t done = ScaleVectors(hn::ScalableTag<float>(), samples, count, offset, factor);
    ScaleVectors(hn::CappedTag<float, 4>(), samples + done, count - done, offset, factor); // a few pixels at most
}

} // namespace HWY_NAMESPACE
} // namespace Ondrel
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Ondrel
{

HWY_EXPORT(ScaleSamples);

void ScaleColors(unsigned int black, unsigned int maximum, Image& image)
{
    if (!holdsAllPixels(image))
        return;
    const auto offset = static_cast<float>(black);
    const float factor = 65535.0f / static_cast<float>(maximum - black);
    const std::size_t pixels = std::size_t(image.width) * image.height;
    parallelRanges(pixels, 128, [&](std::size_t first, std::size_t last) {
        HWY_DYNAMIC_DISPATCH(ScaleSamples)(image.data + first * 4, (last - first) * 4, offset, factor);
    });
}

} // namespace Ondrel
#endif

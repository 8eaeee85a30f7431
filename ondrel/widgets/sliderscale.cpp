#include <ondrel/widgets/sliderscale_p.h>

#include <algorithm>
#include <limits>

namespace Ondrel
{
namespace
{
constexpr double kOne = 1e9; // of fixed point
}

std::int64_t truncatedToInt64(double v)
{
    constexpr double beyond = 9223372036854775808.0;
    if (v >= beyond)
        return std::numeric_limits<std::int64_t>::max();
    if (v < -beyond)
        return std::numeric_limits<std::int64_t>::min();
    return v == v ? static_cast<std::int64_t>(v) : 0;
}

std::int64_t SliderScale::parse(const QString& text) const
{
    return integer ? text.toLongLong() : truncatedToInt64(text.toDouble() * kOne);
}

QString SliderScale::text(std::int64_t value) const
{
    return integer ? QString::number(value) : QString::number(double(value) / kOne, 'g', 6);
}

double SliderScale::range() const
{
    return integer ? double(wrappingDifference(maximum, minimum)) : double(maximum) / kOne - double(minimum) / kOne;
}

double SliderScale::fractionOf(std::int64_t value) const
{
    const double above =
        integer ? double(wrappingDifference(value, minimum)) : double(value) / kOne - double(minimum) / kOne;
    return above / range();
}

std::int64_t SliderScale::valueAt(double fraction) const
{
    const double above = range() * std::clamp(fraction, 0.0, 1.0);
    return wrappingSum(truncatedToInt64(integer ? above : above * kOne), minimum);
}

std::int64_t SliderScale::limited(std::int64_t value) const
{
    return std::clamp(value, minimum, maximum);
}

std::int64_t SliderScale::dragStep(int pixels) const
{
    if (integer)
        return pixels;
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(pixels) * 10000000u);
}

} // namespace Ondrel

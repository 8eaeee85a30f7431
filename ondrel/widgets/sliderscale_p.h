#pragma once

#include <ondrel/ondrel_export.h>

#include <QString>

#include <cstdint>

// The numbers of the sliders, without a widget. Sums and differences wrap as 64-bit numbers do, and doubles beyond them
// become the nearest limit: any text may come in as a limit.

namespace Ondrel
{

constexpr std::int64_t wrappingSum(std::int64_t a, std::int64_t b)
{
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
}

constexpr std::int64_t wrappingDifference(std::int64_t a, std::int64_t b)
{
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) - static_cast<std::uint64_t>(b));
}

// Towards zero; not a number gives 0.
ONDREL_EXPORT std::int64_t truncatedToInt64(double v);

// A range of values in fixed point, the number times 1e9, or of whole numbers. A fraction of the range is 0 at the
// minimum and 1 at the maximum; of an empty range it is not a number.
struct ONDREL_EXPORT SliderScale {
    bool integer = true;
    std::int64_t minimum = 0;
    std::int64_t maximum = 0;

    // The value that a text stands for; 0 if it is no number.
    std::int64_t parse(const QString& text) const;
    // How a value is shown, with six significant digits if it is no whole number.
    QString text(std::int64_t value) const;

    double range() const;
    double fractionOf(std::int64_t value) const;
    // The value at a fraction, which is limited to 0 to 1.
    std::int64_t valueAt(double fraction) const;
    // A value limited to the range.
    std::int64_t limited(std::int64_t value) const;

    // What a drag by whole pixels adds: 1 a pixel, or 0.01. The product of the second has 32 bits and wraps.
    std::int64_t dragStep(int pixels) const;
    // What a click on an arrow adds: 1, or 0.1.
    std::int64_t clickStep() const { return integer ? 1 : 100000000; }
};

} // namespace Ondrel

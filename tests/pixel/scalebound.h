#pragma once

#include "../reference/kernels_reference.h"
#include "opencldevice.h"

#include <algorithm>

namespace OndrelTest
{

// Whether a bilinear scale on a device agrees with one on the processor.
//
// The device may contract products and sums. Premultiplied samples then differ by `delta`, in units of 1 / 65535:
// positions below 256 by one unit in the last place, 2^-16, in each direction, at a slope of up to 65535 a pixel (2 at
// most, and 1 below 128); the sum of the n * n samples of a grid by n * n * 2^-24 * 65535. The stored alpha is
// truncated from it: delta + 1. A colour is a quotient of two such values: at most 2 * delta * 65535 / alpha, and 1
// more. Where alpha is 0, colours are not compared.
inline testing::AssertionResult sameScale(const Size& in, const Size& out, const Samples& expected,
                                          const Samples& actual)
{
    if (expected.size() != actual.size())
        return testing::AssertionFailure() << expected.size() << " and " << actual.size() << " samples";
    const int level =
        OndrelReference::supersampleLevel(float(in.width) / float(out.width), float(in.height) / float(out.height));
    const bool large = std::max(in.width, in.height) >= 128;
    const double delta = (large ? 2 : 1) + double(1 << (2 * level)) / 256;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const int alpha = expected[i | 3];
        const double bound = i % 4 == 3 ? delta + 1 : alpha == 0 ? 65535 : 2 * delta * 65535 / alpha + 1;
        if (std::abs(int(expected[i]) - int(actual[i])) > bound)
            return testing::AssertionFailure()
                   << in << " to " << out << ", pixel " << i / 4 << ", channel " << i % 4 << ": " << expected[i]
                   << " expected, " << actual[i] << " found, bound " << bound;
    }
    return testing::AssertionSuccess();
}

} // namespace OndrelTest

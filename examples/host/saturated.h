#pragma once

#include <cstddef>
#include <limits>

namespace Host
{

// Sums and products of what files say of themselves: the largest number there is where they would wrap around.

inline std::size_t saturatedSum(std::size_t a, std::size_t b)
{
    return b > std::numeric_limits<std::size_t>::max() - a ? std::numeric_limits<std::size_t>::max() : a + b;
}

inline std::size_t saturatedProduct(std::size_t a, std::size_t b)
{
    return a != 0 && b > std::numeric_limits<std::size_t>::max() / a ? std::numeric_limits<std::size_t>::max() : a * b;
}

} // namespace Host

#pragma once

#include <cstddef>
#include <cstdint>

// The vector loops of SpectralFilter.

namespace Ondrel::BlurTransform
{

// A transform of `size` complex numbers, a power of two from 16 on, by decimation in frequency with radix 4 and a last
// step of 4 or 2: number k of the result is at the place that has the digits of k in reverse order.
struct Transform {
    std::size_t size;
    // For each step of size n, n / 4 times the powers 1, 2, 3 of exp(-2 pi i j / n), real parts and imaginary parts in
    // turn; the steps one after the other, the greatest first.
    const double* twiddles;
    const double* spectrum; // real factors, in the order of the result
};

// One block of a line; see SpectralFilter::filter.
struct Block {
    const std::uint16_t* points; // transform.size of them
    const double* added;
    double tolerance;
    std::size_t firstValid, validEnd; // the points of the result that are wanted
    std::uint16_t* to;                // where the first one goes
    unsigned char* doubtful;          // a mark for each of them
};

// Numbers that a transform of a given size works on.
std::size_t workspaceSize(std::size_t size);

// Transforms, multiplies, transforms back and rounds. Returns whether something was marked.
bool filterBlock(Transform const& transform, Block const& block, double* workspace);

} // namespace Ondrel::BlurTransform

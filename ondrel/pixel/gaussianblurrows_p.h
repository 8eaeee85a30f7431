#pragma once

#include <cstddef>
#include <cstdint>

// The sums of a blur, in vectors. Sixteen samples that are treated alike, four pixels from four rows or four pixels
// side by side, form a point. Lines are made of points; what is summed is the samples of neighbouring points.
//
// Every sum is that of the contract of GaussianBlur: products in double precision, added one after the other, rounded
// to 16 bits at the end.

namespace Ondrel::BlurRows
{

constexpr std::size_t kPoint = 16; // samples in a point
constexpr std::size_t kBlock = 4;  // sums made at a time, along a line or from row to row

// Twice the weights; 3 at least.
struct Weights {
    const double* doubled;
    std::size_t count;
};

void promote(const std::uint16_t* from, std::size_t count, double* to);
void demote(const double* from, std::size_t count, std::uint16_t* to);

// `count` pixels of four rows as the points of a line.
void gatherLine(const std::uint16_t* const* rows, std::size_t count, double* to);

// `count` points along a line, a multiple of kBlock; the first is the sum of the first weights.count points of the
// line. The results, whole numbers, go to four rows of pixels.
void convolveLine(const double* line, std::size_t count, Weights weights, double* const* to);

// kBlock rows of `count` samples, a multiple of kPoint. The sums of to[i] begin at rows[i].
void convolveRows(const double* const* rows, std::size_t count, Weights weights, std::uint16_t* const* to);

// Adds point[i * step] * weights.doubled[i] to the sixteen sums, one i after the other. `step` is in samples.
void accumulatePoint(const std::uint16_t* point, std::ptrdiff_t step, Weights weights, double* sums);

// The halves of the sixteen sums, rounded.
void roundPoint(const double* sums, std::uint16_t* to);

} // namespace Ondrel::BlurRows

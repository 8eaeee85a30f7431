#pragma once

#include <ondrel/ondrel_export.h>

#include <Eigen/Core>
#include <cstddef>
#include <cstdint>
#include <ondrel/pixel/scalerows_p.h>

// The vector loops of projective transforms: each handles a run of pixels, on the widest vectors that the processor
// has, with results that do not depend on which those are.

namespace Ondrel::TransformSamples
{

// Runs have at most so many pixels. Buffers have room for them, and what lies beyond the count may be overwritten.
constexpr std::size_t kRun = 128;

// Positions in the source.
struct PlaceRow {
    alignas(64) double x[kRun];
    alignas(64) double y[kRun];
};

// The pixels that samples lie between: of each one the first pixel of every row that it reads, and the position between
// the inner two, across and down.
struct Neighbours {
    const std::uint16_t* rows[4][kRun];
    alignas(64) float fx[kRun];
    alignas(64) float fy[kRun];
};

// The positions of (x, y), (x + 1, y)... under a matrix, as `projected` gives them.
ONDREL_EXPORT void project(Eigen::Matrix<double, 3, 3> const& mapping, double x, double y, std::size_t count,
                           PlaceRow& to);

// The whole pixel at or before each position, and the rest; the cubic form narrows to float first, and the last one
// rounds with halves upward. What does not fit an int, or is not a number, becomes one of its limits.
void splitLinear(const double* positions, std::size_t count, std::int32_t* whole, float* rest);
void splitCubic(const double* positions, std::size_t count, std::int32_t* whole, float* rest);
void roundNearest(const double* positions, std::size_t count, std::int32_t* whole);

// Premultiplied samples between 2 x 2 and 4 x 4 pixels.
void mixLinear(Neighbours const& neighbours, std::size_t count, ScaleRows::PixelQuad* to);
void mixCubic(Neighbours const& neighbours, std::size_t count, ScaleRows::PixelQuad* to);

} // namespace Ondrel::TransformSamples

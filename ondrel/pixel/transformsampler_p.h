#pragma once

#include <ondrel/core/image.h>
#include <ondrel/pixel/transformsamples_p.h>

namespace Ondrel
{

// Reads a source at positions anywhere, up to TransformSamples::kRun at a time; outside it is transparent black.
class PlaceSampler
{
public:
    // An image without pixels is outside everywhere. It must outlive the sampler.
    explicit PlaceSampler(Image const& source);

    // Premultiplied samples.
    void bilinear(TransformSamples::PlaceRow const& places, std::size_t count, ScaleRows::PixelQuad* to);
    void bicubic(TransformSamples::PlaceRow const& places, std::size_t count, ScaleRows::PixelQuad* to);

    // Copies whole pixels; those outside are left out.
    void copyNearest(TransformSamples::PlaceRow const& places, std::size_t count, std::uint16_t* to);

private:
    const std::uint16_t* pixelAt(std::int32_t x, std::int32_t y) const;
    template <int taps>
    void findNeighbours(std::size_t count);
    template <int taps>
    void copyNeighbours(std::size_t i);

    const std::uint16_t* m_data;
    std::int32_t m_width, m_height;
    TransformSamples::Neighbours m_neighbours;
    std::int32_t m_columns[TransformSamples::kRun];
    std::int32_t m_rows[TransformSamples::kRun];
    std::uint16_t m_edges[TransformSamples::kRun][4][16]; // neighbours of samples at the edges
};

} // namespace Ondrel

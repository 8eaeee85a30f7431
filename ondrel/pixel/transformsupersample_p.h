#pragma once

#include <ondrel/pixel/transformrows_p.h>
#include <ondrel/pixel/transformsampler_p.h>
#include <vector>

namespace Ondrel
{

// A pixel of the output, or a part of one, in the source.
struct Quadrilateral {
    Place corners[4]; // around
    Place centre;

    bool isLong() const;
    Quadrilateral quarter(int corner) const;
};

// Averages of quadrilaterals, cut into quarters down to a size that one bilinear sample stands for. The samples of many
// of them are taken together.
class Supersampler
{
public:
    explicit Supersampler(PlaceSampler& sampler);

    // The average goes to `rgba`, which must stay until finish() has returned.
    void add(Quadrilateral const& pixel, float* rgba);
    void finish();

private:
    void cut(Quadrilateral const& quadrilateral, int depth);
    void sampleAll();
    void average(float* rgba);

    PlaceSampler& m_sampler;
    std::vector<float*> m_results;
    std::vector<bool> m_isCut;    // of each quarter, in the order in which they are cut
    std::vector<Place> m_centres; // of those that are not
    std::vector<ScaleRows::PixelQuad> m_samples;
    std::size_t m_nextQuarter = 0;
    std::size_t m_nextSample = 0;
};

} // namespace Ondrel

#include <ondrel/pixel/transformsupersample_p.h>

#include <algorithm>
#include <cmath>

namespace Ondrel
{

using namespace TransformSamples;

namespace
{

constexpr int kDepth = 4; // cuts below the first one

// Samples that are gathered before they are taken; one pixel has at most as many again.
constexpr std::size_t kGathered = 1024;

Place middle(Place a, Place b)
{
    return {(a.x + b.x) * 0.5, (a.y + b.y) * 0.5};
}

} // namespace

bool Quadrilateral::isLong() const
{
    double longest = 0.0;
    for (int i = 0; i < 4; ++i) {
        const Place a = corners[i];
        const Place b = corners[(i + 1) & 3];
        // What is not a number does not count: it is the second operand.
        longest = std::max(std::max(longest, std::abs(a.x - b.x)), std::abs(a.y - b.y));
    }
    return longest > kLongestStep;
}

Quadrilateral Quadrilateral::quarter(int corner) const
{
    const Place outer = corners[corner];
    return {{outer, middle(outer, corners[(corner + 1) & 3]), centre, middle(corners[(corner + 3) & 3], outer)},
            middle(outer, centre)};
}

Supersampler::Supersampler(PlaceSampler& sampler)
    : m_sampler(sampler)
{
    m_results.reserve(kRun);
    m_isCut.reserve(4 * kGathered);
    m_centres.reserve(2 * kGathered);
    m_samples.resize(kGathered / 2);
}

void Supersampler::add(Quadrilateral const& pixel, float* rgba)
{
    cut(pixel, kDepth);
    m_results.push_back(rgba);
    if (m_centres.size() >= kGathered || m_results.size() == kRun)
        finish();
}

void Supersampler::finish()
{
    sampleAll();
    m_nextQuarter = m_nextSample = 0;
    for (float* rgba : m_results)
        average(rgba);
    m_results.clear();
    m_isCut.clear();
    m_centres.clear();
}

void Supersampler::cut(Quadrilateral const& quadrilateral, int depth)
{
    for (int i = 0; i < 4; ++i) {
        const Quadrilateral quarter = quadrilateral.quarter(i);
        const bool again = depth > 0 && quarter.isLong();
        m_isCut.push_back(again);
        if (again)
            cut(quarter, depth - 1);
        else
            m_centres.push_back(quarter.centre);
    }
}

void Supersampler::sampleAll()
{
    PlaceRow places;
    for (std::size_t first = 0; first < m_centres.size(); first += kRun) {
        const std::size_t count = std::min(kRun, m_centres.size() - first);
        for (std::size_t i = 0; i < count; ++i) {
            places.x[i] = m_centres[first + i].x;
            places.y[i] = m_centres[first + i].y;
        }
        m_sampler.bilinear(places, count, m_samples.data() + first / 4);
    }
}

// Sums in the order of the quarters; it decides about the last bit.
void Supersampler::average(float* rgba)
{
    float sum[4] = {0.0f, 0.0f, 0.0f, 0.0f};
    for (int i = 0; i < 4; ++i) {
        float part[4];
        if (m_isCut[m_nextQuarter++])
            average(part);
        else
            std::copy_n(ScaleRows::floatsOf(m_samples.data()) + 4 * m_nextSample++, 4, part);
        for (int c = 0; c < 4; ++c)
            sum[c] += part[c] * 0.25f;
    }
    std::copy_n(sum, 4, rgba);
}

} // namespace Ondrel

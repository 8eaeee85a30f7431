#include <ondrel/pixel/gaussianblurline_p.h>

#include <numeric>

namespace Ondrel
{
namespace
{

using BlurRows::kPoint;

// How far the sum of a kernel's products, or those of the folded kernel, may be from exact ones: one rounding for each
// product and each addition, of sums up to 65535 times that of the weights, which is below 1.1 (N. J. Higham, "Accuracy
// and Stability of Numerical Algorithms", 2nd edition, section 3.1). Folding rounds no more often than the sum itself.
double sumError(std::size_t taps)
{
    return 4 * (double(taps) + 8) * 0x1p-53 * 1.1 * 65535;
}

} // namespace

// A kernel longer than the line meets nothing new beyond its ends: on a repeated line the weights of the same point are
// added up; on others those beyond the ends meet the edge pixels or nothing, whatever the position.
LineBlur::FoldedKernel LineBlur::fold(GaussianKernel const& kernel, std::size_t size, GaussianEdge edge)
{
    const double* const middle = kernel.doubled.data() + kernel.reach;
    const std::size_t reach = std::size_t(kernel.reach);
    FoldedKernel folded;
    if (reach < size || edge != GaussianEdge::Repeat) {
        const std::size_t kept = std::min(reach, size - 1);
        for (std::size_t i = 0; i <= kept; ++i)
            folded.weights.push_back(middle[i] / 2);
        for (std::size_t i = kept + 1; i <= reach; ++i)
            folded.tail += middle[i] / 2;
        return folded;
    }
    std::vector<double> sums(size);
    for (std::size_t i = 0; i < kernel.doubled.size(); ++i)
        sums[i % size] += kernel.doubled[i] / 2; // the middle of the kernel is at reach % size
    for (std::size_t i = 0; i <= size / 2; ++i)
        folded.weights.push_back(sums[(reach + i) % size]);
    // The point half a line away is met on both sides.
    if (size % 2 == 0)
        folded.weights.back() /= 2;
    return folded;
}

LineBlur::LineBlur(GaussianKernel const& kernel, std::size_t size, GaussianEdge edge)
    : m_kernel(kernel)
    , m_size(size)
    , m_edge(edge)
{
    const FoldedKernel folded = fold(kernel, size, edge);
    m_reach = folded.weights.size() - 1;
    if (edge != GaussianEdge::Blank)
        m_tail = folded.tail;
    m_filter = std::make_unique<SpectralFilter>(folded.weights, size, sumError(kernel.doubled.size()));
}

LineBlur::Line::Line(LineBlur const& blur)
    : m_blur(blur)
    , m_extended(blur.m_size + 2 * blur.m_reach + blur.m_filter->size())
    , m_result(blur.m_size)
    , m_workspace(std::make_shared<SpectralFilter::Workspace>(blur.m_filter->workspace(blur.m_size)))
{
}

void LineBlur::Line::extend()
{
    const std::int64_t size = std::int64_t(m_blur.m_size);
    SamplePoint* const line = points();
    const auto put = [&](std::int64_t position) {
        const std::int64_t from = edgePosition(position, size, m_blur.m_edge);
        line[position] = from < 0 ? SamplePoint{} : line[from];
    };
    for (std::int64_t i = 1; i <= std::int64_t(m_blur.m_reach); ++i) {
        put(-i);
        put(size - 1 + i);
    }
}

const SamplePoint* LineBlur::Line::blur()
{
    extend();
    double added[kPoint];
    const SamplePoint& first = points()[0];
    const SamplePoint& last = points()[m_blur.m_size - 1];
    for (std::size_t i = 0; i < kPoint; ++i)
        added[i] = m_blur.m_tail * (double(first.samples[i]) + double(last.samples[i]));
    if (m_blur.m_filter->filter(m_extended[0].samples, m_blur.m_size, added, *m_workspace, m_result[0].samples))
        sumDoubtful();
    return m_result.data();
}

void LineBlur::Line::sumDoubtful()
{
    for (std::size_t i = 0; i < m_blur.m_size; ++i) {
        if (!m_workspace->doubtful[i])
            continue;
        m_workspace->doubtful[i] = 0;
        m_blur.sumPoint(points(), i, m_result[i]);
    }
}

void LineBlur::sumPoint(const SamplePoint* points, std::size_t position, SamplePoint& to) const
{
    const std::int64_t size = std::int64_t(m_size);
    alignas(64) double sums[kPoint] = {};
    const std::int64_t first = std::int64_t(position) - m_kernel.reach;
    const std::int64_t end = std::int64_t(position) + m_kernel.reach + 1;
    // Runs of taps that meet points side by side or one and the same.
    for (std::int64_t at = first; at < end;) {
        const std::int64_t from = edgePosition(at, size, m_edge);
        std::int64_t run = end - at;
        std::ptrdiff_t step = 0;
        if (at < 0 && m_edge != GaussianEdge::Repeat) {
            run = std::min(run, -at);
        } else if (from >= 0 && (at < size || m_edge == GaussianEdge::Repeat) && size > 1) {
            run = std::min(run, size - from);
            step = kPoint;
        } else if (at < size && m_edge != GaussianEdge::Repeat) {
            run = std::min(run, size - at);
        }
        if (from >= 0)
            BlurRows::accumulatePoint(points[from].samples, step,
                                      {m_kernel.doubled.data() + (at - first), std::size_t(run)}, sums);
        at += run;
    }
    BlurRows::roundPoint(sums, to.samples);
}

} // namespace Ondrel

#pragma once

#include <memory>
#include <ondrel/pixel/gaussianblurpass_p.h>
#include <ondrel/pixel/gaussianblurspectrum_p.h>

namespace Ondrel
{

// Blurs lines of `size` points with a kernel of any length. Made once for all lines of a picture.
class LineBlur
{
public:
    LineBlur(GaussianKernel const& kernel, std::size_t size, GaussianEdge edge);

    // What a thread needs to blur lines, one at a time. Copies share the workspace, so they belong to the same thread.
    class Line
    {
    public:
        explicit Line(LineBlur const& blur);

        // Where the points of the line are put; what lies outside is added by blur().
        SamplePoint* points() { return m_extended.data() + m_blur.m_reach; }

        // The result, until the next call.
        const SamplePoint* blur();

    private:
        void extend();
        void sumDoubtful();

        LineBlur const& m_blur;
        std::vector<SamplePoint> m_extended, m_result;
        std::shared_ptr<SpectralFilter::Workspace> m_workspace;
    };

private:
    struct FoldedKernel {
        std::vector<double> weights; // of the positions 0 to reach
        double tail = 0;             // sum of the weights beyond, on one side
    };
    static FoldedKernel fold(GaussianKernel const& kernel, std::size_t size, GaussianEdge edge);

    // The sums of the sixteen samples of a point, weight by weight.
    void sumPoint(const SamplePoint* points, std::size_t position, SamplePoint& to) const;

    GaussianKernel const& m_kernel;
    std::size_t m_size;
    GaussianEdge m_edge;
    double m_tail = 0;
    std::size_t m_reach = 0; // of the folded kernel
    std::unique_ptr<SpectralFilter> m_filter;
};

} // namespace Ondrel

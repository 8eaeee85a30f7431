#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Ondrel
{

// Convolution of lines of points with a long symmetric kernel, by way of the discrete Fourier transform. The results
// are rounded like the sums of the contract of GaussianBlur, except for those that lie so near the middle of two whole
// numbers that the sum itself must decide: these are reported.
//
// A line is cut into blocks that overlap by the length of the kernel, each as long as a transform (overlap-save: A. V.
// Oppenheim, R. W. Schafer, "Discrete-Time Signal Processing", section on block convolution). Two samples are one
// complex number: as the kernel is symmetric about 0, its transform is real and keeps both apart.
class SpectralFilter
{
public:
    // kernel: the weights at the positions 0 to reach. `tolerance` is how far the rounded number may be from the middle
    // for other reasons than errors of the transform.
    SpectralFilter(std::vector<double> const& kernel, std::size_t lineLength, double tolerance);

    // Points that filter() may read beyond those that it needs; their values do not matter.
    std::size_t size() const { return m_size; }
    std::size_t reach() const { return m_reach; }

    struct Workspace {
        std::vector<double> numbers;
        std::vector<unsigned char> doubtful; // one byte a point, 1 for a point with a sample that is not certain
    };
    Workspace workspace(std::size_t lineLength) const;

    // line: points from -reach on, lineLength + 2 reach of them and size() more. added: sixteen numbers that are part
    // of every sum. Marks what is doubtful and says whether anything is.
    bool filter(const std::uint16_t* line, std::size_t lineLength, const double* added, Workspace& workspace,
                std::uint16_t* to) const;

private:
    // Twice the length of the longest kernel, so that blocks never are all overlap.
    static constexpr std::size_t kGreatestSize = std::size_t(1) << 21;

    void buildSpectrum(std::vector<double> const& kernel);
    void buildTwiddles();

    std::size_t m_reach;
    std::size_t m_size;
    double m_tolerance;
    std::vector<double> m_spectrum; // in the order of the transform, divided by its size
    std::vector<double> m_twiddles;
};

} // namespace Ondrel

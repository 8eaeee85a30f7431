#include <ondrel/pixel/gaussianblurspectrum_p.h>

#include <cmath>
#include <complex>
#include <numeric>
#include <ondrel/pixel/gaussianblurrows_p.h>
#include <ondrel/pixel/gaussianblurtransform_p.h>
#include <unsupported/Eigen/FFT>

namespace Ondrel
{
namespace
{

using BlurRows::kPoint;

constexpr double kUnitRoundoff = 0x1p-53;
constexpr double kPi = 3.14159265358979323846;

// The size of transform that costs least for a line, by the number of operations and, from some size on, by what the
// caches lose.
std::size_t bestSize(std::size_t reach, std::size_t lineLength, std::size_t greatest)
{
    double leastCost = std::numeric_limits<double>::infinity();
    std::size_t best = 16;
    for (std::size_t size = 16; size <= greatest; size *= 2) {
        if (size <= 2 * reach)
            continue;
        const double blocks = std::ceil(double(lineLength) / double(size - 2 * reach));
        const double perNumber = std::log2(double(size)) + 3 + (size > 1024 ? 3 : 0) + (size > 4096 ? 3 : 0);
        const double cost = blocks * double(size) * perNumber;
        if (cost < leastCost) {
            leastCost = cost;
            best = size;
        }
    }
    return best;
}

// Which number of the transform stands at a place of the result.
std::size_t frequencyAt(std::size_t place, std::size_t size)
{
    if (size <= 2)
        return place;
    const std::size_t quarter = size / 4;
    return place / quarter + 4 * frequencyAt(place % quarter, quarter);
}

// How far a result of the transforms may be from the exact sum.
//
// Let u be the unit roundoff. A step of radix 4 multiplies by twiddle factors, each wrong by no more than 3 u, in 4
// products and 2 sums for each number, and adds twice; in the 2-norm it adds a relative error below 8 u, that is 4 u
// for each factor of 2 (N. J. Higham, "Accuracy and Stability of Numerical Algorithms", 2nd edition, section 24.1).
// With L = log2(size), a transform forth and back adds less than 8 L u, the multiplication in between u. Factors of the
// spectrum are at most the sum W of the weights, so what goes through them is not more than W |x| in the 2-norm, where
// |x| <= sqrt(2 size) 65535. The spectrum itself is wrong by at most 4 L u sqrt(size) |w|, |w| being the 2-norm of the
// weights, which any number that passes gets as a factor. No single result can be wrong by more than the 2-norm of all.
double transformError(std::size_t size, double weightSum, double weightNorm)
{
    const double levels = std::log2(double(size));
    const double norm = std::sqrt(2 * double(size)) * 65535;
    const double steps = (8 * levels + 4) * weightSum;
    const double spectrum = 4 * levels * std::sqrt(double(size)) * weightNorm;
    return (steps + spectrum) * kUnitRoundoff * norm;
}

} // namespace

SpectralFilter::SpectralFilter(std::vector<double> const& kernel, std::size_t lineLength, double tolerance)
    : m_reach(kernel.size() - 1)
    , m_size(bestSize(m_reach, lineLength, kGreatestSize))
{
    double sum = kernel[0], squares = kernel[0] * kernel[0];
    for (std::size_t i = 1; i < kernel.size(); ++i) {
        sum += 2 * kernel[i];
        squares += 2 * kernel[i] * kernel[i];
    }
    // The bound holds; a factor over it costs a few more sums and forgives what nobody thought of.
    m_tolerance = tolerance + 4 * transformError(m_size, sum, std::sqrt(squares));
    buildSpectrum(kernel);
    buildTwiddles();
}

void SpectralFilter::buildSpectrum(std::vector<double> const& kernel)
{
    std::vector<std::complex<double>> weights(m_size), numbers;
    weights[0] = kernel[0];
    for (std::size_t i = 1; i < kernel.size(); ++i)
        weights[i] = weights[m_size - i] = kernel[i];
    Eigen::FFT<double>().fwd(numbers, weights);
    m_spectrum.resize(m_size);
    for (std::size_t i = 0; i < m_size; ++i)
        m_spectrum[i] = numbers[frequencyAt(i, m_size)].real() / double(m_size);
}

void SpectralFilter::buildTwiddles()
{
    for (std::size_t size = m_size; size > 4; size /= 4)
        for (std::size_t j = 0; j < size / 4; ++j)
            for (std::size_t power = 1; power <= 3; ++power) {
                // Without its quarter turns an angle is small, and its rounding does not show.
                const std::size_t turns = j * power * 4 / size;
                const std::size_t beyondTurns = j * power - turns * size / 4;
                const double rest = 2 * kPi * double(beyondTurns) / double(size);
                const std::complex<double> w(std::cos(rest), -std::sin(rest));
                const std::complex<double> quarters[] = {w, {w.imag(), -w.real()}, -w, {-w.imag(), w.real()}};
                m_twiddles.push_back(quarters[turns % 4].real());
                m_twiddles.push_back(quarters[turns % 4].imag());
            }
}

SpectralFilter::Workspace SpectralFilter::workspace(std::size_t lineLength) const
{
    return {std::vector<double>(BlurTransform::workspaceSize(m_size)), std::vector<unsigned char>(lineLength)};
}

bool SpectralFilter::filter(const std::uint16_t* line, std::size_t lineLength, const double* added,
                            Workspace& workspace, std::uint16_t* to) const
{
    const BlurTransform::Transform transform{m_size, m_twiddles.data(), m_spectrum.data()};
    const std::size_t wanted = m_size - 2 * m_reach;
    bool doubtful = false;
    for (std::size_t first = 0; first < lineLength; first += wanted) {
        const std::size_t count = std::min(wanted, lineLength - first);
        const BlurTransform::Block block{line + first * kPoint,
                                         added,
                                         m_tolerance,
                                         m_reach,
                                         m_reach + count,
                                         to + first * kPoint,
                                         workspace.doubtful.data() + first};
        doubtful |= BlurTransform::filterBlock(transform, block, workspace.numbers.data());
    }
    return doubtful;
}

} // namespace Ondrel

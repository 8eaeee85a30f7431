#include <ondrel/pixel/gaussianblurtransform_p.h>

#include <ondrel/pixel/gaussianblurrows_p.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "ondrel/pixel/gaussianblurtransform.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Ondrel::BlurTransform
{
namespace HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

using Doubles = hn::ScalableTag<double>;
using Ints = hn::Rebind<std::int32_t, Doubles>;
using Samples = hn::Rebind<std::uint16_t, Doubles>;
using Vector = hn::Vec<Doubles>;
constexpr std::size_t kLanes = HWY_LANES(double);
constexpr std::size_t kNumber = 2 * kLanes; // doubles in a vector of complex numbers: real parts, then imaginary parts

// kLanes complex numbers. Each stands for two samples of a point.
struct Numbers {
    Vector re, im;
};

HWY_INLINE Numbers load(const double* from)
{
    return {hn::LoadU(Doubles(), from), hn::LoadU(Doubles(), from + kLanes)};
}
HWY_INLINE void store(Numbers v, double* to)
{
    hn::StoreU(v.re, Doubles(), to);
    hn::StoreU(v.im, Doubles(), to + kLanes);
}
HWY_INLINE Numbers add(Numbers a, Numbers b)
{
    return {hn::Add(a.re, b.re), hn::Add(a.im, b.im)};
}
HWY_INLINE Numbers subtract(Numbers a, Numbers b)
{
    return {hn::Sub(a.re, b.re), hn::Sub(a.im, b.im)};
}
// a + i b and a - i b
HWY_INLINE Numbers addTurned(Numbers a, Numbers b)
{
    return {hn::Sub(a.re, b.im), hn::Add(a.im, b.re)};
}
HWY_INLINE Numbers subtractTurned(Numbers a, Numbers b)
{
    return {hn::Add(a.re, b.im), hn::Sub(a.im, b.re)};
}
HWY_INLINE Numbers multiply(Numbers a, const double* w)
{
    const Vector re = hn::Set(Doubles(), w[0]), im = hn::Set(Doubles(), w[1]);
    return {hn::Sub(hn::Mul(a.re, re), hn::Mul(a.im, im)), hn::Add(hn::Mul(a.im, re), hn::Mul(a.re, im))};
}
HWY_INLINE Numbers multiplyConjugated(Numbers a, const double* w)
{
    const Vector re = hn::Set(Doubles(), w[0]), im = hn::Set(Doubles(), w[1]);
    return {hn::Add(hn::Mul(a.re, re), hn::Mul(a.im, im)), hn::Sub(hn::Mul(a.im, re), hn::Mul(a.re, im))};
}
HWY_INLINE Numbers scale(Numbers a, double factor)
{
    const Vector f = hn::Set(Doubles(), factor);
    return {hn::Mul(a.re, f), hn::Mul(a.im, f)};
}

struct Quad {
    Numbers a, b, c, d;
};

// The transform of four numbers.
HWY_INLINE Quad forward(Quad q)
{
    const Numbers s0 = add(q.a, q.c), s1 = subtract(q.a, q.c);
    const Numbers s2 = add(q.b, q.d), s3 = subtract(q.b, q.d);
    return {add(s0, s2), subtractTurned(s1, s3), subtract(s0, s2), addTurned(s1, s3)};
}

// And back, four times as large.
HWY_INLINE Quad backward(Quad q)
{
    const Numbers s0 = add(q.a, q.c), s1 = subtract(q.a, q.c);
    const Numbers s2 = add(q.b, q.d), s3 = subtract(q.b, q.d);
    return {add(s0, s2), addTurned(s1, s3), subtract(s0, s2), subtractTurned(s1, s3)};
}

HWY_INLINE Quad twiddled(Quad q, const double* w)
{
    return {q.a, multiply(q.b, w), multiply(q.c, w + 2), multiply(q.d, w + 4)};
}

HWY_INLINE Quad untwiddled(Quad q, const double* w)
{
    return {q.a, multiplyConjugated(q.b, w), multiplyConjugated(q.c, w + 2), multiplyConjugated(q.d, w + 4)};
}

HWY_INLINE Quad loadQuad(const double* from, std::size_t step)
{
    return {load(from), load(from + step), load(from + 2 * step), load(from + 3 * step)};
}

HWY_INLINE void storeQuad(Quad q, double* to, std::size_t step)
{
    store(q.a, to);
    store(q.b, to + step);
    store(q.c, to + 2 * step);
    store(q.d, to + 3 * step);
}

HWY_INLINE void filterFour(double* numbers, const double* spectrum)
{
    Quad q = forward(loadQuad(numbers, kNumber));
    q = {scale(q.a, spectrum[0]), scale(q.b, spectrum[1]), scale(q.c, spectrum[2]), scale(q.d, spectrum[3])};
    storeQuad(backward(q), numbers, kNumber);
}

HWY_INLINE void filterTwo(double* numbers, const double* spectrum)
{
    const Numbers a = load(numbers), b = load(numbers + kNumber);
    const Numbers sum = scale(add(a, b), spectrum[0]), difference = scale(subtract(a, b), spectrum[1]);
    store(add(sum, difference), numbers);
    store(subtract(sum, difference), numbers + kNumber);
}

// Transforms, multiplies and transforms back. A quarter is finished before the next is begun, so that all but the
// greatest steps stay in the first-level cache.
void filterNumbers(double* numbers, std::size_t size, const double* twiddles, const double* spectrum)
{
    if (size == 4)
        return filterFour(numbers, spectrum);
    if (size == 2)
        return filterTwo(numbers, spectrum);
    const std::size_t quarter = size / 4, step = quarter * kNumber;
    for (std::size_t j = 0; j < quarter; ++j)
        storeQuad(twiddled(forward(loadQuad(numbers + j * kNumber, step)), twiddles + j * 6), numbers + j * kNumber,
                  step);
    for (std::size_t i = 0; i < 4; ++i)
        filterNumbers(numbers + i * step, quarter, twiddles + quarter * 6, spectrum + i * quarter);
    for (std::size_t j = 0; j < quarter; ++j)
        storeQuad(backward(untwiddled(loadQuad(numbers + j * kNumber, step), twiddles + j * 6)), numbers + j * kNumber,
                  step);
}

HWY_INLINE Vector loadSamples(const std::uint16_t* from)
{
    return hn::PromoteTo(Doubles(), hn::PromoteTo(Ints(), hn::LoadU(Samples(), from)));
}

// What becomes of the numbers of one part of the points, kNumber samples from `offset` on.
class BlockPart
{
public:
    HWY_INLINE BlockPart(Block const& block, std::size_t offset)
        : m_points(block.points + offset)
        , m_to(block.to + offset)
        , m_doubtful(block.doubtful)
        , m_firstValid(block.firstValid)
        , m_validCount(block.validEnd - block.firstValid)
        , m_added{hn::LoadU(Doubles(), block.added + offset), hn::LoadU(Doubles(), block.added + offset + kLanes)}
        , m_certain(hn::Set(Doubles(), 0.5 - block.tolerance))
    {
        const Vector half = hn::Set(Doubles(), 0.5);
        m_added = {hn::Add(m_added.re, half), hn::Add(m_added.im, half)};
    }

    HWY_INLINE Numbers at(std::size_t point) const
    {
        const std::uint16_t* const from = m_points + point * BlurRows::kPoint;
        return {loadSamples(from), loadSamples(from + kLanes)};
    }

    // Rounds a result and returns whether it is doubtful.
    HWY_INLINE bool put(Numbers v, std::size_t point) const
    {
        const std::size_t index = point - m_firstValid;
        if (index >= m_validCount)
            return false;
        v = add(v, m_added);
        const Vector re = hn::Floor(v.re), im = hn::Floor(v.im);
        std::uint16_t* const to = m_to + index * BlurRows::kPoint;
        hn::StoreU(hn::DemoteTo(Samples(), hn::DemoteTo(Ints(), re)), Samples(), to);
        hn::StoreU(hn::DemoteTo(Samples(), hn::DemoteTo(Ints(), im)), Samples(), to + kLanes);
        const Vector half = hn::Set(Doubles(), 0.5);
        const Vector off =
            hn::Max(hn::Abs(hn::Sub(hn::Sub(v.re, re), half)), hn::Abs(hn::Sub(hn::Sub(v.im, im), half)));
        if (HWY_LIKELY(hn::AllTrue(Doubles(), hn::Lt(off, m_certain))))
            return false;
        m_doubtful[index] = 1;
        return true;
    }

private:
    const std::uint16_t* m_points;
    std::uint16_t* m_to;
    unsigned char* m_doubtful;
    std::size_t m_firstValid, m_validCount;
    Numbers m_added; // and one half, so that rounding is truncation
    Vector m_certain;
};

bool FilterBlock(Transform const& transform, Block const& block, double* numbers)
{
    const std::size_t quarter = transform.size / 4, step = quarter * kNumber;
    bool doubtful = false;
    for (std::size_t offset = 0; offset < BlurRows::kPoint; offset += kNumber) {
        const BlockPart part(block, offset);
        for (std::size_t j = 0; j < quarter; ++j) {
            const Quad q{part.at(j), part.at(j + quarter), part.at(j + 2 * quarter), part.at(j + 3 * quarter)};
            storeQuad(twiddled(forward(q), transform.twiddles + j * 6), numbers + j * kNumber, step);
        }
        for (std::size_t i = 0; i < 4; ++i)
            filterNumbers(numbers + i * step, quarter, transform.twiddles + quarter * 6,
                          transform.spectrum + i * quarter);
        for (std::size_t j = 0; j < quarter; ++j) {
            const Quad q = backward(untwiddled(loadQuad(numbers + j * kNumber, step), transform.twiddles + j * 6));
            doubtful |= part.put(q.a, j);
            doubtful |= part.put(q.b, j + quarter);
            doubtful |= part.put(q.c, j + 2 * quarter);
            doubtful |= part.put(q.d, j + 3 * quarter);
        }
    }
    return doubtful;
}

std::size_t WorkspaceSize(std::size_t size)
{
    return size * kNumber;
}

} // namespace HWY_NAMESPACE
} // namespace Ondrel::BlurTransform
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Ondrel::BlurTransform
{

HWY_EXPORT(FilterBlock);
HWY_EXPORT(WorkspaceSize);

bool filterBlock(Transform const& transform, Block const& block, double* workspace)
{
    return HWY_DYNAMIC_DISPATCH(FilterBlock)(transform, block, workspace);
}

std::size_t workspaceSize(std::size_t size)
{
    return HWY_DYNAMIC_DISPATCH(WorkspaceSize)(size);
}

} // namespace Ondrel::BlurTransform
#endif

#include <ondrel/pixel/paintersweep_p.h>

#include <algorithm>
#include <cmath>
#include <emmintrin.h>
#include <limits>

namespace OndrelBrush
{

Sweep::Sweep(QPoint from, QPoint to, unsigned short radius, const float* mask)
    : m_fromX(float(from.x()))
    , m_fromY(float(from.y()))
    , m_toX(float(to.x()))
    , m_toY(float(to.y()))
    , m_dx(m_toX - m_fromX)
    , m_dy(m_toY - m_fromY)
    , m_lengthSquared(m_dx * m_dx + m_dy * m_dy)
    , m_radius(float(radius))
    , m_mask(mask)
    , m_side(2 * std::size_t(radius) + 1)
{
    // A point lies at its own start, whatever it is divided by.
    if (!(m_lengthSquared > 0.0f))
        m_lengthSquared = 1.0f;
}

int Sweep::firstColumn(int y, int left) const
{
    // Up to here the floats below are good to a small part of a pixel.
    constexpr float largest = 1048576.0f;
    if (!(std::max({std::abs(m_fromX), std::abs(m_fromY), std::abs(m_toX), std::abs(m_toY)}) < largest))
        return left;
    // Looking at fewer pixels must not change the picture: two of them are kept for rounding.
    const double reach = double(m_radius) + 2.0;
    double lowest = std::min(double(m_fromX), double(m_toX));
    if (m_dy < 0.0f || m_dy > 0.0f) {
        // Only the part of the segment that is this close to the row counts.
        const double top = std::min(double(m_fromY), double(m_toY));
        const double bottom = std::max(double(m_fromY), double(m_toY));
        const auto columnAt = [&](double row) {
            return double(m_fromX) + (std::clamp(row, top, bottom) - double(m_fromY)) * (double(m_dx) / double(m_dy));
        };
        lowest = std::min(columnAt(double(y) - reach), columnAt(double(y) + reach));
    }
    return int(std::clamp(lowest - reach, double(left), double(std::numeric_limits<int>::max())));
}

// Where in the mask each pixel lies, by the nearest point of the segment. Writes up to three places more than asked
// for.
void Sweep::findPlaces(int x, int count, int y, Places& places) const
{
    const float py = float(y);
    const __m128 one = _mm_set1_ps(1.0f);
    const __m128 fromX = _mm_set1_ps(m_fromX);
    const __m128 fromY = _mm_set1_ps(m_fromY);
    const __m128 dx = _mm_set1_ps(m_dx);
    const __m128 dy = _mm_set1_ps(m_dy);
    const __m128 alongY = _mm_set1_ps((py - m_fromY) * m_dy);
    const auto place = [&](__m128 k, __m128 from, __m128 distance, float to, __m128 pixel) {
        // The end itself, where from + 1 * distance might be rounded.
        const __m128 before = _mm_cmplt_ps(k, one);
        const __m128 inside = _mm_add_ps(from, _mm_mul_ps(k, distance));
        const __m128 nearest = _mm_or_ps(_mm_and_ps(before, inside), _mm_andnot_ps(before, _mm_set1_ps(to)));
        return _mm_sub_ps(_mm_add_ps(_mm_set1_ps(m_radius), nearest), pixel);
    };
    for (int i = 0; i < count; i += 4) {
        const __m128 px = _mm_cvtepi32_ps(_mm_add_epi32(_mm_set1_epi32(x + i), _mm_setr_epi32(0, 1, 2, 3)));
        const __m128 along = _mm_add_ps(_mm_mul_ps(_mm_sub_ps(px, fromX), dx), alongY);
        __m128 k = _mm_div_ps(along, _mm_set1_ps(m_lengthSquared));
        k = _mm_min_ps(_mm_max_ps(k, _mm_setzero_ps()), one);
        _mm_storeu_ps(places.x + i, place(k, fromX, dx, m_toX, px));
        _mm_storeu_ps(places.y + i, place(k, fromY, dy, m_toY, _mm_set1_ps(py)));
    }
}

bool Sweep::holds(Places const& places, int i) const
{
    const float side = 2.0f * m_radius;
    return places.x[i] >= 0.0f && places.x[i] < side && places.y[i] >= 0.0f && places.y[i] < side;
}

// Mix of the four weights around a place inside the mask.
float Sweep::weightBetween(float x, float y) const
{
    const int column = int(x);
    const int row = int(y);
    const float fx = x - float(column);
    const float fy = y - float(row);
    const float* weights = m_mask + std::size_t(row) * m_side + std::size_t(column);
    const float upper = weights[0] * (1.0f - fx) + weights[1] * fx;
    const float lower = weights[m_side] * (1.0f - fx) + weights[m_side + 1] * fx;
    return upper * (1.0f - fy) + lower * fy;
}

void Sweep::findWeights(int x, int count, int y, bool goesOn, WeightRun& run) const
{
    Places places;
    findPlaces(x, count, y, places);
    run.first = 0;
    while (!goesOn && run.first < count && !holds(places, run.first))
        ++run.first;
    run.end = run.first;
    for (; run.end < count && holds(places, run.end); ++run.end)
        run.weights[run.end] = weightBetween(places.x[run.end], places.y[run.end]);
}

} // namespace OndrelBrush

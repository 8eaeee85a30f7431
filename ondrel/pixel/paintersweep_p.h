#pragma once

#include <QPoint>
#include <cstddef>

namespace OndrelBrush
{

// Weights of neighbouring pixels of a row: those from `first` up to `end` are inside the mask.
struct WeightRun {
    static constexpr int largest = 256;
    int first;
    int end;
    float weights[largest];
};

// A segment that a brush is swept along. The mask has (2 * radius + 1)^2 weights and must outlive the sweep.
class Sweep
{
public:
    Sweep(QPoint from, QPoint to, unsigned short radius, const float* mask);

    // A column, not left of `left`, before which the brush certainly does not reach row y.
    int firstColumn(int y, int left) const;

    // Looks at `count` pixels, at most WeightRun::largest, from (x, y) on, and gives the weights of the first of them
    // that lie inside without a gap. With `goesOn`, the first pixel must be inside, or there are none.
    void findWeights(int x, int count, int y, bool goesOn, WeightRun& run) const;

private:
    struct Places {
        float x[WeightRun::largest];
        float y[WeightRun::largest];
    };

    void findPlaces(int x, int count, int y, Places& places) const;
    bool holds(Places const& places, int i) const;
    float weightBetween(float x, float y) const;

    float m_fromX, m_fromY, m_toX, m_toY, m_dx, m_dy, m_lengthSquared, m_radius;
    const float* m_mask;
    std::size_t m_side;
};

} // namespace OndrelBrush

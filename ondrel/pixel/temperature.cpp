#include <ondrel/pixel/temperature.h>
#include <ondrel/pixel/temperaturetable_p.h>

#include <algorithm>
#include <cmath>

using Ondrel::TemperatureRow;
using Ondrel::TemperatureTable;

namespace
{

// The row nearest to `target` so far.
struct Nearest {
    float difference = 10000.0f;
    int row = -1;

    void offer(float candidate, int candidateRow)
    {
        if (candidate < difference) {
            difference = candidate;
            row = candidateRow;
        }
    }
};

// Offers the nearest row of [first, last), over which the ratios run in one direction. Rounding makes the differences
// of several rows equal, so each side is searched for the lowest row that is as near as the nearest one.
template <typename IsBefore>
void offerRun(const float* ratios, int first, int last, float target, IsBefore isBefore, Nearest& nearest)
{
    const auto difference = [target](float ratio) { return std::abs(target - ratio); };
    const float* const begin = ratios + first;
    const float* const end = ratios + last;
    const float* const split = std::partition_point(begin, end, isBefore);
    if (split != begin) {
        const float smallest = difference(split[-1]);
        const float* const lowest =
            std::partition_point(begin, split, [&](float ratio) { return difference(ratio) > smallest; });
        nearest.offer(smallest, static_cast<int>(lowest - ratios));
    }
    if (split != end)
        nearest.offer(difference(*split), static_cast<int>(split - ratios));
}

int tintOf(float product)
{
    if (!(product > 100.0f)) // also not a number
        return 100;
    return static_cast<int>(std::min(product, 2000.0f));
}

} // namespace

void TemperatureToRGB(double kelvin, float& r, float& g, float& b)
{
    int row = 0;
    if (kelvin > TemperatureTable::kHighest)
        row = TemperatureTable::kRows - 1;
    else if (kelvin > TemperatureTable::kLowest)
        row = static_cast<int>(kelvin - TemperatureTable::kLowest);
    const TemperatureRow& colour = TemperatureTable::get().rows()[row];
    r = colour.red;
    g = colour.green;
    b = colour.blue;
}

void TemperatureToRGBWB(float const* daylight, float kelvin, float tint, float& r, float& g, float& b)
{
    TemperatureToRGB(static_cast<double>(kelvin), r, g, b);
    g = g / (tint / 1000.0f);
    r = r == 0.0f ? 0.0f : daylight[0] / r;
    g = g == 0.0f ? 0.0f : daylight[1] / g;
    b = b == 0.0f ? 0.0f : daylight[2] / b;
    if (g == 0.0f) {
        r = g = b = 0.0f;
        return;
    }
    r = r / g;
    b = b / g;
    g = 1.0f;
}

void RGBToTemperature(float r, float g, float b, int& kelvin, int& tint)
{
    const TemperatureTable& table = TemperatureTable::get();
    const float target = b / r;
    Nearest nearest;
    // From red heat upwards the share of blue first falls, then rises; the lower rows come first, as they win a tie.
    offerRun(
        table.blueToRed(), 0, table.turningRow(), target, [target](float ratio) { return ratio > target; }, nearest);
    offerRun(
        table.blueToRed(), table.turningRow(), TemperatureTable::kRows, target,
        [target](float ratio) { return ratio < target; }, nearest);
    if (nearest.row < 0) {
        kelvin = 0;
        tint = 100;
        return;
    }
    const TemperatureRow& row = table.rows()[nearest.row];
    kelvin = TemperatureTable::kLowest + nearest.row;
    tint = tintOf((row.green / row.red) / (g / r) * 1000.0f);
}

#include "temperature_reference.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace OndrelReference
{
namespace
{

using Row = std::array<float, 3>;

Row daylight(double t)
{
    const double x = t <= 7000.0 ? -4.6070e9 / (t * t * t) + 2.9678e6 / (t * t) + 0.09911e3 / t + 0.244063
                                 : -2.0064e9 / (t * t * t) + 1.9018e6 / (t * t) + 0.24748e3 / t + 0.237040;
    const double y = -3.0 * x * x + 2.87 * x - 0.275;
    const double tristimulus[3] = {x / y, 1.0, (1.0 - x - y) / y};
    const double toLinear[3][3] = {
        {3.2404542, -1.5371385, -0.4985314}, {-0.9692660, 1.8760108, 0.0415560}, {0.0556434, -0.2040259, 1.0572252}};
    double rgb[3];
    for (int c = 0; c < 3; ++c)
        rgb[c] = toLinear[c][0] * tristimulus[0] + toLinear[c][1] * tristimulus[1] + toLinear[c][2] * tristimulus[2];
    const double largest = *std::max_element(rgb, rgb + 3);
    return {float(rgb[0] / largest), float(rgb[1] / largest), float(rgb[2] / largest)};
}

std::vector<Row> makeTable()
{
    std::vector<Row> table;
    for (int kelvin = 1667; kelvin <= 25000; ++kelvin)
        table.push_back(daylight(kelvin));
    table[1667 - 1667] = {1.0f, 0.695487f, 0.387081f};
    table[2000 - 1667] = {1.0f, 0.415198f, 0.0997809f};
    table[4000 - 1667] = {1.0f, 0.674368f, 0.357304f};
    table[5000 - 1667] = {1.0f, 0.830093f, 0.613194f};
    table[6500 - 1667] = {0.999355f, 1.0f, 0.998494f};
    table[10000 - 1667] = {0.58734f, 0.720797f, 1.0f};
    table[25000 - 1667] = {0.352199f, 0.52803f, 1.0f};
    return table;
}

} // namespace

const std::vector<Row>& temperatureTable()
{
    static const std::vector<Row> table = makeTable();
    return table;
}

void temperatureToRGB(double kelvin, float& r, float& g, float& b)
{
    Row row = temperatureTable().front();
    if (kelvin > 25000.0)
        row = temperatureTable().back();
    else if (kelvin > 1667.0)
        row = temperatureTable()[std::size_t(kelvin - 1667.0)];
    r = row[0];
    g = row[1];
    b = row[2];
}

void temperatureToRGBWB(const float* daylight, float kelvin, float tint, float& r, float& g, float& b)
{
    temperatureToRGB(double(kelvin), r, g, b);
    g = g / (tint / 1000.0f);
    r = r == 0.0f ? 0.0f : daylight[0] / r;
    g = g == 0.0f ? 0.0f : daylight[1] / g;
    b = b == 0.0f ? 0.0f : daylight[2] / b;
    if (g == 0.0f) {
        r = b = 0.0f;
        return;
    }
    r = r / g;
    b = b / g;
    g = 1.0f;
}

void rgbToTemperature(float r, float g, float b, int& kelvin, int& tint)
{
    const float target = b / r;
    float best = 10000.0f, tr = 0.0f, tg = 0.0f;
    kelvin = 0;
    for (int k = 1667; k <= 25000; ++k) {
        const Row& row = temperatureTable()[std::size_t(k - 1667)];
        const float difference = std::fabs(target - row[2] / row[0]);
        if (difference < best) {
            best = difference;
            tr = row[0];
            tg = row[1];
            kelvin = k;
        }
    }
    const float ratio = (tg / tr) / (g / r) * 1000.0f;
    tint = ratio > 100.0f ? int(std::min(ratio, 2000.0f)) : 100;
}

} // namespace OndrelReference

#include <ondrel/pixel/temperaturetable_p.h>

#include <algorithm>
#include <iterator>

namespace Ondrel
{
namespace
{

// The daylight locus in CIE xy, used down to 1667 K, through XYZ to linear sRGB.
TemperatureRow colourAt(double kelvin)
{
    const double t = kelvin;
    const double x = t <= 7000.0 ? -4.6070e9 / (t * t * t) + 2.9678e6 / (t * t) + 0.09911e3 / t + 0.244063
                                 : -2.0064e9 / (t * t * t) + 1.9018e6 / (t * t) + 0.24748e3 / t + 0.237040;
    const double y = -3.0 * x * x + 2.87 * x - 0.275;
    const double X = x / y;
    const double Z = (1.0 - x - y) / y;
    const double red = 3.2404542 * X - 1.5371385 - 0.4985314 * Z;
    const double green = -0.9692660 * X + 1.8760108 + 0.0415560 * Z;
    const double blue = 0.0556434 * X - 0.2040259 + 1.0572252 * Z;
    const double largest = std::max({red, green, blue});
    return {static_cast<float>(red / largest), static_cast<float>(green / largest), static_cast<float>(blue / largest)};
}

// Rows with published values, to the digit; the formula agrees to six places.
struct PublishedRow {
    int kelvin;
    TemperatureRow colour;
};
constexpr PublishedRow kPublished[] = {
    {1667, {1.0f, 0.695487f, 0.387081f}}, {2000, {1.0f, 0.415198f, 0.0997809f}}, {4000, {1.0f, 0.674368f, 0.357304f}},
    {5000, {1.0f, 0.830093f, 0.613194f}}, {6500, {0.999355f, 1.0f, 0.998494f}},  {10000, {0.58734f, 0.720797f, 1.0f}},
    {25000, {0.352199f, 0.52803f, 1.0f}},
};

} // namespace

TemperatureTable::TemperatureTable()
{
    m_rows.reserve(kRows);
    for (int kelvin = kLowest; kelvin <= kHighest; ++kelvin)
        m_rows.push_back(colourAt(kelvin));
    for (const PublishedRow& row : kPublished)
        m_rows[static_cast<std::size_t>(row.kelvin - kLowest)] = row.colour;

    m_blueToRed.reserve(kRows);
    for (const TemperatureRow& row : m_rows)
        m_blueToRed.push_back(row.blue / row.red);
    m_turningRow =
        static_cast<int>(std::distance(m_blueToRed.begin(), std::min_element(m_blueToRed.begin(), m_blueToRed.end())));
}

const TemperatureTable& TemperatureTable::get()
{
    static const TemperatureTable table;
    return table;
}

} // namespace Ondrel

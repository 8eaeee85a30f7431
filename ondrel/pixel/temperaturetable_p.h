#pragma once

#include <vector>

namespace Ondrel
{

struct TemperatureRow {
    float red, green, blue;
};

// The colour at each kelvin, computed at first use.
class TemperatureTable
{
public:
    static constexpr int kLowest = 1667;
    static constexpr int kHighest = 25000;
    static constexpr int kRows = kHighest - kLowest + 1;

    static const TemperatureTable& get();

    const TemperatureRow* rows() const { return m_rows.data(); }

    // blue / red of each row. It does not rise before the turning row and does not fall from it on.
    const float* blueToRed() const { return m_blueToRed.data(); }
    int turningRow() const { return m_turningRow; }

private:
    TemperatureTable();

    std::vector<TemperatureRow> m_rows;
    std::vector<float> m_blueToRed;
    int m_turningRow = 0;
};

} // namespace Ondrel

#include "rows.h"

#include "whitebalance.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace Examples
{

std::array<float, 3> gainsOf(const std::array<float, 3>& multipliers)
{
    const float least = *std::min_element(multipliers.begin(), multipliers.end());
    const bool finite = std::all_of(multipliers.begin(), multipliers.end(), [](float m) { return std::isfinite(m); });
    if (!finite || !(least > 0))
        return {1, 1, 1};
    return {multipliers[0] / least, multipliers[1] / least, multipliers[2] / least};
}

std::array<float, 3> asShotGains(const Ondrel::Image& raw)
{
    return gainsOf({raw.rawCameraMultipliers[0], raw.rawCameraMultipliers[1], raw.rawCameraMultipliers[2]});
}

void balance(Ondrel::Image& image, const std::array<float, 3>& gains, const Ondrel::RunStatus& status)
{
    forRows(0, image.height, status, [&](unsigned int y) {
        std::uint16_t* const row = image.data + std::size_t(y) * image.width * 4;
        for (std::size_t i = 0; i < std::size_t(image.width) * 4; i += 4) {
            for (std::size_t c = 0; c < 3; ++c)
                row[i + c] = std::uint16_t(std::min(float(row[i + c]) * gains[c] + 0.5f, 65535.0f));
        }
    });
}

} // namespace Examples

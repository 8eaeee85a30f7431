#pragma once

#include <ondrel/core/image.h>
#include <ondrel/core/runstatus.h>

#include <array>

namespace Examples
{

// Multipliers as gains of at least 1, so that what is full in all channels stays white; all 1 unless all are above 0.
std::array<float, 3> gainsOf(const std::array<float, 3>& multipliers);

// The gains of the light in which the picture was taken.
std::array<float, 3> asShotGains(const Ondrel::Image& raw);

// Multiplies red, green and blue, rounded and limited.
void balance(Ondrel::Image& image, const std::array<float, 3>& gains, const Ondrel::RunStatus& status);

} // namespace Examples

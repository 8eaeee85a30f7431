#pragma once

#include <ondrel/ondrel_export.h>

// White balance as a colour temperature with a tint, and as multipliers of red, green and blue. The colours are those
// of daylight and of black bodies as the polynomials of Kang et al. ("Design of advanced color temperature control
// system for HDTV applications", 2002) and of CIE 15 give them, in linear sRGB (IEC 61966-2-1), the largest of the
// three being 1: one row for each kelvin from 1667 to 25000. All functions may be called from any thread.

// The row of trunc(kelvin), without interpolation; that of 1667 below the range (also for NaN), of 25000 above.
ONDREL_EXPORT void TemperatureToRGB(double kelvin, float& r, float& g, float& b);

// The multipliers that turn a light of this temperature into white, for a sensor whose multipliers in daylight are the
// three floats at `daylight`; scaled so that g is 1. A tint of 1000 is neutral, and a smaller one asks for less green.
// All three are 0 if green has no multiplier (daylight[1] or the tint is 0).
ONDREL_EXPORT void TemperatureToRGBWB(float const* daylight, float kelvin, float tint, float& r, float& g, float& b);

// The temperature whose row has the nearest ratio of blue to red, the lowest if several are equally near, and the tint
// that explains the rest of green: trunc(1000 * (row's green / red) / (g / r)), limited to 100 to 2000. A ratio that is
// not a number, or 10000 or more away from every row, gives kelvin 0 and tint 100.
ONDREL_EXPORT void RGBToTemperature(float r, float g, float b, int& kelvin, int& tint);

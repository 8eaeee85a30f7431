#pragma once

#include <array>
#include <vector>

namespace OndrelReference
{

// The colours from 1667 to 25000 K, one row a kelvin, the largest channel 1: the CIE daylight locus in linear sRGB,
// and seven rows that hosts know by their decimal values.
const std::vector<std::array<float, 3>>& temperatureTable();

void temperatureToRGB(double kelvin, float& r, float& g, float& b);
void temperatureToRGBWB(const float* daylight, float kelvin, float tint, float& r, float& g, float& b);

// Looks at every row. For a colour that is near to none, kelvin is 0 and tint 100.
void rgbToTemperature(float r, float g, float b, int& kelvin, int& tint);

} // namespace OndrelReference

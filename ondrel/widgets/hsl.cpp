#include <ondrel/widgets/hsl_p.h>

#include <algorithm>
#include <cmath>

namespace Ondrel
{

Hsl toHsl(const Rgb& color)
{
    const double max = std::max({color.red, color.green, color.blue});
    const double min = std::min({color.red, color.green, color.blue});
    const double delta = max - min;
    Hsl result{0, 0, (max + min) * 0.5};
    const double room = 1 - std::abs(2 * result.lightness - 1);
    if (delta == 0 || room == 0)
        return result;
    result.saturation = delta / room;
    if (max == color.red)
        result.hue = std::fmod((color.green - color.blue) / delta, 6);
    else if (max == color.green)
        result.hue = (color.blue - color.red) / delta + 2;
    else
        result.hue = (color.red - color.green) / delta + 4;
    result.hue *= 60;
    if (result.hue < 0)
        result.hue += 360;
    return result;
}

Rgb toRgb(const Hsl& color)
{
    const double chroma = (1 - std::abs(2 * color.lightness - 1)) * color.saturation;
    const double sector = color.hue / 60;
    const double second = (1 - std::abs(std::fmod(sector, 2) - 1)) * chroma;
    Rgb rgb;
    if (sector >= 0 && sector < 1)
        rgb = {chroma, second, 0};
    else if (sector >= 1 && sector < 2)
        rgb = {second, chroma, 0};
    else if (sector >= 2 && sector < 3)
        rgb = {0, chroma, second};
    else if (sector >= 3 && sector < 4)
        rgb = {0, second, chroma};
    else if (sector >= 4 && sector < 5)
        rgb = {second, 0, chroma};
    else if (sector >= 5 && sector <= 6)
        rgb = {chroma, 0, second};
    const double base = color.lightness - chroma / 2;
    return {rgb.red + base, rgb.green + base, rgb.blue + base};
}

} // namespace Ondrel

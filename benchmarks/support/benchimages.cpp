#include "benchimages.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <map>
#include <utility>

namespace OndrelBench
{
namespace
{

std::uint16_t sample(double v)
{
    return v <= 0.0 ? std::uint16_t(0) : v >= 65535.0 ? std::uint16_t(65535) : std::uint16_t(v);
}

Ondrel::Image painted(unsigned int width, unsigned int height)
{
    Ondrel::Image image(width, height);
    std::uint32_t noise = 0x9E3779B9u;
    std::uint16_t* p = image.data;
    for (unsigned int y = 0; y < height; ++y) {
        for (unsigned int x = 0; x < width; ++x, p += 4) {
            const double u = double(x) / width;
            const double v = double(y) / height;
            const double edge = ((x / 97) + (y / 61)) % 2 ? 9000.0 : -9000.0;
            const double wave = 12000.0 * std::sin(u * 40.0) * std::cos(v * 30.0);
            noise = noise * 1664525u + 1013904223u;
            const double grain = double(noise >> 20) - 2048.0;
            p[0] = sample(65535.0 * u + edge + grain);
            p[1] = sample(65535.0 * v + wave + grain);
            p[2] = sample(32768.0 + wave - edge + grain);
            p[3] = sample(72000.0 * (1.0 - u) + 4000.0);
        }
    }
    return image;
}

} // namespace

Ondrel::Image syntheticImage(unsigned int width, unsigned int height)
{
    // Every repetition of every benchmark asks for one, and painting takes a second.
    static std::map<std::pair<unsigned int, unsigned int>, Ondrel::Image> kept;
    const auto [entry, isNew] = kept.try_emplace({width, height});
    if (isNew)
        entry->second = painted(width, height);
    return entry->second;
}

Ondrel::Image opaqueImage(unsigned int width, unsigned int height)
{
    Ondrel::Image image = syntheticImage(width, height);
    const std::size_t samples = std::size_t(width) * height * 4;
    for (std::size_t i = 3; i < samples; i += 4)
        image.data[i] = 65535;
    return image;
}

} // namespace OndrelBench

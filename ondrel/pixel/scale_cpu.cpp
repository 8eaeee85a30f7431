#include <ondrel/pixel/scale.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <ondrel/pixel/imageblock_p.h>
#include <ondrel/pixel/scalefiltered_p.h>
#include <vector>

using namespace Ondrel;

namespace
{

std::vector<std::uint32_t> nearestPositions(std::uint32_t sourceSize, std::uint32_t size)
{
    const float step = float(double(sourceSize) / double(size));
    std::vector<std::uint32_t> positions(size);
    for (std::uint32_t i = 0; i < size; ++i) {
        const float position = float(i) * step;
        // Halves upward; the sum is exact in double, in float 0.49999997 would become 1.
        const double rounded = std::floor(double(position) + 0.5);
        positions[i] = std::uint32_t(std::min(rounded, double(sourceSize - 1)));
    }
    return positions;
}

void scaleNearest(Image const& source, Image& destination)
{
    const std::vector<std::uint32_t> columns = nearestPositions(source.width, destination.width);
    const std::vector<std::uint32_t> rows = nearestPositions(source.height, destination.height);
    for (std::uint32_t y = 0; y < destination.height; ++y) {
        const std::uint16_t* from = pixelAt(source, 0, rows[y]);
        std::uint16_t* to = pixelAt(destination, 0, y);
        for (std::uint32_t x = 0; x < destination.width; ++x)
            std::memcpy(to + std::size_t(x) * 4, from + std::size_t(columns[x]) * 4, 8);
    }
}

} // namespace

void Scale_CPU(Ondrel::Image const& source, Ondrel::Image& destination, unsigned int width, unsigned int height,
               Ondrel::FilterMethod filter)
{
    if (!hasPixels(source) || (source.width == width && source.height == height)) {
        destination = source;
        return;
    }
    if (destination.width != width || destination.height != height)
        destination = Image(width, height);
    if (hasPixels(destination)) {
        switch (filter) {
        case FilterMethod::NearestNeighbor:
            scaleNearest(source, destination);
            break;
        case FilterMethod::Bilinear:
            scaleBilinear(source, destination);
            break;
        case FilterMethod::Bicubic:
            scaleBicubic(source, destination);
            break;
        }
    }
    destination.colorProfile = source.colorProfile;
}

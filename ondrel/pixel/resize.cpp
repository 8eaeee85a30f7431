#include <ondrel/pixel/scale.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <ondrel/pixel/imageblock_p.h>
#include <vector>

using Ondrel::hasPixels;
using Ondrel::pixelAt;

namespace
{

// Source position of each of `count` target pixels. Rounds to even as the processor does by default.
std::vector<std::uint32_t> draftPositions(std::uint32_t subSize, std::uint32_t count)
{
    const float step = float(subSize) / (float(count) + 0.5f);
    std::vector<std::uint32_t> positions(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        const long position = std::lrint((float(i) + 0.5f) * step - 0.5f);
        // The last position of an enlargement by millions rounds to subSize itself.
        positions[i] = std::uint32_t(std::clamp<long>(position, 0, long(subSize) - 1));
    }
    return positions;
}

} // namespace

Ondrel::Image ScaleSubImageFast(Ondrel::Image const& source, unsigned int sourceWidth, unsigned int sourceHeight,
                                unsigned int width, unsigned int height)
{
    if (!hasPixels(source) || !sourceWidth || !sourceHeight || !width || !height)
        return Ondrel::Image(0, 0);
    const std::uint32_t subWidth = std::min(source.width, sourceWidth);
    const std::uint32_t subHeight = std::min(source.height, sourceHeight);
    // Only the width is compared with the part asked for. Hosts rely on getting the whole source back here, also when
    // it is not square.
    if (width == height && width == subWidth)
        return source;

    Ondrel::Image result(width, height);
    if (!hasPixels(result))
        return result;
    const std::vector<std::uint32_t> columns = draftPositions(subWidth, width);
    const std::vector<std::uint32_t> rows = draftPositions(subHeight, height);
    for (std::uint32_t y = 0; y < height; ++y) {
        const std::uint16_t* from = pixelAt(source, 0, rows[y]);
        std::uint16_t* to = pixelAt(result, 0, y);
        for (std::uint32_t x = 0; x < width; ++x)
            std::memcpy(to + std::size_t(x) * 4, from + std::size_t(columns[x]) * 4, 8);
    }
    return result;
}

Ondrel::Image Resize(Ondrel::Image const& source, unsigned int width, unsigned int height, unsigned short r,
                     unsigned short g, unsigned short b, unsigned short a)
{
    if (source.width == width && source.height == height)
        return source;
    Ondrel::Image result(width, height);
    if (!hasPixels(result))
        return result;
    const bool copies = hasPixels(source);
    const std::uint32_t columns = copies ? std::min(width, source.width) : 0;
    const std::uint32_t rows = copies ? std::min(height, source.height) : 0;
    // Right of the source, then below it.
    result.Fill(r, g, b, a, columns, 0, width - columns, rows);
    result.Fill(r, g, b, a, 0, rows, width, height - rows);
    for (std::uint32_t y = 0; y < rows; ++y)
        std::memcpy(pixelAt(result, 0, y), pixelAt(source, 0, y), std::size_t(columns) * 8);
    return result;
}

void ResizeInPlace(Ondrel::Image& image, unsigned int width, unsigned int height)
{
    if (image.width == width && image.height == height)
        return;
    const std::uint64_t blockPixels = image.data ? image.sizeBytes / 8 : 0;
    for (std::uint64_t y = 0; width > 0 && y < height; ++y) {
        // A row that does not lie in the block at both strides has nothing to move, nor has any row after it.
        const std::uint64_t farther = y * std::max<std::uint64_t>(image.width, width) + width;
        if (farther > blockPixels)
            break;
        std::memmove(image.data + y * width * 4, image.data + y * image.width * 4, std::size_t(width) * 8);
    }
    image.width = width;
    image.height = height;
}

#include "mosaic.h"

#include <ondrel/resources/resourceengine.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace
{

using Ondrel::Image;

// The place on the sensor of a pixel: the store has turned the picture upright. Differences may wrap, since only their
// last bits count.
std::pair<unsigned int, unsigned int> onSensor(const Image& raw, unsigned int x, unsigned int y)
{
    const unsigned int right = raw.width - 1, bottom = raw.height - 1;
    switch (raw.rawRotation) {
    case 1:
        return {right - x, bottom - y};
    case 2:
        return {y, right - x};
    case 3:
        return {bottom - y, x};
    default:
        return {x, y};
    }
}

// The filter word of the picture as it lies.
unsigned int turnedFilters(const Image& raw)
{
    unsigned int word = 0;
    for (unsigned int row = 0; row < 8; ++row)
        for (unsigned int column = 0; column < 2; ++column) {
            const auto [x, y] = onSensor(raw, column, row);
            word |= colorAt(raw.rawFilters, y, x) << (((row << 1) | column) << 1);
        }
    return word;
}

void balance(Image& image)
{
    const float* const gains = image.rawCameraMultipliers;
    const float least = std::min({gains[0], gains[1], gains[2]});
    if (!(least > 0))
        return;
    const std::size_t samples = std::size_t(image.width) * image.height * 4;
    for (std::size_t i = 0; i < samples; i += 4)
        for (std::size_t c = 0; c < 3; ++c)
            image.data[i + c] = std::uint16_t(std::min(float(image.data[i + c]) * gains[c] / least, 65535.0f));
}

} // namespace

bool readMosaic(const QString& fileName, Mosaic& mosaic)
{
    Ondrel::ResourceId id;
    std::shared_ptr<const Image> raw;
    ResourceEngine::Get().AddRawImage(fileName.toStdString(), id);
    if (!ResourceEngine::Get().CopyImage(id, raw, Ondrel::EmbeddedColorProfile, {}) || !raw->rawIsMosaic ||
        raw->rawFilters < 1000)
        return false;
    mosaic.image = *raw;
    mosaic.filters = turnedFilters(*raw);
    balance(mosaic.image);
    return true;
}

Mosaic paintMosaic()
{
    constexpr unsigned int kWidth = 900, kHeight = 600;
    Mosaic mosaic{Image(kWidth, kHeight), 0x94949494};
    for (unsigned int y = 0; y < kHeight; ++y)
        for (unsigned int x = 0; x < kWidth; ++x) {
            const double dx = x, dy = double(y) - kHeight / 2.0;
            const double ring = std::cos((dx * dx + dy * dy) / 900);
            const double tint[3] = {0.5 + 0.35 * ring, 0.5 + 0.4 * ring, 0.5 + 0.3 * std::cos(dx / 150)};
            const unsigned int color = colorAt(mosaic.filters, y, x);
            mosaic.image.data[(std::size_t(y) * kWidth + x) * 4 + color] = std::uint16_t(tint[color] * 65535);
        }
    return mosaic;
}

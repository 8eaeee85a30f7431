#include "source.h"

#include "../common/whitebalance.h"

#include <ondrel/resources/resourceengine.h>

#include <cmath>

using Examples::Mosaic;
using Ondrel::Image;

bool readMosaic(const QString& fileName, Mosaic& mosaic)
{
    Ondrel::ResourceId id;
    std::shared_ptr<const Image> raw;
    ResourceEngine::Get().AddRawImage(fileName.toStdString(), id);
    if (!ResourceEngine::Get().CopyImage(id, raw, Ondrel::EmbeddedColorProfile, {}) || !Examples::isBayer(*raw))
        return false;
    mosaic.image = *raw;
    mosaic.filters = Examples::turnedFilters(*raw);
    Examples::balance(mosaic.image, Examples::asShotGains(*raw), {});
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
            const unsigned int color = Examples::colorAt(mosaic.filters, y, x);
            mosaic.image.data[(std::size_t(y) * kWidth + x) * 4 + color] = std::uint16_t(tint[color] * 65535);
        }
    return mosaic;
}

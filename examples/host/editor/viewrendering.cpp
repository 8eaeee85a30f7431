#include "viewrendering.h"

#include <ondrel/color/colortransformer.h>
#include <ondrel/color/softproof.h>

#include <algorithm>
#include <tuple>

namespace Host
{
namespace
{

constexpr std::uint16_t kTop = 65535;
constexpr int kSmallestLevel = 256; // pixels across or down; below it, halving saves nothing

void markClipping(const Ondrel::Image& image, QImage& rendered)
{
    for (int y = 0; y < rendered.height(); ++y) {
        const std::uint16_t* pixel = image.data + std::size_t(y) * image.width * 4;
        QRgb* const line = reinterpret_cast<QRgb*>(rendered.scanLine(y));
        for (int x = 0; x < rendered.width(); ++x, pixel += 4) {
            if (pixel[0] == kTop || pixel[1] == kTop || pixel[2] == kTop)
                line[x] = qRgb(255, 0, 0);
            else if (pixel[0] == 0 && pixel[1] == 0 && pixel[2] == 0)
                line[x] = qRgb(0, 0, 255);
        }
    }
}

} // namespace

bool DisplayOptions::operator==(const DisplayOptions& other) const
{
    const auto all = [](const DisplayOptions& o) {
        return std::tie(o.marksClipping, o.proofs, o.proofProfile, o.proofIntent, o.marksGamut);
    };
    return all(*this) == all(other);
}

const QImage& RenderedPicture::forWidth(double pixels) const
{
    std::size_t level = 0;
    while (level + 1 < levels.size() && levels[level + 1].width() >= pixels)
        ++level;
    return levels[level];
}

QImage renderForView(const Picture& picture, const DisplayOptions& options)
{
    if (!picture.image)
        return QImage();
    const Ondrel::Image& image = *picture.image;
    QImage rendered =
        options.proofs
            ? Ondrel::ColorTransformer::toQImage(
                  SoftProof(image, options.proofProfile, options.proofIntent, options.marksGamut, true), false)
            : Ondrel::ColorTransformer::toQImage(image, false);
    if (options.marksClipping && !rendered.isNull())
        markClipping(image, rendered);
    return rendered;
}

RenderedPicture renderWithLevels(const Picture& picture, const DisplayOptions& options)
{
    RenderedPicture rendered;
    QImage level = renderForView(picture, options);
    while (!level.isNull()) {
        rendered.levels.push_back(level);
        const QSize half((level.width() + 1) / 2, (level.height() + 1) / 2);
        if (std::max(half.width(), half.height()) < kSmallestLevel)
            break;
        level = level.scaled(half, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    }
    return rendered;
}

} // namespace Host

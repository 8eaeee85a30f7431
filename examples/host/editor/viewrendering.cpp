#include "viewrendering.h"

#include <ondrel/color/colortransformer.h>
#include <ondrel/color/softproof.h>

#include <QPainter>

#include <algorithm>

namespace Host
{
namespace
{

constexpr std::uint16_t kTop = 65535;

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

QImage renderOne(const Ondrel::Image& image, const ViewOptions& options)
{
    QImage rendered =
        options.proofs
            ? Ondrel::ColorTransformer::toQImage(
                  SoftProof(image, options.proofProfile, options.proofIntent, options.marksGamut, true), false)
            : Ondrel::ColorTransformer::toQImage(image, false);
    if (options.marksClipping && !rendered.isNull())
        markClipping(image, rendered);
    return rendered;
}

} // namespace

QImage renderForView(const Picture& first, const Picture& second, const ViewOptions& options)
{
    if (!first.image)
        return QImage();
    const bool compares = second.image && options.compare != ViewOptions::First;
    if (compares && options.compare == ViewOptions::Second)
        return renderOne(*second.image, options);
    QImage rendered = renderOne(*first.image, options);
    if (!compares || rendered.isNull())
        return rendered;
    const QImage other = renderOne(*second.image, options);
    const double part = std::clamp(options.wipe, 0.0, 1.0);
    const double start = part * rendered.width(), otherStart = part * other.width();
    QPainter painter(&rendered);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(QRectF(start, 0, rendered.width() - start, rendered.height()), other,
                      QRectF(otherStart, 0, other.width() - otherStart, other.height()));
    return rendered;
}

} // namespace Host

#include "viewrendering.h"

#include <ondrel/color/colortransformer.h>
#include <ondrel/color/softproof.h>

#include <algorithm>
#include <tuple>

namespace Host
{
namespace
{

constexpr int kSmallestLevel = 256; // pixels across or down; below it, halving saves nothing

QImage converted(const Ondrel::Image& image, const DisplayOptions& options)
{
    if (!options.proofs)
        return Ondrel::ColorTransformer::toQImage(image, false);
    const Ondrel::Image proof = SoftProof(image, options.proofProfile, options.proofIntent, options.marksGamut, true);
    return Ondrel::ColorTransformer::toQImage(proof, false);
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

QImage RenderedPicture::marked() const
{
    QImage picture = isNull() ? QImage() : levels.front();
    if (marks && !picture.isNull())
        marks->drawOnto(picture);
    return picture;
}

QImage renderForView(const Picture& picture, const DisplayOptions& options)
{
    if (!picture.image)
        return QImage();
    QImage rendered = converted(*picture.image, options);
    if (options.marksClipping && !rendered.isNull())
        ClippingMarks(*picture.image).drawOnto(rendered);
    return rendered;
}

RenderedPicture renderWithLevels(const Picture& picture, const DisplayOptions& options)
{
    RenderedPicture rendered;
    if (!picture.image)
        return rendered;
    QImage level = converted(*picture.image, options);
    if (options.marksClipping && !level.isNull())
        rendered.marks = std::make_shared<const ClippingMarks>(*picture.image);
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

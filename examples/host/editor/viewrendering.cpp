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

// Which pixels of a picture are clipped.
struct ClippingMarks {
    enum Mark : unsigned char { None, Low, High };
    int width = 0, height = 0;
    std::vector<unsigned char> marks;
};

ClippingMarks clippingOf(const Ondrel::Image& image)
{
    ClippingMarks found{int(image.width), int(image.height), {}};
    found.marks.resize(std::size_t(image.width) * image.height);
    const std::uint16_t* pixel = image.data;
    for (unsigned char& mark : found.marks) {
        if (pixel[0] == kTop || pixel[1] == kTop || pixel[2] == kTop)
            mark = ClippingMarks::High;
        else if (pixel[0] == 0 && pixel[1] == 0 && pixel[2] == 0)
            mark = ClippingMarks::Low;
        pixel += 4;
    }
    return found;
}

// A single clipped pixel is still to be seen.
ClippingMarks halved(const ClippingMarks& marks, const QSize& half)
{
    ClippingMarks small{half.width(), half.height(), {}};
    small.marks.resize(std::size_t(half.width()) * std::size_t(half.height()));
    for (int y = 0; y < marks.height; ++y) {
        const unsigned char* const row = marks.marks.data() + std::size_t(y) * std::size_t(marks.width);
        unsigned char* const smallRow = small.marks.data() + std::size_t(y / 2) * std::size_t(small.width);
        for (int x = 0; x < marks.width; ++x)
            smallRow[x / 2] = std::max(smallRow[x / 2], row[x]);
    }
    return small;
}

// With what lies around each mark, as far as `reach`.
void draw(const ClippingMarks& marks, int reach, QImage& rendered)
{
    const unsigned char* mark = marks.marks.data();
    for (int y = 0; y < marks.height; ++y) {
        for (int x = 0; x < marks.width; ++x, ++mark) {
            if (*mark == ClippingMarks::None)
                continue;
            const QRgb colour = *mark == ClippingMarks::High ? qRgb(255, 0, 0) : qRgb(0, 0, 255);
            for (int v = std::max(0, y - reach); v <= std::min(y + reach, marks.height - 1); ++v) {
                QRgb* const line = reinterpret_cast<QRgb*>(rendered.scanLine(v));
                std::fill(line + std::max(0, x - reach), line + std::min(x + reach + 1, marks.width), colour);
            }
        }
    }
}

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

QImage renderForView(const Picture& picture, const DisplayOptions& options)
{
    if (!picture.image)
        return QImage();
    QImage rendered = converted(*picture.image, options);
    if (options.marksClipping && !rendered.isNull())
        draw(clippingOf(*picture.image), 0, rendered);
    return rendered;
}

RenderedPicture renderWithLevels(const Picture& picture, const DisplayOptions& options)
{
    RenderedPicture rendered;
    if (!picture.image)
        return rendered;
    QImage level = converted(*picture.image, options);
    ClippingMarks marks;
    if (options.marksClipping && !level.isNull())
        marks = clippingOf(*picture.image);
    while (!level.isNull()) {
        // A level is drawn with up to two of its pixels on one of the screen, so that marks of one pixel would fade.
        const int reach = rendered.levels.empty() ? 0 : 1;
        rendered.levels.push_back(level);
        draw(marks, reach, rendered.levels.back()); // none unless asked for
        const QSize half((level.width() + 1) / 2, (level.height() + 1) / 2);
        if (std::max(half.width(), half.height()) < kSmallestLevel)
            break;
        level = level.scaled(half, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        marks = marks.marks.empty() ? marks : halved(marks, half);
    }
    return rendered;
}

} // namespace Host

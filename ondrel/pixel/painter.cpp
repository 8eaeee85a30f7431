#include <ondrel/pixel/painter.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <ondrel/pixel/geometry.h>
#include <ondrel/pixel/imageblock_p.h>
#include <ondrel/pixel/painterblend_p.h>
#include <ondrel/pixel/paintersweep_p.h>

using Ondrel::hasPixels;
using Ondrel::Image;
using Ondrel::pixelAt;
using IntRect = Ondrel::RectT<int>;

namespace
{

int limitedToInt(std::int64_t v)
{
    return int(std::clamp<std::int64_t>(v, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

// To the nearest whole pixel, halves upward.
int nearestPixel(float v)
{
    const double rounded = std::floor(double(v) + 0.5);
    return int(std::clamp(rounded, double(std::numeric_limits<int>::min()), double(std::numeric_limits<int>::max())));
}

IntRect rectOf(Image const& image)
{
    return IntRect(0, 0, limitedToInt(image.width), limitedToInt(image.height));
}

// Pixels solid from the centre on. Not a number counts as none.
double solidRadius(unsigned short radius, float hardness)
{
    const float solid = std::trunc(float(radius) * hardness);
    return std::isfinite(solid) ? double(solid) : 0.0;
}

std::vector<float> brushMask(unsigned short radius, float hardness, double cutoff, double falloff)
{
    const std::size_t side = 2 * std::size_t(radius) + 1;
    std::vector<float> mask(side * side, 0.0f);
    const double solid = solidRadius(radius, hardness);
    const double spread = 2.0 * falloff * falloff;
    const double floorOfCurve = std::exp(-cutoff * cutoff / spread);
    // The last row and column stay 0: a stamp is two radii wide.
    for (std::size_t j = 0; j + 1 < side; ++j) {
        for (std::size_t i = 0; i + 1 < side; ++i) {
            const double dx = double(radius) - double(i);
            const double dy = double(radius) - double(j);
            const double distance = std::sqrt(dx * dx + dy * dy);
            double weight = 1.0;
            if (!(std::trunc(distance) < solid)) {
                const double v = (distance - solid) / (double(radius) - solid);
                weight = v > cutoff ? 0.0 : std::exp(-v * v / spread) - floorOfCurve;
            }
            mask[j * side + i] = float(weight);
        }
    }
    return mask;
}

} // namespace

PixelPainter::PixelPainter(Ondrel::Image* image)
    : m_image(image)
    , m_mask(100, 1.0f)
{
}

void PixelPainter::setImage(Ondrel::Image* image)
{
    m_image = image;
}

Ondrel::Image* PixelPainter::image() const
{
    return m_image;
}

void PixelPainter::setOpacity(float opacity)
{
    m_opacity = opacity;
}

void PixelPainter::setBrush(unsigned short r, unsigned short g, unsigned short b, unsigned short a,
                            unsigned short radius, float hardness, double cutoff, double falloff)
{
    hardness = std::min(hardness, 0.99f);
    if (r == m_red && g == m_green && b == m_blue && a == m_alpha && radius == m_radius && hardness == m_hardness &&
        cutoff == m_cutoff && falloff == m_falloff)
        return;
    // First what can fail, so that brush and mask always belong together.
    m_mask = brushMask(radius, hardness, cutoff, falloff);
    m_red = r;
    m_green = g;
    m_blue = b;
    m_alpha = a;
    m_radius = radius;
    m_hardness = hardness;
    m_cutoff = cutoff;
    m_falloff = falloff;
}

void PixelPainter::drawPoint(QPoint const& point) const
{
    drawOrErasePoint(point, true);
}

void PixelPainter::erasePoint(QPoint const& point) const
{
    drawOrErasePoint(point, false);
}

void PixelPainter::drawOrErasePoint(QPoint const& point, bool draw) const
{
    if (m_image && hasPixels(*m_image))
        stamp(point, draw);
}

float PixelPainter::strength() const
{
    return float(m_alpha) / 65535.0f * m_opacity;
}

// The mask of a painter without setBrush is shorter than its radius needs; `space` then takes one filled up with zeros.
std::vector<float> const& PixelPainter::wholeMask(std::vector<float>& space) const
{
    const std::size_t side = 2 * std::size_t(m_radius) + 1;
    if (m_mask.size() >= side * side)
        return m_mask;
    space = m_mask;
    space.resize(side * side, 0.0f);
    return space;
}

void PixelPainter::stamp(QPoint const& point, bool draw) const
{
    const IntRect rect = pointBoundingRect(point, true);
    if (rect.width() <= 0) // beside the image, where no pixel has an address
        return;
    const std::int64_t maskLeft = std::int64_t(point.x()) - m_radius;
    const std::int64_t maskTop = std::int64_t(point.y()) - m_radius;
    const OndrelBrush::Ink ink(m_red, m_green, m_blue);
    const float full = strength();
    std::vector<float> space;
    std::vector<float> const& mask = wholeMask(space);
    const int left = rect.left();
    const int right = rect.right();
    for (int y = rect.top(); y < rect.bottom(); ++y) {
        const std::size_t maskRow = std::size_t(y - maskTop) * (2 * std::size_t(m_radius) + 1);
        std::uint16_t* pixel = pixelAt(*m_image, std::size_t(left), std::size_t(y));
        for (int x = left; x < right; ++x, pixel += 4) {
            const float s = mask[maskRow + std::size_t(x - maskLeft)] * full;
            if (draw)
                OndrelBrush::blend(ink, s, pixel);
            else
                OndrelBrush::erase(s, pixel);
        }
    }
}

Ondrel::RectT<int> PixelPainter::pointBoundingRect(QPoint point, unsigned short radius, bool clip, unsigned int width,
                                                   unsigned int height)
{
    const std::int64_t x = point.x();
    const std::int64_t y = point.y();
    IntRect rect(QPoint(limitedToInt(x - radius), limitedToInt(y - radius)),
                 QPoint(limitedToInt(x + radius), limitedToInt(y + radius)));
    if (clip)
        rect.subtractRect(IntRect(0, 0, limitedToInt(width), limitedToInt(height)));
    return rect;
}

Ondrel::RectT<int> PixelPainter::pointBoundingRect(QPoint point, bool clip) const
{
    if (clip && !m_image)
        return IntRect();
    return m_image ? pointBoundingRect(point, m_radius, clip, m_image->width, m_image->height)
                   : pointBoundingRect(point, m_radius, false, 0, 0);
}

// Bounding box of the segment widened by the radius to both sides and lengthened by it at both ends.
Ondrel::RectT<int> PixelPainter::sweptRect(QPoint from, QPoint to) const
{
    const float dx = float(to.x()) - float(from.x());
    const float dy = float(to.y()) - float(from.y());
    const float length = std::sqrt(dx * dx + dy * dy);
    // A point has no direction; any will do, as the ends reach as far as the sides.
    const float radius = float(m_radius);
    const float alongX = length > 0.0f ? dx / length * radius : radius;
    const float alongY = length > 0.0f ? dy / length * radius : 0.0f;
    IntRect rect;
    rect.initializeBoundingBox();
    for (const float side : {-1.0f, 1.0f}) {
        rect.addPoint(QPoint(nearestPixel(float(from.x()) - alongX - side * alongY),
                             nearestPixel(float(from.y()) - alongY + side * alongX)));
        rect.addPoint(QPoint(nearestPixel(float(to.x()) + alongX - side * alongY),
                             nearestPixel(float(to.y()) + alongY + side * alongX)));
    }
    rect.subtractRect(rectOf(*m_image));
    return rect;
}

Ondrel::RectT<int> PixelPainter::drawLine(QPoint from, QPoint to)
{
    if (!m_image || !hasPixels(*m_image))
        return IntRect();
    const IntRect rect = sweptRect(from, to);
    const int left = rect.left();
    const int right = rect.right();
    std::vector<float> space;
    const OndrelBrush::Sweep sweep(from, to, m_radius, wholeMask(space).data());
    const OndrelBrush::Ink ink(m_red, m_green, m_blue);
    const float full = strength();
    OndrelBrush::WeightRun run;
    for (int y = rect.top(); y < rect.bottom(); ++y) {
        std::uint16_t* const row = pixelAt(*m_image, 0, std::size_t(y));
        bool met = false;
        for (int x = sweep.firstColumn(y, left); x < right; x += OndrelBrush::WeightRun::largest) {
            sweep.findWeights(x, std::min(right - x, OndrelBrush::WeightRun::largest), y, met, run);
            for (int i = run.first; i < run.end; ++i)
                OndrelBrush::blend(ink, run.weights[i] * full, row + (std::size_t(x) + std::size_t(i)) * 4);
            met = met || run.first < run.end;
            // What the brush leaves it does not reach again in this row.
            if (met && run.end < OndrelBrush::WeightRun::largest)
                break;
        }
    }
    return rect;
}

namespace
{

// One axis of a copy between images: what is left of [target, target + length) inside both.
struct Overlap {
    std::int64_t target;
    std::int64_t source;
    std::int64_t length;

    Overlap(int targetStart, int sourceStart, int wanted, std::uint32_t targetSize, std::uint32_t sourceSize)
        : target(targetStart)
        , source(sourceStart)
        , length(wanted)
    {
        const std::int64_t skipped = std::max<std::int64_t>({-target, -source, 0});
        target += skipped;
        source += skipped;
        length = std::min({length - skipped, targetSize - target, sourceSize - source});
    }
};

} // namespace

void PixelPainter::drawImage(int x, int y, int sourceX, int sourceY, int width, int height, Ondrel::Image const& source)
{
    if (!m_image || !hasPixels(*m_image) || !hasPixels(source))
        return;
    const Overlap columns(x, sourceX, width, m_image->width, source.width);
    const Overlap rows(y, sourceY, height, m_image->height, source.height);
    if (columns.length <= 0)
        return;
    const float scale = m_opacity / 65535.0f;
    for (std::int64_t row = 0; row < rows.length; ++row) {
        const std::uint16_t* from = pixelAt(source, std::size_t(columns.source), std::size_t(rows.source + row));
        std::uint16_t* to = pixelAt(*m_image, std::size_t(columns.target), std::size_t(rows.target + row));
        for (std::int64_t column = 0; column < columns.length; ++column, from += 4, to += 4)
            OndrelBrush::blend(OndrelBrush::Ink(from[0], from[1], from[2]), float(from[3]) * scale, to);
    }
}

void PixelPainter::drawImage(int x, int y, Ondrel::Image const& source)
{
    drawImage(x, y, 0, 0, limitedToInt(source.width), limitedToInt(source.height), source);
}

void PixelPainter::copyImage(unsigned int x, unsigned int y, Ondrel::Image const& source, bool copyAlpha)
{
    if (!m_image || !hasPixels(*m_image) || !hasPixels(source) || x >= m_image->width || y >= m_image->height)
        return;
    const std::size_t columns = std::min(source.width, m_image->width - x);
    const std::size_t rows = std::min(source.height, m_image->height - y);
    for (std::size_t row = 0; row < rows; ++row) {
        const std::uint16_t* from = pixelAt(source, 0, row);
        std::uint16_t* to = pixelAt(*m_image, x, y + row);
        if (copyAlpha) {
            std::memmove(to, from, columns * 8);
            continue;
        }
        for (std::size_t column = 0; column < columns; ++column, from += 4, to += 4)
            std::copy_n(from, 3, to);
    }
}

void PixelPainter::copyImage(int x, int y, int sourceX, int sourceY, int width, int height, Ondrel::Image const& source)
{
    if (width > 0 && height > 0)
        copyImage(unsigned(x), unsigned(y),
                  SubImage(source, unsigned(sourceX), unsigned(sourceY), unsigned(width), unsigned(height)), true);
}

#include <ondrel/core/image.h>

#include <QPainter>
#include <QRect>
#include <QVector>

#include <algorithm>

namespace
{

// The start of the first cell, at or left of 0, so that the middle is a multiple of two cells away from it.
std::int64_t patternOrigin(std::int64_t length, std::int64_t cell)
{
    const std::int64_t middle = (length + 1) / 2;
    const std::int64_t pair = 2 * cell;
    return middle - (middle + pair - 1) / pair * pair;
}

// Calls drawCell(x, y, w, h) for each cell of the second colour, cut at the left and upper edge.
template <typename DrawCell>
void forEachCell(std::int64_t width, std::int64_t height, std::int64_t cellWidth, std::int64_t cellHeight,
                 DrawCell drawCell)
{
    const std::int64_t x0 = patternOrigin(width, cellWidth);
    std::int64_t row = 0;
    for (std::int64_t y = patternOrigin(height, cellHeight); y < height; y += cellHeight, ++row) {
        const std::int64_t top = std::max<std::int64_t>(y, 0);
        const std::int64_t rows = y + cellHeight - top;
        if (rows <= 0)
            continue;
        for (std::int64_t x = (row & 1) * cellWidth + x0; x < width; x += 2 * cellWidth) {
            const std::int64_t left = std::max<std::int64_t>(x, 0);
            const std::int64_t columns = x + cellWidth - left;
            if (columns > 0)
                drawCell(left, top, std::min(columns, width - left), std::min(rows, height - top));
        }
    }
}

} // namespace

void Checkerboard(Ondrel::Image& image, unsigned int cellWidth, unsigned int cellHeight, unsigned short r1,
                  unsigned short g1, unsigned short b1, unsigned short a1, unsigned short r2, unsigned short g2,
                  unsigned short b2, unsigned short a2)
{
    image.Fill(r1, g1, b1, a1);
    if (cellWidth == 0 || cellHeight == 0 || !image.data)
        return;
    forEachCell(image.width, image.height, cellWidth, cellHeight,
                [&](std::int64_t x, std::int64_t y, std::int64_t w, std::int64_t h) {
                    image.Fill(r2, g2, b2, a2, static_cast<unsigned int>(x), static_cast<unsigned int>(y),
                               static_cast<unsigned int>(w), static_cast<unsigned int>(h));
                });
}

void Checkerboard(QImage& image, unsigned int cellWidth, unsigned int cellHeight, QColor const& colorA,
                  QColor const& colorB)
{
    image.fill(colorA);
    if (cellWidth == 0 || cellHeight == 0 || image.isNull())
        return;
    QVector<QRect> cells;
    forEachCell(image.width(), image.height(), cellWidth, cellHeight,
                [&cells](std::int64_t x, std::int64_t y, std::int64_t w, std::int64_t h) {
                    cells.append(
                        QRect(static_cast<int>(x), static_cast<int>(y), static_cast<int>(w), static_cast<int>(h)));
                });
    QPainter painter(&image);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QBrush(colorB, Qt::SolidPattern));
    painter.drawRects(cells);
}

#include <ondrel/pixel/gaussianblurworkers_p.h>

#include <ondrel/pixel/gaussianblurspectral_p.h>

#include <array>
#include <ondrel/pixel/gaussianblurline_p.h>

namespace Ondrel
{
namespace
{

constexpr std::size_t kRows = kPixelsPerPoint; // rows that make a line of points

// Columns that are read at a time: pieces of rows that fill whole cache lines.
constexpr std::size_t kLines = 4;
constexpr std::size_t kColumns = kLines * kPixelsPerPoint;
using Lines = std::vector<LineBlur::Line>;

// Four pixels side by side in one row are a point; where there are fewer, the rest of it is left as it is.
void gatherColumns(Image const& image, std::size_t x, std::size_t width, Lines& lines)
{
    std::array<SamplePoint*, kLines> points;
    for (std::size_t i = 0; i < kLines; ++i)
        points[i] = lines[i].points();
    for (std::size_t y = 0; y < image.height; ++y) {
        const std::uint16_t* const row = pixelAt(image, x, y);
        for (std::size_t i = 0; i * kPixelsPerPoint < width; ++i)
            std::memcpy(points[i][y].samples, row + i * BlurRows::kPoint,
                        std::min(kPixelsPerPoint, width - i * kPixelsPerPoint) * 8);
    }
}

void blurColumns(Image const& from, Image& to, std::size_t x, Lines& lines)
{
    const std::size_t width = std::min<std::size_t>(kColumns, from.width - x);
    gatherColumns(from, x, width, lines);
    std::array<const SamplePoint*, kLines> points;
    for (std::size_t i = 0; i * kPixelsPerPoint < width; ++i)
        points[i] = lines[i].blur();
    for (std::size_t y = 0; y < to.height; ++y) {
        std::uint16_t* const row = pixelAt(to, x, y);
        for (std::size_t i = 0; i * kPixelsPerPoint < width; ++i)
            std::memcpy(row + i * BlurRows::kPoint, points[i][y].samples,
                        std::min(kPixelsPerPoint, width - i * kPixelsPerPoint) * 8);
    }
}

void blurFourRows(Image const& from, Image& to, std::size_t y, LineBlur::Line& line)
{
    const std::size_t count = std::min<std::size_t>(kRows, from.height - y);
    SamplePoint* const points = line.points();
    for (std::size_t r = 0; r < count; ++r) {
        const std::uint16_t* const row = pixelAt(from, 0, y + r);
        for (std::size_t x = 0; x < from.width; ++x)
            std::memcpy(points[x].samples + r * 4, row + x * 4, 8);
    }
    const SamplePoint* const result = line.blur();
    for (std::size_t r = 0; r < count; ++r) {
        std::uint16_t* const row = pixelAt(to, 0, y + r);
        for (std::size_t x = 0; x < to.width; ++x)
            std::memcpy(row + x * 4, result[x].samples + r * 4, 8);
    }
}

} // namespace

void blurRowsBySpectrum(Image const& from, Image& to, GaussianKernel const& kernel, GaussianEdge edge)
{
    const LineBlur blur(kernel, from.width, edge);
    const std::size_t height = from.height;
    // Eight rows are worth a task.
    parallelWorkers((height + kRows - 1) / kRows, 8 / kRows, [&] { return LineBlur::Line(blur); },
                    [&](LineBlur::Line& line, std::size_t first, std::size_t last) {
                        for (std::size_t i = first; i < last; ++i)
                            blurFourRows(from, to, i * kRows, line);
                    });
}

void blurColumnsBySpectrum(Image const& from, Image& to, GaussianKernel const& kernel, GaussianEdge edge)
{
    const LineBlur blur(kernel, from.height, edge);
    parallelWorkers((from.width + kColumns - 1) / kColumns, 1, [&] { return Lines(kLines, LineBlur::Line(blur)); },
                    [&](Lines& lines, std::size_t first, std::size_t last) {
                        for (std::size_t i = first; i < last; ++i)
                            blurColumns(from, to, i * kColumns, lines);
                    });
}

} // namespace Ondrel

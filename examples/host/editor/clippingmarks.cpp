#include "clippingmarks.h"

#include <algorithm>
#include <cmath>

namespace Host
{
namespace
{

enum Mark : unsigned char { None, Low, High };

constexpr std::uint16_t kTop = 65535;
constexpr double kRounding = 1e-6; // of a pixel

QRgb colourOf(unsigned char mark)
{
    return mark == High ? qRgb(255, 0, 0) : qRgb(0, 0, 255);
}

struct Range {
    int first, last; // empty if the last comes first
};

// The pixels of a level that lie below each pixel of the device along one axis. Where they are enlarged it is the one
// in the middle, as it is for the colours.
std::vector<Range> below(int begin, int count, double offset, double perPixel, int length)
{
    std::vector<Range> ranges;
    ranges.reserve(std::size_t(count));
    for (int i = 0; i < count; ++i) {
        const double from = (begin + i - offset) * perPixel, to = from + perPixel;
        const double first = perPixel < 1 ? std::floor((from + to) / 2) : std::floor(from + kRounding);
        const double last = perPixel < 1 ? first : std::ceil(to - kRounding) - 1;
        if (last < 0 || first >= length)
            ranges.push_back(last < 0 ? Range{-1, -2} : Range{length, length - 1});
        else
            ranges.push_back({int(std::max(0.0, first)), int(std::min(last, length - 1.0))});
    }
    return ranges;
}

} // namespace

ClippingMarks::Row ClippingMarks::rowOf(const std::vector<unsigned char>& marks)
{
    const auto isMark = [](unsigned char mark) { return mark != None; };
    const auto first = std::find_if(marks.begin(), marks.end(), isMark);
    const auto last = std::find_if(marks.rbegin(), marks.rend(), isMark).base();
    return first == marks.end() ? Row() : Row{int(first - marks.begin()), {first, last}};
}

ClippingMarks::ClippingMarks(const Ondrel::Image& image)
{
    Level level;
    level.width = int(image.width);
    std::vector<unsigned char> marks(image.width);
    const std::uint16_t* pixel = image.data;
    for (unsigned int y = 0; y < image.height; ++y) {
        for (unsigned char& mark : marks) {
            const bool isHigh = pixel[0] == kTop || pixel[1] == kTop || pixel[2] == kTop;
            const bool isLow = pixel[0] == 0 && pixel[1] == 0 && pixel[2] == 0;
            mark = isHigh ? High : isLow ? Low : None;
            pixel += 4;
        }
        level.rows.push_back(rowOf(marks));
    }
    while (level.width > 1 || level.rows.size() > 1) {
        m_levels.push_back(std::move(level));
        level = halved(m_levels.back());
    }
    m_levels.push_back(std::move(level));
}

// The rows from the first to the last as one, where the greater mark wins. False if there are no marks.
bool ClippingMarks::merge(const Level& level, int first, int last, Row& merged)
{
    int begin = level.width, end = 0;
    for (int y = first; y <= last; ++y) {
        const Row& row = level.rows[std::size_t(y)];
        begin = row.marks.empty() ? begin : std::min(begin, row.begin);
        end = row.marks.empty() ? end : std::max(end, row.end());
    }
    merged.begin = begin;
    merged.marks.assign(std::size_t(std::max(0, end - begin)), None);
    for (int y = first; y <= last; ++y) {
        const Row& row = level.rows[std::size_t(y)];
        unsigned char* const to = merged.marks.data() + (row.begin - begin);
        for (std::size_t x = 0; x < row.marks.size(); ++x)
            to[x] = std::max(to[x], row.marks[x]);
    }
    return !merged.marks.empty();
}

ClippingMarks::Level ClippingMarks::halved(const Level& level)
{
    Level half;
    half.width = (level.width + 1) / 2;
    const int height = int(level.rows.size());
    Row both;
    for (int y = 0; y < height; y += 2) {
        Row row;
        if (merge(level, y, std::min(y + 1, height - 1), both)) {
            row.begin = both.begin / 2;
            row.marks.assign(std::size_t((both.end() - 1) / 2 - row.begin + 1), None);
            for (int x = both.begin; x < both.end(); ++x) {
                unsigned char& mark = row.marks[std::size_t(x / 2 - row.begin)];
                mark = std::max(mark, both.marks[std::size_t(x - both.begin)]);
            }
        }
        half.rows.push_back(std::move(row));
    }
    return half;
}

void ClippingMarks::drawOnto(QImage& rendered) const
{
    for (int y = 0; y < size().height(); ++y) {
        const Row& row = m_levels[0].rows[std::size_t(y)];
        QRgb* const line = reinterpret_cast<QRgb*>(rendered.scanLine(y)) + row.begin;
        for (std::size_t x = 0; x < row.marks.size(); ++x) {
            if (row.marks[x] != None)
                line[x] = colourOf(row.marks[x]);
        }
    }
}

QImage ClippingMarks::on(const QRect& area, const QTransform& toDevice) const
{
    if (isNull() || area.isEmpty() || toDevice.m11() <= 0 || toDevice.m22() <= 0)
        return QImage();
    std::size_t depth = 0; // at which a pixel of the device has up to two below it, and up to three that it touches
    while (depth + 1 < m_levels.size() && std::ldexp(toDevice.m11(), int(depth) + 1) <= 1)
        ++depth;
    const Level& level = m_levels[depth];
    const double size = std::ldexp(1.0, int(depth));
    const std::vector<Range> columns =
        below(area.left(), area.width(), toDevice.dx(), 1 / (toDevice.m11() * size), level.width);
    const std::vector<Range> rows =
        below(area.top(), area.height(), toDevice.dy(), 1 / (toDevice.m22() * size), int(level.rows.size()));
    QImage seen;
    Row merged;
    for (int y = 0; y < area.height(); ++y) {
        const Range& range = rows[std::size_t(y)];
        if (range.last < range.first || !merge(level, range.first, range.last, merged))
            continue;
        const auto ends = [](const Range& each, int at) { return each.last < at; };
        auto column = std::lower_bound(columns.begin(), columns.end(), merged.begin, ends);
        for (; column != columns.end() && column->first < merged.end(); ++column) {
            unsigned char mark = None;
            for (int x = std::max(column->first, merged.begin); x <= std::min(column->last, merged.end() - 1); ++x)
                mark = std::max(mark, merged.marks[std::size_t(x - merged.begin)]);
            if (mark == None)
                continue;
            if (seen.isNull()) {
                seen = QImage(area.size(), QImage::Format_ARGB32_Premultiplied);
                seen.fill(Qt::transparent);
            }
            reinterpret_cast<QRgb*>(seen.scanLine(y))[column - columns.begin()] = colourOf(mark);
        }
    }
    return seen;
}

} // namespace Host

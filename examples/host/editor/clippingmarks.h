#pragma once

#include <ondrel/core/image.h>

#include <QImage>
#include <QTransform>

#include <vector>

namespace Host
{

// Which pixels of a picture are clipped: white or a full colour at the upper end, black at the lower. Kept at the
// picture's size and at halves of it, down to one pixel, in which a single mark is not lost. Constant once made; any
// thread.
class ClippingMarks
{
public:
    ClippingMarks() = default; // of no picture
    explicit ClippingMarks(const Ondrel::Image& image);

    bool isNull() const { return m_levels.empty(); }
    QSize size() const { return isNull() ? QSize() : QSize(m_levels[0].width, int(m_levels[0].rows.size())); }

    // Red where a colour is at its end, blue where all are black, over a picture of the same size.
    void drawOnto(QImage& rendered) const;

    // The marks on a part of a device, in its pixels and transparent elsewhere; null if there are none. The transform
    // scales and moves the picture's pixels to those of the device. A pixel of the device is marked if any of those
    // below it is clipped.
    QImage on(const QRect& area, const QTransform& toDevice) const;

private:
    struct Row { // from the first mark to the last
        int begin = 0;
        std::vector<unsigned char> marks;
        int end() const { return begin + int(marks.size()); }
    };
    struct Level {
        int width = 0;
        std::vector<Row> rows;
    };
    static Row rowOf(const std::vector<unsigned char>& marks);
    static Level halved(const Level& level);
    static bool merge(const Level& level, int first, int last, Row& merged);

    std::vector<Level> m_levels;
};

} // namespace Host

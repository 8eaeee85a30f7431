// ondrel-contact-sheet OUT.png PHOTO NAME=FILE...: shows pictures side by side with their names and sizes, and the
// histogram of PHOTO.

#include <ondrel/color/colormanager.h>
#include <ondrel/color/colortransformer.h>
#include <ondrel/pixel/scale.h>
#include <ondrel/resources/resourceengine.h>

#include <QApplication>
#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <vector>

namespace
{

constexpr int kColumns = 4, kCellWidth = 400, kCellHeight = 330, kPictureHeight = 270, kMargin = 16;
const QColor kBackground(50, 47, 47), kBody(76, 75, 75), kText(201, 198, 198);

std::shared_ptr<const Ondrel::Image> load(const QString& file)
{
    Ondrel::ResourceId id;
    std::shared_ptr<const Ondrel::Image> image;
    ResourceEngine& store = ResourceEngine::Get();
    if (store.AddImage(file.toStdString(), id))
        store.CopyImage(id, image, Ondrel::EmbeddedColorProfile, {});
    return image;
}

QRect cell(int index)
{
    return QRect(index % kColumns * kCellWidth, index / kColumns * kCellHeight, kCellWidth, kCellHeight)
        .adjusted(kMargin / 2, kMargin / 2, -kMargin / 2, -kMargin / 2);
}

// Draws the frame of a cell and its caption, and gives the area for the picture.
QRect drawFrame(QPainter& painter, int index, const QString& title, const QString& detail)
{
    const QRect frame = cell(index);
    painter.fillRect(frame, kBody);
    const QRect caption = frame.adjusted(10, kPictureHeight, -10, -6);
    painter.setPen(kText);
    painter.drawText(caption, Qt::AlignVCenter | Qt::AlignLeft, title);
    painter.drawText(caption, Qt::AlignVCenter | Qt::AlignRight, detail);
    return frame.adjusted(8, 8, -8, kPictureHeight - frame.height());
}

void drawPicture(QPainter& painter, int index, const QString& title, const Ondrel::Image& image)
{
    const QString detail = QString("%1 x %2").arg(image.width).arg(image.height);
    const QRect area = drawFrame(painter, index, title, detail);
    unsigned int width = 0, height = 0;
    CalculateScaleSize("Pixels", "Keep", image.width, image.height, 0, 0, unsigned(area.width()),
                       unsigned(area.height()), 1.0f, width, height);
    if (width > image.width) { // small pictures are shown as they are
        width = image.width;
        height = image.height;
    }
    const Ondrel::Image scaled = Scale(image, width, height, Ondrel::FilterMethod::Bicubic);
    const QImage shown = Ondrel::ColorTransformer::toQImage(scaled, false);
    painter.drawImage(area.center() - shown.rect().center(), shown);
}

// Heights are square roots of the counts, so that the few bright pixels of a dark picture are seen as well.
void drawHistogram(QPainter& painter, int index, const Ondrel::Image& image)
{
    const QRect area = drawFrame(painter, index, "Histogram", "luminance, red, green, blue");
    Ondrel::Image::Histogram histogram;
    image.BuildHistogram(histogram, true, false, true, true, true, 256);
    unsigned int peak = 1; // the two ends hold clipped pixels and would flatten the rest
    for (const auto* bins : {&histogram.luminance, &histogram.red, &histogram.green, &histogram.blue})
        peak = std::max(peak, *std::max_element(bins->begin() + 1, bins->end() - 1));

    painter.fillRect(area, QColor(14, 14, 14));
    painter.setClipRect(area);
    painter.setCompositionMode(QPainter::CompositionMode_Plus);
    const std::pair<const std::vector<unsigned int>*, QColor> curves[] = {{&histogram.luminance, QColor(70, 70, 70)},
                                                                          {&histogram.red, QColor(150, 20, 20)},
                                                                          {&histogram.green, QColor(20, 130, 20)},
                                                                          {&histogram.blue, QColor(20, 40, 170)}};
    for (const auto& [bins, color] : curves) {
        QPainterPath path(QPointF(area.left(), area.bottom() + 1));
        for (std::size_t i = 0; i < bins->size(); ++i)
            path.lineTo(area.left() + double(i) / 255 * area.width(),
                        area.bottom() + 1 - 0.95 * area.height() * std::sqrt(std::min(1.0, double((*bins)[i]) / peak)));
        path.lineTo(area.right() + 1, area.bottom() + 1);
        painter.fillPath(path, color);
    }
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.setClipping(false);
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const std::shared_ptr<const Ondrel::Image> photo = load(arguments.value(2));
    if (arguments.size() < 3 || !photo) {
        std::fputs("usage: ondrel-contact-sheet OUT.png PHOTO NAME=FILE...\n", stderr);
        return 2;
    }
    Ondrel::ColorManager::get(); // display management is on from here
    const int cells = arguments.size() - 2;
    const int rows = (cells + kColumns - 1) / kColumns;
    QImage sheet(std::min(cells, kColumns) * kCellWidth + kMargin, rows * kCellHeight + kMargin, QImage::Format_RGB32);
    sheet.fill(kBackground);
    QPainter painter(&sheet);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(kMargin / 2.0, kMargin / 2.0);
    QFont font = painter.font();
    font.setPixelSize(15);
    painter.setFont(font);
    for (int i = 3; i < arguments.size(); ++i) {
        const QString title = arguments[i].section('=', 0, 0), file = arguments[i].section('=', 1);
        const std::shared_ptr<const Ondrel::Image> image = load(file);
        if (!image) {
            std::fprintf(stderr, "%s: not a readable picture\n", qUtf8Printable(file));
            return 1;
        }
        drawPicture(painter, i - 3, title, *image);
    }
    drawHistogram(painter, cells - 1, *photo);
    painter.end();
    return sheet.save(arguments[1]) ? 0 : 1;
}

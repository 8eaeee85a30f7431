#include <ondrel/color/proofnotice_p.h>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPalette>
#include <QRadialGradient>

#include <algorithm>
#include <cstdint>
#include <new>

namespace Ondrel
{
namespace
{

constexpr char kText[] = "Soft Proof Unavailable\n\"Color Management\" must be enabled in File->Preferences";

QFont fitted(QFont font, int width, int height)
{
    const int pixels = static_cast<int>(std::min(width * 0.2 * (1.0 / 9.0), height * 0.5));
    if (pixels > 0) // QFont warns of 0 and keeps its size
        font.setPixelSize(pixels);
    return font;
}

// The text has the colour of the rim: it stands out from the middle in every theme.
void paintNotice(QImage& picture)
{
    const QPalette palette = QGuiApplication::palette();
    const int width = picture.width();
    const int height = picture.height();
    const QPoint centre(width / 2, height / 2);
    QRadialGradient gradient(centre, height * 1.75, centre);
    gradient.setColorAt(0.0, palette.color(QPalette::Text));
    gradient.setColorAt(1.0, palette.color(QPalette::Window));

    QPainter painter(&picture);
    painter.setPen(Qt::NoPen);
    painter.setBrush(gradient);
    painter.drawRect(0, 0, width, height);
    painter.setPen(palette.color(QPalette::Window));
    painter.setFont(fitted(painter.font(), width, height));
    painter.drawText(QRect(0, 0, width, height), Qt::AlignCenter, QString::fromLatin1(kText));
}

} // namespace

Image proofNotice(unsigned int width, unsigned int height)
{
    // No block holds 2^30 pixels: an image that claims so many has fewer.
    if (width == 0 || height == 0 || std::uint64_t{width} * height >= (std::uint64_t{1} << 30))
        return Image(width, height);
    QImage picture(static_cast<int>(width), static_cast<int>(height), QImage::Format_ARGB32_Premultiplied);
    if (picture.isNull())
        throw std::bad_alloc();
    // A painter reaches 32767 pixels far. What is farther away has the colour of the rim.
    picture.fill(QGuiApplication::palette().color(QPalette::Window));
    paintNotice(picture);
    return Image(picture);
}

} // namespace Ondrel

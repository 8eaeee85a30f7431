// ondrel-scene OUT.png [WIDTH HEIGHT]: paints a landscape, as a picture to try things on where no photograph is at
// hand.

#include <ondrel/color/colormanager.h>
#include <ondrel/core/image.h>
#include <ondrel/pixel/painter.h>
#include <ondrel/resources/resourceengine.h>

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace
{

unsigned short channel(double v)
{
    return static_cast<unsigned short>(std::clamp(v, 0.0, 1.0) * 65535.0);
}

// Sky above, darkening towards the zenith; meadow below.
void paintGround(Ondrel::Image& image)
{
    for (unsigned int y = 0; y < image.height; ++y) {
        const double v = double(y) / image.height;
        if (v < 0.62)
            image.Fill(channel(0.25 + 0.75 * v), channel(0.45 + 0.5 * v), channel(0.85 + 0.1 * v), 65535, 0, y,
                       image.width, 1);
        else
            image.Fill(channel(0.55 - 0.5 * (v - 0.62)), channel(0.6 - 0.6 * (v - 0.62)), channel(0.25), 65535, 0, y,
                       image.width, 1);
    }
}

void paintRidge(Ondrel::Image& image, double horizon, double height, double shade)
{
    for (unsigned int x = 0; x < image.width; ++x) {
        const double u = double(x) / image.width;
        const double top = horizon - height * (0.6 + 0.3 * std::sin(u * 9.0 + shade * 20) + 0.1 * std::sin(u * 53.0));
        const auto y0 = static_cast<unsigned int>(std::clamp(top, 0.0, 1.0) * image.height);
        const auto y1 = static_cast<unsigned int>(horizon * image.height);
        if (y1 > y0)
            image.Fill(channel(0.30 + shade), channel(0.38 + shade), channel(0.48 + shade), 65535, x, y0, 1, y1 - y0);
    }
}

// Numbers from 0 to 1 that look random and are the same each time.
double scatter(int index)
{
    const double v = std::sin(index * 12.9898) * 43758.5453;
    return v - std::floor(v);
}

void paintSky(Ondrel::Image& image)
{
    const int w = int(image.width), h = int(image.height);
    PixelPainter painter(&image);
    painter.setBrush(65535, 62000, 48000, 65535, static_cast<unsigned short>(h / 14), 0.8f, 4.0, 0.3);
    painter.drawPoint(QPoint(w * 3 / 4, h / 5));
    painter.setOpacity(0.25f);
    for (int i = 0; i < 24; ++i) {
        painter.setBrush(65535, 65535, 65535, 65535, static_cast<unsigned short>(h / (14 + i % 12)), 0.02f, 4.0, 0.35);
        const QPoint from(int(scatter(i) * w), int((0.06 + 0.22 * scatter(i + 50)) * h));
        painter.drawLine(from, from + QPoint(int((0.05 + 0.12 * scatter(i + 99)) * w), int(0.01 * h)));
    }
}

// Firs, the far ones first and small.
void paintTrees(Ondrel::Image& image)
{
    const int w = int(image.width), h = int(image.height), count = 60;
    PixelPainter painter(&image);
    for (int i = 0; i < count; ++i) {
        const double near = double(i) / count;
        const QPoint root(int(scatter(i) * w), int((0.64 + 0.34 * near * near) * h));
        const int height = int((0.03 + 0.14 * near) * h);
        for (int step = 0; step < 12; ++step) {
            const int half = std::max(1, height * (12 - step) / 45);
            painter.setBrush(channel(0.10 + 0.01 * step), channel(0.26 + 0.012 * step), channel(0.13), 65535,
                             static_cast<unsigned short>(std::max(2, height / 14)), 0.5f, 4.0, 0.3);
            const QPoint middle = root - QPoint(0, height * step / 12);
            painter.drawLine(middle - QPoint(half, 0), middle + QPoint(half, 0));
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const unsigned int width = arguments.value(2, "3000").toUInt();
    const unsigned int height = arguments.value(3, "2000").toUInt();
    if (arguments.size() < 2 || width < 16 || height < 16 || width > 15000 || height > 15000) {
        std::fputs("usage: ondrel-scene OUT.png [WIDTH HEIGHT]\n", stderr);
        return 2;
    }
    Ondrel::Image image(width, height);
    paintGround(image);
    paintSky(image);
    paintRidge(image, 0.62, 0.30, 0.20);
    paintRidge(image, 0.64, 0.18, 0.05);
    paintTrees(image);
    image.colorProfile = Ondrel::DefaultColorProfileHash;
    const ResourceEngine::ExportPNGSettings settings{6, Ondrel::EmbeddedColorProfile, 0, 1};
    return ResourceEngine::ExportPNG(arguments[1], image, settings, nullptr, nullptr) ? 0 : 1;
}

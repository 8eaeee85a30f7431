// ondrel-make-dng IN.png OUT.dng: what a camera with a Bayer sensor of 12 bits might have made of a picture.

#include "dngfile.h"

#include <ondrel/resources/resourceengine.h>

#include <QCoreApplication>
#include <QFile>

#include <cmath>
#include <cstdio>

namespace
{

// The curve of IEC 61966-2-1.
double linear(double v)
{
    return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
}

OndrelTest::DngFile mosaicOf(const Ondrel::Image& image)
{
    OndrelTest::DngFile file;
    file.width = image.width;
    file.height = image.height;
    file.black = 256;
    file.white = 4095;
    file.neutral = {0.5, 1.0, 0.65};
    file.matrix = {3.2404542, -1.5371385, -0.4985314, -0.9692660, 1.8760108,
                   0.0415560, 0.0556434,  -0.2040259, 1.0572252};
    for (std::size_t i = 0; i < 9; ++i)
        file.matrix[i] *= file.neutral[i / 3];
    for (std::uint32_t y = 0; y < image.height; ++y)
        for (std::uint32_t x = 0; x < image.width; ++x) {
            const std::size_t color = file.colorAt(x, y);
            const double light = linear(image.data[(std::size_t(y) * image.width + x) * 4 + color] / 65535.0);
            file.samples.push_back(static_cast<std::uint16_t>(256 + 3839 * file.neutral[color] * light));
        }
    return file;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    Ondrel::Image image;
    if (arguments.size() != 3 || !ResourceEngine::ImportPNG(arguments[1], image)) {
        std::fputs("usage: ondrel-make-dng IN.png OUT.dng\n", stderr);
        return 2;
    }
    const std::vector<unsigned char> bytes = mosaicOf(image).bytes();
    QFile out(arguments[2]);
    const bool written =
        out.open(QIODevice::WriteOnly) &&
        out.write(reinterpret_cast<const char*>(bytes.data()), qint64(bytes.size())) == qint64(bytes.size()) &&
        out.flush();
    return written ? 0 : 1;
}

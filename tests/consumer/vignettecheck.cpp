// vignettecheck make FILE: writes a picture. vignettecheck compare FILE RESULT AMOUNT: whether the result is the
// picture darkened towards its corners by so many percent.

#include <QColor>
#include <QGuiApplication>
#include <QImage>

#include <cmath>
#include <cstdio>

namespace
{

bool make(const QString& file)
{
    QImage image(201, 120, QImage::Format_RGB888);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixelColor(x, y, QColor(255 - x, 100 + y, (x * y) % 256));
    }
    return image.save(file);
}

bool compare(const QString& file, const QString& resultFile, double amount)
{
    const QImage image = QImage(file).convertToFormat(QImage::Format_RGBA64);
    const QImage result(resultFile);
    if (image.isNull() || image.size() != result.size() || result.depth() != 64) {
        std::puts("The result is no picture of 16 bits of that size.");
        return false;
    }
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const double right = (2 * x + 1) / double(image.width()) - 1,
                         down = (2 * y + 1) / double(image.height()) - 1;
            const double factor = 1 - amount / 100 * (right * right + down * down) / 2;
            const QRgba64 before = image.pixelColor(x, y).rgba64(), after = result.pixelColor(x, y).rgba64();
            // One step for the order in which the formula is computed.
            if (std::abs(before.red() * factor - after.red()) > 1 ||
                std::abs(before.green() * factor - after.green()) > 1 ||
                std::abs(before.blue() * factor - after.blue()) > 1 || after.alpha() != 65535) {
                std::printf("Pixel (%d, %d) is %d, %d, %d.\n", x, y, after.red(), after.green(), after.blue());
                return false;
            }
        }
    }
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    const QGuiApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    if (words.value(1) == "make" && words.size() == 3)
        return make(words[2]) ? 0 : 1;
    if (words.value(1) == "compare" && words.size() == 5)
        return compare(words[2], words[3], words[4].toDouble()) ? 0 : 1;
    return 2;
}

// ondrel-backends: scales and blurs a picture on the processor and on an OpenCL device, prints how far the two are
// apart, and saves the differences, amplified: scaling at the left, blur at the right, grey where they agree.

#include "devices.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/pixel/gaussianblur.h>
#include <ondrel/pixel/opencl.h>
#include <ondrel/pixel/scaleopencl.h>
#include <ondrel/resources/resourceengine.h>

#include <QCoreApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace
{

using Ondrel::Image;

constexpr int kAmplification = 8192;
constexpr unsigned int kSide = 900; // of the square that the results fit in
constexpr float kRadius = 12;

struct Difference {
    std::size_t samples = 0, differing = 0;
    int largest = 0;
};

Difference difference(const Image& a, const Image& b)
{
    Difference result;
    result.samples = std::size_t(a.width) * a.height * 4;
    for (std::size_t i = 0; i < result.samples; ++i) {
        const int distance = std::abs(int(a.data[i]) - int(b.data[i]));
        result.differing += distance != 0;
        result.largest = std::max(result.largest, distance);
    }
    return result;
}

void print(const char* what, const Image& onProcessor, const Image& onDevice, qint64 processorTime, qint64 deviceTime)
{
    const Difference d = difference(onProcessor, onDevice);
    std::printf("%-8s %u x %u: processor %lld ms, device %lld ms; largest difference %d of 65535, %zu of %zu samples "
                "differ\n",
                what, onDevice.width, onDevice.height, static_cast<long long>(processorTime),
                static_cast<long long>(deviceTime), d.largest, d.differing, d.samples);
}

void paintDifference(Image& picture, unsigned int left, const Image& a, const Image& b)
{
    for (unsigned int y = 0; y < a.height; ++y)
        for (unsigned int x = 0; x < a.width; ++x) {
            const std::size_t from = (std::size_t(y) * a.width + x) * 4;
            std::uint16_t* to = picture.data + (std::size_t(y) * picture.width + left + x) * 4;
            for (std::size_t c = 0; c < 3; ++c) {
                const int distance = int(b.data[from + c]) - int(a.data[from + c]);
                to[c] = std::uint16_t(std::clamp(32768 + distance * kAmplification, 0, 65535));
            }
            to[3] = 65535;
        }
}

template <typename Work>
qint64 milliseconds(Work work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return timer.elapsed();
}

bool compare(const Image& source, const QString& output)
{
    const float factor = float(kSide) / float(std::max(source.width, source.height));
    const unsigned int width = std::max(1u, unsigned(float(source.width) * factor));
    const unsigned int height = std::max(1u, unsigned(float(source.height) * factor));

    Image scaledHere, scaledThere, blurredHere, blurredThere;
    bool onDevice = false;
    const auto filter = Ondrel::FilterMethod::Bilinear;
    const qint64 scaleHere = milliseconds([&] { Scale_CPU(source, scaledHere, width, height, filter); });
    const qint64 scaleThere =
        milliseconds([&] { onDevice = Scale_OpenCL(source, scaledThere, width, height, filter); });
    if (!onDevice) {
        std::fputs("ondrel-backends: the device did not scale the picture\n", stderr);
        return false;
    }
    const auto edge = GaussianEdge::Clamp;
    const qint64 blurHere =
        milliseconds([&] { blurredHere = GaussianBlur_CPU(scaledHere, kRadius, kRadius, edge, {}); });
    const qint64 blurThere = milliseconds([&] { blurredThere = GaussianBlur(scaledHere, kRadius, kRadius, edge, {}); });
    print("scaling", scaledHere, scaledThere, scaleHere, scaleThere);
    print("blur", blurredHere, blurredThere, blurHere, blurThere);

    Image picture(width * 2, height);
    picture.colorProfile = Ondrel::DefaultColorProfileHash;
    paintDifference(picture, 0, scaledHere, scaledThere);
    paintDifference(picture, width, blurredHere, blurredThere);
    std::printf("differences times %d: %s\n", kAmplification, qUtf8Printable(output));
    const ResourceEngine::ExportPNGSettings settings{6, Ondrel::EmbeddedColorProfile, 0, 0};
    return ResourceEngine::ExportPNG(output, picture, settings, nullptr, nullptr);
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 3) {
        std::fputs("usage: ondrel-backends IN OUT.png [PLATFORM:DEVICE]\n", stderr);
        return 2;
    }
    Ondrel::ResourceId id;
    std::shared_ptr<const Image> image;
    ResourceEngine::Get().AddImage(arguments[1].toStdString(), id);
    if (!ResourceEngine::Get().CopyImage(id, image, Ondrel::EmbeddedColorProfile, {}) || !image->data) {
        std::fprintf(stderr, "ondrel-backends: %s cannot be read\n", qUtf8Printable(arguments[1]));
        return 1;
    }
    if (!chooseDevice(arguments.value(3)))
        return 2;
    const bool done = compare(*image, arguments[2]);
    PixelOpenCL::instance()->disable();
    return done ? 0 : 1;
}

// ondrel-devicetest: tells what OpenCL devices there are, and whether one of them computes as the processor does. An
// editor runs it before it uses a device, since a broken driver takes down the process that it is loaded into.
//
//   ondrel-devicetest list                       {"devices": [{"platform": 0, "device": 0, "name": ..., "driver":
//   ...}]} ondrel-devicetest test PLATFORM DEVICE       {"passed": true, "reason": ""}
//
// The answer is the last line of the standard output. Exit status: 0 there is an answer, 2 the command line made no
// sense.

#include "../../common/pixelgrouping.h"

#include <ondrel/core/platform.h>
#include <ondrel/pixel/gaussianblur.h>
#include <ondrel/pixel/opencl.h>
#include <ondrel/pixel/scaleopencl.h>

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace
{

using Ondrel::Image;

constexpr unsigned int kSide = 96; // several slices of a kernel need 16384 pixels each; a test has to be short
constexpr int kRounding = 4;       // of 65535: devices round in single precision

class Text
{
    Q_DECLARE_TR_FUNCTIONS(DeviceTest)
};

// Ends the program at once: how drivers clean up after themselves is no part of the answer.
[[noreturn]] void answer(const QJsonObject& object)
{
    std::printf("\n%s\n", QJsonDocument(object).toJson(QJsonDocument::Compact).constData());
    std::fflush(stdout);
    std::_Exit(0);
}

QString driverOf(unsigned int platform, unsigned int device)
{
    std::vector<cl::Platform> platforms;
    std::vector<cl::Device> devices;
    if (cl::Platform::get(&platforms) != CL_SUCCESS || platform >= platforms.size() ||
        platforms[platform].getDevices(CL_DEVICE_TYPE_ALL, &devices) != CL_SUCCESS || device >= devices.size())
        return QString();
    return QString::fromStdString(devices[device].getInfo<CL_DRIVER_VERSION>());
}

[[noreturn]] void list()
{
    std::vector<PixelOpenCL::Platform> platforms;
    PixelOpenCL::instance()->queryDevices(platforms);
    QJsonArray found;
    for (unsigned int p = 0; p < platforms.size(); ++p) {
        for (unsigned int d = 0; d < platforms[p].devices.size(); ++d)
            found.append(QJsonObject{{"platform", int(p)},
                                     {"device", int(d)},
                                     {"name", QString::fromStdString(platforms[p].devices[d])},
                                     {"driver", driverOf(p, d)}});
    }
    answer({{"devices", found}});
}

// Opaque; waves with a little noise.
Image picture()
{
    Image image(kSide * 2, kSide);
    unsigned int noise = 1;
    for (unsigned int i = 0; i < image.width * image.height * 4; ++i) {
        noise = noise * 1664525u + 1013904223u;
        const unsigned int x = i / 4 % image.width, y = i / 4 / image.width;
        image.data[i] = i % 4 == 3 ? 65535 : std::uint16_t((x * 311 + y * 173 * (1 + i % 4) + (noise >> 20)) % 65536);
    }
    return image;
}

int largestDifference(const Image& a, const Image& b)
{
    if (a.width != b.width || a.height != b.height)
        return 65535;
    int largest = 0;
    for (std::size_t i = 0; i < std::size_t(a.width) * a.height * 4; ++i)
        largest = std::max(largest, std::abs(int(a.data[i]) - int(b.data[i])));
    return largest;
}

QString compared(const QString& operation, const Image& device, const Image& processor, int allowed)
{
    const int difference = largestDifference(device, processor);
    return difference <= allowed
               ? QString()
               : Text::tr("%1 differs from the processor by %2 of 65535.").arg(operation).arg(difference);
}

QString scaling(const Image& source)
{
    for (const auto filter : {Ondrel::FilterMethod::NearestNeighbor, Ondrel::FilterMethod::Bilinear}) {
        for (const unsigned int side : {kSide / 3, kSide * 3}) {
            Image onDevice, onProcessor;
            if (!Scale_OpenCL(source, onDevice, side * 2, side, filter))
                return Text::tr("The device refuses to scale.");
            Scale_CPU(source, onProcessor, side * 2, side, filter);
            const bool isExact = filter == Ondrel::FilterMethod::NearestNeighbor;
            QString reason = compared(Text::tr("Scaling"), onDevice, onProcessor, isExact ? 0 : kRounding);
            if (!reason.isEmpty())
                return reason;
        }
    }
    return QString();
}

QString blurring(const Image& source)
{
    return compared(Text::tr("Blurring"), GaussianBlur(source, 6, 2.5f, GaussianEdge::Clamp, {}),
                    GaussianBlur_CPU(source, 6, 2.5f, GaussianEdge::Clamp, {}), kRounding);
}

QString demosaicing(const Image& source)
{
    constexpr unsigned int filters = 0x94949494;
    Examples::Mosaic mosaic{source, filters};
    for (unsigned int y = 0; y < source.height; ++y) {
        for (unsigned int x = 0; x < source.width; ++x) {
            for (unsigned int c = 0; c < 3; ++c) {
                if (c != Examples::colorAt(filters, y, x))
                    mosaic.image.data[(std::size_t(y) * source.width + x) * 4 + c] = 0;
            }
        }
    }
    Image onDevice(source.width, source.height), onProcessor(source.width, source.height);
    if (!Examples::demosaicOnDevice(mosaic, onDevice))
        return Text::tr("The device refuses to develop a camera RAW picture.");
    Examples::demosaicOnProcessor(mosaic, onProcessor);
    return compared(Text::tr("Developing a camera RAW picture"), onDevice, onProcessor, 0);
}

QString test(unsigned int platform, unsigned int device)
{
    if (!PixelOpenCL::instance()->setDevice(platform, device))
        return Text::tr("The device cannot be opened.");
    const Image source = picture();
    QString reason = scaling(source);
    if (reason.isEmpty())
        reason = blurring(source);
    if (reason.isEmpty())
        reason = demosaicing(source);
    PixelOpenCL::instance()->disable();
    return reason;
}

} // namespace

int main(int argc, char** argv)
{
    PlatformPrivate::setup(argc, &argv);
    const QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments().mid(1);
    if (words == QStringList("list"))
        list();
    bool isPlatform = false, isDevice = false;
    const unsigned int platform = words.value(1).toUInt(&isPlatform), device = words.value(2).toUInt(&isDevice);
    if (words.size() != 3 || words[0] != "test" || !isPlatform || !isDevice) {
        std::fprintf(stderr, "usage: ondrel-devicetest list | ondrel-devicetest test PLATFORM DEVICE\n");
        return 2;
    }
    const QString reason = test(platform, device);
    answer({{"passed", reason.isEmpty()}, {"reason", reason}});
}

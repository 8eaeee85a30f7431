// ondrel-demosaic: makes a picture of the mosaic of a camera RAW file, or of one that it paints, by the library's
// OpenCL kernels or, where there is no device, on the processor; prints which of them it was.

#include "source.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/pixel/opencl.h>
#include <ondrel/resources/resourceengine.h>

#include <QCoreApplication>
#include <QStringList>

#include <cstdio>

namespace
{

// The first device of the first platform that has one.
void chooseFirstDevice()
{
    std::vector<PixelOpenCL::Platform> platforms;
    PixelOpenCL::instance()->queryDevices(platforms);
    for (std::size_t i = 0; i < platforms.size(); ++i)
        if (!platforms[i].devices.empty() && PixelOpenCL::instance()->setDevice(unsigned(i), 0)) {
            std::printf("device: %s\n", platforms[i].devices[0].c_str());
            return;
        }
}

Ondrel::Image develop(const Examples::Mosaic& mosaic)
{
    Ondrel::Image picture(mosaic.image.width, mosaic.image.height);
    picture.Fill(0, 0, 0, 65535); // the border that no interpolation reaches
    const bool onDevice = demosaicOnDevice(mosaic, picture);
    if (!onDevice)
        demosaicOnProcessor(mosaic, picture);
    std::printf("%u x %u, interpolated on the %s\n", picture.width, picture.height, onDevice ? "device" : "processor");
    picture.colorProfile = mosaic.image.colorProfile;
    return picture;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QStringList arguments = QCoreApplication::arguments().mid(1);
    const bool processor = arguments.removeAll("--processor") > 0;
    if (arguments.isEmpty() || arguments.size() > 2) {
        std::fputs("usage: ondrel-demosaic [--processor] [RAW] OUT.png\n", stderr);
        return 2;
    }
    Examples::Mosaic mosaic;
    if (arguments.size() == 1) {
        mosaic = paintMosaic();
        mosaic.image.colorProfile = Ondrel::DefaultColorProfileHash;
    } else if (!readMosaic(arguments[0], mosaic)) {
        std::fprintf(stderr, "ondrel-demosaic: %s is no RAW file of a Bayer sensor\n", qUtf8Printable(arguments[0]));
        return 1;
    }
    if (!processor)
        chooseFirstDevice();
    Ondrel::Image picture = develop(mosaic);
    PixelOpenCL::instance()->disable();
    const ResourceEngine::ExportPNGSettings settings{6, Ondrel::EmbeddedColorProfile, 0, 1};
    return ResourceEngine::ExportPNG(arguments.last(), picture, settings, nullptr, nullptr) ? 0 : 1;
}

#include "devices.h"

#include <ondrel/pixel/opencl.h>

#include <QCoreApplication>
#include <QRegularExpression>

#include <cstdio>

namespace
{

const QRegularExpression& deviceForm()
{
    static const QRegularExpression form("^(\\d{1,4}):(\\d{1,4})$");
    return form;
}

std::vector<PixelOpenCL::Platform> allDevices()
{
    std::vector<PixelOpenCL::Platform> platforms;
    PixelOpenCL::instance()->queryDevices(platforms);
    return platforms;
}

QString firstDevice()
{
    const std::vector<PixelOpenCL::Platform> platforms = allDevices();
    for (std::size_t i = 0; i < platforms.size(); ++i)
        if (!platforms[i].devices.empty())
            return QString("%1:0").arg(i);
    return {};
}

} // namespace

int listDevices()
{
    const std::vector<PixelOpenCL::Platform> platforms = allDevices();
    for (std::size_t i = 0; i < platforms.size(); ++i)
        for (std::size_t k = 0; k < platforms[i].devices.size(); ++k)
            std::printf("%zu:%zu  %s\n", i, k, platforms[i].devices[k].c_str());
    return 0;
}

bool chooseDevice(const QString& device)
{
    const QString name = device.isEmpty() ? firstDevice() : device;
    const auto match = deviceForm().match(name);
    if (match.hasMatch() && PixelOpenCL::instance()->setDevice(match.captured(1).toUInt(), match.captured(2).toUInt()))
        return true;
    std::fprintf(stderr, "%s: no OpenCL device%s; see ondrel-convert --list-devices\n",
                 qUtf8Printable(QCoreApplication::applicationName()),
                 qUtf8Printable(device.isEmpty() ? device : " \"" + device + '"'));
    return false;
}

QStringList withDeviceValue(QStringList arguments)
{
    const int at = arguments.indexOf("--opencl");
    if (at < 0)
        return arguments;
    const bool named = deviceForm().match(arguments.value(at + 1)).hasMatch();
    arguments[at] = "--opencl=" + (named ? arguments.takeAt(at + 1) : QString());
    return arguments;
}

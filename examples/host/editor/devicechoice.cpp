#include "devicechoice.h"

#include <ondrel/pixel/opencl.h>

#include <QSettings>

#include <algorithm>
#include <utility>

namespace Host
{
namespace
{

const char* const kDevice = "editor/opencl/device";

} // namespace

DeviceChoice::DeviceChoice(QObject* parent)
    : QObject(parent)
    , m_selfTest(this)
    , m_state(tr("Pictures are computed on the processor."))
{
}

QString DeviceChoice::kept() const
{
    return QSettings().value(kDevice).toString();
}

void DeviceChoice::keep(const QString& name)
{
    QSettings().setValue(kDevice, name);
}

void DeviceChoice::give(const QString& state)
{
    m_state = state;
    Q_EMIT stateChanged();
}

void DeviceChoice::start()
{
    const QString name = kept();
    if (name.isEmpty())
        return;
    ++m_busy;
    m_selfTest.list([this, name, choice = ++m_choice](const std::vector<DeviceInfo>& devices) {
        --m_busy;
        if (choice != m_choice)
            return;
        const auto found = std::find_if(devices.begin(), devices.end(),
                                        [&name](const DeviceInfo& device) { return device.name == name; });
        if (found != devices.end())
            choose(*found);
        else // it stays chosen: it may be back at the next start
            refuse(tr("%1 is not there.").arg(name));
    });
}

void DeviceChoice::choose(const DeviceInfo& device)
{
    give(tr("Testing %1...").arg(device.name));
    ++m_busy;
    m_selfTest.test(device, [this, device, choice = ++m_choice](const QString& reason) {
        --m_busy;
        if (choice != m_choice)
            return;
        if (reason.isEmpty()) {
            give(tr("Opening %1...").arg(device.name));
            switchTo(device);
            return;
        }
        keep(QString());
        refuse(tr("%1 is not used. %2").arg(device.name, reason));
    });
}

void DeviceChoice::switchTo(const std::optional<DeviceInfo>& device)
{
    m_inUse.clear();
    m_wanted = device;
    m_again = m_switching;
    if (!m_switching)
        runSwitch();
}

// Compiling for a device can take seconds, and giving it up waits for what it computes.
void DeviceChoice::runSwitch()
{
    m_switching = true;
    m_worker.run(
        [this, device = m_wanted]() -> std::function<void()> {
            bool done = true;
            if (device)
                done = PixelOpenCL::instance()->setDevice(device->platform, device->device);
            else
                PixelOpenCL::instance()->disable();
            return [this, device, done] { finishSwitch(device, done); };
        },
        [this, device = m_wanted](const QString&) { finishSwitch(device, false); });
}

void DeviceChoice::finishSwitch(const std::optional<DeviceInfo>& device, bool done)
{
    m_switching = false;
    if (std::exchange(m_again, false))
        return runSwitch();
    if (!device)
        return;
    keep(done ? device->name : QString());
    m_inUse = done ? device->name : QString();
    if (done)
        give(tr("Pictures are computed on %1.").arg(device->name));
    else
        refuse(tr("%1 cannot be opened.").arg(device->name));
}

void DeviceChoice::chooseNone()
{
    ++m_choice;
    keep(QString());
    switchTo(std::nullopt);
    give(tr("Pictures are computed on the processor."));
}

void DeviceChoice::refuse(const QString& reason)
{
    switchTo(std::nullopt);
    give(tr("%1 Pictures are computed on the processor.").arg(reason));
    Q_EMIT message(m_state);
}

} // namespace Host

#pragma once

#include "deviceselftest.h"
#include "worker.h"

#include <optional>

namespace Host
{

// The OpenCL device that pictures are computed on, chosen by the user and kept in the settings; none at first. A device
// is used once it has passed its test; one that fails leaves the processor. User-interface thread only; nothing waits.
class DeviceChoice : public QObject
{
    Q_OBJECT
public:
    explicit DeviceChoice(QObject* parent);

    DeviceSelfTest& selfTest() { return m_selfTest; }
    void start();         // the device of the settings, if there is one
    QString kept() const; // its name; empty for none
    void choose(const DeviceInfo& device);
    void chooseNone();

    QString inUse() const { return m_inUse; } // a device's name; empty for none
    QString state() const { return m_state; } // a sentence for the user
    bool isBusy() const { return m_busy > 0 || m_worker.isBusy(); }

Q_SIGNALS:
    void stateChanged();
    void message(const QString& text); // when a device that was asked for is not used

private:
    void switchTo(const std::optional<DeviceInfo>& device); // none for the processor
    void runSwitch();
    void finishSwitch(const std::optional<DeviceInfo>& device, bool done);
    void give(const QString& state);
    void refuse(const QString& reason);
    void keep(const QString& name);

    DeviceSelfTest m_selfTest;
    QString m_inUse, m_state;
    int m_busy = 0;   // questions without an answer yet
    int m_choice = 0; // counts choices: answers to earlier ones come to nothing
    std::optional<DeviceInfo> m_wanted;
    bool m_switching = false; // one at a time, so that the last one holds
    bool m_again = false;     // something else is wanted since
    Worker m_worker;          // the first to go: its end waits for what runs
};

} // namespace Host

#pragma once

#include <QObject>

#include <functional>
#include <vector>

class QJsonObject;
class QProcess;
class QStringList;

namespace Host
{

// An OpenCL device of the machine, with the numbers that PixelOpenCL::setDevice takes.
struct DeviceInfo {
    unsigned int platform = 0;
    unsigned int device = 0;
    QString name;
    QString driver; // its version
};

// Asks a program of its own about devices, which loads their drivers in the place of this process. What it answers is
// told on this thread; nothing waits.
class DeviceSelfTest : public QObject
{
    Q_OBJECT
public:
    explicit DeviceSelfTest(QObject* parent);
    ~DeviceSelfTest() override; // ends the programs that run

    // The program, beside the one that runs at first, and how long it may take.
    void setProgram(const QString& program) { m_program = program; }
    void setTimeLimit(int milliseconds) { m_timeLimit = milliseconds; }

    // All devices; none if they cannot be told.
    void list(std::function<void(std::vector<DeviceInfo>)> then);

    // Computes with the device what the processor computes too. Why it must not be used, or an empty text. The result
    // is kept in the settings with the device's name and driver, so that a device is tested once.
    void test(const DeviceInfo& device, std::function<void(QString reason)> then);
    static void forget(const DeviceInfo& device); // that it was tested

private:
    void run(const QStringList& arguments, std::function<void(QJsonObject answer, QString reason)> then);

    QString m_program;
    int m_timeLimit;
};

} // namespace Host

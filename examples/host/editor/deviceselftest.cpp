#include "deviceselftest.h"

#include <QCoreApplication>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSettings>
#include <QTimer>
#include <QUrl>

namespace Host
{
namespace
{

constexpr int kTimeLimit = 120000; // some drivers compile for a long time
const char* const kPassed = "passed";

QString settingFor(const DeviceInfo& device)
{
    const QByteArray name = QUrl::toPercentEncoding(device.name + '\n' + device.driver);
    return "editor/opencl/tested/" + QString::fromLatin1(name);
}

// Drivers write to the standard output too; the answer comes last.
QJsonObject lastObject(const QByteArray& output)
{
    const QList<QByteArray> lines = output.trimmed().split('\n');
    return QJsonDocument::fromJson(lines.last()).object();
}

} // namespace

DeviceSelfTest::DeviceSelfTest(QObject* parent)
    : QObject(parent)
    , m_program(QDir(QCoreApplication::applicationDirPath()).filePath("ondrel-devicetest"))
    , m_timeLimit(kTimeLimit)
{
}

DeviceSelfTest::~DeviceSelfTest()
{
    for (QProcess* const process : findChildren<QProcess*>()) {
        process->disconnect(this);
        process->kill();
        process->waitForFinished();
    }
}

void DeviceSelfTest::run(const QStringList& arguments, std::function<void(QJsonObject, QString)> then)
{
    auto* const process = new QProcess(this);
    auto* const limit = new QTimer(process);
    limit->setSingleShot(true);
    connect(limit, &QTimer::timeout, process, &QProcess::kill);
    connect(process, &QProcess::errorOccurred, this, [process, then](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart)
            return; // it finishes
        process->deleteLater();
        then({}, tr("The test program cannot be started."));
    });
    connect(process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            [process, limit, then](int code, QProcess::ExitStatus status) {
                process->deleteLater();
                const QJsonObject answer = lastObject(process->readAllStandardOutput());
                if (status == QProcess::CrashExit)
                    then({}, limit->isActive() ? tr("Its driver crashed.") : tr("Its driver did not come to an end."));
                else
                    then(answer, code != 0 || answer.isEmpty() ? tr("Its driver failed.") : QString());
            });
    limit->start(m_timeLimit);
    process->setStandardErrorFile(QProcess::nullDevice());
    process->start(m_program, arguments, QIODevice::ReadOnly);
}

void DeviceSelfTest::list(std::function<void(std::vector<DeviceInfo>)> then)
{
    run({"list"}, [then](const QJsonObject& answer, const QString&) {
        std::vector<DeviceInfo> devices;
        const QJsonArray found = answer.value("devices").toArray();
        for (const QJsonValue& value : found) {
            const QJsonObject object = value.toObject();
            devices.push_back({unsigned(object.value("platform").toInt()), unsigned(object.value("device").toInt()),
                               object.value("name").toString(), object.value("driver").toString()});
        }
        then(devices);
    });
}

void DeviceSelfTest::test(const DeviceInfo& device, std::function<void(QString)> then)
{
    const QString kept = QSettings().value(settingFor(device)).toString();
    if (!kept.isEmpty()) {
        then(kept == kPassed ? QString() : kept);
        return;
    }
    run({"test", QString::number(device.platform), QString::number(device.device)},
        [device, then](const QJsonObject& answer, QString reason) {
            if (reason.isEmpty() && !answer.value("passed").toBool())
                reason = answer.value("reason").toString(tr("Its driver failed."));
            QSettings().setValue(settingFor(device), reason.isEmpty() ? QString(kPassed) : reason);
            then(reason);
        });
}

void DeviceSelfTest::forget(const DeviceInfo& device)
{
    QSettings().remove(settingFor(device));
}

} // namespace Host

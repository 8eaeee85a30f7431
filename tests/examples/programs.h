#pragma once

// Example programs, run as a user runs them.

#include <QProcess>
#include <QString>
#include <QStringList>

struct Outcome {
    int status; // -1 if the program could not be run, or crashed
    QString output;
    QString errors;
};

inline Outcome runProgram(const char* program, const QStringList& arguments)
{
    QProcess process;
    process.start(QString::fromLocal8Bit(program), arguments);
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
        return {-1, QString(), process.errorString()};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

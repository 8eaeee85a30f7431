// Renders a project without a window.

#include "application.h"
#include "memoryneed.h"
#include "options.h"
#include "plan.h"
#include "project.h"
#include "renderer.h"
#include "report.h"
#include "saturated.h"

#include <ondrel/core/platform.h>

#include <QCoreApplication>
#include <QSettings>

#include <csignal>
#include <cstdio>
#include <exception>
#include <malloc.h>
#include <type_traits>
#include <unistd.h>

namespace
{

constexpr int kFailed = 1, kUsage = 2, kInterrupted = 130;

volatile std::sig_atomic_t stopWord = 0; // read by the library as an int

extern "C" void onSignal(int)
{
    stopWord = 1;
}

void listenToSignals()
{
    struct sigaction action {
    };
    action.sa_handler = onSignal;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

int complain(const QString& sentence)
{
    std::fprintf(stderr, "ondrel-render: %s\n", sentence.toUtf8().constData());
    return kUsage;
}

void warn(const QStringList& sentences)
{
    for (const QString& sentence : sentences)
        std::fprintf(stderr, "%s\n", sentence.toUtf8().constData());
}

// The library reports odd profiles on standard output: those lines go to standard error, and this program's own to the
// stream that is returned.
std::FILE* takeStandardOutput()
{
    const int own = dup(STDOUT_FILENO);
    std::FILE* const stream = own < 0 ? nullptr : fdopen(own, "w");
    if (!stream)
        return stdout;
    dup2(STDERR_FILENO, STDOUT_FILENO);
    return stream;
}

// Blocks that are freed go back to the system at once. By itself the C library keeps ever larger ones, for each thread.
void keepNoFreedMemory()
{
    mallopt(M_MMAP_THRESHOLD, 256 << 10);
    mallopt(M_TRIM_THRESHOLD, 1 << 20);
}

int run(const Options& options)
{
    listenToSignals();
    if (options.memory != 0)
        keepNoFreedMemory();
    std::FILE* const out = takeStandardOutput();
    Host::NodeTypes types;
    warn(Host::loadPlugins(options.plugins.isEmpty() ? Ondrel::Platform::PluginsDirectory() : options.plugins, types));
    const std::size_t bytes = options.memory == 0 ? 0 : Host::saturatedSum(kProgramBytes, bytesToRead(options.project));
    if (bytes > options.memory)
        return complain(QString("%1: It needs up to %2 to be read, more than --memory allows.")
                            .arg(options.project, memoryText(bytes)));
    const Host::ProjectReading reading = Host::loadProject(options.project, types);
    if (!reading.project)
        return complain(options.project + ": " + reading.error);
    const Plan plan = makePlan(*reading.project, types, options);
    if (!plan.error.isEmpty())
        return complain(plan.error);
    Report report(out, options.json, plan.jobs.size());
    for (const QString& note : reading.notes + plan.notes)
        report.note(note);
    if (options.dryRun) {
        for (const Job& job : plan.jobs)
            report.planned(job);
        return 0;
    }
    static_assert(std::is_same_v<std::sig_atomic_t, int>);
    render(plan, types, options, *const_cast<const int*>(&stopWord), report);
    if (stopWord == 1) {
        report.interrupted();
        return kInterrupted;
    }
    report.summary();
    return report.failures() == 0 ? 0 : kFailed;
}

} // namespace

int main(int argc, char** argv)
{
    PlatformPrivate::setup(argc, &argv);
    QCoreApplication application(argc, argv);
    Host::nameApplication();
    // The editor's preferences are for one person's screen; what is rendered is the same on every machine.
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, "/dev/null");
    Options options;
    int status = 0;
    if (!readOptions(argc, argv, options, status))
        return status;
    try {
        return run(options);
    } catch (const std::exception& exception) {
        std::fprintf(stderr, "ondrel-render: %s\n", exception.what());
        return kFailed;
    }
}

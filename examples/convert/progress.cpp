#include "progress.h"

#include <cstdio>
#include <unistd.h>

namespace
{
constexpr int kBarWidth = 30;
}

Progress::Progress(bool quiet, bool timings)
    : m_quiet(quiet)
    , m_timings(timings)
    , m_terminal(isatty(STDERR_FILENO))
{
}

void Progress::begin(const QString& file, int index, int count)
{
    m_file = file;
    m_place = count > 1 ? QString("[%1/%2] ").arg(index).arg(count) : QString();
    m_drawn = -1;
    m_total.start();
    m_stage.start();
}

void Progress::stage(const QString& what)
{
    if (!m_timings)
        return;
    erase();
    std::printf("%8.1f ms  %s\n", double(m_stage.nsecsElapsed()) * 1e-6, qUtf8Printable(what));
    std::fflush(stdout);
    m_stage.start();
}

void Progress::done(const QString& output)
{
    erase();
    if (m_quiet)
        return;
    std::printf("%s%s -> %s (%.1f ms)\n", qUtf8Printable(m_place), qUtf8Printable(m_file), qUtf8Printable(output),
                double(m_total.nsecsElapsed()) * 1e-6);
    std::fflush(stdout);
}

void Progress::failed(const QString& reason)
{
    erase();
    std::fprintf(stderr, "%s%s: %s\n", qUtf8Printable(m_place), qUtf8Printable(m_file), qUtf8Printable(reason));
}

bool Progress::exportRow(int percent, void* self)
{
    static_cast<Progress*>(self)->draw(percent);
    return true;
}

void Progress::draw(int percent)
{
    if (m_quiet || !m_terminal || percent == m_drawn)
        return;
    m_drawn = percent;
    const QString bar = QString(percent * kBarWidth / 100, '#').leftJustified(kBarWidth, '.');
    std::fprintf(stderr, "\r%s%s %s %3d %%", qUtf8Printable(m_place), qUtf8Printable(m_file), qUtf8Printable(bar),
                 percent);
}

void Progress::erase()
{
    if (m_drawn >= 0)
        std::fputs("\r\033[K", stderr);
    m_drawn = -1;
}

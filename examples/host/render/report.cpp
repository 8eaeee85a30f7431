#include "report.h"

#include <cstdio>
#include <unistd.h>

using Json = nlohmann::ordered_json;

namespace
{

constexpr int kBarWidth = 30;

} // namespace

Report::Report(std::FILE* out, bool json, std::size_t jobs)
    : m_out(out)
    , m_json(json)
    , m_terminal(isatty(STDERR_FILENO) != 0)
    , m_all(int(jobs))
{
    m_clock.start();
}

void Report::note(const QString& sentence)
{
    const std::lock_guard lock(m_mutex);
    erase();
    std::fprintf(stderr, "%s\n", sentence.toUtf8().constData());
    if (m_json)
        print({{"event", "note"}, {"text", sentence.toStdString()}});
}

void Report::planned(const Job& job)
{
    line(job.isDone ? "skip" : "render", job);
}

void Report::skipped(const Job& job)
{
    const std::lock_guard lock(m_mutex);
    ++m_skipped;
    line("skipped", job);
}

void Report::done(const Job& job, qint64 milliseconds)
{
    const std::lock_guard lock(m_mutex);
    ++m_done;
    line("done", job, QString(), milliseconds);
}

void Report::failed(const Job& job, const QString& reason)
{
    const std::lock_guard lock(m_mutex);
    ++m_failed;
    line("failed", job, reason);
}

void Report::interrupted()
{
    const std::lock_guard lock(m_mutex);
    erase();
    if (m_json)
        print({{"event", "interrupted"}});
    else
        std::fputs("Interrupted.\n", stderr);
}

void Report::summary()
{
    const std::lock_guard lock(m_mutex);
    erase();
    if (m_json)
        print({{"event", "summary"},
               {"done", m_done},
               {"failed", m_failed},
               {"skipped", m_skipped},
               {"milliseconds", m_clock.elapsed()}});
    else
        std::fprintf(m_out, "%d done, %d failed, %d skipped\n", m_done, m_failed, m_skipped);
}

void Report::print(const Json& json)
{
    std::fprintf(m_out, "%s\n", json.dump().c_str());
    std::fflush(m_out);
}

void Report::line(const char* event, const Job& job, const QString& reason, qint64 milliseconds)
{
    erase();
    const std::string source = job.input.toStdString(), target = job.output.toStdString();
    if (m_json) {
        Json json{{"event", event}, {"number", job.number}};
        json["input"] = source;
        json["output"] = target;
        if (!reason.isEmpty())
            json["reason"] = reason.toStdString();
        if (milliseconds >= 0)
            json["milliseconds"] = milliseconds;
        print(json);
    } else if (!reason.isEmpty()) {
        std::fprintf(stderr, "%s: %s: %s\n", event, source.empty() ? target.c_str() : source.c_str(),
                     reason.toUtf8().constData());
    } else {
        std::fprintf(m_out, "%s: %s%s%s\n", event, source.c_str(), source.empty() ? "" : " -> ", target.c_str());
        std::fflush(m_out);
    }
}

void Report::draw()
{
    if (!m_terminal)
        return;
    const std::lock_guard lock(m_mutex);
    const int ended = m_done + m_failed + m_skipped;
    const QString bar = QString(m_all == 0 ? kBarWidth : ended * kBarWidth / m_all, '#').leftJustified(kBarWidth, '.');
    std::fprintf(stderr, "\r\033[K%s %d/%d%s", bar.toUtf8().constData(), ended, m_all, timeLeft().toUtf8().constData());
    std::fflush(stderr);
    m_drawn = true;
}

// From the pictures that took time.
QString Report::timeLeft() const
{
    const int worked = m_done + m_failed;
    if (worked == 0)
        return QString();
    const qint64 seconds = m_clock.elapsed() * (m_all - worked - m_skipped) / worked / 1000;
    return QString(", %1:%2 left").arg(seconds / 60).arg(seconds % 60, 2, 10, QChar('0'));
}

void Report::erase()
{
    if (m_drawn)
        std::fputs("\r\033[K", stderr);
    m_drawn = false;
}

#pragma once

#include "plan.h"

#include <nlohmann/json.hpp>

#include <QElapsedTimer>

#include <cstdio>
#include <mutex>
#include <vector>

// What a run says: a line for each picture on the stream, or a JSON object a line; failures and a bar with the
// time left on standard error, the bar only on a terminal. Any thread.
class Report
{
public:
    Report(std::FILE* out, bool json, std::size_t jobs);

    void note(const QString& sentence); // on what was read; also as JSON
    void planned(const Job& job);       // for a dry run
    void skipped(const Job& job);
    void done(const Job& job, qint64 milliseconds);
    void failed(const Job& job, const QString& reason);
    void interrupted();
    void summary();
    void draw(); // the bar, as time goes by

    int failures() const { return m_failed; }

private:
    void print(const nlohmann::ordered_json& json);
    void line(const char* event, const Job& job, const QString& reason = QString(), qint64 milliseconds = -1);
    void erase();
    QString timeLeft() const;

    std::mutex m_mutex;
    std::FILE* m_out;
    bool m_json;
    bool m_terminal;
    bool m_drawn = false;
    int m_all, m_done = 0, m_failed = 0, m_skipped = 0;
    QElapsedTimer m_clock;
};

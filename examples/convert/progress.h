#pragma once

#include <QElapsedTimer>
#include <QString>

// What the tool says while it works: a bar that redraws itself on a terminal, plain lines elsewhere.
class Progress
{
public:
    Progress(bool quiet, bool timings);

    // A file begins; it is number `index` of `count`.
    void begin(const QString& file, int index, int count);
    // A stage of the present file has ended. Prints its time if timings are asked for.
    void stage(const QString& what);
    // The present file is done, or has failed with a reason.
    void done(const QString& output);
    void failed(const QString& reason);

    // For the export functions: `self` is a Progress. Never stops the export.
    static bool exportRow(int percent, void* self);

private:
    void draw(int percent);
    void erase();

    bool m_quiet;
    bool m_timings;
    bool m_terminal;
    QString m_file;
    QString m_place;
    int m_drawn = -1;
    QElapsedTimer m_total;
    QElapsedTimer m_stage;
};

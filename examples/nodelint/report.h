#pragma once

#include "sourcemap.h"

#include <QString>

#include <vector>

struct Complaint {
    enum Severity {
        Error,  // no node is made from such a file
        Warning // the library passes over it without a word
    };
    Severity severity;
    Position position;
    QString text;
    QString hint;
};

using Report = std::vector<Complaint>;

inline void addError(Report& report, Position position, const QString& text, const QString& hint)
{
    report.push_back({Complaint::Error, position, text, hint});
}

inline void addWarning(Report& report, Position position, const QString& text, const QString& hint)
{
    report.push_back({Complaint::Warning, position, text, hint});
}

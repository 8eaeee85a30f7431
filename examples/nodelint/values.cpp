#include "checks.h"
#include "vocabulary.h"

#include <QColor>

#include <algorithm>
#include <optional>

namespace
{

// The number of an attribute as sliders read it.
std::optional<double> numberOf(Report& report, const SourceNode& entry, const QString& attribute,
                               const QString& fallback, bool whole)
{
    const QString text = entry.value(attribute, fallback);
    bool readable = false;
    const double number = whole ? double(text.toLongLong(&readable)) : text.toDouble(&readable);
    if (readable)
        return number;
    bool fraction = false;
    text.toDouble(&fraction);
    addWarning(
        report, entry.valueOf(attribute),
        QStringLiteral("%1 \"%2\" is no %3 and counts as 0").arg(attribute, text, whole ? "whole number" : "number"),
        fraction ? "a slider with mode=\"double\" takes fractions" : "write digits, with a point before decimals");
    return std::nullopt;
}

struct Limits {
    double least, greatest;
    QString text; // "0 to 100"
};

std::optional<Limits> limitsOf(Report& report, const SourceNode& entry, bool whole)
{
    const std::optional<double> min = numberOf(report, entry, "min", "0", whole);
    const std::optional<double> max = numberOf(report, entry, "max", "100", whole);
    if (!min || !max)
        return std::nullopt;
    const QString first = entry.value("min", "0"), last = entry.value("max", "100");
    if (*min > *max) {
        addWarning(report, entry.nameOf(entry.has("min") ? "min" : "max"),
                   QStringLiteral("min %1 is greater than max %2").arg(first, last), "the two are exchanged");
        return Limits{*max, *min, last + " to " + first};
    }
    if (*min == *max)
        addWarning(report, entry.nameOf(entry.has("min") ? "min" : "max"),
                   QStringLiteral("min and max are both %1").arg(first), "the slider cannot be moved");
    return Limits{*min, *max, first + " to " + last};
}

void checkInLimits(Report& report, const SourceNode& entry, const QString& attribute, const QString& fallback,
                   const std::optional<Limits>& limits, bool whole)
{
    const std::optional<double> number = numberOf(report, entry, attribute, fallback, whole);
    if (!number || !limits || (*number >= limits->least && *number <= limits->greatest))
        return;
    const QString given = entry.has(attribute) ? QString() : QStringLiteral(", which it has by default,");
    addWarning(report, entry.valueOf(attribute),
               QStringLiteral("%1 %2%3 is outside of %4")
                   .arg(attribute, entry.value(attribute, fallback), given, limits->text),
               "the slider begins at the nearer end");
}

void checkGradient(Report& report, const SourceNode& entry, const QString& attribute)
{
    int offset = 0;
    for (const QString& part : entry.value(attribute).split(',')) {
        if (!part.isEmpty() && !QColor(part).isValid())
            addWarning(report, entry.valueOf(attribute, offset),
                       QStringLiteral("\"%1\" is no color and is left out").arg(part),
                       nearest(part.trimmed().toLower(), QColor::colorNames()).isEmpty()
                           ? QStringLiteral("write a name such as \"red\", or \"#rrggbb\"")
                           : suggestion(part.trimmed(), QColor::colorNames()));
        offset += part.size() + 1;
    }
}

} // namespace

void checkSlider(Report& report, const SourceNode& entry)
{
    checkWord(report, entry, "mode", {"integer", "double"}, "double");
    checkWord(report, entry, "style", {"range", "arrows"}, "arrows");
    const bool whole = entry.loweredValue("mode", "integer") == "integer";
    const std::optional<Limits> limits = limitsOf(report, entry, whole);
    checkInLimits(report, entry, "value", "50", limits, whole);
    checkGradient(report, entry, "groovegradient");
}

void checkRangeSlider(Report& report, const SourceNode& entry)
{
    const std::optional<Limits> limits = limitsOf(report, entry, true);
    checkInLimits(report, entry, "left", "0", limits, true);
    checkInLimits(report, entry, "right", "100", limits, true);
    const QString left = entry.value("left", "0"), right = entry.value("right", "100");
    if (left.toLongLong() > right.toLongLong())
        addWarning(report, entry.nameOf(entry.has("left") ? "left" : "right"),
                   QStringLiteral("left %1 is greater than right %2").arg(left, right), "the two are exchanged");
    checkGradient(report, entry, "groovegradient");
    checkGradient(report, entry, "bargradient");
}

void checkColor(Report& report, const SourceNode& entry)
{
    if (!entry.has("value"))
        return;
    const QString hint = "write red, green, blue and perhaps alpha, each from 0 to 65535";
    const QStringList parts = entry.value("value").split(',', Qt::SkipEmptyParts);
    if (parts.size() < 3)
        addWarning(report, entry.valueOf("value"), "fewer than three channels make opaque black", hint);
    else if (parts.size() > 4)
        addWarning(report, entry.valueOf("value"), "channels after the fourth are left out", hint);
    int offset = 0;
    for (const QString& part : entry.value("value").split(',')) {
        bool readable = false;
        const unsigned int channel = part.toUInt(&readable);
        const Position position = entry.valueOf("value", offset);
        if (!part.isEmpty() && !readable)
            addWarning(report, position, QStringLiteral("channel \"%1\" is no number and counts as 0").arg(part), hint);
        else if (channel > 65535)
            addWarning(report, position, QStringLiteral("channel %1 is above 65535 and wraps").arg(part), hint);
        offset += part.size() + 1;
    }
}

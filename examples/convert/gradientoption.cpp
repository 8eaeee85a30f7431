#include "options.h"

#include <QColor>

#include <cmath>

namespace
{

unsigned short wide(int byte)
{
    return static_cast<unsigned short>(byte * 257);
}

// "COLOR" or "COLOR@POS". Without a position the stops are spread evenly.
bool parseStop(const QString& text, float evenly, Ondrel::GradientStop& stop)
{
    const QColor color(text.section('@', 0, 0));
    std::vector<float> position = {evenly};
    if (!color.isValid() || (text.contains('@') && !parseNumbers(text.section('@', 1), position)))
        return false;
    stop = {position[0], wide(color.red()), wide(color.green()), wide(color.blue()), wide(color.alpha())};
    return position.size() == 1 && position[0] >= 0 && position[0] <= 1;
}

} // namespace

bool parseNumbers(const QString& text, std::vector<float>& numbers)
{
    numbers.clear();
    for (const QString& part : text.split(',')) {
        bool ok = false;
        numbers.push_back(part.toFloat(&ok));
        if (!ok || !std::isfinite(numbers.back()))
            return false;
    }
    return true;
}

bool parseGradient(const QString& text, Operation& operation)
{
    const QStringList parts = text.split(',');
    const bool linear = parts[0] == "linear";
    const int count = linear ? 4 : 7;
    std::vector<float> n;
    if ((!linear && parts[0] != "radial") || parts.size() < count + 2 ||
        !parseNumbers(parts.mid(1, count).join(','), n))
        return false;
    GradientOver gradient;
    if (linear)
        gradient.geometry = GradientLinearGeometry{n[0], n[1], n[2], n[3]};
    else
        gradient.geometry = GradientRadialGeometry{n[0], n[1], n[2], n[3], n[4] * 0.01745329252f, n[5], n[6]};
    const int stops = parts.size() - count - 1;
    gradient.stops.resize(std::size_t(stops));
    for (int i = 0; i < stops; ++i) {
        const float evenly = stops > 1 ? float(i) / float(stops - 1) : 0.0f;
        if (!parseStop(parts[count + 1 + i], evenly, gradient.stops[std::size_t(i)]))
            return false;
    }
    SanitizeGradientStops(gradient.stops);
    operation = gradient;
    return true;
}

#pragma once

#include <QColor>

// The palette of the sliders.
namespace Ondrel::SliderColors
{

inline QColor outline()
{
    return {50, 47, 47};
}
inline QColor grooveLight()
{
    return {156, 156, 156};
}
inline QColor marker(bool hovered)
{
    return hovered ? QColor(222, 219, 219) : QColor(201, 198, 198);
}
inline QColor arrowsBackground()
{
    return {28, 28, 28};
}

} // namespace Ondrel::SliderColors

#pragma once

#include <QColor>

namespace Ondrel::NodeColors
{

inline QColor body()
{
    return {76, 75, 75};
}

inline QColor header() // also the text on the selection's colour
{
    return {50, 47, 47};
}

inline QColor selection()
{
    return {255, 204, 0};
}

inline QColor text()
{
    return {201, 198, 198};
}

} // namespace Ondrel::NodeColors

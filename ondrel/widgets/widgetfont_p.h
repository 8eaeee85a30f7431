#pragma once

#include <QApplication>
#include <QFont>

namespace Ondrel
{

// The font of all texts in controls.
inline QFont widgetFont()
{
    QFont font = QApplication::font();
    font.setPixelSize(13);
    return font;
}

} // namespace Ondrel

#pragma once

#include <QColor>
#include <QPalette>

namespace Common
{

// The colors of nodes, for what takes them from the application: icons in headers, menus, fields for typing.
inline QPalette darkPalette(const QColor& window)
{
    const QColor text(201, 198, 198);
    QPalette palette(QColor(62, 61, 61), window);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(role, text);
    palette.setColor(QPalette::Base, QColor(28, 28, 28));
    palette.setColor(QPalette::Highlight, QColor(255, 204, 0));
    palette.setColor(QPalette::HighlightedText, QColor(50, 47, 47));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(118, 116, 116));
    return palette;
}

} // namespace Common

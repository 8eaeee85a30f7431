#pragma once

#include <ondrel/widgets/widgetfont_p.h>

#include <QApplication>
#include <QFont>
#include <QFontMetrics>
#include <QString>

namespace Ondrel
{

constexpr int kHeaderFontSize = 15;
constexpr int kFieldFontSize = 13;

// A font of the same family, otherwise plain.
inline QFont plainFont(const QFont& font, int pixelSize)
{
    QFont plain(font.family());
    plain.setPixelSize(pixelSize);
    return plain;
}

inline QFontMetrics headerFontMetrics()
{
    return QFontMetrics(plainFont(QApplication::font(), kHeaderFontSize));
}

inline QFontMetrics fieldFontMetrics()
{
    return QFontMetrics(widgetFont());
}

} // namespace Ondrel

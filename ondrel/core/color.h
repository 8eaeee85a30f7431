#pragma once

#include <ondrel/ondrel_export.h>

#include <QColor>
#include <QMetaType>
#include <QString>
#include <QVariant>
namespace Ondrel
{
class ONDREL_EXPORT Color
{
public:
    unsigned short red = 0, green = 0, blue = 0, alpha = 65535;
    Color();
    Color(QString const& text);
    Color(unsigned short r, unsigned short g, unsigned short b, unsigned short a);
    void setRed(unsigned short v);
    void setGreen(unsigned short v);
    void setBlue(unsigned short v);
    void setAlpha(unsigned short v);
    QString name() const;
    void parseName(QString text);
    operator QVariant() const;
    bool operator==(Color const& other) const;
    bool operator!=(Color const& other) const;
};
ONDREL_EXPORT QColor ColorToQColor(Ondrel::Color const& color);
} // namespace Ondrel
Q_DECLARE_METATYPE(Ondrel::Color) // name "Ondrel::Color"

#pragma once

#include <ondrel/ondrel_export.h>

#include <QColor>
#include <QMetaType>
#include <QString>
#include <QVariant>

namespace Ondrel
{

// A 16-bit colour, 0 to 65535 in each channel, not premultiplied; opaque black at first. It travels in a QVariant
// under the meta type name "Ondrel::Color". A plain value without locks; conversion to QVariant from any thread.
class ONDREL_EXPORT Color
{
public:
    unsigned short red = 0, green = 0, blue = 0, alpha = 65535;

    Color();
    Color(QString const& text); // parseName(text)
    Color(unsigned short r, unsigned short g, unsigned short b, unsigned short a);

    void setRed(unsigned short v);
    void setGreen(unsigned short v);
    void setBlue(unsigned short v);
    void setAlpha(unsigned short v);

    // "red,green,blue,alpha" in decimal numbers without spaces; parseName() gives the same colour back.
    QString name() const;

    // Sets all four channels from decimal numbers between commas; empty parts are skipped. Three numbers are an opaque
    // colour, a fourth one is alpha, more are ignored, fewer than three give opaque black. A part that is no unsigned
    // number counts as 0; of one above 65535 the lower 16 bits count.
    void parseName(QString text);

    operator QVariant() const;

    bool operator==(Color const& other) const;
    bool operator!=(Color const& other) const;
};

// The same colour, each channel as its 65535th part in single precision, 0 to 1; QColor keeps 16 bits of it.
ONDREL_EXPORT QColor ColorToQColor(Ondrel::Color const& color);

} // namespace Ondrel
Q_DECLARE_METATYPE(Ondrel::Color)

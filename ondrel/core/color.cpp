#include <ondrel/core/color.h>

#include <QRegExp>
#include <QStringList>

namespace Ondrel
{

Color::Color() = default;

Color::Color(QString const& text)
{
    parseName(text);
}

Color::Color(unsigned short r, unsigned short g, unsigned short b, unsigned short a)
    : red(r)
    , green(g)
    , blue(b)
    , alpha(a)
{
}

void Color::setRed(unsigned short v)
{
    red = v;
}

void Color::setGreen(unsigned short v)
{
    green = v;
}

void Color::setBlue(unsigned short v)
{
    blue = v;
}

void Color::setAlpha(unsigned short v)
{
    alpha = v;
}

QString Color::name() const
{
    return QStringLiteral("%1,%2,%3,%4").arg(red).arg(green).arg(blue).arg(alpha);
}

void Color::parseName(QString text)
{
    // Matches only between characters and so removes nothing: "a,2,3" has three parts, the first of which is 0.
    text.replace(QRegExp(QStringLiteral("(?![\\d,])"), Qt::CaseSensitive), QString());

    const QStringList parts = text.split(QLatin1Char(','), Qt::SkipEmptyParts);
    if (parts.size() < 3) {
        *this = Color();
        return;
    }
    const auto channel = [&parts](int i) { return static_cast<unsigned short>(parts[i].toUInt()); };
    red = channel(0);
    green = channel(1);
    blue = channel(2);
    alpha = parts.size() > 3 ? channel(3) : static_cast<unsigned short>(65535);
}

Color::operator QVariant() const
{
    return QVariant::fromValue(*this);
}

bool Color::operator==(Color const& other) const
{
    return red == other.red && green == other.green && blue == other.blue && alpha == other.alpha;
}

bool Color::operator!=(Color const& other) const
{
    return !(*this == other);
}

QColor ColorToQColor(Ondrel::Color const& color)
{
    const auto unit = [](unsigned short sample) { return qreal(float(sample) / 65535.0f); };
    QColor result;
    result.setRedF(unit(color.red));
    result.setGreenF(unit(color.green));
    result.setBlueF(unit(color.blue));
    result.setAlphaF(unit(color.alpha));
    return result;
}

} // namespace Ondrel

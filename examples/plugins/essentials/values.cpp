#include "values.h"

#include <ondrel/color/colormanager.h>

#include <QStringList>

#include <algorithm>
#include <cmath>

namespace Essentials
{

double limited(double value, double least, double greatest, double otherwise)
{
    return std::isnan(value) ? otherwise : std::clamp(value, least, greatest);
}

double number(const QVariantMap& values, const QString& name, double least, double greatest, double otherwise)
{
    bool ok = false;
    const double value = values.value(name).toDouble(&ok);
    return ok ? limited(value, least, greatest, otherwise) : otherwise;
}

int wholeNumber(const QVariantMap& values, const QString& name, int least, int greatest, int otherwise)
{
    return int(std::lround(number(values, name, least, greatest, otherwise)));
}

int choice(const QVariantMap& values, const QString& name, const QStringList& choices)
{
    return std::max(0, int(choices.indexOf(values.value(name).toString())));
}

QByteArray profileHash(const QVariantMap& values, const QString& name)
{
    const QByteArray hash = values.value(name).toByteArray();
    const auto& otherwise = Ondrel::DefaultColorProfileHash;
    return hash.size() == int(otherwise.size())
               ? hash
               : QByteArray(reinterpret_cast<const char*>(otherwise.data()), int(otherwise.size()));
}

Ondrel::ResourceId resource(const QVariantMap& values, const QString& name)
{
    return values.value(name).value<Ondrel::ResourceId>();
}

Ondrel::FilterMethod filterMethod(const QVariantMap& values)
{
    const QString name = values.value("filter").toString();
    return InterpolationToFilter(name.isEmpty() ? QString("Bilinear") : name);
}

} // namespace Essentials

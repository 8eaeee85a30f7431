#pragma once

#include <ondrel/pixel/scale.h>
#include <ondrel/resources/resourceid.h>

#include <QByteArray>
#include <QVariantMap>

// Values as a project has them: they may be missing, of a wrong type, not a number or beyond every limit. What comes
// back here is always fit for use.
namespace Essentials
{

// Limited to the range; `otherwise` for what is no number.
double number(const QVariantMap& values, const QString& name, double least, double greatest, double otherwise);

// The same, rounded.
int wholeNumber(const QVariantMap& values, const QString& name, int least, int greatest, int otherwise);

// The index of the choice that was made; 0 if it is none of them.
int choice(const QVariantMap& values, const QString& name, const QStringList& choices);

// The hash of a profile, 32 bytes; that of the default profile for anything else.
QByteArray profileHash(const QVariantMap& values, const QString& name);

Ondrel::ResourceId resource(const QVariantMap& values, const QString& name);

// Of the combo box "filter"; bilinear where there is none.
Ondrel::FilterMethod filterMethod(const QVariantMap& values);

// A number limited to a range; `otherwise` for what is not a number.
double limited(double value, double least, double greatest, double otherwise);

} // namespace Essentials

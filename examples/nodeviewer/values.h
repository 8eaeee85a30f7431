#pragma once

#include <QString>
#include <QVariant>

namespace Viewer
{

// A value of an input for people: "0,0,0,65535", "20 to 80", a profile's name.
QString textOf(const QVariant& value);

} // namespace Viewer

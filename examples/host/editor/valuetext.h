#pragma once

#include "plugininterface.h"

namespace Host
{

// A value of an input as a line that a person reads and types, and back. Curves and other lists of points are
// "0,0 32768,40000 65535,65535", several such lists with " | " between them; what has no form of its own is the JSON of
// projects.
QString valueToLine(const QVariant& value, const InputInfo& input);

// False if the line makes no sense for the input; `value`, which is the one that the input has, is then unchanged.
bool valueFromLine(const QString& line, const InputInfo& input, QVariant& value);

} // namespace Host

#pragma once

#include <ondrel/core/curves.h>

#include <QVariant>

namespace Essentials
{

// Curves as the value of an input: a list of four lists of points (all, red, green, blue).
QVariant valueFromCurves(const Ondrel::Curves& curves);

// Whatever the value is, every curve has at least two and at most 256 knots, ascending and between 0 and 65535. What is
// missing is straight.
Ondrel::Curves curvesFromValue(const QVariant& value);

} // namespace Essentials

#pragma once

#include "options.h"

#include <ondrel/core/image.h>

// Applies one operation of the command line. Gives an empty image if nothing would be left.
Ondrel::Image applyOperation(const Ondrel::Image& image, const Operation& operation, const Options& options);

// What a stage line says of the operation, e.g. "scale to 182 x 121".
QString describeOperation(const Operation& operation);

#pragma once

#include "../common/pixelgrouping.h"

#include <QString>

// From a camera RAW file, white-balanced. False if it is none with a Bayer sensor.
bool readMosaic(const QString& fileName, Examples::Mosaic& mosaic);

// Painted: rings that become finer and finer to the right, as a sensor would see them.
Examples::Mosaic paintMosaic();

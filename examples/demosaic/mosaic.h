#pragma once

#include <ondrel/core/image.h>

#include <QString>

// A Bayer mosaic with each value in the channel of its colour, and its filter word as the picture lies.
struct Mosaic {
    Ondrel::Image image;
    unsigned int filters = 0;
};

// The colour at a pixel: 0 red, 1 green, 2 blue.
inline unsigned int colorAt(unsigned int filters, unsigned int row, unsigned int column)
{
    return (filters >> ((((row << 1) & 14) | (column & 1)) << 1)) & 3;
}

// From a camera RAW file, white-balanced. False if it is none with a Bayer sensor.
bool readMosaic(const QString& fileName, Mosaic& mosaic);

// Painted: rings that become finer and finer to the right, as a sensor would see them.
Mosaic paintMosaic();

// The two forms of the same interpolation, with equal results: green first, then red and blue. A border of two pixels
// keeps what `picture` holds. `picture` has the size of the mosaic.

// False if OpenCL is off or the device cannot do it.
bool demosaicOnDevice(const Mosaic& mosaic, Ondrel::Image& picture);

void demosaicOnProcessor(const Mosaic& mosaic, Ondrel::Image& picture);

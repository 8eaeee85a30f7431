#pragma once

#include "jpegsegments.h"

#include <ondrel/core/image.h>

#include <QSize>

namespace Host
{

// A TIFF file as libtiff itself makes a picture of 8 bits a colour of it: kinds that the library does not read, such as
// palettes, fax pages, YCbCr with fewer colour samples, and CMYK without a profile. Upright, sRGB, not premultiplied.
// False for what libtiff does not read either, for damaged files, JPEG in the form that TIFF 6.0 had and was soon
// replaced, and above 2^28 pixels.
bool readTiffPicture(const FileBytes& file, Ondrel::Image& image);

// The size of the largest of all pictures in a TIFF file, those below others too, as its directories have it. Empty if
// there is none.
QSize tiffSize(const unsigned char* data, std::size_t size);

} // namespace Host

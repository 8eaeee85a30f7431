#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/image.h>

// Reads of single pixels at any position, inside the image or outside of it. All only read the image, so any number of
// threads may call them. An image without pixels gives zeros. `rgba` has room for four numbers.

// Four floats: red, green and blue, each sample / 65535 times alpha, then alpha / 65535. A position outside takes the
// nearest pixel of the edge.
ONDREL_EXPORT void GetPixelAsFloatRGBAPremultiplied(Ondrel::Image const& image, int x, int y, float* rgba);

// The same values, but four zeros for a position outside.
ONDREL_EXPORT void GetPixelAsFloatRGBABlankPremultiplied(Ondrel::Image const& image, int x, int y, float* rgba);

// The four samples as they are stored. A position outside takes the nearest pixel of the edge.
ONDREL_EXPORT void GetPixelRGBAClamp(Ondrel::Image const& image, int x, int y, unsigned short* rgba);

// The four samples, or four zeros for a position outside.
ONDREL_EXPORT void GetPixelRGBABlank(Ondrel::Image const& image, int x, int y, unsigned short* rgba);

// The four samples of the picture repeated without end in both directions.
ONDREL_EXPORT void GetPixelRGBARepeat(Ondrel::Image const& image, int x, int y, unsigned short* rgba);

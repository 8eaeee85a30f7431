#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/image.h>
ONDREL_EXPORT void GetPixelAsFloatRGBAPremultiplied(Ondrel::Image const& image, int x, int y, float* rgba);
ONDREL_EXPORT void GetPixelAsFloatRGBABlankPremultiplied(Ondrel::Image const& image, int x, int y, float* rgba);
ONDREL_EXPORT void GetPixelRGBAClamp(Ondrel::Image const& image, int x, int y, unsigned short* rgba);
ONDREL_EXPORT void GetPixelRGBABlank(Ondrel::Image const& image, int x, int y, unsigned short* rgba);
ONDREL_EXPORT void GetPixelRGBARepeat(Ondrel::Image const& image, int x, int y, unsigned short* rgba);

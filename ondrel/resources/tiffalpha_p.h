#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/resources/tifflayout_p.h>

namespace Ondrel
{

// Sets the alpha of `count` pixels at `out` from the samples of a decoded TIFF: opaque without an alpha sample,
// otherwise the first extra sample, by which associated colours are divided. `source` is the first of the pixels,
// `planeBytes` the distance between the planes of a planar file.
ONDREL_EXPORT void applyTiffAlpha(const TiffLayout& layout, const unsigned char* source, std::size_t planeBytes,
                                  std::size_t count, std::uint16_t* out);

} // namespace Ondrel

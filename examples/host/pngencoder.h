#pragma once

#include "jpegsegments.h"

#include <ondrel/core/image.h>

namespace Host
{

// The image as a PNG file from which exactly its pixels are read again: 8 bits a sample if that is enough, otherwise
// 16, and without alpha if all is opaque. The profile is embedded; without one the file says sRGB. Empty if it cannot
// be written, as with a profile that PNG does not bear.
FileBytes encodePng(const Ondrel::Image& image, const FileBytes& profile);

} // namespace Host

#pragma once

#include "jpegsegments.h"

namespace Host
{

// Profiles for pictures that bring none along, as bytes. The same bytes in every process. Empty if there is no memory.

// Grey with the tone curve of sRGB (IEC 61966-2-1): a grey value looks like the sRGB colour of three such values.
const FileBytes& greyProfile();

// Inks without a printing condition: red is (1 - cyan) * (1 - black), and so on, in sRGB. A guess, as good as any
// without knowing the press.
const FileBytes& inkProfile();

} // namespace Host

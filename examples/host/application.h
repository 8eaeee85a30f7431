#pragma once

namespace Host
{

// Names the application and its version, the same in the editor and in batch: the library writes both into TIFF files.
// The settings of the user are found by the name too.
void nameApplication();

} // namespace Host

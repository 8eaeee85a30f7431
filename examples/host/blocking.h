#pragma once

namespace Host
{

// Stands at the start of what waits for files, for the store or for pictures: asserts, in debug builds, that it does
// not run on the user-interface thread of an application with windows.
void assertMayBlock(const char* function);

} // namespace Host

#pragma once

#include <ondrel/ondrel_export.h>

#include <vector>

namespace Ondrel
{

// Appends the argc pointers of *argv to `arguments`, and behind them the two arguments that tell a debug build of Qt
// where its platform plug-ins are; then makes argc and *argv name that vector, which is not null-terminated. *argv may
// be the vector's own array already.
ONDREL_EXPORT void addPlatformPluginArguments(std::vector<char*>& arguments, int& argc, char*** argv);

} // namespace Ondrel

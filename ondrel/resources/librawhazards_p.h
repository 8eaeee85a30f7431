#pragma once

#include <ondrel/ondrel_export.h>

#include <vector>

namespace Ondrel
{

// False for files that LibRaw 0.20 does not survive (docs/thirdparty-findings.md lists them). Reads the file once.
ONDREL_EXPORT bool isSafeForLibRaw(const std::vector<unsigned char>& data);

} // namespace Ondrel

#pragma once

#include <ondrel/core/image.h>

namespace Ondrel
{

// The picture that says that there is no proof because colour management is off. Opaque, without a profile.
Image proofNotice(unsigned int width, unsigned int height);

} // namespace Ondrel

#pragma once

#include <ondrel/core/image.h>

// Pictures that every benchmark shares, so that figures of different operations can be set side by side.
namespace OndrelBench
{

// A synthetic photograph: smooth gradients, hard edges, noise, and an alpha that varies over the width. The same
// pixels on every call.
Ondrel::Image syntheticImage(unsigned int width, unsigned int height);

// The same with an alpha of 65535 throughout, as a photograph has.
Ondrel::Image opaqueImage(unsigned int width, unsigned int height);

} // namespace OndrelBench

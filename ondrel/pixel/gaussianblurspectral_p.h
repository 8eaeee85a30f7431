#pragma once

#include <ondrel/pixel/gaussianblurpass_p.h>

namespace Ondrel
{

// One direction of a blur by a long kernel, at a cost that hardly depends on its length. `to` has the size of `from`.
void blurRowsBySpectrum(Image const& from, Image& to, GaussianKernel const& kernel, GaussianEdge edge);

// The same for columns; `to` may be `from`.
void blurColumnsBySpectrum(Image const& from, Image& to, GaussianKernel const& kernel, GaussianEdge edge);

} // namespace Ondrel

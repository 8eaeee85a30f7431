#pragma once

#include <ondrel/pixel/gaussianblurpass_p.h>

namespace Ondrel
{

// The blur of an image by short kernels, sum by sum. A kernel that is null leaves its direction out; one is needed.
// `to` has the size of `from` and is another image.
void blurDirectly(Image const& from, Image& to, GaussianKernel const* across, GaussianKernel const* down,
                  GaussianEdge edge);

} // namespace Ondrel

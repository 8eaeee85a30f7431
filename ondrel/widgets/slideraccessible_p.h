#pragma once

namespace Ondrel
{

// Makes sliders known to screen readers as such. Later calls do nothing.
void installSliderAccessibility();

} // namespace Ondrel

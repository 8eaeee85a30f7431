#pragma once

#include <ondrel/core/rect.h>
#include <ondrel/pixel/gradientruns_p.h>

namespace Ondrel::GradientRows
{

// Fills `rect`, which lies inside the image, mixing lightness, chroma and hue. False, with nothing changed, if the
// image's profile is unknown or does not fit.
template <typename Geometry>
[[nodiscard]] bool fillLCH(Image& image, RectT<int> const& rect, Geometry const& geometry,
                           std::vector<GradientStop> const& stops, PositionCurve const& curve);

extern template bool fillLCH(Image&, RectT<int> const&, LinearAxis const&, std::vector<GradientStop> const&,
                             PositionCurve const&);
extern template bool fillLCH(Image&, RectT<int> const&, RadialEllipse const&, std::vector<GradientStop> const&,
                             PositionCurve const&);

} // namespace Ondrel::GradientRows

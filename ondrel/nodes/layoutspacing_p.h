#pragma once

namespace Ondrel
{

constexpr float kRowSpacing = 5;
constexpr float kColumnGap = 5;

} // namespace Ondrel

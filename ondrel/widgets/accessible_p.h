#pragma once

namespace Ondrel
{

// Makes the controls known to screen readers by their roles and values. Later calls do nothing.
void installAccessibility();

} // namespace Ondrel

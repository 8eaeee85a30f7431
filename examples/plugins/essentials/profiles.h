#pragma once

#include <ondrel/color/colorprofiles.h>

#include <QVariantMap>

namespace Essentials
{

// Whether a profile is registered whose colours fit the pixels of an image: three channels, RGB or Lab.
bool isPixelProfile(const std::array<unsigned char, 32>& hash);

// The number of the rendering intent in the combo box "intent".
unsigned int intentOf(const QVariantMap& values);

} // namespace Essentials

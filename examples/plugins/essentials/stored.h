#pragma once

#include "filter.h"

#include <QSize>

namespace Essentials
{

// The size of a stored picture; empty if there is none. Never waits.
QSize storedSize(const QVariantMap& values);

// The picture of the resource in "image", in the profile that the fields "space" and "profile" choose, at full size.
// RAW files come undeveloped. Null if it was cancelled. Throws Problem.
ImagePtr storedImage(const QVariantMap& values, bool raw, const Ondrel::RunStatus& status);

// Whether the field "space" asks for the profile in "profile".
bool convertsToProfile(const QVariantMap& values);

// Scaled down to the size at the scale; the image itself at scale 1.
ImagePtr scaledDown(const ImagePtr& image, double scale);

// Scaled to a size; the image itself if it has it.
ImagePtr scaledTo(const ImagePtr& image, const QSize& size);

} // namespace Essentials

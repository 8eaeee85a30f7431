#pragma once

#include <ondrel/core/image.h>

#include <QString>

#include <memory>

namespace Viewer
{

// What the previews show: the picture of a file, or hills under an evening sky if the name is empty or the file cannot
// be read.
std::shared_ptr<const Ondrel::Image> loadPicture(const QString& file);

// The picture, small, in one of `count` tints. A host would evaluate the node once for each choice.
std::shared_ptr<const Ondrel::Image> tinted(const Ondrel::Image& picture, unsigned int index, unsigned int count);

} // namespace Viewer

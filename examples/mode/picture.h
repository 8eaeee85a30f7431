#pragma once

#include <ondrel/core/image.h>
#include <ondrel/core/rect.h>

#include <QString>

#include <memory>

// The photograph in the default profile, at most `longest` pixels wide and high; a painted target if the file is no
// picture or none is named.
std::shared_ptr<const Ondrel::Image> loadPicture(const QString& file, unsigned int longest);

// What the screen shows of a photograph: the frame cut out of it, turned and tilted as by Route, all at the given zoom.
Ondrel::Image renderPicture(const Ondrel::Image& photograph, const Ondrel::RectT<int>& frame, double zoom);

#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/image.h>

#include <memory>
#include <vector>

// A raw dump of an image in memory, little-endian: one format byte (written as 0, not checked on reading), the width
// and the height as 32-bit numbers, then width * height * 8 bytes of samples as Ondrel::Image keeps them. It holds
// neither the colour profile nor the RAW description. Both functions may run on any thread.

// Makes the image that `data` describes. False, with `image` untouched, for fewer than 9 bytes. Otherwise `image` is
// replaced by a new image of the stated size, which stays blank, with a false result, unless `data` is exactly as long
// as that size asks for. A header that states 2^30 pixels or more, or over 64 MiB that `data` does not hold, makes an
// empty image instead of a blank one.
ONDREL_EXPORT bool ReadImageBuffer(const std::vector<unsigned char>& data, std::shared_ptr<const Ondrel::Image>& image);

// Replaces `data` by the dump of `image`. The size of the samples is computed in 32 bits, so it wraps at 4 GiB. A null
// `image` gives no bytes.
ONDREL_EXPORT void WriteImageBuffer(std::shared_ptr<const Ondrel::Image> image, std::vector<unsigned char>& data);

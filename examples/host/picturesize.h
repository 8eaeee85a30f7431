#pragma once

#include <QSize>
#include <QString>

#include <cstddef>

namespace Host
{

// The size of a PNG, JPEG or TIFF picture by its header, without decoding it; of camera files that are TIFF files, that
// of the largest picture inside. Empty for all others. What is decoded may be turned by a quarter.
QSize sizeInHeader(const unsigned char* data, std::size_t size);

// The bytes that importing such a file takes at most while it goes on: decoding, turning, encoding anew. Where no
// header tells the size, four pixels a byte are taken for granted, more than camera files have. 0 for what is no
// regular file or cannot be read; the largest number there is where a header's lie leads beyond it.
std::size_t bytesToImport(const QString& file);
std::size_t bytesToImport(const unsigned char* data, std::size_t size);

} // namespace Host

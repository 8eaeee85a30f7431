#include "picturesize.h"

#include "saturated.h"
#include "tiffpicture.h"

#include <QBuffer>
#include <QByteArray>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>

#include <algorithm>
#include <limits>

namespace Host
{
namespace
{

constexpr std::size_t kBytesAPixel = 48, kBytesAByte = 3, kPixelsAByte = 4;

} // namespace

QSize sizeInHeader(const unsigned char* data, std::size_t size)
{
    const std::size_t seen = std::min(size, std::size_t(std::numeric_limits<int>::max()));
    QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), int(seen));
    const char* const format = bytes.startsWith("\x89PNG") ? "png" : bytes.startsWith("\xff\xd8") ? "jpeg" : nullptr;
    if (!format) // others would be complained of on standard error
        return tiffSize(data, size);
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    return QImageReader(&buffer, format).size();
}

std::size_t bytesToImport(const unsigned char* data, std::size_t size)
{
    const QSize found = sizeInHeader(data, size);
    const std::size_t pixels = found.isEmpty()
                                   ? saturatedProduct(size, kPixelsAByte)
                                   : saturatedProduct(std::size_t(found.width()), std::size_t(found.height()));
    return saturatedSum(saturatedProduct(pixels, kBytesAPixel), saturatedProduct(size, kBytesAByte));
}

std::size_t bytesToImport(const QString& name)
{
    QFile file(name);
    if (!QFileInfo(name).isFile() || !file.open(QIODevice::ReadOnly)) // a pipe would be waited for
        return 0;
    const auto size = std::size_t(file.size());
    const uchar* const data = size == 0 ? nullptr : file.map(0, file.size());
    return data ? bytesToImport(data, size) : saturatedProduct(size, kPixelsAByte * kBytesAPixel + kBytesAByte);
}

} // namespace Host

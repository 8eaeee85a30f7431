#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/image.h>

#include <QByteArray>
#include <QImage>

namespace Ondrel
{
class ONDREL_EXPORT ColorTransformer
{
public:
    static QImage toQImage(const Ondrel::Image& image, bool noColorManagement);
};
} // namespace Ondrel
ONDREL_EXPORT Ondrel::Image ConvertColorSpace(const Ondrel::Image& image, const QByteArray& sourceProfile,
                                              const QByteArray& destinationProfile, unsigned int intent);

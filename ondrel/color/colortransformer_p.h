#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/image.h>
#include <ondrel/core/simdcompatibility.h>

#include <QImage>

#include <vector>

class ONDREL_EXPORT ColorTransformerPrivate
{
public:
    static ColorTransformerPrivate* get();
    void setOutputSettings(bool enabled, const std::vector<unsigned char>& displayProfile,
                           unsigned int renderingIntent);
    QImage toQImage(const Ondrel::Image& image, bool noColorManagement, SIMDCompatibility level);
};

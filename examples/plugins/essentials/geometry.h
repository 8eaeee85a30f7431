#pragma once

#include "filter.h"
#include "maps.h"

namespace Essentials
{

// A node that moves the pixels of its picture.
class GeometryFilter : public Filter
{
public:
    QHash<QString, QSize> outputSizes(const QVariantMap& values, const QHash<QString, QSize>& inputSizes) const override
    {
        const QSize size = inputSizes.value("image");
        return size.isEmpty() ? QHash<QString, QSize>() : QHash<QString, QSize>{{"image", sizeOf(values, size)}};
    }

    std::vector<Ondrel::TransformMap> transformMaps(const QVariantMap& values,
                                                    const QHash<QString, QSize>& inputSizes) const override
    {
        const QSize size = inputSizes.value("image");
        return size.isEmpty() ? std::vector<Ondrel::TransformMap>()
                              : mapsOf(matrixOf(values, size), sizeOf(values, size));
    }

protected:
    // Of a picture that is not empty, at full size.
    virtual QSize sizeOf(const QVariantMap& values, const QSize& size) const = 0;
    virtual Eigen::Matrix3d matrixOf(const QVariantMap& values, const QSize& size) const = 0;
};

} // namespace Essentials

#include "picturemode.h"

QTransform PictureMode::pictureToView() const
{
    QTransform transform;
    transformSeries.transformFromBaseToChild(0, transform);
    return transform * transformFromRealToView();
}

std::optional<QPointF> PictureMode::pictureAt(const QPointF& viewPoint) const
{
    QPointF point;
    if (!transformSeries.mapFromChildToBaseNoClip(0, mapFromViewToReal(viewPoint), point))
        return std::nullopt;
    return point;
}

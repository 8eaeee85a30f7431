#include "../common/rows.h"

#include "develop.h"

#include "../common/neighbours.h"
#include "../common/whitebalance.h"

#include <QStringList>

using Ondrel::Image;

bool developRaw(const Image& raw, Image& developed)
{
    const bool interpolates = Examples::isBayer(raw) || Examples::isXTrans(raw);
    if (raw.rawIsMosaic && !interpolates)
        return false;
    Image balanced(raw);
    Examples::balance(balanced, Examples::asShotGains(raw), {});
    developed = balanced;
    if (interpolates) {
        const Examples::NeighbourMeans means(balanced);
        Examples::forRows(0, raw.height, {}, [&](unsigned int y) { means.row(y, developed); });
    }
    developed.rawIsMosaic = false;
    return true;
}

QString describeRaw(const Image& raw)
{
    static const char* const turns[] = {"not turned", "turned by 180 degrees", "turned by 270 degrees",
                                        "turned by 90 degrees"};
    QStringList facts;
    facts << (!raw.rawIsMosaic         ? "no mosaic"
              : Examples::isBayer(raw) ? QString("Bayer mosaic %1").arg(raw.rawFilters, 8, 16, QChar('0'))
                                       : QString(Examples::isXTrans(raw) ? "X-Trans mosaic" : "other mosaic"));
    facts << turns[raw.rawRotation % 4];
    const auto list = [](const float* m) {
        return QString("%1 %2 %3").arg(double(m[0])).arg(double(m[1])).arg(double(m[2]));
    };
    facts << "as-shot multipliers " + list(raw.rawCameraMultipliers);
    facts << "daylight multipliers " + list(raw.rawPreMultipliers);
    facts << (raw.rawIdentityMatrix ? "identity matrix" : "camera matrix");
    facts << (raw.rawToneCurve ? QString("tone curve of %1 points").arg(raw.rawToneCurve->size()) : "no tone curve");
    return facts.join(", ");
}

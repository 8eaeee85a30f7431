#include "curvesvalue.h"

#include "values.h"

#include <QPointF>

#include <cmath>

namespace Essentials
{
namespace
{

using Knots = std::vector<Ondrel::CubicBezierSpline::Point>;

constexpr int kMostKnots = 256;

QVariantList listOf(const Knots& knots)
{
    QVariantList list;
    for (const auto& knot : knots)
        list.append(QPointF(knot.x, knot.y));
    return list;
}

Knots knotsOf(const QVariant& value)
{
    Knots knots;
    for (const QVariant& element : value.toList().mid(0, kMostKnots)) {
        const QPointF point = element.toPointF();
        const auto coordinate = [](double v) { return int(std::lround(limited(v, 0, 65535, 0))); };
        if (element.canConvert<QPointF>())
            knots.push_back({coordinate(point.x()), coordinate(point.y())});
    }
    Ondrel::ValidateCurve(knots);
    return knots;
}

} // namespace

QVariant valueFromCurves(const Ondrel::Curves& curves)
{
    return QVariantList{QVariant(listOf(curves.all)), QVariant(listOf(curves.red)), QVariant(listOf(curves.green)),
                        QVariant(listOf(curves.blue))};
}

Ondrel::Curves curvesFromValue(const QVariant& value)
{
    const QVariantList lists = value.toList();
    return {knotsOf(lists.value(0)), knotsOf(lists.value(1)), knotsOf(lists.value(2)), knotsOf(lists.value(3))};
}

} // namespace Essentials

#include "valuetext.h"

#include "values.h"

#include <ondrel/core/color.h>
#include <ondrel/widgets/precisionrangeslider.h>

#include <QLocale>
#include <QPointF>

#include <algorithm>
#include <cmath>

namespace Host
{
namespace
{

using RangeValue = Ondrel::PrecisionRangeSlider::RangeValue;

bool isOf(const QVariantList& list, int type)
{
    return std::all_of(list.begin(), list.end(), [type](const QVariant& each) { return each.userType() == type; });
}

bool isPoints(const QVariant& value)
{
    return value.userType() == QMetaType::QVariantList && isOf(value.toList(), QMetaType::QPointF);
}

bool isLists(const QVariant& value)
{
    const QVariantList list = value.toList();
    return value.userType() == QMetaType::QVariantList && !list.isEmpty() &&
           std::all_of(list.begin(), list.end(), isPoints);
}

QString pointsToText(const QVariantList& points)
{
    QStringList texts;
    for (const QVariant& each : points)
        texts.append(QString("%1,%2").arg(QString::number(each.toPointF().x(), 'g', QLocale::FloatingPointShortest),
                                          QString::number(each.toPointF().y(), 'g', QLocale::FloatingPointShortest)));
    return texts.join(' ');
}

bool pointsFromText(const QString& text, QVariantList& points)
{
    for (const QString& each : text.simplified().split(' ', Qt::SkipEmptyParts)) {
        const QStringList parts = each.split(',');
        bool isNumber = parts.size() == 2, isOther = isNumber;
        const QPointF point(parts.value(0).toDouble(&isNumber), parts.value(1).toDouble(&isOther));
        if (parts.size() != 2 || !isNumber || !isOther || !std::isfinite(point.x()) || !std::isfinite(point.y()))
            return false;
        points.append(point);
    }
    return true;
}

bool hasFormOfItsOwn(const QString& kind)
{
    return QStringList{"slider", "combobox", "fieldsetcombobox", "rangeslider", "color", "colorprofile"}.contains(kind);
}

} // namespace

QString valueToLine(const QVariant& value, const InputInfo& input)
{
    if (input.kind == "rangeslider")
        return value.value<RangeValue>().left + ".." + value.value<RangeValue>().right;
    if (input.kind == "color")
        return value.value<Ondrel::Color>().name();
    if (input.kind == "colorprofile")
        return value.toByteArray().toHex();
    if (hasFormOfItsOwn(input.kind))
        return value.toString();
    if (isLists(value)) {
        QStringList texts;
        for (const QVariant& each : value.toList())
            texts.append(pointsToText(each.toList()));
        return texts.join(" | ");
    }
    if (isPoints(value) && !value.toList().isEmpty())
        return pointsToText(value.toList());
    return QString::fromStdString(valueToJson(value).dump());
}

bool valueFromLine(const QString& line, const InputInfo& input, QVariant& value)
{
    const QString text = line.trimmed();
    const bool areLists = isLists(value), arePoints = isPoints(value) && !value.toList().isEmpty();
    if (hasFormOfItsOwn(input.kind) || (!areLists && !arePoints) || text.startsWith('{'))
        return valueFromText(text, input.kind, input.choices, value);
    QVariantList lists;
    for (const QString& part : text.split('|')) {
        QVariantList points;
        if (!pointsFromText(part, points))
            return false;
        lists.append(QVariant(points));
    }
    if (arePoints && !areLists && lists.size() != 1)
        return false;
    value = areLists ? QVariant(lists) : lists.value(0);
    return true;
}

} // namespace Host

#include "values.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/core/color.h>
#include <ondrel/resources/resourceid.h>
#include <ondrel/widgets/precisionrangeslider.h>

#include <algorithm>

namespace Viewer
{
namespace
{

QString profileName(const QByteArray& bytes)
{
    std::array<unsigned char, 32> hash{};
    if (bytes.size() != int(hash.size()))
        return QStringLiteral("none");
    std::copy(bytes.begin(), bytes.end(), hash.begin());
    const auto* const profiles = Ondrel::ColorManager::beginUsingColorProfileMap();
    const auto found = profiles->find(hash);
    QString name = found == profiles->end() ? QStringLiteral("unknown profile") : found->second.name;
    Ondrel::ColorManager::endUsingColorProfileMap();
    return name;
}

} // namespace

QString textOf(const QVariant& value)
{
    using Range = Ondrel::PrecisionRangeSlider::RangeValue;
    if (value.userType() == qMetaTypeId<Range>())
        return value.value<Range>().left + " to " + value.value<Range>().right;
    if (value.userType() == qMetaTypeId<Ondrel::Color>())
        return value.value<Ondrel::Color>().name();
    if (value.userType() == qMetaTypeId<Ondrel::ResourceId>())
        return QStringLiteral("resource %1").arg(value.value<Ondrel::ResourceId>().id);
    if (value.userType() == QMetaType::QByteArray)
        return profileName(value.toByteArray());
    return value.toString();
}

} // namespace Viewer

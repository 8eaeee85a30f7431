#include "projectform.h"

#include <ondrel/resources/resourceid.h>

using Handles = std::map<std::uint32_t, std::uint32_t>;

namespace Host
{
namespace
{

bool isResource(const QVariant& value)
{
    return value.userType() == qMetaTypeId<Ondrel::ResourceId>();
}

QVariant withHandle(const QVariant& value, const Handles& handles)
{
    if (isResource(value)) {
        const auto found = handles.find(value.value<Ondrel::ResourceId>().id);
        return QVariant::fromValue(Ondrel::ResourceId(found == handles.end() ? 0 : found->second));
    }
    if (value.type() == QVariant::List) {
        QVariantList list;
        for (const QVariant& element : value.toList())
            list.append(withHandle(element, handles));
        return list;
    }
    return value.type() == QVariant::Map ? withHandles(value.toMap(), handles) : value;
}

} // namespace

void collectResources(const QVariant& value, std::vector<std::uint32_t>& ids)
{
    if (isResource(value)) {
        const std::uint32_t id = value.value<Ondrel::ResourceId>().id;
        if (id != 0)
            ids.push_back(id);
    } else if (value.type() == QVariant::List) {
        for (const QVariant& element : value.toList())
            collectResources(element, ids);
    } else if (value.type() == QVariant::Map) {
        for (const QVariant& element : value.toMap())
            collectResources(element, ids);
    }
}

QVariantMap withHandles(const QVariantMap& values, const Handles& handles)
{
    QVariantMap result = values;
    for (auto entry = result.begin(); entry != result.end(); ++entry)
        *entry = withHandle(*entry, handles);
    return result;
}

} // namespace Host

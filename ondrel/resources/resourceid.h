#pragma once

#include <QMetaType>
#include <cstdint>
namespace Ondrel
{
struct ResourceId {
    std::uint32_t id = 0;
    ResourceId() = default;
    ResourceId(std::uint32_t value)
        : id(value)
    {
    }
    bool operator==(ResourceId const& o) const { return id == o.id; }
    bool operator!=(ResourceId const& o) const { return id != o.id; }
};
} // namespace Ondrel
Q_DECLARE_METATYPE(Ondrel::ResourceId) // registered as "Ondrel::ResourceId"

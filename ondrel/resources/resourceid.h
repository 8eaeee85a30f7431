#pragma once

#include <QMetaType>

#include <cstdint>

namespace Ondrel
{

// The handle of an image in ResourceEngine: a counter, never derived from the content, so two resources made from one
// file have two handles. 0 is no resource. A Qt meta type under the name "Ondrel::ResourceId", known by name as soon as
// the library is loaded.
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

Q_DECLARE_METATYPE(Ondrel::ResourceId)

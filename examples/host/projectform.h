#pragma once

#include <QVariant>

#include <cstdint>
#include <map>
#include <vector>

// What reader and writer of project files have in common.
namespace Host
{

constexpr const char* kProjectFormat = "ondrel-project";
constexpr unsigned int kProjectVersion = 1;
constexpr const char* kResourceKinds[] = {"image", "raw", "buffer"}; // by StoredResource::Form
constexpr const char* kUnreadText = "json"; // in NodeRecord::unread: the node as it stood in the file

// The resources that a value names, also inside lists and maps, but for 0.
void collectResources(const QVariant& value, std::vector<std::uint32_t>& ids);

// The values with every resource replaced by what the table has for it, or by none.
QVariantMap withHandles(const QVariantMap& values, const std::map<std::uint32_t, std::uint32_t>& handles);

} // namespace Host

#include "settledprofiles.h"

#include <ondrel/color/colormanager.h>

#include <algorithm>

namespace Host
{

void settleProfiles()
{
    constexpr std::size_t headerBytes = 128;
    // Date, platform, attributes, intent and ID in the header of an ICC profile: offset and size.
    constexpr std::pair<std::ptrdiff_t, int> blanked[] = {{24, 12}, {40, 4}, {56, 8}, {64, 4}, {84, 16}};
    for (auto& [hash, profile] : *Ondrel::ColorManager::beginUsingColorProfileMap()) {
        if (profile.data.size() < headerBytes)
            continue;
        for (const auto& [offset, size] : blanked)
            std::fill_n(profile.data.begin() + offset, size, static_cast<unsigned char>(0));
    }
    Ondrel::ColorManager::endUsingColorProfileMap();
}

} // namespace Host

#include "profiles.h"

#include <ondrel/color/colormanager.h>

namespace Essentials
{

bool isPixelProfile(const std::array<unsigned char, 32>& hash)
{
    using ColorManager = Ondrel::ColorManager;
    const ColorManager::ColorProfileMap* const profiles = ColorManager::beginUsingColorProfileMap();
    const auto found = profiles->find(hash);
    const bool fits = found != profiles->end() && found->second.colorspace != ColorManager::ColorProfile::CMYK;
    ColorManager::endUsingColorProfileMap();
    return fits;
}

unsigned int intentOf(const QVariantMap& values)
{
    return Ondrel::renderingIntentFromString(values.value("intent").toString());
}

} // namespace Essentials

#pragma once

#include <ondrel/color/lcms_p.h>
#include <ondrel/resources/resourceengine.h>

#include <memory>

namespace Ondrel
{

// Validates `info` by its format, and gives the embedded profile in `profile` if the file has one that the store
// registers: the registry refuses grey, and an image is RGB whatever its file was.
[[nodiscard]] bool validateRecord(const std::shared_ptr<ResourceEngine::ImageInfo>& info, OwnedProfile& profile);

} // namespace Ondrel

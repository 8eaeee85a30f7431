#pragma once

#include <ondrel/resources/resourceengine.h>

#include <memory>

namespace Ondrel
{

// The camera RAW decoder that the store calls; tests put their own in its place. While a pointer is null, RAW files are
// refused: adding one and copying the image of one are false.
struct RawDecoder {
    // As ResourceEngine::ValidatePNG, for a RAW file.
    bool (*validate)(const std::shared_ptr<ResourceEngine::ImageInfo>& info, void** profile);
    // Decodes a stored RAW file, which it gets through ResourceEngine::CopyData. Called with the store unlocked.
    Ondrel::Image (*process)(Ondrel::ResourceId id, const Ondrel::RunStatus& status);
};

// The decoder in use. It may be replaced only while no call into a store runs.
ONDREL_EXPORT RawDecoder& rawDecoder();

} // namespace Ondrel

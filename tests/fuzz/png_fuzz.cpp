// PNG bytes into the decoder and, whatever they turn out to be, through the store.

#include "checks.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::uint64_t memory = RunTimeStatistics::Get(RunTimeStatistics::ImageMemory);
    {
        Ondrel::Image image;
        void* profile = nullptr;
        ResourceEngine::ReadPNG(OndrelFuzz::record(data, size), image, &profile);
        if (profile)
            cmsCloseProfile(profile);
    }
    OndrelFuzz::require(RunTimeStatistics::Get(RunTimeStatistics::ImageMemory) == memory, "pixel memory is as it was");
    OndrelFuzz::roundThroughStore(data, size);
    return 0;
}

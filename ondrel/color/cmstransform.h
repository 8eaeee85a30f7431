#pragma once

#include <ondrel/ondrel_export.h>

// oneTBB 2021.8 does not compile behind Qt's macro `emit`.
#pragma push_macro("emit")
#undef emit
#include <tbb/enumerable_thread_specific.h>
#pragma pop_macro("emit")

#include <ondrel/core/image.h>

namespace Ondrel
{
class ONDREL_EXPORT ColorTransformCache : public tbb::enumerable_thread_specific<void*>
{
public:
    ColorTransformCache();
    ~ColorTransformCache();
    void clear();

private:
    ColorTransformCache(const ColorTransformCache&) = delete;
    ColorTransformCache& operator=(const ColorTransformCache&) = delete;
};
} // namespace Ondrel

ONDREL_EXPORT void DoMultithreadedCMSTransform(void* source, unsigned int sourceFormat, void* destination,
                                               unsigned int destinationFormat, unsigned int intent,
                                               Ondrel::ColorTransformCache* cache, const void* sourceBuffer,
                                               unsigned int sourcePixelSize, void* destinationBuffer,
                                               unsigned int destinationPixelSize, unsigned int width,
                                               unsigned int height);
ONDREL_EXPORT void DoMultithreadedCMSTransform(void* source, void* destination, unsigned int intent,
                                               Ondrel::ColorTransformCache* cache, const Ondrel::Image& input,
                                               Ondrel::Image& output);

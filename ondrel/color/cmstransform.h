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

// One Little CMS transform for each thread, since a transform is slow to build and keeps scratch state. A slot is null
// until its thread first needs it. A cache does not know what its transforms convert: it must only ever be used with
// one source, destination, intent and pair of pixel formats. Threads may fill and use their slots at the same time;
// clear() and the destructor delete all transforms and must not meet them.
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

// Converts pixels between two profiles (cmsHPROFILE) on several threads; returns when all are done. Formats are those
// of Little CMS, `intent` is its number, the cache must not be null. Buffers have no gaps between rows; pixel sizes
// are in bytes. If Little CMS cannot build the transform, the destination is left as it is.
ONDREL_EXPORT void DoMultithreadedCMSTransform(void* source, unsigned int sourceFormat, void* destination,
                                               unsigned int destinationFormat, unsigned int intent,
                                               Ondrel::ColorTransformCache* cache, const void* sourceBuffer,
                                               unsigned int sourcePixelSize, void* destinationBuffer,
                                               unsigned int destinationPixelSize, unsigned int width,
                                               unsigned int height);

// The same for images: 16-bit Lab with an extra channel on the side of a Lab profile, 16-bit RGBA otherwise. The size
// is that of `input`; the output needs room for it. Alpha in the output is left alone.
ONDREL_EXPORT void DoMultithreadedCMSTransform(void* source, void* destination, unsigned int intent,
                                               Ondrel::ColorTransformCache* cache, const Ondrel::Image& input,
                                               Ondrel::Image& output);

#include <ondrel/color/cmsrows_p.h>
#include <ondrel/color/lcms_p.h>
#include <ondrel/core/parallel_p.h>
#include <ondrel/core/pixelsinblock_p.h>

#include <algorithm>
#include <atomic>

namespace Ondrel
{
namespace
{

constexpr unsigned int kLabWithExtra = COLORSPACE_SH(PT_Lab) | EXTRA_SH(1) | CHANNELS_SH(3) | BYTES_SH(2);

void* threadTransform(const TransformMaker& make, ColorTransformCache& cache)
{
    bool exists = false;
    void*& slot = cache.local(exists);
    if (!exists)
        slot = make();
    return slot;
}

} // namespace

ColorTransformCache::ColorTransformCache() = default;

ColorTransformCache::~ColorTransformCache()
{
    clear();
}

void ColorTransformCache::clear()
{
    for (void* transform : *this) {
        if (transform)
            cmsDeleteTransform(transform);
    }
    tbb::enumerable_thread_specific<void*>::clear();
}

unsigned int imagePixelFormat(void* profile)
{
    return profile && cmsGetColorSpace(profile) == cmsSigLabData ? kLabWithExtra : TYPE_RGBA_16;
}

TransformMaker transformMaker(const PixelConversion& conversion)
{
    return [conversion]() -> void* {
        if (!conversion.source || !conversion.destination)
            return nullptr;
        return cmsCreateTransform(conversion.source, conversion.sourceFormat, conversion.destination,
                                  conversion.destinationFormat, conversion.intent, 0);
    };
}

bool convertRows(const TransformMaker& make, ColorTransformCache& cache, std::size_t width, std::size_t pixels,
                 std::size_t grainRows, const std::function<void(void*, std::size_t, std::size_t)>& body)
{
    if (pixels == 0)
        return true;
    std::atomic<bool> complete{true};
    const std::size_t rows = (pixels + width - 1) / width;
    parallelRanges(rows, grainRows, [&](std::size_t firstRow, std::size_t lastRow) {
        void* transform = threadTransform(make, cache);
        if (!transform)
            complete.store(false, std::memory_order_relaxed);
        body(transform, firstRow * width, std::min(lastRow * width, pixels));
    });
    return complete;
}

bool convertImage(const TransformMaker& make, ColorTransformCache& cache, const Image& image, Image& result)
{
    const std::size_t pixels = std::min(pixelsInBlock(image), pixelsInBlock(result));
    return convertRows(make, cache, image.width, pixels, kConversionGrainRows,
                       [&](void* transform, std::size_t first, std::size_t last) {
                           if (!transform)
                               return;
                           forEachPiece(first, last, [&](std::size_t at, std::size_t count) {
                               const std::uint16_t* from = image.data + at * 4;
                               std::uint16_t* to = result.data + at * 4;
                               cmsDoTransform(transform, from, to, static_cast<cmsUInt32Number>(count));
                               for (std::size_t i = 3; i < count * 4; i += 4)
                                   to[i] = from[i];
                           });
                       });
}

} // namespace Ondrel

void DoMultithreadedCMSTransform(void* source, unsigned int sourceFormat, void* destination,
                                 unsigned int destinationFormat, unsigned int intent,
                                 Ondrel::ColorTransformCache* cache, const void* sourceBuffer,
                                 unsigned int sourcePixelSize, void* destinationBuffer,
                                 unsigned int destinationPixelSize, unsigned int width, unsigned int height)
{
    const auto* from = static_cast<const unsigned char*>(sourceBuffer);
    auto* to = static_cast<unsigned char*>(destinationBuffer);
    // Little CMS counts pixels in 32 bits.
    constexpr std::size_t most = std::size_t{1} << 30;
    Ondrel::convertRows(Ondrel::transformMaker({source, sourceFormat, destination, destinationFormat, intent}), *cache,
                        width, std::size_t{width} * height, Ondrel::kConversionGrainRows,
                        [=](void* transform, std::size_t first, std::size_t last) {
                            for (; transform && first < last; first += most)
                                cmsDoTransform(transform, from + first * sourcePixelSize,
                                               to + first * destinationPixelSize,
                                               static_cast<cmsUInt32Number>(std::min(last - first, most)));
                        });
}

void DoMultithreadedCMSTransform(void* source, void* destination, unsigned int intent,
                                 Ondrel::ColorTransformCache* cache, const Ondrel::Image& input, Ondrel::Image& output)
{
    const std::size_t pixels = std::min<std::size_t>(pixelsInBlock(input), output.sizeBytes / 8);
    const Ondrel::PixelConversion conversion = {source, Ondrel::imagePixelFormat(source), destination,
                                                Ondrel::imagePixelFormat(destination), intent};
    Ondrel::convertRows(Ondrel::transformMaker(conversion), *cache, input.width, pixels, Ondrel::kConversionGrainRows,
                        [&](void* transform, std::size_t first, std::size_t last) {
                            if (!transform)
                                return;
                            Ondrel::forEachPiece(first, last, [&](std::size_t at, std::size_t count) {
                                cmsDoTransform(transform, input.data + at * 4, output.data + at * 4,
                                               static_cast<cmsUInt32Number>(count));
                            });
                        });
}

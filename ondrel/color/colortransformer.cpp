#include <ondrel/color/cmsrows_p.h>
#include <ondrel/color/colorprofiles.h>
#include <ondrel/color/colortransformer.h>
#include <ondrel/color/colortransformer_p.h>
#include <ondrel/color/displaypacking_p.h>
#include <ondrel/core/parallel_p.h>
#include <ondrel/core/pixelsinblock_p.h>

#include <QMutexLocker>

#include <algorithm>

#include <sys/mman.h>
#include <unistd.h>

namespace
{

using Ondrel::Image;
using Ondrel::packForDisplay;

// Smaller tasks than other conversions have: on two threads, one may otherwise wait for the other's last one.
constexpr std::size_t kDisplayGrainRows = 64;

constexpr std::size_t kPackingGrain = std::size_t{1} << 17;

// Larger blocks than glibc ever takes from its heap: each is a mapping of its own, which goes when the image goes.
constexpr std::size_t kOwnMapping = std::size_t{32} << 20;

// First writes to small pages would take longer than the packing itself. Only a hint; nothing depends on it.
void adviseHugePages(uchar* bytes, std::size_t size)
{
    if (size <= kOwnMapping)
        return;
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::size_t skipped = (page - reinterpret_cast<std::uintptr_t>(bytes) % page) % page;
    madvise(bytes + skipped, (size - skipped) / page * page, MADV_HUGEPAGE);
}

// The bytes of a new result and the number of pixels that it shares with the image.
struct Target {
    QImage result;
    uchar* bytes;
    std::size_t pixels;
};

Target targetFor(const Image& image)
{
    QImage result(static_cast<int>(image.width), static_cast<int>(image.height), QImage::Format_ARGB32_Premultiplied);
    uchar* bytes = result.bits();
    const auto size = static_cast<std::size_t>(result.sizeInBytes());
    adviseHugePages(bytes, size);
    return {std::move(result), bytes, std::min(pixelsInBlock(image), size / 4)};
}

QImage toUnmanagedQImage(const Image& image, SIMDCompatibility level)
{
    const Target target = targetFor(image);
    Ondrel::parallelRanges(target.pixels, kPackingGrain, [&](std::size_t first, std::size_t last) {
        packForDisplay(image.data + first * 4, target.bytes + first * 4, last - first, level);
    });
    return target.result;
}

// The image's own profile, or sRGB.
Ondrel::OwnedProfile sourceProfileOf(const Image& image)
{
    Ondrel::OwnedProfile profile(Ondrel::ColorManager::copyColorProfileByHash(image.colorProfile));
    return profile ? std::move(profile) : Ondrel::OwnedProfile(Ondrel::Create_sRGBColorProfile());
}

} // namespace

namespace Ondrel
{

QImage ColorTransformer::toQImage(const Ondrel::Image& image, bool noColorManagement)
{
    return ColorTransformerPrivate::get()->toQImage(image, noColorManagement, CheckSIMDCompatibility());
}

} // namespace Ondrel

ColorTransformerPrivate* ColorTransformerPrivate::get()
{
    static ColorTransformerPrivate transformer;
    return &transformer;
}

void ColorTransformerPrivate::setOutputSettings(bool enabled, const std::vector<unsigned char>& displayProfile,
                                                unsigned int renderingIntent)
{
    const QMutexLocker lock(&m_mutex);
    m_outputProfile.reset();
    m_transforms.clear();
    m_renderingIntent = renderingIntent;
    if (enabled)
        m_outputProfile = Ondrel::openProfile(displayProfile);
    m_enabled.store(m_outputProfile != nullptr, std::memory_order_relaxed);
}

QImage ColorTransformerPrivate::toQImage(const Ondrel::Image& image, bool noColorManagement, SIMDCompatibility level)
{
    if (m_enabled.load(std::memory_order_relaxed) && !noColorManagement)
        return toManagedQImage(image, level);
    return toUnmanagedQImage(image, level);
}

QImage ColorTransformerPrivate::toManagedQImage(const Ondrel::Image& image, SIMDCompatibility level)
{
    // Before the lock, because this takes the lock of ColorManager, under which setOutputSettings() takes ours.
    const Ondrel::OwnedProfile source = sourceProfileOf(image);

    const QMutexLocker lock(&m_mutex);
    void* output = m_outputProfile.get();
    if (!output) // turned off since the flag was read
        return toUnmanagedQImage(image, level);

    const Target target = targetFor(image);
    const Ondrel::PixelConversion conversion = {source.get(), Ondrel::imagePixelFormat(source.get()), output,
                                                Ondrel::imagePixelFormat(output), m_renderingIntent};
    const auto convert = [&](void* transform, std::size_t first, std::size_t last) {
        Ondrel::forEachPiece(first, last, [&](std::size_t at, std::size_t count) {
            const std::uint16_t* const samples = image.data + at * 4;
            if (!transform)
                return packForDisplay(samples, target.bytes + at * 4, count, level);
            std::uint16_t converted[Ondrel::kConversionPiece * 4];
            for (std::size_t i = 3; i < count * 4; i += 4)
                converted[i] = samples[i]; // Little CMS leaves the fourth channel alone
            cmsDoTransform(transform, samples, converted, static_cast<cmsUInt32Number>(count));
            packForDisplay(converted, target.bytes + at * 4, count, level);
        });
    };
    Ondrel::convertRows(Ondrel::transformMaker(conversion), m_transforms[image.colorProfile], image.width,
                        target.pixels, kDisplayGrainRows, convert);
    return target.result;
}

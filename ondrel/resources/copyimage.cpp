#include <ondrel/color/colormanager.h>
#include <ondrel/pixel/painter.h>
#include <ondrel/pixel/scale.h>
#include <ondrel/resources/decodelimits_p.h>
#include <ondrel/resources/profileconversion_p.h>
#include <ondrel/resources/rawdecoder_p.h>
#include <ondrel/resources/resourceengine.h>

#include <mutex>
#include <utility>

namespace
{

using Hash = std::array<unsigned char, 32>;

// A plain load, made so that the owner may write the word on another thread at any time.
bool isCancelled(const Ondrel::RunStatus& status)
{
    return status.state && __atomic_load_n(status.state, __ATOMIC_RELAXED) == 1;
}

bool copyBuffer(const ResourceEngine::ImageInfo& info, std::shared_ptr<const Ondrel::Image>& image)
{
    if (!info.image)
        return false;
    // A repeated preview then needs no new mapping.
    if (image && image->canSafelyAssignInPlace(*info.image))
        const_cast<Ondrel::Image&>(*image) = *info.image;
    else
        image = std::make_shared<Ondrel::Image>(*info.image);
    return true;
}

// Everything but RAW, which needs the store unlocked.
bool decode(const std::shared_ptr<ResourceEngine::ImageInfo>& info, const Hash& hash, Ondrel::Image& image)
{
    switch (info->format) {
    case ResourceEngine::FormatPNG:
        return ResourceEngine::ReadPNG(info, image, nullptr);
    case ResourceEngine::FormatJPEG:
        return ResourceEngine::ReadJPEG(info, image, nullptr, hash);
    case ResourceEngine::FormatTIFF:
        return ResourceEngine::ReadTIFF(info, image, nullptr, hash);
    default:
        return false;
    }
}

// PNG and RAW files come in their own profile; the other two readers convert by themselves.
bool convertTo(const Hash& hash, Ondrel::Image& image)
{
    const Ondrel::OwnedProfile own(Ondrel::ColorManager::copyColorProfileByHash(image.colorProfile));
    const Ondrel::OwnedProfile wanted(Ondrel::ColorManager::copyColorProfileByHash(hash));
    if (!Ondrel::convertPixels(image, own.get(), wanted.get()))
        return false;
    image.colorProfile = hash;
    return true;
}

} // namespace

bool ResourceEngine::CopyImage(Ondrel::ResourceId id, std::shared_ptr<const Ondrel::Image>& image,
                               const std::array<unsigned char, 32>& colorProfile, const Ondrel::RunStatus& status)
{
    // The caller may name the profile by a member of the very image that `image` is about to let go.
    const Hash hash = colorProfile;
    std::unique_lock<QMutex> lock(mutex);
    const auto info = FindResource(id);
    if (!info)
        return false;
    if (info->format == FormatImageBuffer)
        return copyBuffer(*info, image);
    const auto cached = cachedImages.find(id.id);
    if (cached != cachedImages.end() && cached->second.colorProfile == hash) {
        image = cached->second.image;
        return true;
    }

    const auto result = std::make_shared<Ondrel::Image>(0, 0);
    image = result;
    Ondrel::Image decoded;
    const Format format = info->format;
    if (format == FormatRAW) {
        const auto process = Ondrel::rawDecoder().process;
        if (!process)
            return false;
        lock.unlock();
        decoded = process(id, status);
        if (isCancelled(status))
            return false;
        lock.lock();
        if (!FindResource(id)) // removed meanwhile
            return false;
    } else if (!decode(info, hash, decoded)) {
        return false;
    }
    const bool ownProfile = format == FormatPNG || format == FormatRAW;
    if (ownProfile && hash != Ondrel::EmbeddedColorProfile && !convertTo(hash, decoded))
        return false;
    *result = std::move(decoded);
    cachedImages[id.id] = CachedImage{result, hash};
    return true;
}

bool ResourceEngine::CopySubImage(Ondrel::ResourceId id, std::shared_ptr<const Ondrel::Image>& image, const QSize& size,
                                  const Ondrel::RectT<int>& rect, bool)
{
    const std::lock_guard<QMutex> lock(mutex);
    const auto info = FindResource(id);
    if (!info || info->format != FormatImageBuffer || !info->image || info->image->width == 0)
        return false;
    const auto width = static_cast<unsigned int>(size.width());
    const auto height = static_cast<unsigned int>(size.height());
    if (image && image->width == width && image->height == height && !rect.isInvalid()) {
        PixelPainter painter(const_cast<Ondrel::Image*>(image.get()));
        painter.copyImage(rect.left(), rect.top(), rect.left(), rect.top(), rect.width(), rect.height(), *info->image);
        return true;
    }
    if (size.width() < 0 || size.height() < 0 || std::uint64_t(width) * height >= Ondrel::kPixelLimit)
        return false;
    image = std::make_shared<Ondrel::Image>(Resize(*info->image, width, height, 65535, 65535, 65535, 65535));
    return true;
}

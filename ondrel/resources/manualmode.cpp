#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>
#include <ondrel/resources/embeddedprofile_p.h>
#include <ondrel/resources/resourceengine.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <mutex>
#include <utility>

namespace
{

using Hash = std::array<unsigned char, 32>;

// The members of `a` that are missing in `b`, as std::set_difference finds them in lists in order of appearance: hosts
// and their projects depend on which profiles come and go, so the lists are not sorted first.
std::vector<Hash> difference(const std::vector<Hash>& a, const std::vector<Hash>& b)
{
    std::vector<Hash> result;
    std::set_difference(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(result),
                        [](const Hash& x, const Hash& y) { return std::memcmp(x.data(), y.data(), x.size()) < 0; });
    return result;
}

} // namespace

bool ResourceEngine::BeginManualResources(std::unordered_map<unsigned int, std::shared_ptr<ImageInfo>>** map)
{
    mutex.lock();
    *map = &resources;
    return true;
}

bool ResourceEngine::TryBeginManualResources(std::unordered_map<unsigned int, std::shared_ptr<ImageInfo>>** map)
{
    if (!mutex.tryLock())
        return false;
    *map = &resources;
    return true;
}

bool ResourceEngine::EndManualResources(EndManualProcessing processing)
{
    const std::unique_lock<QMutex> lock(mutex, std::adopt_lock);
    if (processing == EndManualRevalidate)
        Revalidate();
    if (processing == EndManualRevalidate || processing == EndManualRebuildSizes)
        RebuildSizeCache();
    return true;
}

void ResourceEngine::Revalidate()
{
    using Ondrel::ColorManager;
    std::unordered_map<Hash, std::shared_ptr<ImageInfo>, Ondrel::ColorProfileHashHasher> owners;
    std::vector<Hash> newHashes;
    for (const auto& [id, info] : resources) {
        if (!info || info->format == FormatImageBuffer)
            continue;
        Ondrel::OwnedProfile profile;
        if (!Ondrel::validateRecord(info, profile) || !profile)
            continue;
        Ondrel::GetICCProfileData(profile.get(), info->iccProfile);
        const Hash hash = ColorManager::buildColorProfileHash(info->iccProfile);
        info->colorProfileHash = std::make_unique<Hash>(hash);
        owners[hash] = info;
        if (std::find(newHashes.begin(), newHashes.end(), hash) == newHashes.end())
            newHashes.push_back(hash);
    }
    for (const Hash& hash : difference(usedColorProfiles, newHashes))
        ColorManager::removeColorProfile(hash, ColorManager::ColorProfile::Embedded);
    for (const Hash& hash : difference(newHashes, usedColorProfiles))
        ColorManager::addColorProfile(owners.at(hash)->iccProfile, ColorManager::ColorProfile::Embedded, nullptr);
    usedColorProfiles = std::move(newHashes);
    cachedImages.clear();
}

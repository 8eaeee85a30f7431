#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>
#include <ondrel/resources/embeddedprofile_p.h>
#include <ondrel/resources/resourceengine.h>

#include <QMutexLocker>

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

namespace
{

// Constant-initialised, since initialisers of other files may read them.
constexpr std::array<unsigned char, 32> profileWord(std::string_view word)
{
    std::array<unsigned char, 32> bytes{};
    for (std::size_t i = 0; i < word.size(); ++i)
        bytes[i] = static_cast<unsigned char>(word[i]);
    return bytes;
}

const int resourceIdType = qRegisterMetaType<Ondrel::ResourceId>("Ondrel::ResourceId");

constexpr std::size_t kMostResources = 0xFFFFFFFD;

} // namespace

namespace Ondrel
{

constexpr std::array<unsigned char, 32> NoneColorProfile = profileWord("None");
constexpr std::array<unsigned char, 32> EmbeddedColorProfile = profileWord("Embedded");

} // namespace Ondrel

ResourceEngine::ResourceEngine() = default;
ResourceEngine::~ResourceEngine() = default;

ResourceEngine& ResourceEngine::Get()
{
    static ResourceEngine engine;
    return engine;
}

bool ResourceEngine::CreateId(Ondrel::ResourceId& id)
{
    if (resources.size() > kMostResources)
        return false;
    unsigned int candidate = nextId;
    while (candidate == 0 || resources.count(candidate) > 0)
        ++candidate;
    nextId = candidate + 1;
    id = candidate;
    return true;
}

bool ResourceEngine::AddImage(const std::string& fileName, Ondrel::ResourceId& id)
{
    QMutexLocker lock(&mutex);
    auto info = std::make_shared<ImageInfo>();
    info->fileName = fileName;
    info->format = FormatJPEG; // until the content has been seen
    return LoadDataFromFile(fileName, info) && AddImageByDataPrivate(info, id);
}

bool ResourceEngine::AddRawImage(const std::string& fileName, Ondrel::ResourceId& id)
{
    QMutexLocker lock(&mutex);
    auto info = std::make_shared<ImageInfo>();
    info->fileName = fileName;
    info->format = FormatRAW;
    return LoadDataFromFile(fileName, info) && AddImageByDataPrivate(info, id);
}

bool ResourceEngine::AddImageByData(Format format, const std::vector<unsigned char>& data, const std::string& fileName,
                                    Ondrel::ResourceId& id)
{
    if (format == FormatImageBuffer)
        return false;
    QMutexLocker lock(&mutex);
    auto info = std::make_shared<ImageInfo>();
    info->format = format;
    info->data = data;
    info->fileName = fileName;
    return AddImageByDataPrivate(info, id);
}

bool ResourceEngine::AddImageByDataPrivate(std::shared_ptr<ImageInfo>& info, Ondrel::ResourceId& id)
{
    Ondrel::OwnedProfile profile;
    if (!Ondrel::validateRecord(info, profile))
        return false;
    const unsigned int previousNextId = nextId;
    Ondrel::ResourceId newId;
    if (!CreateId(newId))
        return false;
    try {
        if (profile)
            RegisterEmbeddedProfile(*info, profile.get());
        resources[newId.id] = info;
        RebuildSizeCache();
    } catch (...) {
        resources.erase(newId.id);
        if (info->colorProfileHash && CountUsers(*info->colorProfileHash) == 0)
            ForgetEmbeddedProfile(*info->colorProfileHash);
        nextId = previousNextId;
        throw;
    }
    id = newId;
    return true;
}

void ResourceEngine::RegisterEmbeddedProfile(ImageInfo& info, void* profile)
{
    usedColorProfiles.reserve(usedColorProfiles.size() + 1);
    auto hash = std::make_unique<std::array<unsigned char, 32>>();
    Ondrel::GetICCProfileData(profile, info.iccProfile);
    if (!Ondrel::ColorManager::addColorProfile(info.iccProfile, Ondrel::ColorManager::ColorProfile::Embedded,
                                               hash.get())) {
        info.iccProfile.clear(); // Little CMS could not save what it had opened: the image goes without a profile
        return;
    }
    if (std::find(usedColorProfiles.begin(), usedColorProfiles.end(), *hash) == usedColorProfiles.end())
        usedColorProfiles.push_back(*hash);
    info.colorProfileHash = std::move(hash);
}

void ResourceEngine::ForgetEmbeddedProfile(const std::array<unsigned char, 32>& hash)
{
    Ondrel::ColorManager::removeColorProfile(hash, Ondrel::ColorManager::ColorProfile::Embedded);
    usedColorProfiles.erase(std::remove(usedColorProfiles.begin(), usedColorProfiles.end(), hash),
                            usedColorProfiles.end());
}

std::size_t ResourceEngine::CountUsers(const std::array<unsigned char, 32>& hash) const
{
    return std::size_t(std::count_if(resources.begin(), resources.end(), [&hash](const auto& entry) {
        return entry.second && entry.second->colorProfileHash && *entry.second->colorProfileHash == hash;
    }));
}

std::shared_ptr<ResourceEngine::ImageInfo> ResourceEngine::FindResource(Ondrel::ResourceId id) const
{
    const auto found = resources.find(id.id);
    return found == resources.end() ? nullptr : found->second;
}

bool ResourceEngine::AddImageBuffer(const Ondrel::Image& image, Ondrel::ResourceId& id)
{
    QMutexLocker lock(&mutex);
    auto info = std::make_shared<ImageInfo>();
    info->format = FormatImageBuffer;
    info->image = std::make_shared<Ondrel::Image>(image);
    info->info.width = image.width;
    info->info.height = image.height;
    const unsigned int previousNextId = nextId;
    Ondrel::ResourceId newId;
    if (!CreateId(newId))
        return false;
    try {
        resources[newId.id] = std::move(info);
        RebuildSizeCache();
    } catch (...) {
        resources.erase(newId.id);
        nextId = previousNextId;
        throw;
    }
    id = newId;
    return true;
}

bool ResourceEngine::RemoveResource(Ondrel::ResourceId id)
{
    QMutexLocker lock(&mutex);
    const auto found = resources.find(id.id);
    if (found == resources.end())
        return false;
    const std::shared_ptr<ImageInfo> info = found->second;
    if (info && info->colorProfileHash && CountUsers(*info->colorProfileHash) == 1)
        ForgetEmbeddedProfile(*info->colorProfileHash);
    resources.erase(found);
    cachedImages.erase(id.id);
    RebuildSizeCache();
    return true;
}

bool ResourceEngine::CopyData(Ondrel::ResourceId id, Format& format, std::vector<unsigned char>& data,
                              std::string& fileName)
{
    QMutexLocker lock(&mutex);
    const auto info = FindResource(id);
    if (!info)
        return false;
    format = info->format;
    data = info->data;
    fileName = info->fileName;
    return true;
}

bool ResourceEngine::CopyImageInfo(Ondrel::ResourceId id, Ondrel::ImageInfo& info)
{
    QMutexLocker lock(&sizeCacheMutex);
    const auto found = sizeCache.find(id.id);
    if (found == sizeCache.end())
        return false;
    info = found->second;
    return true;
}

std::size_t ResourceEngine::SumMemorySizes(const std::vector<Ondrel::ResourceId>& ids)
{
    QMutexLocker lock(&mutex);
    std::size_t sum = 0;
    for (const Ondrel::ResourceId id : ids) {
        const auto info = FindResource(id);
        if (!info)
            continue;
        sum += info->data.size();
        if (info->image)
            sum += info->image->sizeBytes;
        const auto cached = cachedImages.find(id.id);
        if (cached != cachedImages.end())
            sum += cached->second.image->sizeBytes;
    }
    return sum;
}

bool ResourceEngine::ClearCache()
{
    QMutexLocker lock(&mutex);
    cachedImages.clear();
    return true;
}

void ResourceEngine::RebuildSizeCache()
{
    // Entries that stay are overwritten in place, which spares most of the allocations of a full pass.
    std::unordered_map<unsigned int, Ondrel::ImageInfo> added;
    std::size_t records = 0;
    QMutexLocker lock(&sizeCacheMutex);
    for (const auto& [id, info] : resources) {
        if (!info)
            continue;
        ++records;
        const auto found = sizeCache.find(id);
        if (found != sizeCache.end())
            found->second = info->info;
        else
            added.emplace(id, info->info);
    }
    sizeCache.merge(added);
    if (sizeCache.size() == records)
        return;
    for (auto entry = sizeCache.begin(); entry != sizeCache.end();)
        entry = FindResource(entry->first) ? std::next(entry) : sizeCache.erase(entry);
}

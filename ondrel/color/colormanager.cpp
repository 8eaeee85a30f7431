#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>
#include <ondrel/color/colortransformer_p.h>
#include <ondrel/color/lcms_p.h>
#include <ondrel/color/profileinfo_p.h>
#include <ondrel/core/platform.h>

#include <QFile>
#include <QMutexLocker>
#include <QSaveFile>
#include <QSettings>
#include <QTemporaryFile>

#include <algorithm>
#include <iostream>
#include <new>

namespace Ondrel
{
namespace
{

using Hash = std::array<unsigned char, 32>;
using ColorProfile = ColorManager::ColorProfile;

// Not the exported constant: that one may not be initialised yet when another static object asks.
const Hash& defaultHash()
{
    static const Hash hash = [] {
        const OwnedProfile profile(Create_sRGBColorProfile());
        return ColorManager::buildColorProfileHash(profile.get());
    }();
    return hash;
}

void warn(const char* text)
{
    std::cout << text << std::endl;
}

// False for a space that the table does not take.
bool colorspaceOf(cmsHPROFILE profile, ColorProfile::Type type, ColorProfile::Colorspace& colorspace)
{
    switch (_cmsLCMScolorSpace(cmsGetColorSpace(profile))) {
    case PT_RGB:
        colorspace = ColorProfile::RGB;
        return true;
    case PT_CMYK:
        colorspace = ColorProfile::CMYK;
        return true;
    case PT_Lab:
        colorspace = ColorProfile::Lab;
        return type == ColorProfile::BuiltIn;
    default:
        return false;
    }
}

// Only one caller in the process may see this name; QTemporaryFile makes it.
QString writeUserProfile(const std::vector<unsigned char>& data)
{
    QTemporaryFile file(Platform::UserColorProfileDirectory() + QStringLiteral("/XXXXXX"));
    file.setAutoRemove(false);
    if (file.open()) {
        file.write(reinterpret_cast<const char*>(data.data()), static_cast<qint64>(data.size()));
        file.close();
    }
    return file.fileName();
}

// The old file stays whole if the disk is full.
void overwriteUserProfile(const QString& fileName, const std::vector<unsigned char>& data)
{
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly))
        return;
    file.write(reinterpret_cast<const char*>(data.data()), static_cast<qint64>(data.size()));
    file.commit();
}

template <typename T>
bool contains(const std::vector<T>& list, T value)
{
    return std::find(list.begin(), list.end(), value) != list.end();
}

} // namespace

const std::array<unsigned char, 32> DefaultColorProfileHash = defaultHash();

ColorManager* ColorManager::get()
{
    static ColorManager manager;
    return &manager;
}

ColorManager::ColorManager()
{
    const QMutexLocker lock(&m_mutex);
    initializeColorProfiles();
    reloadPrivate();
}

ColorManager::~ColorManager()
{
    for (auto& [hash, profile] : m_colorProfiles)
        const OwnedProfile closed(profile.handle);
    for (void* handle : m_retiredHandles)
        cmsCloseProfile(handle);
}

void ColorManager::reload()
{
    ColorManager* manager = get();
    const QMutexLocker lock(&manager->m_mutex);
    manager->reloadPrivate();
}

bool ColorManager::isColorManagementEnabled()
{
    ColorManager* manager = get();
    const QMutexLocker lock(&manager->m_mutex);
    return manager->m_colorManagementEnabled;
}

ColorManager::ColorProfileMap* ColorManager::beginUsingColorProfileMap()
{
    ColorManager* manager = get();
    manager->m_mutex.lock();
    return &manager->m_colorProfiles;
}

void ColorManager::endUsingColorProfileMap()
{
    get()->m_mutex.unlock();
}

void ColorManager::colorProfileNamesAndHashesSorted(
    std::vector<std::pair<QString, std::array<unsigned char, 32>>>& list,
    const std::vector<ColorProfile::Colorspace>& colorspaces, const std::vector<ColorProfile::Type>& types)
{
    ColorManager* manager = get();
    const QMutexLocker lock(&manager->m_mutex);
    list.clear();
    for (const auto& [hash, profile] : manager->m_colorProfiles) {
        if (contains(colorspaces, profile.colorspace) && contains(types, profile.type))
            list.emplace_back(profile.name, hash);
    }
    std::sort(list.begin(), list.end(),
              [](const auto& a, const auto& b) { return a.first.toLower() < b.first.toLower(); });
}

void* ColorManager::copyColorProfileByHash(const std::array<unsigned char, 32>& hash)
{
    ColorManager* manager = get();
    const QMutexLocker lock(&manager->m_mutex);
    return manager->copyColorProfileByHashPrivate(hash);
}

std::vector<unsigned char> ColorManager::copyColorProfileDataByHash(const std::array<unsigned char, 32>& hash)
{
    ColorManager* manager = get();
    const QMutexLocker lock(&manager->m_mutex);
    const auto found = manager->m_colorProfiles.find(hash);
    return found == manager->m_colorProfiles.end() ? std::vector<unsigned char>() : found->second.data;
}

void ColorManager::displayProfileAsICCProfile(std::vector<unsigned char>& data)
{
    ColorManager* manager = get();
    const QMutexLocker lock(&manager->m_mutex);
    GetICCProfileData(manager->m_displayProfile, data);
}

std::array<unsigned char, 32> ColorManager::displayProfileAsHash()
{
    ColorManager* manager = get();
    const QMutexLocker lock(&manager->m_mutex);
    return manager->m_displayProfileHash;
}

void* ColorManager::copyDisplayProfile(std::array<unsigned char, 32>& hash)
{
    ColorManager* manager = get();
    const QMutexLocker lock(&manager->m_mutex);
    hash = manager->m_displayProfileHash;
    return manager->copyColorProfileByHashPrivate(hash);
}

bool ColorManager::addColorProfile(const std::vector<unsigned char>& data, ColorProfile::Type type,
                                   std::array<unsigned char, 32>* hash)
{
    ColorManager* manager = get();
    const QMutexLocker lock(&manager->m_mutex);
    const QString fileName = type == ColorProfile::User ? writeUserProfile(data) : QString();
    return manager->addColorProfilePrivate(data, fileName, type, hash);
}

bool ColorManager::addColorProfileAndClose(void* profile, ColorProfile::Type type, std::array<unsigned char, 32>* hash)
{
    std::vector<unsigned char> data;
    {
        const OwnedProfile owned(profile);
        GetICCProfileData(profile, data);
    }
    return addColorProfile(data, type, hash);
}

void ColorManager::updateColorProfile(const std::array<unsigned char, 32>& hash, const std::vector<unsigned char>& data)
{
    ColorManager* manager = get();
    const QMutexLocker lock(&manager->m_mutex);
    const auto found = manager->m_colorProfiles.find(hash);
    if (found == manager->m_colorProfiles.end() || found->second.type != ColorProfile::User)
        return;

    overwriteUserProfile(found->second.fileName, data);
    ColorProfile updated = found->second;
    OwnedProfile handle = openProfile(data);
    updated.handle = handle.get();
    updated.name = readProfileInfo(data, cmsInfoDescription);
    const Hash newHash = buildColorProfileHash(data);

    OwnedProfile oldHandle(found->second.handle);
    if (oldHandle.get() == manager->m_displayProfile)
        manager->retireHandle(oldHandle.release()); // in use until the next reload()
    manager->m_colorProfiles.erase(found);
    if (manager->m_colorProfiles.emplace(newHash, std::move(updated)).second)
        static_cast<void>(handle.release()); // the entry's from here on
}

void ColorManager::removeColorProfile(const std::array<unsigned char, 32>& hash, ColorProfile::Type type)
{
    ColorManager* manager = get();
    const QMutexLocker lock(&manager->m_mutex);
    const auto found = manager->m_colorProfiles.find(hash);
    if (found == manager->m_colorProfiles.end() || found->second.type != type)
        return;
    if (type == ColorProfile::User)
        QFile::remove(found->second.fileName);
    manager->retireHandle(found->second.handle);
    manager->m_colorProfiles.erase(found);
}

unsigned int ColorManager::getDisplayRenderingIntent()
{
    const QSettings settings;
    const QVariant value =
        settings.value(QStringLiteral("settings/colormanagement/displayrenderingintent"), QStringLiteral("Perceptual"));
    return renderingIntentFromString(value.toString());
}

void ColorManager::initializeColorProfiles()
{
    m_colorProfiles.clear();
    const auto create = {CreateProPhotoRGBColorProfile, CreateLinearProPhotoRGBColorProfile,
                         CreateLinear_sRGBColorProfile, Create_sRGBColorProfile, CreateLabColorProfile};
    for (void* (*createProfile)() : create)
        addColorProfileAndClose(createProfile(), QString(), ColorProfile::BuiltIn, nullptr);

    addColorProfilesBelow(Platform::BuiltInColorProfileDirectory(), ColorProfile::BuiltIn);
    for (const std::vector<unsigned char>& data : EnumerateSystemColorProfiles())
        addColorProfilePrivate(data, QString(), ColorProfile::System, nullptr);
    addColorProfilesBelow(Platform::SystemColorProfileDirectory(), ColorProfile::System);
    addColorProfilesBelow(Platform::UserColorProfileDirectory(), ColorProfile::User);
}

void ColorManager::addColorProfilesBelow(const QString& directory, ColorProfile::Type type)
{
    for (const QString& file : profileFilesBelow(directory)) {
        if (cmsHPROFILE profile = cmsOpenProfileFromFile(QFile::encodeName(file).constData(), "r"))
            addColorProfileAndClose(profile, file, type, nullptr);
    }
}

void ColorManager::reloadPrivate()
{
    const QSettings settings;
    m_displayProfile = nullptr;
    m_displayProfileHash = {};
    const QVariant enabled =
        settings.value(QStringLiteral("settings/colormanagement/colormanagement"), QStringLiteral("Enabled"));
    m_colorManagementEnabled = enabled.toString() == QLatin1String("Enabled");

    std::vector<unsigned char> displayData;
    if (m_colorManagementEnabled) {
        const QByteArray wanted =
            settings.value(QStringLiteral("settings/colormanagement/displayprofile")).toByteArray();
        auto found = m_colorProfiles.end();
        if (wanted.size() == static_cast<int>(m_displayProfileHash.size())) {
            m_displayProfileHash = QByteArrayToColorProfileHash(wanted);
            found = m_colorProfiles.find(m_displayProfileHash);
        }
        if (found == m_colorProfiles.end()) {
            m_displayProfileHash = defaultHash();
            found = m_colorProfiles.find(m_displayProfileHash);
        }
        if (found != m_colorProfiles.end()) { // a host may have removed even the default
            m_displayProfile = found->second.handle;
            displayData = found->second.data;
        }
    }
    ColorTransformerPrivate::get()->setOutputSettings(m_colorManagementEnabled, displayData,
                                                      getDisplayRenderingIntent());
}

bool ColorManager::addColorProfilePrivate(const std::vector<unsigned char>& data, const QString& fileName,
                                          ColorProfile::Type type, std::array<unsigned char, 32>* hash)
{
    OwnedProfile handle = openProfile(data);
    if (!handle)
        return false;
    ColorProfile profile{};
    if (!colorspaceOf(handle.get(), type, profile.colorspace)) {
        warn("Warning: Found color profile with unsupported color space. Ignoring.");
        return false;
    }

    const Hash dataHash = buildColorProfileHash(data);
    if (hash)
        *hash = dataHash;
    if (m_colorProfiles.count(dataHash) != 0) {
        warn("Warning: Found duplicate color profile. Ignoring.");
        return true;
    }

    profile.handle = handle.get();
    profile.data = data;
    profile.name = readProfileInfo(data, cmsInfoDescription);
    if (profile.name.isEmpty())
        profile.name = nameWithoutDescription(dataHash, type);
    profile.rightsText = readProfileInfo(data, cmsInfoCopyright);
    profile.fileName = fileName;
    profile.type = type;
    reserveRetiredHandles();
    m_colorProfiles.emplace(dataHash, std::move(profile));
    static_cast<void>(handle.release()); // the entry's from here on
    return true;
}

bool ColorManager::addColorProfileAndClose(void* profile, const QString& fileName, ColorProfile::Type type,
                                           std::array<unsigned char, 32>* hash)
{
    std::vector<unsigned char> data;
    {
        const OwnedProfile owned(profile);
        GetICCProfileData(profile, data);
    }
    return addColorProfilePrivate(data, fileName, type, hash);
}

void* ColorManager::copyColorProfileByHashPrivate(const std::array<unsigned char, 32>& hash) const
{
    const auto found = m_colorProfiles.find(hash);
    if (found == m_colorProfiles.end())
        return nullptr;
    OwnedProfile copy = openProfile(found->second.data);
    if (!copy) // these bytes have been opened before, so all that can be missing is memory
        throw std::bad_alloc();
    return copy.release();
}

// Room for all handles that could be retired, so that a removal needs no memory.
void ColorManager::reserveRetiredHandles()
{
    const std::size_t needed = m_retiredHandles.size() + m_colorProfiles.size() + 1;
    if (needed > m_retiredHandles.capacity())
        m_retiredHandles.reserve(2 * needed);
}

void ColorManager::retireHandle(void* handle)
{
    if (handle)
        m_retiredHandles.push_back(handle);
}

} // namespace Ondrel

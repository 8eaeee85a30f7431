#include "tests/support/testprofiles.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>
#include <ondrel/core/platform.h>

#include <lcms2.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>

#include <algorithm>

namespace
{

using namespace OndrelTest;
using Ondrel::ColorManager;
using Entry = ColorManager::ColorProfile;

const char kUnsupported[] = "Warning: Found color profile with unsupported color space. Ignoring.\n";
const char kDuplicate[] = "Warning: Found duplicate color profile. Ignoring.\n";

// A copy of a table entry, or a record with a null handle.
Entry entry(const Hash& hash)
{
    const auto* const map = ColorManager::beginUsingColorProfileMap();
    const auto found = map->find(hash);
    const Entry copy = found == map->end() ? Entry{nullptr, {}, {}, {}, {}, Entry::RGB, Entry::BuiltIn} : found->second;
    ColorManager::endUsingColorProfileMap();
    return copy;
}

bool has(const Hash& hash)
{
    return entry(hash).handle != nullptr;
}

// Registers a profile for the length of a test.
class Registered
{
public:
    Registered(const Bytes& data, Entry::Type type)
        : m_type(type)
    {
        ok = ColorManager::addColorProfile(data, type, &hash);
    }
    ~Registered() { ColorManager::removeColorProfile(hash, m_type); }
    Registered(const Registered&) = delete;
    Registered& operator=(const Registered&) = delete;

    Hash hash{};
    bool ok = false;

private:
    Entry::Type m_type;
};

void set(const char* key, const QVariant& value)
{
    QSettings().setValue(QString("settings/colormanagement/") + key, value);
}

// Settings of one test; the defaults come back at its end.
class ColorSettings : public testing::Test
{
protected:
    void TearDown() override
    {
        QSettings().remove("settings/colormanagement");
        ColorManager::reload();
    }
};

TEST(ProfileHash, BlanksWhatChangesBetweenCopies)
{
    Bytes data = savedBytes(rgbProfile(2.1, "Hash").get());
    const Hash hash = ColorManager::buildColorProfileHash(data);
    for (std::size_t i = 0; i < 140; ++i) {
        Bytes changed = data;
        changed[i] = static_cast<unsigned char>(~changed[i]);
        const bool volatilePart =
            (i >= 24 && i < 36) || (i >= 40 && i < 44) || (i >= 56 && i < 68) || (i >= 84 && i < 100);
        EXPECT_EQ(ColorManager::buildColorProfileHash(changed) == hash, volatilePart) << i;
    }
}

TEST(ProfileHash, IsKeccak256OfTheBlankedBytes)
{
    Bytes data = savedBytes(rgbProfile(2.1, "Hash").get());
    QByteArray fed(reinterpret_cast<const char*>(data.data()), int(data.size()));
    fed.replace(24, 12, QByteArray(12, '\0'));
    fed.replace(40, 4, QByteArray(4, '\0'));
    fed.replace(56, 12, QByteArray(12, '\0'));
    fed.replace(84, 16, QByteArray(16, '\0'));
    EXPECT_EQ(toByteArray(ColorManager::buildColorProfileHash(data)),
              QCryptographicHash::hash(fed, QCryptographicHash::Keccak_256));
}

TEST(ProfileHash, OfShortDataCoversAllOfIt)
{
    for (const int size : {0, 1, 127}) {
        const QByteArray bytes(size, 'q');
        EXPECT_EQ(toByteArray(ColorManager::buildColorProfileHash(Bytes(bytes.begin(), bytes.end()))),
                  QCryptographicHash::hash(bytes, QCryptographicHash::Keccak_256));
    }
}

TEST(ProfileHash, OfAHandleIsThatOfItsSavedBytes)
{
    const Profile profile = rgbProfile(2.3, "Handle");
    EXPECT_EQ(ColorManager::buildColorProfileHash(profile.get()),
              ColorManager::buildColorProfileHash(savedBytes(profile.get())));
}

TEST(Registry, HoldsTheFiveBuiltInProfiles)
{
    for (auto* create :
         {Ondrel::CreateProPhotoRGBColorProfile, Ondrel::CreateLinearProPhotoRGBColorProfile,
          Ondrel::Create_sRGBColorProfile, Ondrel::CreateLinear_sRGBColorProfile, Ondrel::CreateLabColorProfile}) {
        const Profile profile(create());
        const Entry found = entry(ColorManager::buildColorProfileHash(profile.get()));
        ASSERT_NE(found.handle, nullptr);
        EXPECT_EQ(found.type, Entry::BuiltIn);
        EXPECT_EQ(found.fileName, QString());
        EXPECT_EQ(found.colorspace, cmsGetColorSpace(profile.get()) == cmsSigLabData ? Entry::Lab : Entry::RGB);
        EXPECT_FALSE(found.name.isEmpty());
    }
}

TEST(Registry, KnowsTheDefaultProfileAsSRGB)
{
    EXPECT_TRUE(has(Ondrel::DefaultColorProfileHash));
    EXPECT_EQ(Ondrel::DefaultColorProfileHash,
              ColorManager::buildColorProfileHash(Profile(Ondrel::Create_sRGBColorProfile()).get()));
}

TEST(Registry, EntriesCarryNameRightsAndBytes)
{
    const Profile profile = rgbProfile(1.9, "My Profile");
    cmsMLU* const rights = cmsMLUalloc(nullptr, 1);
    cmsMLUsetASCII(rights, "en", "US", "All rights");
    cmsWriteTag(profile.get(), cmsSigCopyrightTag, rights);
    cmsMLUfree(rights);
    const Bytes data = savedBytes(profile.get());
    const Registered added(data, Entry::Embedded);
    ASSERT_TRUE(added.ok);
    const Entry found = entry(added.hash);
    EXPECT_EQ(found.name, "My Profile");
    EXPECT_EQ(found.rightsText, "All rights");
    EXPECT_EQ(found.data, data);
    EXPECT_EQ(ColorManager::copyColorProfileDataByHash(added.hash), data);
    EXPECT_EQ(found.type, Entry::Embedded);
    EXPECT_EQ(found.colorspace, Entry::RGB);
    EXPECT_EQ(found.fileName, QString());
}

TEST(Registry, AProfileWithoutADescriptionIsNamedByTheRawBytesOfItsHash)
{
    for (const auto& [type, word] : {std::pair(Entry::BuiltIn, " (Built-in)"), std::pair(Entry::System, " (System)"),
                                     std::pair(Entry::User, " (User)"), std::pair(Entry::Embedded, " (Embedded)")}) {
        const Registered added(savedBytes(rgbProfile(1.7, "").get()), type);
        ASSERT_TRUE(added.ok);
        const QByteArray hash = toByteArray(added.hash);
        const int zero = hash.indexOf('\0');
        EXPECT_EQ(entry(added.hash).name, QString::fromLatin1(zero < 0 ? hash : hash.left(zero)) + word);
    }
}

TEST(Registry, WhatDoesNotOpenIsRefusedInSilence)
{
    Hash hash = wordHash("before");
    const std::string output = captureStandardOutput(
        [&] { EXPECT_FALSE(ColorManager::addColorProfile(Bytes(200, 1), Entry::Embedded, &hash)); });
    EXPECT_EQ(output, "");
    EXPECT_EQ(hash, wordHash("before"));
    EXPECT_FALSE(ColorManager::addColorProfile({}, Entry::Embedded, nullptr));
}

TEST(Registry, GreyAndForeignLabProfilesAreRefusedWithAWarning)
{
    const std::pair<Bytes, Entry::Type> refused[] = {{savedBytes(greyProfile().get()), Entry::Embedded},
                                                     {savedBytes(greyProfile().get()), Entry::System},
                                                     {savedBytes(labProfile().get()), Entry::Embedded},
                                                     {savedBytes(labProfile().get()), Entry::User}};
    for (const auto& [data, type] : refused) {
        Hash hash = wordHash("before");
        const std::string output = captureStandardOutput(
            [&, d = data, t = type] { EXPECT_FALSE(ColorManager::addColorProfile(d, t, &hash)); });
        EXPECT_EQ(output, kUnsupported);
        EXPECT_EQ(hash, wordHash("before"));
        EXPECT_FALSE(has(ColorManager::buildColorProfileHash(data)));
    }
}

TEST(Registry, LabProfilesAreTakenAsBuiltIn)
{
    const Registered added(savedBytes(labProfile().get()), Entry::BuiltIn);
    ASSERT_TRUE(added.ok);
    EXPECT_EQ(entry(added.hash).colorspace, Entry::Lab);
}

TEST(Registry, CmykProfilesAreTaken)
{
    const Registered added(savedBytes(cmykProfile().get()), Entry::System);
    ASSERT_TRUE(added.ok);
    EXPECT_EQ(entry(added.hash).colorspace, Entry::CMYK);
}

TEST(Registry, DuplicatesAreTrueAndKeepTheFirst)
{
    Hash hash{};
    const Bytes sRGB = savedBytes(Profile(Ondrel::Create_sRGBColorProfile()).get());
    const std::string output =
        captureStandardOutput([&] { EXPECT_TRUE(ColorManager::addColorProfile(sRGB, Entry::Embedded, &hash)); });
    EXPECT_EQ(output, kDuplicate);
    EXPECT_EQ(hash, Ondrel::DefaultColorProfileHash);
    EXPECT_EQ(entry(hash).type, Entry::BuiltIn);
    ColorManager::removeColorProfile(hash, Entry::Embedded);
    EXPECT_TRUE(has(hash));
}

TEST(Registry, ADifferentDateAloneIsADuplicate)
{
    Bytes data = savedBytes(rgbProfile(1.65, "Dated").get());
    const Registered added(data, Entry::System);
    data[24 + 5] = static_cast<unsigned char>(data[24 + 5] + 1);
    Hash hash{};
    EXPECT_EQ(captureStandardOutput([&] { EXPECT_TRUE(ColorManager::addColorProfile(data, Entry::System, &hash)); }),
              kDuplicate);
    EXPECT_EQ(hash, added.hash);
}

TEST(Registry, AddAndCloseTakesTheHandle)
{
    Hash hash{};
    Profile profile = rgbProfile(1.55, "Closed");
    const Hash expected = ColorManager::buildColorProfileHash(profile.get());
    EXPECT_TRUE(ColorManager::addColorProfileAndClose(profile.release(), Entry::System, &hash));
    EXPECT_EQ(hash, expected);
    EXPECT_TRUE(has(hash));
    ColorManager::removeColorProfile(hash, Entry::System);
    EXPECT_FALSE(has(hash));
    EXPECT_FALSE(ColorManager::addColorProfileAndClose(nullptr, Entry::System, nullptr));
}

TEST(Registry, HandsOutIndependentHandles)
{
    const Registered added(savedBytes(rgbProfile(1.45, "Handles").get()), Entry::System);
    const Profile a(ColorManager::copyColorProfileByHash(added.hash)),
        b(ColorManager::copyColorProfileByHash(added.hash));
    ASSERT_NE(a, nullptr);
    ASSERT_NE(b, nullptr);
    EXPECT_NE(a.get(), b.get());
    EXPECT_NE(a.get(), entry(added.hash).handle);
}

TEST(Registry, UnknownHashesGiveNothing)
{
    for (const Hash& hash : {Hash{}, wordHash("None"), wordHash("Embedded"), wordHash("whatever")}) {
        EXPECT_EQ(ColorManager::copyColorProfileByHash(hash), nullptr);
        EXPECT_TRUE(ColorManager::copyColorProfileDataByHash(hash).empty());
    }
}

TEST(Registry, RemovesOnlyTheMatchingType)
{
    const Registered added(savedBytes(rgbProfile(1.35, "Typed").get()), Entry::Embedded);
    ColorManager::removeColorProfile(added.hash, Entry::System);
    EXPECT_TRUE(has(added.hash));
    ColorManager::removeColorProfile(added.hash, Entry::Embedded);
    EXPECT_FALSE(has(added.hash));
    ColorManager::removeColorProfile(added.hash, Entry::Embedded);
}

QStringList userFiles()
{
    return QDir(Ondrel::Platform::UserColorProfileDirectory()).entryList(QDir::Files);
}

TEST(UserProfiles, LiveInAFileOfTheirOwn)
{
    const int before = userFiles().size();
    const Bytes data = savedBytes(rgbProfile(1.25, "User").get());
    Hash hash{};
    ASSERT_TRUE(ColorManager::addColorProfile(data, Entry::User, &hash));
    const QString fileName = entry(hash).fileName;
    EXPECT_EQ(QFileInfo(fileName).absolutePath(), Ondrel::Platform::UserColorProfileDirectory());
    EXPECT_EQ(QFileInfo(fileName).fileName().size(), 6);
    EXPECT_EQ(QFileInfo(fileName).suffix(), "");
    EXPECT_EQ(userFiles().size(), before + 1);
    QFile file(fileName);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray written = file.readAll();
    EXPECT_EQ(Bytes(written.begin(), written.end()), data);
    ColorManager::removeColorProfile(hash, Entry::User);
    EXPECT_FALSE(QFile::exists(fileName));
}

TEST(UserProfiles, KeepTheirFileWithAnotherTypesRemoval)
{
    Hash hash{};
    ASSERT_TRUE(ColorManager::addColorProfile(savedBytes(rgbProfile(1.26, "User").get()), Entry::User, &hash));
    const QString fileName = entry(hash).fileName;
    ColorManager::removeColorProfile(hash, Entry::Embedded);
    EXPECT_TRUE(QFile::exists(fileName));
    ColorManager::removeColorProfile(hash, Entry::User);
}

TEST(UserProfiles, LeaveTheirFileWhenRefusedOrADuplicate)
{
    const QStringList before = userFiles();
    ColorManager::addColorProfile(savedBytes(greyProfile().get()), Entry::User, nullptr);
    EXPECT_EQ(userFiles().size(), before.size() + 1);
    ColorManager::addColorProfile(savedBytes(Profile(Ondrel::Create_sRGBColorProfile()).get()), Entry::User, nullptr);
    EXPECT_EQ(userFiles().size(), before.size() + 2);
    for (const QString& file : userFiles())
        if (!before.contains(file))
            QFile::remove(Ondrel::Platform::UserColorProfileDirectory() + '/' + file);
}

TEST(UserProfiles, UpdateChangesFileNameHandleAndKeyButNotTheBytes)
{
    const Bytes first = savedBytes(rgbProfile(1.15, "First").get()),
                second = savedBytes(rgbProfile(1.16, "Second").get());
    Hash hash{};
    ASSERT_TRUE(ColorManager::addColorProfile(first, Entry::User, &hash));
    const Entry before = entry(hash);
    ColorManager::updateColorProfile(hash, second);
    EXPECT_FALSE(has(hash));
    const Hash newHash = ColorManager::buildColorProfileHash(second);
    const Entry after = entry(newHash);
    ASSERT_NE(after.handle, nullptr);
    EXPECT_EQ(after.name, "Second");
    EXPECT_EQ(after.data, first);
    EXPECT_EQ(after.fileName, before.fileName);
    QFile file(after.fileName);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(std::size_t(file.size()), second.size());
    const Profile opened(ColorManager::copyColorProfileByHash(newHash));
    EXPECT_EQ(savedBytes(opened.get()), first);
    ColorManager::removeColorProfile(newHash, Entry::User);
    EXPECT_FALSE(QFile::exists(after.fileName));
}

TEST(UserProfiles, UpdateLeavesOtherTypesAndUnknownHashesAlone)
{
    const Bytes second = savedBytes(rgbProfile(1.16, "Second").get());
    const Registered added(savedBytes(rgbProfile(1.15, "First").get()), Entry::Embedded);
    ColorManager::updateColorProfile(added.hash, second);
    ColorManager::updateColorProfile(wordHash("unknown"), second);
    EXPECT_EQ(entry(added.hash).name, "First");
    EXPECT_FALSE(has(ColorManager::buildColorProfileHash(second)));
}

TEST(UserProfiles, UpdateToAProfileWithoutADescriptionLeavesTheNameEmpty)
{
    const Bytes second = savedBytes(rgbProfile(1.18, "").get());
    const Registered added(savedBytes(rgbProfile(1.17, "First").get()), Entry::User);
    ColorManager::updateColorProfile(added.hash, second);
    const Hash hash = ColorManager::buildColorProfileHash(second);
    EXPECT_TRUE(has(hash));
    EXPECT_EQ(entry(hash).name, "");
    ColorManager::removeColorProfile(hash, Entry::User);
}

TEST(UserProfiles, UpdateToWhatIsNoProfileStillFilesItUnderItsHash)
{
    const Bytes first = savedBytes(rgbProfile(1.17, "First").get()), noise(300, 9);
    const Registered added(first, Entry::User);
    ColorManager::updateColorProfile(added.hash, noise);
    const Hash hash = ColorManager::buildColorProfileHash(noise);
    EXPECT_EQ(entry(hash).handle, nullptr);
    EXPECT_EQ(entry(hash).name, "");
    EXPECT_EQ(ColorManager::copyColorProfileDataByHash(hash), first);
    const QString fileName = entry(hash).fileName;
    EXPECT_EQ(QFileInfo(fileName).size(), 300);
    ColorManager::removeColorProfile(hash, Entry::User);
    EXPECT_FALSE(QFile::exists(fileName));
}

TEST(UserProfiles, UpdateToARegisteredProfileLeavesThatOne)
{
    const Registered added(savedBytes(rgbProfile(1.17, "First").get()), Entry::User);
    const QString fileName = entry(added.hash).fileName;
    ColorManager::updateColorProfile(added.hash, savedBytes(Profile(Ondrel::Create_sRGBColorProfile()).get()));
    EXPECT_FALSE(has(added.hash));
    EXPECT_EQ(entry(Ondrel::DefaultColorProfileHash).type, Entry::BuiltIn);
    EXPECT_TRUE(QFile::remove(fileName));
}

using Names = std::vector<std::pair<QString, Hash>>;

Names names(const std::vector<Entry::Colorspace>& spaces, const std::vector<Entry::Type>& types)
{
    Names list = {{"old", Hash{}}};
    ColorManager::colorProfileNamesAndHashesSorted(list, spaces, types);
    return list;
}

TEST(ProfileList, EmptyFiltersMatchNothing)
{
    EXPECT_TRUE(names({}, {Entry::BuiltIn}).empty());
    EXPECT_TRUE(names({Entry::RGB}, {}).empty());
}

TEST(ProfileList, IsFilteredBySpaceAndType)
{
    EXPECT_EQ(names({Entry::Lab}, {Entry::BuiltIn}).size(), 1u);
    EXPECT_EQ(names({Entry::RGB, Entry::Lab}, {Entry::BuiltIn}).size(), 5u);
    EXPECT_TRUE(names({Entry::Lab}, {Entry::User}).empty());
    const Registered cmyk(savedBytes(cmykProfile().get()), Entry::Embedded);
    EXPECT_EQ(names({Entry::CMYK}, {Entry::Embedded}).size(), 1u);
}

TEST(ProfileList, IsSortedWithoutRegardToCase)
{
    const Registered a(savedBytes(rgbProfile(1.11, "aardvark").get()), Entry::Embedded);
    const Registered b(savedBytes(rgbProfile(1.12, "Bear").get()), Entry::Embedded);
    const Registered c(savedBytes(rgbProfile(1.13, "cat").get()), Entry::Embedded);
    const Names list = names({Entry::RGB}, {Entry::Embedded});
    ASSERT_EQ(list.size(), 3u);
    EXPECT_EQ(list[0].first, "aardvark");
    EXPECT_EQ(list[1].first, "Bear");
    EXPECT_EQ(list[2].first, "cat");
    EXPECT_EQ(list[1].second, b.hash);
}

TEST_F(ColorSettings, ManagementIsOnByDefaultWithTheDefaultDisplay)
{
    ColorManager::reload();
    EXPECT_TRUE(ColorManager::isColorManagementEnabled());
    EXPECT_EQ(ColorManager::displayProfileAsHash(), Ondrel::DefaultColorProfileHash);
    Bytes data;
    ColorManager::displayProfileAsICCProfile(data);
    EXPECT_EQ(ColorManager::buildColorProfileHash(data), Ondrel::DefaultColorProfileHash);
    Hash hash{};
    const Profile copy(ColorManager::copyDisplayProfile(hash));
    EXPECT_NE(copy, nullptr);
    EXPECT_EQ(hash, Ondrel::DefaultColorProfileHash);
}

TEST_F(ColorSettings, OnlyTheExactWordTurnsManagementOn)
{
    for (const char* word : {"enabled", "Disabled", "", "Enabled "}) {
        set("colormanagement", word);
        ColorManager::reload();
        EXPECT_FALSE(ColorManager::isColorManagementEnabled()) << word;
    }
    set("colormanagement", "Enabled");
    ColorManager::reload();
    EXPECT_TRUE(ColorManager::isColorManagementEnabled());
}

TEST_F(ColorSettings, WithoutManagementThereIsNoDisplayProfile)
{
    set("colormanagement", "Disabled");
    ColorManager::reload();
    EXPECT_EQ(ColorManager::displayProfileAsHash(), Hash{});
    Bytes data = {1, 2};
    ColorManager::displayProfileAsICCProfile(data);
    EXPECT_TRUE(data.empty());
    Hash hash = wordHash("x");
    EXPECT_EQ(ColorManager::copyDisplayProfile(hash), nullptr);
    EXPECT_EQ(hash, Hash{});
}

TEST_F(ColorSettings, TheDisplayProfileIsTheOneOfTheSetting)
{
    const Registered display(savedBytes(rgbProfile(2.4, "Display").get()), Entry::System);
    set("displayprofile", toByteArray(display.hash));
    EXPECT_EQ(ColorManager::displayProfileAsHash(), Ondrel::DefaultColorProfileHash); // not before a reload
    ColorManager::reload();
    EXPECT_EQ(ColorManager::displayProfileAsHash(), display.hash);
    // It stays usable when its entry goes.
    ColorManager::removeColorProfile(display.hash, Entry::System);
    Bytes data;
    ColorManager::displayProfileAsICCProfile(data);
    EXPECT_EQ(ColorManager::buildColorProfileHash(data), display.hash);
}

TEST_F(ColorSettings, AnUpdatedDisplayProfileStaysInUseUntilReload)
{
    const Bytes first = savedBytes(rgbProfile(2.5, "First").get()),
                second = savedBytes(rgbProfile(2.7, "Second").get());
    const Registered display(first, Entry::User);
    set("displayprofile", toByteArray(display.hash));
    ColorManager::reload();
    ColorManager::updateColorProfile(display.hash, second);
    EXPECT_EQ(ColorManager::displayProfileAsHash(), display.hash);
    Bytes data;
    ColorManager::displayProfileAsICCProfile(data);
    EXPECT_EQ(data, first);
    Hash hash{};
    EXPECT_EQ(ColorManager::copyDisplayProfile(hash), nullptr); // the table has it no more
    EXPECT_EQ(hash, display.hash);
    ColorManager::reload();
    EXPECT_EQ(ColorManager::displayProfileAsHash(), Ondrel::DefaultColorProfileHash);
    ColorManager::removeColorProfile(ColorManager::buildColorProfileHash(second), Entry::User);
}

TEST_F(ColorSettings, WrongLengthsAndUnknownHashesFallBackToTheDefault)
{
    const QByteArray valid = toByteArray(Ondrel::DefaultColorProfileHash);
    for (const QByteArray& value : {valid.left(31), valid + 'x', QByteArray(), QByteArray(32, 'u')}) {
        set("displayprofile", value);
        ColorManager::reload();
        EXPECT_EQ(ColorManager::displayProfileAsHash(), Ondrel::DefaultColorProfileHash);
    }
}

TEST_F(ColorSettings, TheIntentIsReadOnEachCall)
{
    EXPECT_EQ(ColorManager::getDisplayRenderingIntent(), 0u);
    set("displayrenderingintent", "Saturation");
    EXPECT_EQ(ColorManager::getDisplayRenderingIntent(), 2u);
    set("displayrenderingintent", "saturation");
    EXPECT_EQ(ColorManager::getDisplayRenderingIntent(), 0u);
}

TEST(ProfileHasher, HashesTheBytesAsAString)
{
    const Hash hash = wordHash("some bytes");
    EXPECT_EQ(Ondrel::ColorProfileHashHasher()(hash), std::hash<std::string>()(std::string(hash.begin(), hash.end())));
}

} // namespace

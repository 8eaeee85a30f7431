#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/image.h>

#include <QMutex>
#include <QString>

#include <array>
#include <cstddef>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Ondrel
{

// The hash of the profile of last resort, Create_sRGBColorProfile(), computed when the library is loaded.
extern ONDREL_EXPORT const std::array<unsigned char, 32> DefaultColorProfileHash;

struct ONDREL_EXPORT ColorProfileHashHasher {
    std::size_t operator()(const std::array<unsigned char, 32>& hash) const;
};

// The table of every ICC profile that the process knows, named by hash, and the display settings. A profile's hash is
// the Keccak-256 digest of its bytes with the date, platform, attributes, intent and ID of the header blanked. All
// zero means no profile.
//
// All functions may be called from any thread. One mutex, not recursive, guards the table and the display settings; it
// is taken after the mutex of ResourceEngine and before that of ColorTransformerPrivate.
class ONDREL_EXPORT ColorManager
{
public:
    struct ColorProfile {
        enum Colorspace : unsigned int { RGB = 0, CMYK = 1, Lab = 2 };
        enum Type : unsigned int {
            BuiltIn = 0, // made by the library, or found in Platform::BuiltInColorProfileDirectory()
            System = 1,  // found in Platform::SystemColorProfileDirectory()
            User = 2,    // found in, or added to, Platform::UserColorProfileDirectory()
            Embedded = 3 // from an image
        };
        void* handle; // cmsHPROFILE; the entry's own
        std::vector<unsigned char> data;
        QString name;       // description; for a profile without one, made from its hash and type
        QString rightsText; // copyright
        QString fileName;   // empty if none
        Colorspace colorspace;
        Type type;
    };
    using ColorProfileMap = std::unordered_map<std::array<unsigned char, 32>, ColorProfile, ColorProfileHashHasher>;

    // The first call fills the table: the profiles made by the library, then the files below the built-in, system and
    // user directories. Of equal profiles the first one stays.
    static ColorManager* get();

    // Reads the display settings anew, from a default QSettings, and hands them to the display conversion.
    static void reload();

    static bool isColorManagementEnabled();

    // Locks the table and gives it out; the second call unlocks it, on the same thread. Between them nothing else of
    // this class may be called.
    static ColorProfileMap* beginUsingColorProfileMap();
    static void endUsingColorProfileMap();

    // Replaces `list` by the entries of one of the colour spaces and one of the types, ascending by the name in lower
    // case. An empty filter matches nothing.
    static void colorProfileNamesAndHashesSorted(std::vector<std::pair<QString, std::array<unsigned char, 32>>>& list,
                                                 const std::vector<ColorProfile::Colorspace>& colorspaces,
                                                 const std::vector<ColorProfile::Type>& types);

    // A new handle of a registered profile, to be closed by the caller; null if the hash is unknown. Throws
    // std::bad_alloc if there is no memory for it.
    static void* copyColorProfileByHash(const std::array<unsigned char, 32>& hash);

    // The bytes of a registered profile; empty if the hash is unknown.
    static std::vector<unsigned char> copyColorProfileDataByHash(const std::array<unsigned char, 32>& hash);

    // The display's profile: its bytes (empty with colour management off), its hash (all zero when off), and a new
    // handle, to be closed by the caller, with the hash stored.
    static void displayProfileAsICCProfile(std::vector<unsigned char>& data);
    static std::array<unsigned char, 32> displayProfileAsHash();
    static void* copyDisplayProfile(std::array<unsigned char, 32>& hash);

    // Registers a profile and stores its hash, if `hash` is not null, also when an equal profile is registered already
    // (true, with a warning on standard output; that entry stays as it is). False for bytes that are no profile, and,
    // with a warning, for a colour space other than RGB, CMYK and, only for BuiltIn, Lab; *hash is then unchanged.
    // A User profile is first written to a new file in the user's directory, which stays even if it is refused. The
    // second form takes and closes an open handle.
    static bool addColorProfile(const std::vector<unsigned char>& data, ColorProfile::Type type,
                                std::array<unsigned char, 32>* hash);
    static bool addColorProfileAndClose(void* profile, ColorProfile::Type type, std::array<unsigned char, 32>* hash);

    // Replaces file, handle, name and hash of a User profile. The bytes in the entry, and so what the copy functions
    // give, stay the old ones until the next start. Other types and unknown hashes: nothing.
    static void updateColorProfile(const std::array<unsigned char, 32>& hash, const std::vector<unsigned char>& data);

    // Removes the entry if it has this type; the file of a User profile too. The entry's handle stays open as long as
    // the process, since the display may use it.
    static void removeColorProfile(const std::array<unsigned char, 32>& hash, ColorProfile::Type type);

    // The hash of a profile's bytes, those of a handle as Little CMS saves them. Fewer than 128 bytes are hashed whole.
    static std::array<unsigned char, 32> buildColorProfileHash(const std::vector<unsigned char>& data);
    static std::array<unsigned char, 32> buildColorProfileHash(void* profile);

    // L, a, b of each pixel (L from 0 to 100, D50) by the perceptual intent, from the image's profile or, if that is
    // unknown, sRGB. All zero if the profile does not fit the pixels.
    static std::vector<float> toLab(const Ondrel::Image& image);

    // The intent for the display, a number of Little CMS, as the settings have it now.
    static unsigned int getDisplayRenderingIntent();

private:
    ColorManager();
    ~ColorManager();
    ColorManager(const ColorManager&) = delete;
    ColorManager& operator=(const ColorManager&) = delete;

    // All of these expect the mutex to be held.
    void initializeColorProfiles();
    void addColorProfilesBelow(const QString& directory, ColorProfile::Type type);
    void reloadPrivate();
    bool addColorProfilePrivate(const std::vector<unsigned char>& data, const QString& fileName,
                                ColorProfile::Type type, std::array<unsigned char, 32>* hash);
    bool addColorProfileAndClose(void* profile, const QString& fileName, ColorProfile::Type type,
                                 std::array<unsigned char, 32>* hash);
    void* copyColorProfileByHashPrivate(const std::array<unsigned char, 32>& hash) const;
    void retireHandle(void* handle);
    void reserveRetiredHandles();

    bool m_colorManagementEnabled = false;
    void* m_displayProfile = nullptr; // the handle of an entry, or of one that was removed
    std::array<unsigned char, 32> m_displayProfileHash{};
    ColorProfileMap m_colorProfiles;
    std::vector<void*> m_retiredHandles; // of removed entries
    QMutex m_mutex;
};

} // namespace Ondrel

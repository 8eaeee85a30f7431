#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/image.h>

#include <QString>

#include <array>
#include <cstddef>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Ondrel
{
extern ONDREL_EXPORT const std::array<unsigned char, 32>
    DefaultColorProfileHash; // hash of GetICCProfileData(Create_sRGBColorProfile()) (computed at start-up from the
                             // generated profile, never a literal)
struct ONDREL_EXPORT ColorProfileHashHasher {
    std::size_t operator()(const std::array<unsigned char, 32>& hash) const;
};
class ONDREL_EXPORT ColorManager
{
public:
    struct ColorProfile {
        enum Colorspace : unsigned int { RGB = 0, CMYK = 1, Lab = 2 };
        enum Type : unsigned int { BuiltIn = 0, System = 1, User = 2, Embedded = 3 };
        void* handle;
        std::vector<unsigned char> data;
        QString name;
        QString rightsText;
        QString fileName;
        Colorspace colorspace;
        Type type;
    };
    using ColorProfileMap = std::unordered_map<std::array<unsigned char, 32>, ColorProfile, ColorProfileHashHasher>;
    static ColorManager* get();
    static void reload();
    static bool isColorManagementEnabled();
    static ColorProfileMap* beginUsingColorProfileMap();
    static void endUsingColorProfileMap();
    static void colorProfileNamesAndHashesSorted(std::vector<std::pair<QString, std::array<unsigned char, 32>>>& list,
                                                 const std::vector<ColorProfile::Colorspace>& colorspaces,
                                                 const std::vector<ColorProfile::Type>& types);
    static void* copyColorProfileByHash(const std::array<unsigned char, 32>& hash);
    static std::vector<unsigned char> copyColorProfileDataByHash(const std::array<unsigned char, 32>& hash);
    static void displayProfileAsICCProfile(std::vector<unsigned char>& data);
    static std::array<unsigned char, 32> displayProfileAsHash();
    static void* copyDisplayProfile(std::array<unsigned char, 32>& hash);
    static bool addColorProfile(const std::vector<unsigned char>& data, ColorProfile::Type type,
                                std::array<unsigned char, 32>* hash);
    static bool addColorProfileAndClose(void* profile, ColorProfile::Type type, std::array<unsigned char, 32>* hash);
    static void updateColorProfile(const std::array<unsigned char, 32>& hash, const std::vector<unsigned char>& data);
    static void removeColorProfile(const std::array<unsigned char, 32>& hash, ColorProfile::Type type);
    static std::array<unsigned char, 32> buildColorProfileHash(const std::vector<unsigned char>& data);
    static std::array<unsigned char, 32> buildColorProfileHash(void* profile);
    static std::vector<float> toLab(const Ondrel::Image& image);
    static unsigned int getDisplayRenderingIntent();

private:
    ColorManager();
    void initializeColorProfiles();
    void reloadPrivate();
    bool addColorProfilePrivate(const std::vector<unsigned char>& data, const QString& fileName,
                                ColorProfile::Type type, std::array<unsigned char, 32>* hash);
    bool addColorProfileAndClose(void* profile, const QString& fileName, ColorProfile::Type type,
                                 std::array<unsigned char, 32>* hash);
    void* copyColorProfileByHashPrivate(const std::array<unsigned char, 32>& hash);
};
} // namespace Ondrel

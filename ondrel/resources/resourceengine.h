#pragma once

#include <ondrel/ondrel_export.h>

#include <QSize>
#include <QString>
#include <array>
#include <cstddef>
#include <memory>
#include <ondrel/core/image.h>
#include <ondrel/core/rect.h>
#include <ondrel/core/runstatus.h>
#include <ondrel/resources/imageinfo.h>
#include <ondrel/resources/resourceid.h>
#include <string>
#include <unordered_map>
#include <vector>
namespace Ondrel
{
extern ONDREL_EXPORT const std::array<unsigned char, 32> NoneColorProfile;
extern ONDREL_EXPORT const std::array<unsigned char, 32> EmbeddedColorProfile;
} // namespace Ondrel
class ONDREL_EXPORT ResourceEngine
{
public:
    enum Format : unsigned int { FormatPNG = 0, FormatJPEG = 1, FormatTIFF = 2, FormatRAW = 3, FormatImageBuffer = 4 };
    enum EndManualProcessing : unsigned int {
        EndManualRevalidate = 0,
        EndManualRebuildSizes = 1,
        EndManualNoChange = 2
    };
    struct ImageInfo { // public: the manual mode hands it out
        std::string fileName;
        std::vector<unsigned char> data;
        std::shared_ptr<Ondrel::Image> image;
        std::unique_ptr<std::array<unsigned char, 32>> colorProfileHash;
        std::vector<unsigned char> iccProfile;
        Format format = FormatPNG;
        Ondrel::ImageInfo info;
    };
    struct CachedImage {
        std::shared_ptr<const Ondrel::Image> image;
        std::array<unsigned char, 32> colorProfile{};
    };
    struct ExportPNGSettings {
        int compressionLevel = 0;
        std::array<unsigned char, 32> colorProfile{};
        unsigned int alpha = 0;
        unsigned int bitDepth = 0;
    };
    struct ExportJPEGSettings {
        int quality = 0;
        bool optimizeCoding = false;
        bool progressive = false;
        int smoothingFactor = 0;
        std::array<unsigned char, 32> colorProfile{};
    };
    struct ExportTIFFSettings {
        std::array<unsigned char, 32> colorProfile{};
        unsigned int alpha = 0;
        unsigned int bitDepth = 0;
        unsigned int compression = 0;
    };

    static ResourceEngine& Get(); // a reference: Get().AddImageBuffer(...)

    bool AddImage(const std::string& fileName, Ondrel::ResourceId& id);
    bool AddRawImage(const std::string& fileName, Ondrel::ResourceId& id);
    bool AddImageByData(Format format, const std::vector<unsigned char>& data, const std::string& fileName,
                        Ondrel::ResourceId& id);
    bool AddImageBuffer(const Ondrel::Image& image, Ondrel::ResourceId& id);
    bool RemoveResource(Ondrel::ResourceId id);
    bool CopyImage(Ondrel::ResourceId id, std::shared_ptr<const Ondrel::Image>& image,
                   const std::array<unsigned char, 32>& colorProfile, const Ondrel::RunStatus& status);
    bool CopySubImage(Ondrel::ResourceId id, std::shared_ptr<const Ondrel::Image>& image, const QSize& size,
                      const Ondrel::RectT<int>& rect, bool unused);
    bool CopyData(Ondrel::ResourceId id, Format& format, std::vector<unsigned char>& data, std::string& fileName);
    bool CopyImageInfo(Ondrel::ResourceId id, Ondrel::ImageInfo& info);
    std::size_t SumMemorySizes(const std::vector<Ondrel::ResourceId>& ids);
    bool ClearCache();
    bool CreateId(Ondrel::ResourceId& id);
    bool BeginManualResources(std::unordered_map<unsigned int, std::shared_ptr<ImageInfo>>** resources);
    bool TryBeginManualResources(std::unordered_map<unsigned int, std::shared_ptr<ImageInfo>>** resources);
    bool EndManualResources(EndManualProcessing processing);

    // decoders
    static bool LoadDataFromFile(const std::string& fileName, std::shared_ptr<ImageInfo>& info);
    static bool ReadPNG(const std::shared_ptr<ImageInfo>& info, Ondrel::Image& image, void** profile);
    static bool ReadJPEG(const std::shared_ptr<ImageInfo>& info, Ondrel::Image& image, void** profile,
                         const std::array<unsigned char, 32>& colorProfile);
    static bool ReadTIFF(const std::shared_ptr<ImageInfo>& info, Ondrel::Image& image, void** profile,
                         const std::array<unsigned char, 32>& colorProfile);
    static bool ValidatePNG(const std::shared_ptr<ImageInfo>& info, void** profile);
    static bool ValidateJPEG(const std::shared_ptr<ImageInfo>& info, void** profile);
    static bool ValidateTIFF(const std::shared_ptr<ImageInfo>& info, void** profile);
    static bool ValidateImage(const std::shared_ptr<ImageInfo>& info, void** profile);
    static bool ImportPNG(const QString& fileName, Ondrel::Image& image);
    static bool ImportJPEG(const QString& fileName, Ondrel::Image& image);
    static bool ImportTIFF(const QString& fileName, Ondrel::Image& image);
    // RAW
    static bool ValidateRawImage(std::shared_ptr<ImageInfo> info, void** profile);
    static bool ImportRawThumbnail(const QString& fileName, Ondrel::Image& image);
    // encoders
    static bool ExportPNG(const QString& fileName, const Ondrel::Image& image, const ExportPNGSettings& settings,
                          bool (*progress)(int, void*), void* userData);
    static bool ExportJPEG(const QString& fileName, const Ondrel::Image& image, const ExportJPEGSettings& settings,
                           bool (*progress)(int, void*), void* userData);
    static bool ExportTIFF(const QString& fileName, const Ondrel::Image& image, const ExportTIFFSettings& settings,
                           bool (*progress)(int, void*), void* userData);
    static bool ExportTIFFToMemory(std::vector<unsigned char>& data, const Ondrel::Image& image,
                                   const ExportTIFFSettings& settings, bool (*progress)(int, void*), void* userData);
    static bool ExportCMYKTIFFToMemory(std::vector<unsigned char>& data, const std::vector<unsigned char>& cmyk,
                                       unsigned int width, unsigned int height, const ExportTIFFSettings& settings,
                                       bool (*progress)(int, void*), void* userData);
    static bool PrepareImageForExport(const Ondrel::Image& image, const std::array<unsigned char, 32>& colorProfile,
                                      std::vector<unsigned char>& iccProfile);
};
// a test makes a record with: auto info = std::make_shared<ResourceEngine::ImageInfo>(); info->data = bytes;
// profile handles are Little CMS handles: the test closes them with cmsCloseProfile

#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/image.h>
#include <ondrel/core/rect.h>
#include <ondrel/core/runstatus.h>
#include <ondrel/resources/imageinfo.h>
#include <ondrel/resources/resourceid.h>

#include <QMutex>
#include <QSize>
#include <QString>

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace Ondrel
{

// Words for a choice of colour profile, where otherwise a profile hash stands; neither is ever registered. They are the
// bytes of "None" and "Embedded", padded with zeros.
extern ONDREL_EXPORT const std::array<unsigned char, 32> NoneColorProfile;     // no profile at all
extern ONDREL_EXPORT const std::array<unsigned char, 32> EmbeddedColorProfile; // the one that the image came with

} // namespace Ondrel

// The store of source images, and the decoders and encoders of image files.
//
// The store keeps the encoded bytes of each image as they were read (for a generated image, its pixels), decodes on
// demand and remembers one decoded copy of each resource. An embedded RGB profile stays registered in
// Ondrel::ColorManager for as long as some resource has it.
//
// Any thread may call any function. One lock serialises all use of the store, decoding included; only CopyImageInfo
// never waits for a decode. Failure is a false result. Only allocation throws, and then the store, the registry and the
// locks are as before the call.
class ONDREL_EXPORT ResourceEngine
{
public:
    enum Format : unsigned int { FormatPNG = 0, FormatJPEG = 1, FormatTIFF = 2, FormatRAW = 3, FormatImageBuffer = 4 };
    enum EndManualProcessing : unsigned int {
        EndManualRevalidate = 0,   // validate everything, reconcile profiles, clear the cache, rebuild the sizes
        EndManualRebuildSizes = 1, // rebuild the sizes that CopyImageInfo gives
        EndManualNoChange = 2      // only unlock; larger values likewise
    };

    // The record of one resource, as the manual mode hands it out.
    struct ImageInfo {
        std::string fileName;                                            // kept for the host; no decoder opens it again
        std::vector<unsigned char> data;                                 // the whole encoded file
        std::shared_ptr<Ondrel::Image> image;                            // FormatImageBuffer only: the pixels
        std::unique_ptr<std::array<unsigned char, 32>> colorProfileHash; // of the embedded profile; null if none
        std::vector<unsigned char> iccProfile;                           // bytes of that profile
        Format format = FormatPNG;
        Ondrel::ImageInfo info;
    };
    struct CachedImage {
        std::shared_ptr<const Ondrel::Image> image;
        std::array<unsigned char, 32> colorProfile{}; // the profile asked for, not that of the pixels
    };

    struct ExportPNGSettings {
        int compressionLevel = 0;                     // of zlib, 0 to 9
        std::array<unsigned char, 32> colorProfile{}; // target: hash, NoneColorProfile or EmbeddedColorProfile
        unsigned int alpha = 0;                       // 1 writes the alpha channel
        unsigned int bitDepth = 0;                    // 0: 8 bits a sample, truncated; otherwise 16
    };
    struct ExportJPEGSettings {
        int quality = 0; // of libjpeg, 0 to 100
        bool optimizeCoding = false;
        bool progressive = false;
        int smoothingFactor = 0;                      // of libjpeg, 0 to 100
        std::array<unsigned char, 32> colorProfile{}; // as above
    };
    struct ExportTIFFSettings {
        std::array<unsigned char, 32> colorProfile{}; // as above
        unsigned int alpha = 0;                       // 1 writes the alpha channel
        unsigned int bitDepth = 0;                    // 0: 8 bits a sample, rounded; otherwise 16
        unsigned int compression = 0;                 // 1 Deflate, 2 LZW, 3 PackBits, otherwise none
    };

    // The one store of the process, made at first use.
    static ResourceEngine& Get();

    // ---- The store

    // Adds a PNG, JPEG or TIFF file, found by its content, or a camera RAW file. The file is read and decoded once to
    // check it. On failure nothing is stored, no handle is used up, and `id` is unchanged.
    bool AddImage(const std::string& fileName, Ondrel::ResourceId& id);
    bool AddRawImage(const std::string& fileName, Ondrel::ResourceId& id);

    // The same from bytes in memory. `format` only tells RAW from the others, which are detected anew.
    // FormatImageBuffer is refused.
    bool AddImageByData(Format format, const std::vector<unsigned char>& data, const std::string& fileName,
                        Ondrel::ResourceId& id);

    // Stores a deep copy of `image`, which may be empty. No profile is registered.
    bool AddImageBuffer(const Ondrel::Image& image, Ondrel::ResourceId& id);

    // False if there is no such resource. Images handed out before stay valid.
    bool RemoveResource(Ondrel::ResourceId id);

    // Gives the decoded image in the profile that `colorProfile` names; with EmbeddedColorProfile in its own. A
    // repeated call for the same profile gives the same object; a call for another one decodes anew. A profile that is
    // not registered or cannot be converted to is a failure for PNG and RAW; JPEG and TIFF then come out in sRGB. If a
    // file cannot be decoded or converted, `image` becomes an empty image; for an unknown id it stays as it was.
    //
    // A buffer resource ignores `colorProfile` and is copied; if the image that `image` already holds has a block of
    // the same size, its pixels are overwritten in place, although they are const for every other use.
    //
    // `status` can cancel the decoding of a RAW file (false), during which the store is not locked.
    bool CopyImage(Ondrel::ResourceId id, std::shared_ptr<const Ondrel::Image>& image,
                   const std::array<unsigned char, 32>& colorProfile, const Ondrel::RunStatus& status);

    // Brings the holder's image up to date with a buffer resource. If it has exactly `size` and `rect` is valid, only
    // `rect` is copied, into the holder's image itself. Otherwise the holder gets a new copy, cut or extended with
    // opaque white to `size`. False for any other resource, a buffer of width 0, and a negative or undecodably large
    // `size`. The last argument has no effect.
    bool CopySubImage(Ondrel::ResourceId id, std::shared_ptr<const Ondrel::Image>& image, const QSize& size,
                      const Ondrel::RectT<int>& rect, bool unused);

    // What a project file must keep. `data` is empty for a buffer resource.
    bool CopyData(Ondrel::ResourceId id, Format& format, std::vector<unsigned char>& data, std::string& fileName);

    // Takes no longer than the copy: it never waits for a decode.
    bool CopyImageInfo(Ondrel::ResourceId id, Ondrel::ImageInfo& info);

    // Bytes of file data, stored pixels and decoded copies of the resources, each counted as often as it is named;
    // unknown ids count nothing.
    std::size_t SumMemorySizes(const std::vector<Ondrel::ResourceId>& ids);

    // Drops all decoded copies; the store itself never drops one to save memory. Always true.
    bool ClearCache();

    // Gives out the next free handle; they rise from 1, and wrap around past 0, which is skipped. False if none is
    // left. Takes no lock: only for a caller in the manual mode.
    bool CreateId(Ondrel::ResourceId& id);

    // The manual mode, for bulk changes such as loading a project: the store stays locked between Begin and End, which
    // must come from the same thread, and the caller edits the records directly. No other function of the store but
    // CreateId and CopyImageInfo may be called by that thread meanwhile. TryBegin is false, with `resources` untouched,
    // instead of waiting; Begin and End are always true. In a full revalidation a record that fails validation stays
    // with its former description.
    bool BeginManualResources(std::unordered_map<unsigned int, std::shared_ptr<ImageInfo>>** resources);
    bool TryBeginManualResources(std::unordered_map<unsigned int, std::shared_ptr<ImageInfo>>** resources);
    bool EndManualResources(EndManualProcessing processing);

    // ---- Decoders
    //
    // They use `info->data` alone and take no lock. `image` is replaced on success only. `profile` may be null;
    // otherwise it receives on success, where told below, a Little CMS handle that the caller closes with
    // cmsCloseProfile(). `colorProfile` names the profile wanted; an unknown one means sRGB. Damaged files, images
    // without pixels and those of 2^30 pixels or more are refused.

    // Replaces `info->data` by the whole content of a regular file; unchanged on failure.
    static bool LoadDataFromFile(const std::string& fileName, std::shared_ptr<ImageInfo>& info);

    // Reads in the file's own profile: that of its sRGB, iCCP or cHRM chunk, or sRGB; `profile` always receives it. A
    // grey file is not expanded to RGB: its two samples a pixel fill the first half of each row, the rest is zero.
    static bool ReadPNG(const std::shared_ptr<ImageInfo>& info, Ondrel::Image& image, void** profile);

    // Reads RGB, grey and CMYK and applies the Exif orientations 3, 6 and 8. An RGB file read with EmbeddedColorProfile
    // is not converted. `profile` receives that of an RGB file, sRGB if it has none. A grey or CMYK file without a
    // fitting profile is refused, as is one with more than 1000 scans.
    static bool ReadJPEG(const std::shared_ptr<ImageInfo>& info, Ondrel::Image& image, void** profile,
                         const std::array<unsigned char, 32>& colorProfile);

    // Reads strips and tiles of 8 or 16 bits or 32-bit float. `profile` receives that of an RGB file, as above. The
    // first extra sample is the alpha, unless its kind is unspecified; associated alpha is divided out.
    static bool ReadTIFF(const std::shared_ptr<ImageInfo>& info, Ondrel::Image& image, void** profile,
                         const std::array<unsigned char, 32>& colorProfile);

    // Decode the file, throw the pixels away and keep their size in `info->info`. ValidateImage tries PNG, JPEG and
    // TIFF in this order and sets `info->format`. On failure `info` is unchanged.
    static bool ValidatePNG(const std::shared_ptr<ImageInfo>& info, void** profile);
    static bool ValidateJPEG(const std::shared_ptr<ImageInfo>& info, void** profile);
    static bool ValidateTIFF(const std::shared_ptr<ImageInfo>& info, void** profile);
    static bool ValidateImage(const std::shared_ptr<ImageInfo>& info, void** profile);

    // The same for a camera RAW file, with its whole description; the size is that after the camera's rotation.
    // `profile` receives that of the camera, or null (see GetRawColorProfile).
    static bool ValidateRawImage(std::shared_ptr<ImageInfo> info, void** profile);

    // The preview that a RAW file carries: a JPEG, turned upright and in sRGB, or a bitmap of three colours, as it is
    // and without a profile. False if the file has no preview or one of another kind.
    static bool ImportRawThumbnail(const QString& fileName, Ondrel::Image& image);

    // Decode a file without a resource. JPEG and TIFF come out in sRGB, PNG in its own profile.
    static bool ImportPNG(const QString& fileName, Ondrel::Image& image);
    static bool ImportJPEG(const QString& fileName, Ondrel::Image& image);
    static bool ImportTIFF(const QString& fileName, Ondrel::Image& image);

    // ---- Encoders
    //
    // They convert the pixels to the profile of the settings *in place*, through the const reference, and leave the
    // image's own hash as it was: pass a private copy, and export it once at a time. Each row written is reported to
    // `progress`, which may be null, as a percentage below 100; a false from it stops the export: the file is closed
    // and, if it is a regular file, removed, and the result is true. An image without pixels is refused before anything
    // is opened. The result is false if the file could not be written in full; what was written is left.

    static bool ExportPNG(const QString& fileName, const Ondrel::Image& image, const ExportPNGSettings& settings,
                          bool (*progress)(int, void*), void* userData);
    // Drops alpha; rounds to 8 bits.
    static bool ExportJPEG(const QString& fileName, const Ondrel::Image& image, const ExportJPEGSettings& settings,
                           bool (*progress)(int, void*), void* userData);
    static bool ExportTIFF(const QString& fileName, const Ondrel::Image& image, const ExportTIFFSettings& settings,
                           bool (*progress)(int, void*), void* userData);
    // Replaces `data` by a big-endian TIFF file. A stopped export leaves the part that was written.
    static bool ExportTIFFToMemory(std::vector<unsigned char>& data, const Ondrel::Image& image,
                                   const ExportTIFFSettings& settings, bool (*progress)(int, void*), void* userData);
    // The same for 8-bit CMYK samples, 4 * width * height of them, in the registered profile that the settings name;
    // without one it is false. `alpha` and `bitDepth` have no effect.
    static bool ExportCMYKTIFFToMemory(std::vector<unsigned char>& data, const std::vector<unsigned char>& cmyk,
                                       unsigned int width, unsigned int height, const ExportTIFFSettings& settings,
                                       bool (*progress)(int, void*), void* userData);

    // Converts the pixels of `image` in place from its own profile to `colorProfile`, perceptually, and gives the bytes
    // of that profile for embedding. Pixels and `iccProfile` stay as they are for NoneColorProfile, if either profile
    // is unknown, or if there is no conversion between them; with EmbeddedColorProfile only the bytes are given. Always
    // true.
    static bool PrepareImageForExport(const Ondrel::Image& image, const std::array<unsigned char, 32>& colorProfile,
                                      std::vector<unsigned char>& iccProfile);

protected: // One in the process; tests make stores of their own.
    ResourceEngine();
    ~ResourceEngine();
    ResourceEngine(const ResourceEngine&) = delete;
    ResourceEngine& operator=(const ResourceEngine&) = delete;

    // Guarded by `mutex`, but for the size cache.
    unsigned int nextId = 1;
    std::unordered_map<unsigned int, std::shared_ptr<ImageInfo>> resources;
    std::vector<std::array<unsigned char, 32>> usedColorProfiles;  // each once, in order of first appearance
    std::unordered_map<unsigned int, CachedImage> cachedImages;    // at most one decoded copy a resource
    std::unordered_map<unsigned int, Ondrel::ImageInfo> sizeCache; // guarded by `sizeCacheMutex`

    // Order: `mutex`, then `sizeCacheMutex` or the lock of Ondrel::ColorManager, which never waits for this store.
    QMutex mutex;
    QMutex sizeCacheMutex; // held for single accesses to `sizeCache` only

private:
    // All of these expect `mutex` to be held.
    bool AddImageByDataPrivate(std::shared_ptr<ImageInfo>& info, Ondrel::ResourceId& id);
    void RegisterEmbeddedProfile(ImageInfo& info, void* profile);
    void ForgetEmbeddedProfile(const std::array<unsigned char, 32>& hash);
    std::size_t CountUsers(const std::array<unsigned char, 32>& hash) const;
    std::shared_ptr<ImageInfo> FindResource(Ondrel::ResourceId id) const; // null if there is none
    void RebuildSizeCache();
    void Revalidate();
};

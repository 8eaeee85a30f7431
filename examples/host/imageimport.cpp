#include "imageimport.h"

#include "blocking.h"
#include "importprofiles.h"
#include "jpegsegments.h"
#include "lcmshandles.h"
#include "pngencoder.h"
#include "settledprofiles.h"
#include "text.h"
#include "tiffpicture.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>
#include <ondrel/pixel/geometry.h>
#include <ondrel/resources/resourceengine.h>

#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

namespace Host
{
namespace
{

using Record = std::shared_ptr<ResourceEngine::ImageInfo>;

// ---- Pixels

// What is embedded where pixels are written anew: nothing for sRGB, which has a word of its own.
FileBytes profileBytes(void* profile)
{
    FileBytes bytes;
    if (profile && cmsGetColorSpace(profile) == cmsSigRgbData)
        Ondrel::GetICCProfileData(profile, bytes);
    if (Ondrel::ColorManager::buildColorProfileHash(bytes) == Ondrel::DefaultColorProfileHash)
        bytes.clear();
    return bytes;
}

// By the meaning of the Exif orientation: which corner and direction of the picture the first row and column are.
Ondrel::Image turned(Ondrel::Image image, int orientation)
{
    if (orientation >= 5)
        image = Rotate270(image, RotateSizeBounding);
    switch (orientation) {
    case 2:
    case 5:
        return HorizontalMirror(image);
    case 3:
        return Rotate180(image);
    case 4:
    case 7:
        return VerticalMirror(image);
    case 8:
        return Rotate180(image);
    default:
        return image;
    }
}

// The samples of a grey PNG as the library leaves them: value and alpha of each pixel in the first half of a row.
void spreadGrey(Ondrel::Image& image)
{
    std::vector<std::uint16_t> samples(std::size_t(image.width) * 2);
    for (std::size_t y = 0; y < image.height; ++y) {
        std::uint16_t* const row = image.data + y * image.width * 4;
        std::copy_n(row, samples.size(), samples.begin());
        for (std::size_t x = 0; x < image.width; ++x) {
            row[x * 4] = row[x * 4 + 1] = row[x * 4 + 2] = samples[x * 2];
            row[x * 4 + 3] = samples[x * 2 + 1];
        }
    }
}

// From a grey profile to sRGB, once grey is spread. False if there is no such conversion.
bool convertGrey(Ondrel::Image& image, void* profile)
{
    const Profile srgb(Ondrel::Create_sRGBColorProfile());
    const Transform transform(
        srgb ? cmsCreateTransform(profile, TYPE_GRAY_16, srgb.get(), TYPE_RGBA_16, INTENT_PERCEPTUAL, cmsFLAGS_NOCACHE)
             : nullptr);
    if (!transform)
        return false;
    std::vector<std::uint16_t> grey(image.width);
    for (std::size_t y = 0; y < image.height; ++y) {
        std::uint16_t* const row = image.data + y * image.width * 4;
        for (std::size_t x = 0; x < image.width; ++x)
            grey[x] = row[x * 4];
        cmsDoTransform(transform.get(), grey.data(), row, image.width); // leaves alpha alone
    }
    return true;
}

// ---- Files. Each gives the file to be taken instead, or no bytes, and adds what it did to the notes.

bool isGreyPng(const FileBytes& file)
{
    constexpr unsigned char start[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n', 0, 0, 0, 13, 'I', 'H', 'D', 'R'};
    constexpr std::size_t colourType = 25;
    return file.size() > colourType && std::memcmp(file.data(), start, sizeof(start)) == 0 &&
           (file[colourType] == 0 || file[colourType] == 4);
}

FileBytes mendedPng(const Record& record, QStringList& notes)
{
    Ondrel::Image image;
    void* handle = nullptr;
    if (!isGreyPng(record->data) || !ResourceEngine::ReadPNG(record, image, &handle))
        return {};
    const Profile profile(handle);
    spreadGrey(image);
    if (profile && cmsGetColorSpace(profile.get()) == cmsSigGrayData && !convertGrey(image, profile.get()))
        return {};
    FileBytes mended = encodePng(image, profileBytes(profile.get()));
    if (!mended.empty())
        notes.append(Text::tr("\"%1\" is grey and was made a colour picture."));
    return mended;
}

FileBytes turnedFile(bool wasRead, Ondrel::Image image, void* handle, int orientation, QStringList& notes)
{
    const Profile profile(handle);
    FileBytes mended = wasRead ? encodePng(turned(std::move(image), orientation), profileBytes(handle)) : FileBytes();
    if (!mended.empty())
        notes.append(Text::tr("\"%1\" was turned upright."));
    return mended;
}

// The library turns by itself what is little-endian and does not mirror.
FileBytes turnedJpeg(const Record& record, QStringList& notes)
{
    const JpegSegments segments(record->data);
    const JpegSegments::Orientation orientation = segments.orientation();
    const bool mirrors =
        orientation.value == 2 || orientation.value == 4 || orientation.value == 5 || orientation.value == 7;
    if (orientation.value < 2 || (!orientation.bigEndian && !mirrors))
        return {};
    if (!mirrors) {
        notes.append(Text::tr("\"%1\" was turned upright."));
        return segments.withOrientation(orientation.value);
    }
    const auto unturned = std::make_shared<ResourceEngine::ImageInfo>();
    unturned->data = segments.withOrientation(1);
    Ondrel::Image image;
    void* handle = nullptr;
    const bool wasRead = ResourceEngine::ReadJPEG(unturned, image, &handle, Ondrel::EmbeddedColorProfile);
    return turnedFile(wasRead, std::move(image), handle, orientation.value, notes);
}

FileBytes turnedTiff(const Record& record, QStringList& notes)
{
    bool bigEndian = false;
    const int orientation = tiffOrientation(record->data.data(), record->data.size(), bigEndian);
    if (orientation < 2)
        return {};
    Ondrel::Image image;
    void* handle = nullptr;
    const bool wasRead = ResourceEngine::ReadTIFF(record, image, &handle, Ondrel::EmbeddedColorProfile);
    return turnedFile(wasRead, std::move(image), handle, orientation, notes);
}

// Of a JPEG that was refused, perhaps for its profile.
FileBytes jpegWithOtherProfile(const FileBytes& file, QStringList& notes)
{
    const JpegSegments segments(file);
    switch (segments.components()) {
    case 1:
        notes.append(Text::tr("\"%1\" is grey without a fitting colour profile and was given that of sRGB."));
        return segments.withProfile(greyProfile());
    case 3:
        notes.append(Text::tr("\"%1\" has a colour profile that does not fit and was read as sRGB."));
        return segments.withProfile({});
    case 4:
        notes.append(Text::tr("\"%1\" is CMYK without a fitting colour profile, so that its colours are a guess."));
        return segments.withProfile(inkProfile());
    default:
        return {};
    }
}

FileBytes otherTiff(const FileBytes& file, QStringList& notes)
{
    Ondrel::Image image;
    FileBytes mended = readTiffPicture(file, image) ? encodePng(image, {}) : FileBytes();
    if (!mended.empty())
        notes = QStringList(Text::tr("\"%1\" is a TIFF of a rare kind and was read with 8 bits a colour."));
    return mended;
}

// What can be mended before the library has seen the file.
void mend(const Record& record, QStringList& notes)
{
    FileBytes mended = JpegSegments(record->data).isJpeg() ? turnedJpeg(record, notes)
                       : isGreyPng(record->data)           ? mendedPng(record, notes)
                                                           : turnedTiff(record, notes);
    if (!mended.empty())
        record->data = std::move(mended);
}

bool add(const Record& record, Ondrel::ResourceId& id)
{
    return ResourceEngine::Get().AddImageByData(ResourceEngine::FormatPNG, record->data, record->fileName, id);
}

std::string placeOf(const QString& file)
{
    return QFile::encodeName(QFileInfo(file).absoluteFilePath()).toStdString();
}

Record load(const QString& file)
{
    auto record = std::make_shared<ResourceEngine::ImageInfo>();
    record->fileName = placeOf(file);
    return ResourceEngine::LoadDataFromFile(record->fileName, record) ? record : nullptr;
}

} // namespace

Import importImage(const QString& file)
{
    assertMayBlock("importImage");
    const Record record = load(file);
    if (!record)
        return {};
    Import result;
    QStringList notes;
    mend(record, notes);
    if (!add(record, result.id)) {
        const bool isJpeg = JpegSegments(record->data).isJpeg();
        record->data = isJpeg ? jpegWithOtherProfile(record->data, notes) : otherTiff(record->data, notes);
        if (isJpeg)
            mend(record, notes); // could not be decoded before, if it mirrors
        if (record->data.empty() || !add(record, result.id))
            return {};
    }
    settleProfiles();
    if (!notes.isEmpty())
        result.note = notes.join(' ').arg(QFileInfo(file).fileName());
    return result;
}

Import importRawImage(const QString& file)
{
    assertMayBlock("importRawImage");
    Import result;
    ResourceEngine::Get().AddRawImage(placeOf(file), result.id);
    settleProfiles();
    return result;
}

bool hasRawName(const QString& file)
{
    static const QStringList endings =
        QString(
            "3fr ari arw bay cap cr2 cr3 crw dcr dng erf fff gpr iiq k25 kdc mef mos mrw nef nrw orf pef ptx raf raw "
            "rw2 rwl sr2 srf srw x3f")
            .split(' ');
    return endings.contains(QFileInfo(file).suffix().toLower());
}

} // namespace Host

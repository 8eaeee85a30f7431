// Real files, where they are there: what the decoders make of them against libpng, libjpeg and libtiff alone.

#include "decoding.h"

#include "tests/support/testimages.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/core/runtimestatistics.h>
#include <ondrel/pixel/geometry.h>

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

namespace
{

using namespace OndrelTest;
using Ondrel::Image;

QStringList filesIn(const char* folder, const char* pattern)
{
    QStringList files;
    QDirIterator it(QString(ONDREL_SAMPLES_DIR) + '/' + folder, {pattern}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        files << it.next();
    files.sort();
    EXPECT_FALSE(files.isEmpty()) << folder;
    return files;
}

// The size that a validation finds, empty if it refuses the file; the format is the one expected.
QSize validatedSize(const Bytes& file, ResourceEngine::Format format)
{
    const auto record = recordOf(file);
    void* profile = nullptr;
    const bool ok = ResourceEngine::ValidateImage(record, &profile);
    const Profile handle(profile);
    EXPECT_TRUE(ok || !handle);
    EXPECT_TRUE(!ok || record->format == format);
    return ok ? QSize(int(record->info.width), int(record->info.height)) : QSize();
}

QSize sizeOf(const Image& image)
{
    return QSize(int(image.width), int(image.height));
}

class Samples : public testing::Test
{
protected:
    const QuietTiff quiet;
    const std::uint64_t before = RunTimeStatistics::Get(RunTimeStatistics::ImageMemory);
    void TearDown() override { EXPECT_EQ(RunTimeStatistics::Get(RunTimeStatistics::ImageMemory), before); }
};

// ---- PNG

TEST_F(Samples, EveryGoodPngIsWhatLibpngMakesOfIt)
{
    for (const QString& name : filesIn("png/suite", "*.png")) {
        if (QFileInfo(name).fileName().startsWith('x'))
            continue;
        SCOPED_TRACE(qPrintable(name));
        const Bytes file = readFile(name);
        const ReadResult result = readPng(file);
        ASSERT_TRUE(result.ok);
        EXPECT_TRUE(samePixels(result.image, pngPixels(file)));
        EXPECT_EQ(hashOf(result.profile), result.image.colorProfile);
        EXPECT_EQ(validatedSize(file, ResourceEngine::FormatPNG), sizeOf(result.image));
    }
}

TEST_F(Samples, EveryBrokenPngIsRefused)
{
    for (const QString& name : filesIn("png/suite", "x*.png"))
        EXPECT_EQ(validatedSize(readFile(name), ResourceEngine::FormatPNG), QSize()) << qPrintable(name);
}

// ---- JPEG

Hash profileOf(const ReadResult& result)
{
    EXPECT_TRUE(result.ok);
    EXPECT_EQ(hashOf(result.profile), result.image.colorProfile);
    return result.image.colorProfile;
}

Bytes jpegSample(const char* name)
{
    return readFile(QString(ONDREL_SAMPLES_DIR "/jpeg/") + name);
}

TEST_F(Samples, OrientationsAreTurnedAsTheyAre)
{
    for (const int orientation : {2, 3, 4, 5, 6, 7, 8}) {
        const Bytes file = jpegSample(qPrintable(QString("orientation/hopper_orientation_%1.jpg").arg(orientation)));
        const Image rows = widened(decodeJpeg(file));
        const Image expected = orientation == 3   ? Rotate180(rows)
                               : orientation == 6 ? Rotate270(rows, RotateSizeBounding)
                               : orientation == 8 ? Rotate90(rows, RotateSizeBounding)
                                                  : rows;
        const ReadResult result = readJpeg(file);
        EXPECT_TRUE(samePixels(result.image, expected)) << orientation;
        EXPECT_EQ(profileOf(result), Ondrel::DefaultColorProfileHash);
    }
}

TEST_F(Samples, BrokenSequencesOfProfilePartsGiveSrgb)
{
    for (const char* const name : {"count_mismatch.jpeg", "double_seq_no.jpeg", "seq_no_0.jpeg"}) {
        const Bytes file = jpegSample(qPrintable(QString("icc-chunks/icc_chunk_") + name));
        const ReadResult result = readJpeg(file);
        EXPECT_EQ(profileOf(result), Ondrel::DefaultColorProfileHash) << name;
        EXPECT_TRUE(samePixels(result.image, widened(decodeJpeg(file))));
    }
    EXPECT_EQ(profileOf(readJpeg(jpegSample("icc-chunks/icc_missing_chunk.jpeg"))), Ondrel::DefaultColorProfileHash);
}

TEST_F(Samples, CompletePartsThatAreNoProfileAreRefused)
{
    // All 254 parts, out of order; each holds its number only.
    EXPECT_FALSE(readJpeg(jpegSample("icc-chunks/icc_chunk_order.jpeg")).ok);
}

TEST_F(Samples, AGreyJpegWithAnRgbProfileIsRefused)
{
    EXPECT_FALSE(readJpeg(jpegSample("rgb-icc.jpg")).ok);
}

// The profile that the markers of a file hold in order; sRGB if there are none.
Profile embeddedProfile(const Bytes& file)
{
    jpeg_decompress_struct jpeg;
    jpeg_error_mgr errors;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&jpeg);
    jpeg_mem_src(&jpeg, file.data(), static_cast<unsigned long>(file.size()));
    jpeg_save_markers(&jpeg, JPEG_APP0 + 2, 0xFFFF);
    jpeg_read_header(&jpeg, TRUE);
    Bytes icc;
    for (const jpeg_marker_struct* marker = jpeg.marker_list; marker; marker = marker->next)
        append(icc, Bytes(marker->data + 14, marker->data + marker->data_length));
    jpeg_destroy_decompress(&jpeg);
    return icc.empty() ? sRGB() : Profile(cmsOpenProfileFromMem(icc.data(), cmsUInt32Number(icc.size())));
}

TEST_F(Samples, AYcckJpegIsConvertedFromItsReversedInks)
{
    const Bytes file = jpegSample("ycck-cmyk-profile-18-chunks.jpg");
    const JpegRows rows = decodeJpeg(file);
    const ReadResult result = readJpeg(file);
    ASSERT_TRUE(result.ok);
    EXPECT_EQ(result.profile, nullptr);
    const cmsUInt32Number format =
        COLORSPACE_SH(PT_CMYK) | CHANNELS_SH(4) | BYTES_SH(1) | FLAVOR_SH(rows.adobeMarker ? 1u : 0u);
    EXPECT_TRUE(samePixels(result.image, transformed(rows.samples, rows.width, rows.height, format,
                                                     embeddedProfile(file).get(), sRGB().get())));
}

TEST_F(Samples, AGreyJpegIsConvertedFromItsProfile)
{
    const Bytes file = jpegSample("grey-with-grey-profile.jpg");
    const JpegRows rows = decodeJpeg(file);
    const ReadResult result = readJpeg(file);
    ASSERT_TRUE(result.ok);
    EXPECT_EQ(result.profile, nullptr);
    EXPECT_TRUE(samePixels(result.image, transformed(rows.samples, rows.width, rows.height, TYPE_GRAY_8,
                                                     embeddedProfile(file).get(), sRGB().get())));
}

TEST_F(Samples, ACmykJpegWithoutProfileIsRefused)
{
    EXPECT_FALSE(readJpeg(jpegSample("cmyk-no-profile.jpg")).ok);
}

TEST_F(Samples, AProgressiveJpegWithAProfileInSevenPartsIsOnlyWidened)
{
    const Bytes file = jpegSample("rgb-profile-7-chunks-progressive.jpg");
    const ReadResult result = readJpeg(file);
    EXPECT_EQ(profileOf(result), hashOf(embeddedProfile(file)));
    EXPECT_TRUE(samePixels(result.image, widened(decodeJpeg(file))));
}

TEST_F(Samples, PhotographsAreWhatLibjpegMakesOfThem)
{
    for (const QString& name : filesIn("photos", "*.jpg")) {
        SCOPED_TRACE(qPrintable(name));
        const Bytes file = readFile(name);
        const ReadResult result = readJpeg(file);
        EXPECT_EQ(profileOf(result), hashOf(embeddedProfile(file)));
        EXPECT_TRUE(samePixels(result.image, widened(decodeJpeg(file))));
        EXPECT_EQ(validatedSize(file, ResourceEngine::FormatJPEG), sizeOf(result.image));
    }
}

// ---- TIFF

// Whether the rules read a file of this layout without a profile.
bool isReadable(const TiffPicture& picture)
{
    const bool known = picture.photometric == PHOTOMETRIC_RGB || picture.photometric == PHOTOMETRIC_MINISBLACK ||
                       picture.photometric == PHOTOMETRIC_MINISWHITE;
    const bool integer = picture.sampleFormat == SAMPLEFORMAT_UINT && (picture.bits == 8 || picture.bits == 16);
    return known && (integer || (picture.sampleFormat == SAMPLEFORMAT_IEEEFP && picture.bits == 32));
}

Profile plainProfileOf(const TiffPicture& picture)
{
    return picture.photometric == PHOTOMETRIC_RGB ? sRGB() : greyProfile();
}

// Whether the file names a profile of its own, and how its samples are laid out.
struct TiffSample {
    bool profiled = false;
    TiffPicture picture{};
};

TiffSample openSample(const QString& name, const Bytes& file)
{
    TiffSample sample;
    TIFF* const tiff = TIFFOpen(qPrintable(name), "r");
    if (!tiff)
        return sample;
    std::uint32_t size = 0;
    void* data = nullptr;
    sample.profiled = TIFFGetField(tiff, TIFFTAG_ICCPROFILE, &size, &data) != 0 ||
                      TIFFGetField(tiff, TIFFTAG_PRIMARYCHROMATICITIES, &data) != 0;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &sample.picture.bits);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLEFORMAT, &sample.picture.sampleFormat);
    TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &sample.picture.photometric);
    TIFFClose(tiff);
    if (isReadable(sample.picture))
        sample.picture = decodeTiff(file);
    return sample;
}

TEST_F(Samples, EveryTiffIsWhatLibtiffAndLittleCmsMakeOfItOrRefused)
{
    int read = 0, refused = 0;
    for (const QString& name : filesIn("tiff/libtiffpic", "*.tif")) {
        SCOPED_TRACE(qPrintable(name));
        const Bytes file = readFile(name);
        const TiffSample sample = openSample(name, file);
        const TiffPicture& picture = sample.picture;
        const ReadResult result = readTiff(file);
        if (!isReadable(picture)) {
            EXPECT_FALSE(result.ok);
            EXPECT_EQ(validatedSize(file, ResourceEngine::FormatTIFF), QSize());
            ++refused;
            continue;
        }
        ASSERT_TRUE(result.ok);
        EXPECT_EQ(validatedSize(file, ResourceEngine::FormatTIFF), QSize(int(picture.width), int(picture.height)));
        ++read;
        if (sample.profiled)
            continue;
        EXPECT_EQ(result.image.colorProfile, Ondrel::DefaultColorProfileHash);
        const bool grey = picture.photometric != PHOTOMETRIC_RGB;
        const Profile from = plainProfileOf(picture), to = grey ? sRGB() : reopened(sRGB());
        const cmsUInt32Number format =
            tiffFormat(picture, grey ? PT_GRAY : PT_RGB, picture.photometric == PHOTOMETRIC_MINISWHITE);
        EXPECT_TRUE(samePixels(result.image, tiffPixels(picture, format, from.get(), to.get())));
    }
    EXPECT_GE(read, 15);
    EXPECT_GE(refused, 15);
}

} // namespace

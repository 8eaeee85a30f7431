// Files cut off at every length and with every byte changed: whatever comes out, nothing crashes, leaks or stays.

#include "decoding.h"

#include <ondrel/core/runtimestatistics.h>

#include <initializer_list>
#include <new>

namespace
{

using namespace OndrelTest;

std::uint64_t imageMemory()
{
    return RunTimeStatistics::Get(RunTimeStatistics::ImageMemory);
}

// Keeps what libjpeg says about thousands of damaged files out of the test log. Not under a sanitizer, whose report
// would be lost with it.
class QuietStandardError
{
public:
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    ~QuietStandardError() {}
#else
    QuietStandardError()
    {
        testing::internal::CaptureStderr();
    }
    ~QuietStandardError()
    {
        testing::internal::GetCapturedStderr();
    }
#endif
};

using Reader = ReadResult (*)(const Bytes&);

ReadResult readJpegAsIs(const Bytes& file)
{
    return readJpeg(file);
}

ReadResult readTiffAsIs(const Bytes& file)
{
    return readTiff(file);
}

// True if the file loads. A size that was made huge may find no memory: the one exception that a reader throws.
bool loads(Reader reader, const Bytes& file)
{
    const std::uint64_t before = imageMemory();
    bool ok = false;
    try {
        const ReadResult result = reader(file);
        ok = result.ok;
        EXPECT_TRUE(ok || result.profile == nullptr);
        EXPECT_TRUE(!ok || (result.image.width > 0 && result.image.height > 0 && result.image.data != nullptr));
    } catch (const std::bad_alloc&) {
    }
    EXPECT_EQ(imageMemory(), before);
    return ok;
}

// The number of lengths at which the file, cut off, still loads.
unsigned int loadingPrefixes(Reader reader, const Bytes& file)
{
    const QuietStandardError quiet;
    const QuietTiff quietTiff;
    unsigned int count = 0;
    for (std::size_t size = 0; size < file.size(); ++size)
        count += loads(reader, Bytes(file.begin(), file.begin() + std::ptrdiff_t(size)));
    return count;
}

using Repair = Bytes (*)(Bytes);

// The number of changed bytes with which the file is refused. Each byte is changed by each of the masks in turn;
// `repair` makes up for the change elsewhere.
unsigned int refusedChanges(Reader reader, const Bytes& file, std::initializer_list<int> masks, Repair repair = nullptr)
{
    const QuietStandardError quiet;
    const QuietTiff quietTiff;
    unsigned int count = 0;
    for (std::size_t at = 0; at < file.size(); ++at)
        for (const int mask : masks) {
            Bytes damaged = file;
            damaged[at] = std::uint8_t(damaged[at] ^ mask);
            count += !loads(reader, repair ? repair(std::move(damaged)) : damaged);
        }
    return count;
}

std::vector<Bytes> pngFiles()
{
    const Bytes icc = savedBytes(rgbProfile(1.8, "Own").get());
    PngPicture interlaced = randomPng(7, 5, PNG_COLOR_TYPE_PALETTE, 4);
    interlaced.interlaced = true;
    const png_byte alphas[] = {0, 100};
    return {pngFile(randomPng(7, 5, PNG_COLOR_TYPE_RGB, 8),
                    [&](png_struct* png, png_info* info) {
                        png_set_iCCP(png, info, "own", 0, icc.data(), png_uint_32(icc.size()));
                    }),
            pngFile(interlaced, [&](png_struct* png, png_info* info) { png_set_tRNS(png, info, alphas, 2, nullptr); }),
            pngFile(randomPng(7, 5, PNG_COLOR_TYPE_GRAY_ALPHA, 16), [](png_struct* png, png_info* info) {
                png_set_gAMA(png, info, 0.7);
                png_set_cHRM(png, info, 0.3127, 0.329, 0.64, 0.33, 0.21, 0.71, 0.15, 0.06);
            })};
}

// Computes the checksums anew, as far as the chunks can be followed.
Bytes withRightChecksums(Bytes file)
{
    for (std::size_t at = 8; at + 12 <= file.size();) {
        const std::size_t length = png_get_uint_32(&file[at]);
        if (length > file.size() - at - 12)
            break;
        const char* const type = reinterpret_cast<const char*>(&file[at + 4]);
        const auto data = file.begin() + std::ptrdiff_t(at + 8);
        const Bytes chunk = pngChunk(type, Bytes(data, data + std::ptrdiff_t(length)));
        std::copy(chunk.begin(), chunk.end(), file.begin() + std::ptrdiff_t(at));
        at += length + 12;
    }
    return file;
}

TEST(DamagedFiles, APngCutOffAnywhereIsRefused)
{
    for (const Bytes& file : pngFiles())
        EXPECT_EQ(loadingPrefixes(readPng, file), 0u);
}

TEST(DamagedFiles, APngWithAChangedByteDoesNoHarm)
{
    for (const Bytes& file : pngFiles()) {
        EXPECT_GT(refusedChanges(readPng, file, {0x01, 0x80, 0xFF}), 24u);
        EXPECT_GT(refusedChanges(readPng, file, {0x01, 0x80, 0xFF}, withRightChecksums), 24u);
    }
}

std::vector<Bytes> jpegFiles()
{
    const auto markers = [](jpeg_compress_struct* jpeg) {
        writeExif(jpeg, exifOrientation(6));
        writeIcc(jpeg, savedBytes(rgbProfile(1.8, "Own").get()), 2);
    };
    JpegPicture progressive = randomJpeg(9, 7, JCS_YCbCr);
    progressive.progressive = true;
    return {jpegFile(randomJpeg(9, 7, JCS_YCbCr), markers), jpegFile(progressive),
            jpegFile(randomJpeg(9, 7, JCS_GRAYSCALE),
                     [](jpeg_compress_struct* jpeg) { writeIcc(jpeg, savedBytes(greyProfile().get())); })};
}

TEST(DamagedFiles, AJpegCutOffAnywhereDoesNoHarm)
{
    for (const Bytes& file : jpegFiles())
        EXPECT_LT(loadingPrefixes(readJpegAsIs, file), file.size() - 100); // not before its first scan
}

TEST(DamagedFiles, AJpegWithAChangedByteDoesNoHarm)
{
    for (const Bytes& file : jpegFiles())
        EXPECT_GT(refusedChanges(readJpegAsIs, file, {0x01, 0x80, 0xFF}), 6u);
}

std::vector<Bytes> tiffFiles()
{
    TiffPicture strips = randomTiff(7, 5, PHOTOMETRIC_RGB, 8, 3);
    strips.rowsPerStrip = 2;
    strips.compression = COMPRESSION_LZW;
    TiffPicture tiles = randomTiff(7, 5, PHOTOMETRIC_RGB, 16, 4);
    tiles.extraSamples = {EXTRASAMPLE_ASSOCALPHA};
    tiles.planar = true;
    tiles.tileWidth = tiles.tileLength = 16;
    tiles.compression = COMPRESSION_ADOBE_DEFLATE;
    TiffPicture floats = randomTiff(3, 2, PHOTOMETRIC_RGB, 32, 4);
    floats.extraSamples = {EXTRASAMPLE_UNASSALPHA};
    const auto primaries = [](TIFF* tiff) {
        const float white[2] = {0.3127f, 0.3290f}, colors[6] = {0.64f, 0.33f, 0.21f, 0.71f, 0.15f, 0.06f};
        TIFFSetField(tiff, TIFFTAG_WHITEPOINT, white);
        TIFFSetField(tiff, TIFFTAG_PRIMARYCHROMATICITIES, colors);
    };
    const auto icc = [](TIFF* tiff) { setIccTag(tiff, savedBytes(greyProfile().get())); };
    return {tiffFile(strips, primaries), tiffFile(tiles, {}, "w8"), tiffFile(floats, {}, "wb"),
            tiffFile(randomTiff(7, 5, PHOTOMETRIC_MINISBLACK, 8, 1), icc)};
}

TEST(DamagedFiles, ATiffCutOffAnywhereDoesNoHarm)
{
    for (const Bytes& file : tiffFiles())
        EXPECT_LT(loadingPrefixes(readTiffAsIs, file), file.size() - 8);
}

TEST(DamagedFiles, ATiffWithAChangedByteDoesNoHarm)
{
    for (const Bytes& file : tiffFiles())
        EXPECT_GT(refusedChanges(readTiffAsIs, file, {0x81}), 9u);
}

} // namespace

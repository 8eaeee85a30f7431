// Small files that state large sizes, each read in a process of its own. There the memory that was touched on the word
// of the file is measured, or memory is bounded, so that there is not enough of it.

#include "decoding.h"

#include "tests/support/testimages.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/core/runtimestatistics.h>
#include <ondrel/resources/decodelimits_p.h>

#include <zlib.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <new>
#include <sys/resource.h>
#include <unistd.h>

namespace
{

using namespace OndrelTest;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kSanitized = true; // memory that is only reserved touches an eighth as much of the sanitizer's own
#else
constexpr bool kSanitized = false;
#endif

std::uint64_t imageMemory()
{
    return RunTimeStatistics::Get(RunTimeStatistics::ImageMemory);
}

long mostResidentMebibytes()
{
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

// Whether body() returns true, takes hardly any memory, and leaves no image behind.
bool holdsInLittleMemory(const std::function<bool()>& body)
{
    constexpr long kLittle = 64; // mebibytes: Little CMS has tables of its own
    Ondrel::ColorManager::get();
    const std::uint64_t images = imageMemory();
    const long before = mostResidentMebibytes();
    return body() && (kSanitized || mostResidentMebibytes() - before < kLittle) && imageMemory() == images;
}

#define EXPECT_IN_LITTLE_MEMORY(condition)                                                                             \
    EXPECT_EXIT(std::_Exit(holdsInLittleMemory([&] { return condition; }) ? 0 : 1), testing::ExitedWithCode(0), "")    \
        << #condition

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // a limit would stop a sanitizer's own memory

// Lets the process have so much more memory than it has now.
void boundMemory(std::size_t mebibytes)
{
    unsigned long pages = 0;
    if (std::FILE* const file = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(file, "%lu", &pages) != 1)
            std::_Exit(2);
        std::fclose(file);
    }
    const rlim_t bound = pages * rlim_t(sysconf(_SC_PAGESIZE)) + (rlim_t(mebibytes) << 20);
    const rlimit limit{bound, bound};
    if (setrlimit(RLIMIT_AS, &limit) != 0)
        std::_Exit(2);
}

// Whether a reader that finds no memory says so and gives back all that it had.
bool runsOut(ReadResult (*read)(const Bytes&), const Bytes& file)
{
    Ondrel::ColorManager::get();
    const std::uint64_t images = imageMemory();
    boundMemory(128);
    bool refused = false;
    try {
        refused = !read(file).ok;
    } catch (const std::bad_alloc&) {
        refused = true;
    }
    return refused && imageMemory() == images;
}

ReadResult readJpegAsIs(const Bytes& file)
{
    return readJpeg(file);
}

ReadResult readTiffAsIs(const Bytes& file)
{
    return readTiff(file);
}

TEST(LyingFiles, AnHonestFileOfMorePixelsThanMemoryLeavesNothing)
{
    constexpr unsigned int kSide = 5000; // 200 MB as an image
    PngPicture png{kSide, kSide, PNG_COLOR_TYPE_RGB, 8, {}};
    png.rows.resize(png.rowBytes() * kSide);
    const JpegPicture jpeg{kSide, kSide, JCS_YCbCr, png.rows};
    TiffPicture tiff{kSide, kSide, PHOTOMETRIC_RGB, 8, SAMPLEFORMAT_UINT, 3, png.rows};
    tiff.rowsPerStrip = 10;
    const Bytes files[] = {pngFile(png), jpegFile(jpeg), tiffFile(tiff)};
    ReadResult (*const readers[])(const Bytes&) = {readPng, readJpegAsIs, readTiffAsIs};
    for (int i = 0; i < 3; ++i)
        EXPECT_EXIT(std::_Exit(runsOut(readers[i], files[i]) ? 0 : 1), testing::ExitedWithCode(0), "") << i;
}

#endif

TEST(LyingFiles, SizesFromTwoToTheThirtiethPixelsAreNotDecodable)
{
    EXPECT_TRUE(Ondrel::isDecodableSize(32768, 32767));
    EXPECT_FALSE(Ondrel::isDecodableSize(32768, 32768));
    EXPECT_TRUE(Ondrel::isDecodableSize(0x3FFFFFFF, 1));
    EXPECT_FALSE(Ondrel::isDecodableSize(1, 0x40000000));
    EXPECT_FALSE(Ondrel::isDecodableSize(std::uint64_t(1) << 32, std::uint64_t(1) << 32)); // wraps in 64 bits
    EXPECT_FALSE(Ondrel::isDecodableSize(0, 1));
    EXPECT_FALSE(Ondrel::isDecodableSize(1, 0));
}

// ---- PNG

Bytes part(const Bytes& bytes, std::size_t begin, std::size_t end)
{
    return Bytes(bytes.begin() + std::ptrdiff_t(begin), bytes.begin() + std::ptrdiff_t(end));
}

Bytes pngOfStatedSize(unsigned int width, unsigned int height)
{
    const Bytes file = pngFile(randomPng(1, 1, PNG_COLOR_TYPE_RGB, 8));
    Bytes header = bigEndian(width);
    append(header, bigEndian(height));
    append(header, {8, PNG_COLOR_TYPE_RGB, 0, 0, 0});
    Bytes result = part(file, 0, 8);
    append(result, pngChunk("IHDR", header));
    append(result, part(file, 33, file.size()));
    return result;
}

TEST(LyingFiles, APngOfTooManyPixelsIsRefused)
{
    EXPECT_IN_LITTLE_MEMORY(readPng(pngOfStatedSize(1, 1)).ok); // the same file telling the truth
    for (const auto& [width, height] : {std::pair(65535u, 65535u),
                                        {32768u, 32768u},
                                        {0x7FFFFFFFu, 1u},
                                        {1u, 0x7FFFFFFFu},
                                        {0x7FFFFFFFu, 0x7FFFFFFFu},
                                        {65536u, 65536u},
                                        {0x40000000u, 4u}}) {
        const Bytes file = pngOfStatedSize(width, height);
        EXPECT_IN_LITTLE_MEMORY(!readPng(file).ok);
    }
}

TEST(LyingFiles, APngWithoutPixelsIsRefused)
{
    EXPECT_FALSE(readPng(pngOfStatedSize(0, 1)).ok);
    EXPECT_FALSE(readPng(pngOfStatedSize(1, 0)).ok);
}

TEST(LyingFiles, APngOfMorePixelsThanItsDataHoldIsRefused)
{
    EXPECT_IN_LITTLE_MEMORY(!readPng(pngOfStatedSize(30000, 30000)).ok);
    EXPECT_IN_LITTLE_MEMORY(!readPng(pngOfStatedSize(8000, 8000)).ok);
}

TEST(LyingFiles, APngChunkBeyondTheEndIsRefused)
{
    const Bytes file = pngFile(randomPng(1, 1, PNG_COLOR_TYPE_RGB, 8));
    for (const char* const type : {"tEXt", "iCCP", "zTXt", "iTXt", "sPLT", "eXIf", "PLTE", "IDAT", "IEND", "abCd"})
        for (const unsigned int length : {200u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu, 0xFFFFFFF0u}) {
            Bytes lying = part(file, 0, 33);
            append(lying, bigEndian(length));
            append(lying, Bytes(type, type + 4));
            append(lying, {0, 0, 0});
            EXPECT_IN_LITTLE_MEMORY(!readPng(lying).ok);
        }
}

Bytes deflated(const Bytes& data)
{
    uLongf size = compressBound(uLong(data.size()));
    Bytes result(size);
    compress2(result.data(), &size, data.data(), uLong(data.size()), 9);
    result.resize(size);
    return result;
}

TEST(LyingFiles, TextOfAPngTakesNoMemory)
{
    const PngPicture picture = randomPng(3, 2, PNG_COLOR_TYPE_RGB, 8);
    Bytes file = pngFile(picture);
    const Ondrel::Image expected = readPng(file).image;
    Bytes compressed = {'a', 0, 0};
    append(compressed, deflated(Bytes(7900000, 'x')));
    Bytes chunks;
    for (int i = 0; i < 200; ++i) {
        append(chunks, pngChunk("zTXt", compressed));
        append(chunks, pngChunk("tEXt", {'a', 0, 'b'}));
    }
    file = withPngChunk(file, chunks);
    EXPECT_IN_LITTLE_MEMORY(samePixels(readPng(file).image, expected));
}

TEST(LyingFiles, AProfileThatUnpacksToGigabytesIsIgnored)
{
    Bytes file = pngFile(randomPng(3, 2, PNG_COLOR_TYPE_RGB, 8));
    Bytes content = {'a', 0, 0};
    Bytes profile = savedBytes(rgbProfile(1.8, "Own").get());
    profile.resize(50000000);
    const Bytes size = bigEndian(unsigned(profile.size()));
    std::copy(size.begin(), size.end(), profile.begin());
    append(content, deflated(profile));
    file = withPngChunk(file, pngChunk("iCCP", content));
    EXPECT_IN_LITTLE_MEMORY(readPng(file).image.colorProfile == Ondrel::DefaultColorProfileHash);
}

// ---- JPEG

Bytes jpegOfStatedSize(unsigned int width, unsigned int height, bool progressive)
{
    JpegPicture picture = randomJpeg(8, 8, JCS_YCbCr);
    picture.progressive = progressive;
    Bytes file = jpegFile(picture);
    const Bytes startOfFrame = {0xFF, std::uint8_t(progressive ? 0xC2 : 0xC0)};
    const auto frame = std::search(file.begin(), file.end(), startOfFrame.begin(), startOfFrame.end());
    frame[5] = std::uint8_t(height >> 8);
    frame[6] = std::uint8_t(height);
    frame[7] = std::uint8_t(width >> 8);
    frame[8] = std::uint8_t(width);
    return file;
}

TEST(LyingFiles, AJpegOfTooManyPixelsIsRefused)
{
    for (const bool progressive : {false, true}) {
        EXPECT_IN_LITTLE_MEMORY(readJpeg(jpegOfStatedSize(8, 8, progressive)).ok);
        for (const auto& [width, height] :
             {std::pair(65535u, 65535u), {65500u, 65500u}, {32768u, 32768u}, {65500u, 16400u}}) {
            const Bytes file = jpegOfStatedSize(width, height, progressive);
            EXPECT_IN_LITTLE_MEMORY(!readJpeg(file).ok);
        }
    }
}

TEST(LyingFiles, AJpegWithoutPixelsIsRefused)
{
    EXPECT_FALSE(readJpeg(jpegOfStatedSize(0, 8, false)).ok);
    EXPECT_FALSE(readJpeg(jpegOfStatedSize(8, 0, false)).ok);
}

TEST(LyingFiles, AJpegOfMorePixelsThanItsDataHoldIsRefused)
{
    for (const bool progressive : {false, true}) {
        EXPECT_IN_LITTLE_MEMORY(!readJpeg(jpegOfStatedSize(30000, 30000, progressive)).ok);
        EXPECT_IN_LITTLE_MEMORY(!readJpeg(jpegOfStatedSize(8000, 8000, progressive)).ok);
    }
}

// ---- TIFF

struct Entry {
    unsigned int tag, type, count, value;
};
constexpr unsigned int kShort = 3, kLong = 4, kUndefined = 7;

// A little-endian file of one directory, with 64 bytes behind it that start at offset 1000.
Bytes rawTiff(std::vector<Entry> entries)
{
    std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) { return a.tag < b.tag; });
    Bytes file = {'I', 'I', 42, 0, 8, 0, 0, 0};
    const auto write = [&file](unsigned int value, int count) {
        for (int i = 0; i < count; ++i)
            file.push_back(std::uint8_t(value >> (8 * i)));
    };
    write(unsigned(entries.size()), 2);
    for (const Entry& entry : entries) {
        write(entry.tag, 2);
        write(entry.type, 2);
        write(entry.count, 4);
        write(entry.value, 4);
    }
    write(0, 4);
    file.resize(1000);
    append(file, Bytes(64, 0x5A));
    return file;
}

// Grey, 8 bits, of this size, and these further tags, which replace others.
Bytes tiffOfStatedSize(unsigned int width, unsigned int height, const std::vector<Entry>& more = {})
{
    std::vector<Entry> entries = {{TIFFTAG_IMAGEWIDTH, kLong, 1, width},    {TIFFTAG_IMAGELENGTH, kLong, 1, height},
                                  {TIFFTAG_BITSPERSAMPLE, kShort, 1, 8},    {TIFFTAG_COMPRESSION, kShort, 1, 1},
                                  {TIFFTAG_PHOTOMETRIC, kShort, 1, 1},      {TIFFTAG_SAMPLESPERPIXEL, kShort, 1, 1},
                                  {TIFFTAG_STRIPOFFSETS, kLong, 1, 1000},   {TIFFTAG_STRIPBYTECOUNTS, kLong, 1, 64},
                                  {TIFFTAG_ROWSPERSTRIP, kLong, 1, height}, {TIFFTAG_PLANARCONFIG, kShort, 1, 1}};
    for (const Entry& entry : more) {
        const auto same =
            std::find_if(entries.begin(), entries.end(), [&](const Entry& e) { return e.tag == entry.tag; });
        if (same != entries.end())
            *same = entry;
        else
            entries.push_back(entry);
    }
    return rawTiff(entries);
}

Bytes tiffOfTiles(unsigned int width, unsigned int height, unsigned int tileWidth, unsigned int tileLength,
                  const std::vector<Entry>& more = {})
{
    std::vector<Entry> entries = {{TIFFTAG_TILEWIDTH, kLong, 1, tileWidth},
                                  {TIFFTAG_TILELENGTH, kLong, 1, tileLength},
                                  {TIFFTAG_TILEOFFSETS, kLong, 1, 1000},
                                  {TIFFTAG_TILEBYTECOUNTS, kLong, 1, 64}};
    entries.insert(entries.end(), more.begin(), more.end());
    return tiffOfStatedSize(width, height, entries);
}

TEST(LyingFiles, ATiffOfTooManyPixelsIsRefused)
{
    EXPECT_IN_LITTLE_MEMORY(readTiff(tiffOfStatedSize(8, 8)).ok);
    for (const auto& [width, height] : {std::pair(65535u, 65535u),
                                        {32768u, 32768u},
                                        {0xFFFFFFFFu, 0xFFFFFFFFu},
                                        {0x80000000u, 1u},
                                        {1u, 0x80000000u},
                                        {65536u, 65536u},
                                        {0x40000000u, 1u}}) {
        const Bytes file = tiffOfStatedSize(width, height);
        EXPECT_IN_LITTLE_MEMORY(!readTiff(file).ok);
    }
}

TEST(LyingFiles, ATiffOfManyPixelsInShortStripsIsRefused)
{
    EXPECT_IN_LITTLE_MEMORY(!readTiff(tiffOfStatedSize(65535, 65535, {{TIFFTAG_ROWSPERSTRIP, kLong, 1, 1}})).ok);
    EXPECT_IN_LITTLE_MEMORY(!readTiff(tiffOfStatedSize(32768, 32768, {{TIFFTAG_ROWSPERSTRIP, kLong, 1, 1}})).ok);
}

TEST(LyingFiles, ATiffWithoutPixelsIsRefused)
{
    EXPECT_FALSE(readTiff(tiffOfStatedSize(0, 8)).ok);
    EXPECT_FALSE(readTiff(tiffOfStatedSize(8, 0)).ok);
}

TEST(LyingFiles, ATiffOfMorePixelsThanItsDataHoldIsRefused)
{
    const QuietTiff quiet;
    for (const unsigned int compression : {1u, 5u, 8u, 32773u})
        for (const unsigned int size : {30000u, 8000u})
            EXPECT_IN_LITTLE_MEMORY(
                !readTiff(tiffOfStatedSize(size, size, {{TIFFTAG_COMPRESSION, kShort, 1, compression}})).ok);
}

TEST(LyingFiles, TilesOfTooManyPixelsAreRefused)
{
    EXPECT_IN_LITTLE_MEMORY(!readTiff(tiffOfTiles(8, 8, 16, 16)).ok); // 64 bytes are not 256
    const std::pair<unsigned int, unsigned int> sizes[] = {
        {0x80000000u, 16},          {16, 0x80000000u}, {65536, 65536}, {32768, 32768},
        {0xFFFFFFF0u, 0xFFFFFFF0u}, {0, 16},           {16, 0}};
    for (const auto& [width, length] : sizes) {
        const Bytes file = tiffOfTiles(8, 8, width, length);
        const Bytes packed = tiffOfTiles(8, 8, width, length, {{TIFFTAG_COMPRESSION, kShort, 1, 5}});
        EXPECT_IN_LITTLE_MEMORY(!readTiff(file).ok);
        EXPECT_IN_LITTLE_MEMORY(!readTiff(packed).ok);
    }
}

TEST(LyingFiles, TilesOfMorePixelsThanTheirDataHoldAreRefused)
{
    const QuietTiff quiet;
    for (const unsigned int compression : {1u, 5u, 8u, 32773u})
        EXPECT_IN_LITTLE_MEMORY(
            !readTiff(tiffOfTiles(8, 8, 32768, 32752, {{TIFFTAG_COMPRESSION, kShort, 1, compression}})).ok);
}

TEST(LyingFiles, RowsPerStripBeyondTheHeightMeanTheHeight)
{
    for (const unsigned int rows : {9u, 65535u, 0x7FFFFFFFu, 0xFFFFFFFFu})
        EXPECT_IN_LITTLE_MEMORY(readTiff(tiffOfStatedSize(8, 8, {{TIFFTAG_ROWSPERSTRIP, kLong, 1, rows}})).ok);
}

TEST(LyingFiles, CountsAndOffsetsBeyondTheEndDoNoHarm)
{
    const QuietTiff quiet;
    const std::vector<Entry> lies = {{TIFFTAG_STRIPOFFSETS, kLong, 0xFFFFFFFF, 1000},
                                     {TIFFTAG_STRIPOFFSETS, kLong, 1, 0xFFFFFFFF},
                                     {TIFFTAG_STRIPOFFSETS, kLong, 1, 1064},
                                     {TIFFTAG_STRIPBYTECOUNTS, kLong, 1, 0xFFFFFFFF},
                                     {TIFFTAG_STRIPBYTECOUNTS, kLong, 0x10000000, 1000},
                                     {TIFFTAG_SAMPLESPERPIXEL, kShort, 1, 65535},
                                     {TIFFTAG_SAMPLESPERPIXEL, kShort, 1, 0},
                                     {TIFFTAG_EXTRASAMPLES, kShort, 0xFFFFFFFF, 1000},
                                     {TIFFTAG_EXTRASAMPLES, kShort, 2, 1},
                                     {TIFFTAG_BITSPERSAMPLE, kShort, 0xFFFFFFFF, 1000},
                                     {TIFFTAG_ICCPROFILE, kUndefined, 0xFFFFFFFF, 1000},
                                     {TIFFTAG_ICCPROFILE, kUndefined, 64, 0xFFFFFFFF},
                                     {TIFFTAG_TRANSFERFUNCTION, kShort, 0x7FFFFFFF, 1000}};
    for (const Entry& lie : lies)
        EXPECT_IN_LITTLE_MEMORY((static_cast<void>(readTiff(tiffOfStatedSize(8, 8, {lie}))), true));
}

TEST(LyingFiles, DirectoriesThatPointNowhereAreRefused)
{
    const QuietTiff quiet;
    Bytes file = tiffOfStatedSize(8, 8);
    for (const unsigned int offset : {0u, 1063u, 1064u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        for (int i = 0; i < 4; ++i)
            file[std::size_t(4 + i)] = std::uint8_t(offset >> (8 * i));
        EXPECT_IN_LITTLE_MEMORY(!readTiff(file).ok);
    }
}

TEST(LyingFiles, BigTiffOffsetsBeyondSixtyThreeBitsAreRefused)
{
    const QuietTiff quiet;
    for (const int byte : {0x7F, 0x80, 0xFF}) {
        Bytes file = {'I', 'I', 43, 0, 8, 0, 0, 0};
        append(file, Bytes(8, std::uint8_t(byte)));
        file.resize(100);
        EXPECT_IN_LITTLE_MEMORY(!readTiff(file).ok);
    }
}

} // namespace

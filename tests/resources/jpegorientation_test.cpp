#include "decoding.h"

#include "tests/support/testimages.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/pixel/geometry.h>

namespace
{

using namespace OndrelTest;
using Ondrel::Image;

Bytes fileWith(const std::vector<Bytes>& exifBlocks)
{
    return jpegFile(randomJpeg(24, 9, JCS_RGB), [&](jpeg_compress_struct* jpeg) {
        for (const Bytes& block : exifBlocks)
            writeExif(jpeg, block);
    });
}

enum Turn { None, Half, Clockwise, CounterClockwise, Other };

// How a file with these blocks is turned against its rows.
Turn turnOf(const std::vector<Bytes>& exifBlocks)
{
    const Bytes file = fileWith(exifBlocks);
    const ReadResult result = readJpeg(file);
    EXPECT_TRUE(result.ok);
    EXPECT_EQ(result.image.colorProfile, Ondrel::DefaultColorProfileHash); // also on the turned image
    const Image rows = widened(decodeJpeg(file));
    if (samePixels(result.image, rows))
        return None;
    if (samePixels(result.image, Rotate180(rows)))
        return Half;
    if (samePixels(result.image, Rotate270(rows, RotateSizeBounding)))
        return Clockwise;
    if (samePixels(result.image, Rotate90(rows, RotateSizeBounding)))
        return CounterClockwise;
    return Other;
}

TEST(JpegOrientation, OnlyTurnsAreHonored)
{
    const Turn turns[] = {None, None, None, Half, None, None, Clockwise, None, CounterClockwise, None};
    for (unsigned int value = 0; value < 10; ++value)
        EXPECT_EQ(turnOf({exifOrientation(value)}), turns[value]) << value;
    EXPECT_EQ(turnOf({exifOrientation(0x106)}), None);
}

TEST(JpegOrientation, AQuarterTurnExchangesWidthAndHeight)
{
    const ReadResult result = readJpeg(fileWith({exifOrientation(6)}));
    EXPECT_EQ(result.image.width, 9u);
    EXPECT_EQ(result.image.height, 24u);
    // The file's first row becomes the last column.
    const Image rows = widened(decodeJpeg(fileWith({})));
    EXPECT_EQ(pixelAt(result.image, 8, 5), pixelAt(rows, 5, 0));
}

TEST(JpegOrientation, HoldsForConvertedPixelsToo)
{
    const Hash wanted = proPhoto();
    const ReadResult plain = readJpeg(fileWith({}), wanted), turned = readJpeg(fileWith({exifOrientation(8)}), wanted);
    ASSERT_TRUE(turned.ok);
    EXPECT_TRUE(samePixels(turned.image, Rotate90(plain.image, RotateSizeBounding)));
    EXPECT_EQ(turned.image.colorProfile, wanted);
}

TEST(JpegOrientation, BigEndianBlocksHaveNone)
{
    for (const unsigned int value : {3u, 6u, 8u})
        EXPECT_EQ(turnOf({bigEndianExifOrientation(value)}), None);
}

TEST(JpegOrientation, TheByteOrderMarkIsNotLookedAt)
{
    Bytes block = exifOrientation(6);
    block[6] = block[7] = 'M';
    EXPECT_EQ(turnOf({block}), Clockwise);
}

TEST(JpegOrientation, TheDirectoryMayLieAnywhereInTheBlock)
{
    Bytes block = exif({{0x112, 3, 1, 6}}, 8 + 21);
    block.insert(block.begin() + 14, 21, 0xAB);
    EXPECT_EQ(turnOf({block}), Clockwise);
}

TEST(JpegOrientation, IsFoundAmongOtherEntries)
{
    EXPECT_EQ(turnOf({exif({{0x100, 3, 1, 3}, {0x111, 4, 1, 8}, {0x112, 3, 1, 6}, {0x9000, 7, 4, 3}})}), Clockwise);
    EXPECT_EQ(turnOf({exif({{0x100, 3, 1, 3}, {0x111, 4, 1, 8}})}), None);
}

TEST(JpegOrientation, MustBeOneShortNumber)
{
    for (const ExifEntry& entry :
         {ExifEntry{0x112, 4, 1, 6}, ExifEntry{0x112, 1, 1, 6}, ExifEntry{0x112, 3, 2, 6}, ExifEntry{0x112, 3, 0, 6}})
        EXPECT_EQ(turnOf({exif({entry})}), None);
    // Only the first two of the entry's four value bytes count.
    EXPECT_EQ(turnOf({exif({{0x112, 3, 1, 0xABCD0006}})}), Clockwise);
}

TEST(JpegOrientation, OtherApplicationDataIsSkipped)
{
    const Bytes xmp = {'h', 't', 't', 'p', ':', '/', '/', 'n', 's', '/', 'x', 'a', 'p', '/', '1', '.', '0', '/', 0};
    const Bytes tooShort = {'E', 'x', 'i', 'f', 0, 0, 'I', 'I', 42, 0, 8, 0, 0, 0, 1};
    EXPECT_EQ(turnOf({xmp, tooShort, exifOrientation(6)}), Clockwise);
    Bytes renamed = exifOrientation(6);
    renamed[5] = 1;
    EXPECT_EQ(turnOf({renamed}), None);
}

TEST(JpegOrientation, ABlockWithoutEntriesIsSkipped)
{
    EXPECT_EQ(turnOf({exif({}), exifOrientation(6)}), Clockwise);
    EXPECT_EQ(turnOf({exif({})}), None);
}

TEST(JpegOrientation, AnOffsetBeyondTheBlockEndsTheSearch)
{
    const std::size_t size = exifOrientation(6).size();
    for (const unsigned int offset : {unsigned(size) - 6, unsigned(size) - 5, 65536u, 0x7FFFFFFFu, 0x80000000u,
                                      0xFFFFFFF8u, 0xFFFFFFFAu, 0xFFFFFFFFu})
        EXPECT_EQ(turnOf({exif({{0x112, 3, 1, 6}}, offset), exifOrientation(6)}), None) << offset;
}

TEST(JpegOrientation, OffsetsAtTheEndOfTheBlockReadNothingBehindIt)
{
    const std::size_t size = exifOrientation(6).size();
    for (unsigned int beforeEnd = 1; beforeEnd <= 8; ++beforeEnd)
        EXPECT_EQ(turnOf({exif({{0x112, 3, 1, 6}}, unsigned(size) - 6 - beforeEnd)}), None) << beforeEnd;
}

TEST(JpegOrientation, AnEntryMustLieWhollyInTheBlock)
{
    Bytes block = exifOrientation(6);
    block.resize(block.size() - 4); // without the offset of a next directory the entry ends with the block
    EXPECT_EQ(turnOf({block}), Clockwise);
    block.pop_back();
    EXPECT_EQ(turnOf({block}), None);
}

TEST(JpegOrientation, ACountBeyondTheBlockIsNotFollowed)
{
    Bytes block = exifOrientation(6);
    block[14] = block[15] = 0xFF;
    EXPECT_EQ(turnOf({block}), Clockwise);
    Bytes without = exif({{0x100, 3, 1, 6}});
    without[14] = without[15] = 0xFF;
    EXPECT_EQ(turnOf({without}), None);
}

} // namespace

#include "tests/reference/geometry_reference.h"
#include "tests/support/instructionlevels.h"
#include "tests/support/testimages.h"

#include <gtest/gtest.h>

#include <random>

namespace
{

using Ondrel::Image;
using OndrelTest::Pixel;
using OndrelTest::pixelAt;
using OndrelTest::randomImage;
using OndrelTest::samePixels;

const std::array<unsigned char, 32> kNoHash{};

// Pixels numbered from 1 in the red channel, row by row.
Image numbered(unsigned int width, unsigned int height)
{
    Image image(width, height);
    for (unsigned int i = 0; i < width * height; ++i)
        OndrelTest::setPixel(image, i % width, i / width, {static_cast<unsigned short>(i + 1), 0, 0, 65535});
    image.colorProfile.fill(5);
    image.rawFilters = 9;
    return image;
}

std::vector<int> reds(const Image& image)
{
    std::vector<int> values;
    for (unsigned int y = 0; y < image.height; ++y)
        for (unsigned int x = 0; x < image.width; ++x)
            values.push_back(pixelAt(image, x, y)[0]);
    return values;
}

void expectNoMetadata(const Image& image)
{
    EXPECT_EQ(image.colorProfile, kNoHash);
    EXPECT_EQ(image.rawFilters, 0u);
}

TEST(Crop, SizeIsRefusedWhereNothingIsLeft)
{
    const QSize size(10, 6);
    EXPECT_EQ(CalculateCropSize(size, 1, 2, 3, 1), QSize(6, 3));
    EXPECT_EQ(CalculateCropSize(size, 0, 0, 0, 0), size);
    EXPECT_EQ(CalculateCropSize(size, 4, 0, 6, 0), QSize(-1, -1));
    EXPECT_EQ(CalculateCropSize(size, 0, 3, 0, 3), QSize(-1, -1));
    EXPECT_EQ(CalculateCropSize(size, 10, 0, 0, 0), QSize(-1, -1));
    EXPECT_EQ(CalculateCropSize(size, 4, 3, 5, 2), QSize(1, 1));
}

TEST(Crop, SumsThatWrapAreRefusedByTheSingleMargins)
{
    const QSize size(10, 10);
    EXPECT_EQ(CalculateCropSize(size, 4294967295u, 0, 2, 0), QSize(-1, -1));
    EXPECT_EQ(CalculateCropSize(size, 2, 0, 4294967295u, 0), QSize(-1, -1));
    EXPECT_EQ(CalculateCropSize(size, 0, 4294967294u, 0, 4), QSize(-1, -1));
}

TEST(Crop, KeepsWhatLiesInsideTheMargins)
{
    const Image result = Crop(numbered(4, 3), 1, 1, 1, 0);
    EXPECT_EQ(result.width, 2u);
    EXPECT_EQ(result.height, 2u);
    EXPECT_EQ(reds(result), (std::vector<int>{6, 7, 10, 11}));
    expectNoMetadata(result);
}

TEST(Crop, WithoutMarginsIsTheSamePictureWithoutMetadata)
{
    const Image source = numbered(4, 3);
    const Image result = Crop(source, 0, 0, 0, 0);
    EXPECT_TRUE(samePixels(result, source));
    expectNoMetadata(result);
}

TEST(Crop, ToNothingIsEmpty)
{
    const Image result = Crop(numbered(4, 3), 2, 0, 2, 0);
    EXPECT_EQ(result.width, 0u);
    EXPECT_EQ(result.height, 0u);
    EXPECT_EQ(result.data, nullptr);
}

TEST(SubImage, IsCutToTheImageAndKeepsTheHash)
{
    const Image source = numbered(4, 3);
    const Image result = SubImage(source, 2, 1, 10, 10);
    EXPECT_EQ(reds(result), (std::vector<int>{7, 8, 11, 12}));
    EXPECT_EQ(result.colorProfile, source.colorProfile);
    EXPECT_EQ(result.rawFilters, 0u);
    const Image byRect = SubImage(source, Ondrel::RectT<int>(2, 1, 10, 10));
    EXPECT_TRUE(samePixels(byRect, result));
    EXPECT_EQ(byRect.colorProfile, source.colorProfile);
}

TEST(SubImage, KeepsTheHashOnAnEmptyResult)
{
    const Image source = numbered(4, 3);
    const Image result = SubImage(source, 4, 0, 1, 1);
    EXPECT_EQ(result.data, nullptr);
    EXPECT_EQ(result.colorProfile, source.colorProfile);
}

TEST(Mirror, HorizontalAndVertical)
{
    const Image h = HorizontalMirror(numbered(3, 2)), v = VerticalMirror(numbered(3, 2));
    EXPECT_EQ(reds(h), (std::vector<int>{3, 2, 1, 6, 5, 4}));
    EXPECT_EQ(reds(v), (std::vector<int>{4, 5, 6, 1, 2, 3}));
    expectNoMetadata(h);
    expectNoMetadata(v);
}

TEST(Translate, SizeGrowsByPositiveShiftsOnly)
{
    EXPECT_EQ(CalculateTranslateSize(QSize(10, 6), 3, 0), QSize(13, 6));
    EXPECT_EQ(CalculateTranslateSize(QSize(10, 6), -3, 4), QSize(10, 10));
    EXPECT_EQ(CalculateTranslateSize(QSize(0, 6), 3, 4), QSize(0, 0));
    EXPECT_EQ(CalculateTranslateSize(QSize(10, -1), 3, 4), QSize(0, 0));
}

TEST(Translate, PositiveShiftsLeaveTransparentColumnsInFront)
{
    const Image result = Translate(numbered(2, 2), 3, 0);
    EXPECT_EQ(result.width, 5u);
    EXPECT_EQ(reds(result), (std::vector<int>{0, 0, 0, 1, 2, 0, 0, 0, 3, 4}));
    EXPECT_EQ(pixelAt(result, 2, 1), (Pixel{0, 0, 0, 0}));
    expectNoMetadata(result);
}

TEST(Translate, NegativeShiftsKeepTheSize)
{
    const Image result = Translate(numbered(4, 2), -3, 0);
    EXPECT_EQ(result.width, 4u);
    EXPECT_EQ(reds(result), (std::vector<int>{4, 0, 0, 0, 8, 0, 0, 0}));
    EXPECT_EQ(pixelAt(result, 1, 0), (Pixel{0, 0, 0, 0}));
}

TEST(Translate, ByTheWholeSizeOrMoreIsBlank)
{
    for (const auto& [dx, dy] : {std::pair(-4, 0), std::pair(0, -2), std::pair(-5, 0), std::pair(0, -9),
                                 std::pair(-2147483647 - 1, 0), std::pair(0, -2147483647 - 1)}) {
        const Image result = Translate(numbered(4, 2), dx, dy);
        EXPECT_EQ(result.width, 4u);
        EXPECT_EQ(reds(result), std::vector<int>(8, 0)) << dx << " " << dy;
    }
}

TEST(QuarterTurns, Rotate90TurnsCounterClockwise)
{
    const Image result = Rotate90(numbered(3, 2), RotateSizeBounding);
    EXPECT_EQ(result.width, 2u);
    EXPECT_EQ(result.height, 3u);
    EXPECT_EQ(reds(result), (std::vector<int>{3, 6, 2, 5, 1, 4}));
    expectNoMetadata(result);
}

TEST(QuarterTurns, Rotate270TurnsClockwise)
{
    const Image result = Rotate270(numbered(3, 2), RotateSizeInscribed);
    EXPECT_EQ(result.width, 2u);
    EXPECT_EQ(reds(result), (std::vector<int>{4, 1, 5, 2, 6, 3}));
    expectNoMetadata(result);
}

TEST(QuarterTurns, Rotate180)
{
    const Image result = Rotate180(numbered(3, 2));
    EXPECT_EQ(reds(result), (std::vector<int>{6, 5, 4, 3, 2, 1}));
    expectNoMetadata(result);
}

TEST(QuarterTurns, KeptSizeLosesColumnsAndLeavesTransparentOnes)
{
    const Image result = Rotate90(numbered(4, 2), RotateSizeKeep);
    EXPECT_EQ(result.width, 4u);
    EXPECT_EQ(result.height, 2u);
    EXPECT_EQ(reds(result), (std::vector<int>{0, 3, 7, 0, 0, 2, 6, 0}));
    EXPECT_EQ(pixelAt(result, 0, 0), (Pixel{0, 0, 0, 0}));
}

TEST(QuarterTurns, KeptSizeWithAnOddDifference)
{
    EXPECT_EQ(reds(Rotate90(numbered(5, 2), RotateSizeKeep)), (std::vector<int>{0, 4, 9, 0, 0, 0, 3, 8, 0, 0}));
    EXPECT_TRUE(samePixels(Rotate270(numbered(2, 5), RotateSizeKeep),
                           OndrelReference::rotate270(numbered(2, 5), RotateSizeKeep)));
}

TEST(QuarterTurns, SquareImagesIgnoreTheMode)
{
    const Image source = randomImage(7, 7, 1);
    EXPECT_TRUE(samePixels(Rotate90(source, RotateSizeKeep), Rotate90(source, RotateSizeBounding)));
    EXPECT_TRUE(samePixels(Rotate270(source, RotateSizeKeep), Rotate270(source, RotateSizeBounding)));
}

TEST(QuarterTurns, ForthAndBackGivesThePicture)
{
    const Image source = randomImage(37, 21, 1);
    EXPECT_TRUE(samePixels(Rotate270(Rotate90(source, RotateSizeBounding), RotateSizeBounding), source));
    EXPECT_TRUE(samePixels(Rotate180(Rotate180(source)), source));
    EXPECT_TRUE(samePixels(Rotate90(Rotate90(source, RotateSizeBounding), RotateSizeBounding), Rotate180(source)));
    EXPECT_TRUE(samePixels(HorizontalMirror(VerticalMirror(source)), Rotate180(source)));
}

TEST(Geometry, EmptyImagesGiveEmptyImages)
{
    for (const Image& source : {Image(), Image(0, 5), Image(5, 0)}) {
        EXPECT_EQ(Crop(source, 0, 0, 0, 0).data, nullptr);
        EXPECT_EQ(HorizontalMirror(source).data, nullptr);
        EXPECT_EQ(VerticalMirror(source).data, nullptr);
        EXPECT_EQ(Translate(source, 2, 2).data, nullptr);
        for (const RotateSize mode : {RotateSizeKeep, RotateSizeBounding}) {
            EXPECT_EQ(Rotate90(source, mode).data, nullptr);
            EXPECT_EQ(Rotate270(source, mode).data, nullptr);
        }
        EXPECT_EQ(Rotate180(source).data, nullptr);
    }
}

void expectAllSame(const Image& source, std::mt19937& random)
{
    const auto margin = [&random](unsigned int side) { return unsigned(random() % (side + 2)); };
    const unsigned int l = margin(source.width), t = margin(source.height), r = margin(source.width - l % source.width),
                       b = margin(source.height / 2);
    EXPECT_TRUE(samePixels(Crop(source, l, t, r, b), OndrelReference::crop(source, l, t, r, b)));
    EXPECT_TRUE(samePixels(HorizontalMirror(source), OndrelReference::horizontalMirror(source)));
    EXPECT_TRUE(samePixels(VerticalMirror(source), OndrelReference::verticalMirror(source)));
    EXPECT_TRUE(samePixels(Rotate180(source), OndrelReference::rotate180(source)));
    const int dx = int(random() % 60) - 40, dy = int(random() % 60) - 40;
    EXPECT_TRUE(samePixels(Translate(source, dx, dy), OndrelReference::translate(source, dx, dy))) << dx << " " << dy;
    for (const RotateSize mode : {RotateSizeKeep, RotateSizeBounding, RotateSizeInscribed}) {
        EXPECT_TRUE(samePixels(Rotate90(source, mode), OndrelReference::rotate90(source, mode)));
        EXPECT_TRUE(samePixels(Rotate270(source, mode), OndrelReference::rotate270(source, mode)));
    }
}

TEST(Geometry, AgreesWithTheLiteralForms)
{
    OndrelTest::forEveryInstructionLevel([] {
        std::mt19937 random(11);
        for (int i = 0; i < 150; ++i) {
            const auto w = unsigned(1 + random() % 90), h = unsigned(1 + random() % 90);
            SCOPED_TRACE(testing::Message() << w << " x " << h);
            expectAllSame(i % 2 ? randomImage(w, h, unsigned(i)) : OndrelTest::shrunkImage(w, h, unsigned(i)), random);
        }
        for (const auto& [w, h] : {std::pair(1u, 300u), std::pair(300u, 1u), std::pair(257u, 129u)})
            expectAllSame(randomImage(w, h, w), random);
    });
}

// Large enough for the paths that write around the cache, with odd beginnings and ends of rows.
TEST(Geometry, LargeImagesAgreeWithTheLiteralForms)
{
    std::mt19937 random(12);
    for (const auto& [w, h] : {std::pair(1031u, 1033u), std::pair(2051u, 600u), std::pair(600u, 2051u)}) {
        SCOPED_TRACE(testing::Message() << w << " x " << h);
        expectAllSame(randomImage(w, h, w), random);
    }
    const Image source = randomImage(1201, 1001, 5);
    EXPECT_TRUE(samePixels(Crop(source, 3, 1, 2, 4), OndrelReference::crop(source, 3, 1, 2, 4)));
}

TEST(Geometry, ABlockSmallerThanItsSidesCountsAsNone)
{
    Image image(4, 4);
    image.width = image.height = 65536;
    EXPECT_EQ(Crop(image, 1, 1, 1, 1).data, nullptr);
    EXPECT_EQ(HorizontalMirror(image).data, nullptr);
    EXPECT_EQ(Rotate90(image, RotateSizeBounding).data, nullptr);
    EXPECT_EQ(Rotate180(image).data, nullptr);
}

TEST(Geometry, SubImageOfARectangleWithNegativeEdgesIsEmptyAndKeepsTheHash)
{
    const Image source = numbered(4, 3);
    const Image result = SubImage(source, Ondrel::RectT<int>(-1, 0, 2, 2));
    EXPECT_EQ(result.data, nullptr);
    EXPECT_EQ(result.colorProfile, source.colorProfile);
}

TEST(Geometry, RotateSizesAreThoseThatHostsStore)
{
    EXPECT_EQ(unsigned(RotateSizeKeep), 0u);
    EXPECT_EQ(unsigned(RotateSizeBounding), 1u);
    EXPECT_EQ(unsigned(RotateSizeInscribed), 2u);
}

TEST(Geometry, TurnsThatKeepTheSizeCarryNoMetadata)
{
    const Image source = numbered(5, 3);
    expectNoMetadata(Rotate90(source, RotateSizeKeep));
    expectNoMetadata(Rotate270(source, RotateSizeKeep));
}

TEST(Geometry, NegativeSidesAndWidthsAreLargeUnsignedOnes)
{
    // 4294967295 columns less one are more than an int holds, and wrap.
    EXPECT_EQ(CalculateCropSize(QSize(-1, 4), 1, 1, 0, 0), QSize(-2, 3));
    const Image source = numbered(4, 3);
    const Image rest = SubImage(source, Ondrel::RectT<int>(QPoint(1, 1), QSize(-1, 2)));
    EXPECT_EQ(reds(rest), (std::vector<int>{6, 7, 8, 10, 11, 12}));
}

TEST(Geometry, SizesBeyondIntAreRefused)
{
    EXPECT_EQ(CalculateTranslateSize(QSize(10, 6), 2147483647, 0), QSize(0, 0));
}

} // namespace

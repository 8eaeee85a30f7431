#include <ondrel/core/image.h>

#include "tests/support/testimages.h"

#include <gtest/gtest.h>

#include <QImage>

#include <algorithm>
#include <memory>
#include <type_traits>
#include <utility>

namespace
{

using Ondrel::Image;
using OndrelTest::Pixel;
using OndrelTest::pixelAt;
using OndrelTest::randomImage;
using OndrelTest::samePixels;
using Curve = std::vector<Ondrel::CubicBezierSpline::Point>;

const std::array<unsigned char, 32> kNoHash{};

// Gives every field of the metadata a value that depends on `mark`.
void setMetadata(Image& image, unsigned char mark)
{
    image.colorProfile.fill(mark);
    image.rawIsMosaic = true;
    image.rawFilters = mark;
    image.rawHasInfo = true;
    for (int i = 0; i < 3; ++i) {
        image.rawPreMultipliers[i] = float(mark + i);
        image.rawCameraMultipliers[i] = float(mark * 2 + i);
    }
    image.rawIdentityMatrix = true;
    image.rawRotation = mark % 4u;
    std::fill_n(&image.rawXTrans[0][0], 36, mark);
    image.rawToneCurve = std::make_shared<Curve>(mark);
}

void expectMetadata(const Image& image, const Image& expected)
{
    EXPECT_EQ(image.colorProfile, expected.colorProfile);
    EXPECT_EQ(image.rawIsMosaic, expected.rawIsMosaic);
    EXPECT_EQ(image.rawFilters, expected.rawFilters);
    EXPECT_EQ(image.rawHasInfo, expected.rawHasInfo);
    EXPECT_TRUE(std::equal(image.rawPreMultipliers, image.rawPreMultipliers + 3, expected.rawPreMultipliers));
    EXPECT_TRUE(std::equal(image.rawCameraMultipliers, image.rawCameraMultipliers + 3, expected.rawCameraMultipliers));
    EXPECT_EQ(image.rawIdentityMatrix, expected.rawIdentityMatrix);
    EXPECT_EQ(image.rawRotation, expected.rawRotation);
    EXPECT_TRUE(std::equal(&image.rawXTrans[0][0], &image.rawXTrans[0][0] + 36, &expected.rawXTrans[0][0]));
    EXPECT_EQ(image.rawToneCurve, expected.rawToneCurve); // the very same list is shared
}

Image marked(unsigned int width, unsigned int height, unsigned char mark)
{
    Image image = randomImage(width, height, mark);
    setMetadata(image, mark);
    return image;
}

TEST(Image, DefaultIsEmpty)
{
    const Image image;
    EXPECT_EQ(image.width, 0u);
    EXPECT_EQ(image.height, 0u);
    EXPECT_EQ(image.sizeBytes, 0u);
    EXPECT_EQ(image.data, nullptr);
    expectMetadata(image, Image(3, 3));
    EXPECT_EQ(image.colorProfile, kNoHash);
    EXPECT_EQ(image.rawToneCurve, nullptr);
}

TEST(Image, FreshPixelsAreTransparentBlack)
{
    const Image image(37, 11);
    EXPECT_EQ(image.sizeBytes, 37u * 11 * 8);
    EXPECT_TRUE(std::all_of(image.data, image.data + 37 * 11 * 4, [](std::uint16_t v) { return v == 0; }));
}

TEST(Image, AZeroSideGivesNoBlockButKeepsTheOther)
{
    const Image flat(0, 5), thin(7, 0);
    EXPECT_EQ(flat.data, nullptr);
    EXPECT_EQ(flat.sizeBytes, 0u);
    EXPECT_EQ(flat.height, 5u);
    EXPECT_EQ(thin.data, nullptr);
    EXPECT_EQ(thin.width, 7u);
}

TEST(Image, SizeProductWrapsAt32Bits)
{
    const Image image(65536, 16384); // 2^30 pixels: the product is 0
    EXPECT_EQ(image.width, 65536u);
    EXPECT_EQ(image.height, 16384u);
    EXPECT_EQ(image.sizeBytes, 0u);
    EXPECT_EQ(image.data, nullptr);
    EXPECT_EQ(Image(65536, 16385).sizeBytes, 65536u * 8u); // one row is left of the product
}

TEST(Image, WrappedSizesAreSafeToWorkOn)
{
    Image image(65536, 16385);
    image.FastFill(3);
    image.Fill(1, 2, 3, 4);
    image.Fill(1, 2, 3, 4, 0, 16000, 65536, 385);
    float r = 0, g = 0, b = 0;
    image.SampleAverageRGB(0, 16380, 4, 4, r, g, b);
    Image empty(65536, 16384);
    empty.Fill(1, 2, 3, 4);
    empty.FastFill(1);
    const Image copy = image;
    EXPECT_EQ(copy.sizeBytes, image.sizeBytes);
}

TEST(Image, FromQImageWidensEachChannelTruncated)
{
    QImage picture(3, 2, QImage::Format_ARGB32);
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 3; ++x)
            picture.setPixel(x, y, qRgba(10 * x + y, 20 * x + 1, 30 * x + 2, 40 * x + 100 * y));
    picture.setPixel(2, 1, qRgba(255, 128, 1, 0));
    const Image image(picture);
    ASSERT_EQ(image.width, 3u);
    ASSERT_EQ(image.height, 2u);
    for (unsigned int y = 0; y < 2; ++y)
        for (unsigned int x = 0; x < 3; ++x) {
            const QRgb word = picture.pixel(int(x), int(y));
            const auto wide = [](int v) { return std::uint16_t(v / 255.0 * 65535.0); };
            const Pixel expected = {wide(qRed(word)), wide(qGreen(word)), wide(qBlue(word)), wide(qAlpha(word))};
            EXPECT_EQ(pixelAt(image, x, y), expected);
        }
    EXPECT_EQ(pixelAt(image, 2, 1), (Pixel{65535, 32896, 257, 0}));
    EXPECT_EQ(image.colorProfile, kNoHash);
}

TEST(Image, FromQImageReadsWordsWithoutUnpremultiplying)
{
    QImage picture(1, 1, QImage::Format_ARGB32_Premultiplied);
    *reinterpret_cast<QRgb*>(picture.bits()) = 0x80402010u;
    EXPECT_EQ(pixelAt(Image(picture), 0, 0), (Pixel{64 * 257, 32 * 257, 16 * 257, 128 * 257}));
}

TEST(Image, FromANullQImageIsEmpty)
{
    const Image image{QImage()};
    EXPECT_EQ(image.width, 0u);
    EXPECT_EQ(image.data, nullptr);
}

TEST(Image, CopyTakesPixelsAndMetadataAndSharesTheCurve)
{
    const Image source = marked(9, 4, 5);
    const Image copy = source;
    EXPECT_NE(copy.data, source.data);
    EXPECT_TRUE(samePixels(copy, source));
    expectMetadata(copy, source);
    EXPECT_EQ(source.rawToneCurve.use_count(), 2);
}

TEST(Image, CopyOfAShrunkImageTakesTheWholeBlock)
{
    Image source = randomImage(10, 10, 1);
    source.width = 5;
    source.height = 5;
    const Image copy = source;
    EXPECT_EQ(copy.sizeBytes, 800u);
    EXPECT_TRUE(std::equal(source.data, source.data + 400, copy.data));
}

TEST(Image, AssignmentBetweenEqualBlocksReusesTheBlock)
{
    const Image source = marked(100, 200, 3);
    Image target(200, 100);
    const std::uint16_t* const block = target.data;
    target = source;
    EXPECT_EQ(target.data, block);
    EXPECT_TRUE(samePixels(target, source));
    expectMetadata(target, source);
}

TEST(Image, AssignmentBetweenUnequalBlocksAllocatesTheSourcesSize)
{
    const Image source = marked(7, 9, 3);
    Image target = marked(20, 20, 4);
    target = source;
    EXPECT_EQ(target.sizeBytes, source.sizeBytes);
    EXPECT_TRUE(samePixels(target, source));
    expectMetadata(target, source);
    target = Image();
    EXPECT_EQ(target.data, nullptr);
    EXPECT_EQ(target.sizeBytes, 0u);
}

TEST(Image, SelfAssignmentDoesNothing)
{
    Image image = marked(5, 5, 1);
    const Image before = image;
    Image& same = image;
    image = same;
    EXPECT_TRUE(samePixels(image, before));
    expectMetadata(image, before);
}

TEST(Image, MoveConstructionExchangesTheMetadata)
{
    Image source = marked(6, 5, 9);
    const Image before = source;
    const std::uint16_t* const block = source.data;
    const Image target(std::move(source));
    EXPECT_EQ(target.data, block);
    EXPECT_TRUE(samePixels(target, before));
    expectMetadata(target, before);
    EXPECT_EQ(source.width, 0u); // NOLINT: the moved-from state is the subject
    EXPECT_EQ(source.height, 0u);
    EXPECT_EQ(source.sizeBytes, 0u);
    EXPECT_EQ(source.data, nullptr);
    expectMetadata(source, Image());
}

TEST(Image, MoveAssignmentExchangesHashAndRawGroupButForThreeClearedFields)
{
    Image source = marked(6, 5, 9), target = marked(3, 3, 4);
    const Image oldSource = source, oldTarget = target;
    const std::uint16_t* const block = source.data;
    target = std::move(source);
    EXPECT_EQ(target.data, block);
    EXPECT_EQ(target.width, 6u);
    expectMetadata(target, oldSource);
    EXPECT_EQ(source.data, nullptr); // NOLINT
    EXPECT_EQ(source.width, 0u);
    EXPECT_EQ(source.colorProfile, oldTarget.colorProfile);
    EXPECT_FALSE(source.rawIsMosaic);
    EXPECT_EQ(source.rawFilters, 0u);
    EXPECT_FALSE(source.rawHasInfo);
    EXPECT_EQ(source.rawPreMultipliers[1], oldTarget.rawPreMultipliers[1]);
    EXPECT_EQ(source.rawCameraMultipliers[2], oldTarget.rawCameraMultipliers[2]);
    EXPECT_EQ(source.rawIdentityMatrix, oldTarget.rawIdentityMatrix);
    EXPECT_EQ(source.rawRotation, oldTarget.rawRotation);
    EXPECT_EQ(source.rawXTrans[5][5], oldTarget.rawXTrans[5][5]);
    EXPECT_EQ(source.rawToneCurve, oldTarget.rawToneCurve);
}

TEST(Image, MovingToItselfLeavesNoPixels)
{
    Image image = marked(6, 5, 9);
    Image& same = image;
    image = std::move(same);
    EXPECT_EQ(image.data, nullptr);
    EXPECT_EQ(image.width, 0u);
    EXPECT_EQ(image.sizeBytes, 0u);
    EXPECT_FALSE(image.rawHasInfo);
    EXPECT_EQ(image.rawRotation, 9u % 4);
}

TEST(Image, MovesCannotFail)
{
    EXPECT_TRUE(std::is_nothrow_move_constructible_v<Image>);
    EXPECT_TRUE(std::is_nothrow_move_assignable_v<Image>);
}

TEST(Image, ToPtrIsADeepCopy)
{
    const Image source = marked(6, 5, 9);
    const std::shared_ptr<const Image> copy = source.toPtr();
    EXPECT_NE(copy->data, source.data);
    EXPECT_TRUE(samePixels(*copy, source));
    expectMetadata(*copy, source);
}

TEST(Image, CanSafelyResizeTestsEachSideAgainstTheCurrentOther)
{
    const Image image(100, 100);
    EXPECT_TRUE(image.canSafelyResize(50, 50));
    EXPECT_TRUE(image.canSafelyResize(100, 100));
    EXPECT_FALSE(image.canSafelyResize(101, 100));
    EXPECT_FALSE(image.canSafelyResize(100, 101));
    EXPECT_FALSE(image.canSafelyResize(200, 1)); // the new width is held against the current height
}

TEST(Image, CanSafelyResizeAfterAShrinkAcceptsGrowthThatDoesNotFit)
{
    Image image(10, 10);
    image.width = 5;
    image.height = 5;
    EXPECT_TRUE(image.canSafelyResize(20, 20));
    EXPECT_FALSE(image.canSafelyResize(21, 5));
}

TEST(Image, CanSafelyResizeUsesTheWrappingProduct)
{
    const Image image(16, 16);
    EXPECT_TRUE(image.canSafelyResize(67108864, 1)); // 2^26 * 16 * 4 wraps to 0
}

TEST(Image, CanSafelyAssignInPlaceNeedsEqualBlocks)
{
    const Image image(10, 20), turned(20, 10), other(10, 21), same(10, 20);
    EXPECT_TRUE(image.canSafelyAssignInPlace(same));
    EXPECT_FALSE(image.canSafelyAssignInPlace(other));
    EXPECT_FALSE(image.canSafelyAssignInPlace(turned)); // 20 columns of 20 rows do not fit
    Image shrunk(10, 20);
    shrunk.width = 4;
    EXPECT_TRUE(image.canSafelyAssignInPlace(shrunk));
}

TEST(ImageFill, WritesEveryPixel)
{
    Image image(5, 3);
    image.Fill(1, 2, 3, 4);
    for (unsigned int i = 0; i < 15; ++i)
        EXPECT_EQ(pixelAt(image, i % 5, i / 5), (Pixel{1, 2, 3, 4}));
    Image empty;
    empty.Fill(1, 2, 3, 4);
    EXPECT_EQ(empty.data, nullptr);
}

TEST(ImageFill, RectangleIsClipped)
{
    const Pixel blank = {0, 0, 0, 0}, colour = {1, 2, 3, 4};
    Image image(6, 5);
    image.Fill(1, 2, 3, 4, 4, 3, 100, 100);
    for (unsigned int y = 0; y < 5; ++y)
        for (unsigned int x = 0; x < 6; ++x)
            EXPECT_EQ(pixelAt(image, x, y), x >= 4 && y >= 3 ? colour : blank);
}

TEST(ImageFill, RectangleOutsideChangesNothing)
{
    const Image blank(6, 5);
    Image image(6, 5);
    image.Fill(1, 2, 3, 4, 6, 0, 1, 1);
    image.Fill(1, 2, 3, 4, 0, 5, 1, 1);
    image.Fill(1, 2, 3, 4, 2, 2, 0, 3);
    image.Fill(1, 2, 3, 4, 2, 2, 3, 0);
    EXPECT_TRUE(samePixels(image, blank));
}

TEST(ImageFill, RectangleSumsWrapAt32Bits)
{
    const Image blank(6, 5);
    Image image(6, 5);
    image.Fill(1, 2, 3, 4, 5, 0, 0xFFFFFFFFu, 5); // the right edge wraps to 4
    image.Fill(1, 2, 3, 4, 0, 3, 6, 0xFFFFFFFFu);
    EXPECT_TRUE(samePixels(image, blank));
    image.Fill(1, 2, 3, 4, 0, 0, 0xFFFFFFFFu, 1);
    EXPECT_EQ(pixelAt(image, 5, 0), (Pixel{1, 2, 3, 4}));
}

TEST(ImageFill, FastFillWritesAlphaToo)
{
    Image image(5, 3);
    image.FastFill(777);
    EXPECT_TRUE(std::all_of(image.data, image.data + 60, [](std::uint16_t v) { return v == 777; }));
    Image empty(0, 3);
    empty.FastFill(1);
}

TEST(ImageFill, StopsAtTheSizeOfAShrunkImage)
{
    Image image(10, 10);
    image.width = image.height = 5;
    image.Fill(1, 2, 3, 4);
    image.FastFill(6);
    EXPECT_EQ(image.data[99], 6);
    EXPECT_EQ(image.data[100], 0);
}

struct Average {
    bool ok;
    float r, g, b;
};

Average average(const Image& image, int x, int y, int w, int h)
{
    Average a{false, -1.0f, -2.0f, -3.0f};
    a.ok = image.SampleAverageRGB(x, y, w, h, a.r, a.g, a.b);
    return a;
}

TEST(ImageAverage, IsTheLiteralRunningSum)
{
    const Image image = randomImage(23, 17, 4);
    const Average a = average(image, 3, 2, 11, 9);
    ASSERT_TRUE(a.ok);
    float expected[3] = {0, 0, 0};
    const double weight = 1.0 / (9 * 11);
    for (unsigned int y = 2; y < 11; ++y)
        for (unsigned int x = 3; x < 14; ++x)
            for (unsigned int c = 0; c < 3; ++c)
                expected[c] = float(pixelAt(image, x, y)[c] / 65535.0 * weight + double(expected[c]));
    EXPECT_EQ(a.r, expected[0]);
    EXPECT_EQ(a.g, expected[1]);
    EXPECT_EQ(a.b, expected[2]);
}

TEST(ImageAverage, KeepsTheRoundingOfItsFloatSum)
{
    Image image(100, 100);
    image.FastFill(65535);
    EXPECT_EQ(average(image, 0, 0, 100, 100).r, 1.0000535f);
    EXPECT_EQ(average(image, 0, 0, 10, 10).g, 0.99999934f);
}

TEST(ImageAverage, NegativePositionsMoveTheBox)
{
    const Image image = randomImage(30, 30, 4);
    const Average moved = average(image, -5, -5, 10, 10), origin = average(image, 0, 0, 10, 10);
    EXPECT_TRUE(moved.ok);
    EXPECT_EQ(moved.r, origin.r);
    EXPECT_EQ(moved.g, origin.g);
    EXPECT_EQ(moved.b, origin.b);
}

TEST(ImageAverage, NothingToAverageLeavesTheOutputs)
{
    const Image image = randomImage(30, 20, 4);
    for (const Average& a : {average(image, 30, 0, 4, 4), average(image, 0, 20, 4, 4), average(image, 3, 3, 0, 4),
                             average(image, 3, 3, 4, 0), average(image, 3, 3, -4, 4), average(image, 3, 3, 4, -4),
                             average(Image(), 0, 0, 1, 1), average(image, 2147483647, 0, 4, 4)}) {
        EXPECT_FALSE(a.ok);
        EXPECT_EQ(a.r, -1.0f);
        EXPECT_EQ(a.g, -2.0f);
        EXPECT_EQ(a.b, -3.0f);
    }
}

TEST(ImageAverage, BoxIsCutAtTheFarEdges)
{
    const Image image = randomImage(30, 20, 4);
    const Average cut = average(image, 28, 15, 2147483647, 2147483647), exact = average(image, 28, 15, 2, 5);
    EXPECT_TRUE(cut.ok);
    EXPECT_EQ(cut.r, exact.r);
}

} // namespace

#include <ondrel/pixel/scale.h>

#include "tests/support/testimages.h"

#include <gtest/gtest.h>

#include <QString>

#include <memory>

namespace
{

using Ondrel::FilterMethod;
using Ondrel::Image;
using OndrelTest::Pixel;
using OndrelTest::pixelAt;
using OndrelTest::randomImage;
using OndrelTest::samePixels;
using OndrelTest::setPixel;
using OndrelTest::withMetadata;

constexpr FilterMethod kFilters[] = {FilterMethod::NearestNeighbor, FilterMethod::Bilinear, FilterMethod::Bicubic};

Image row(std::initializer_list<Pixel> pixels)
{
    Image image(unsigned(pixels.size()), 1);
    unsigned int x = 0;
    for (const Pixel& p : pixels)
        setPixel(image, x++, 0, p);
    return image;
}

Image greyRow(std::initializer_list<unsigned short> values)
{
    Image image(unsigned(values.size()), 1);
    unsigned int x = 0;
    for (const unsigned short v : values)
        setPixel(image, x++, 0, {v, v, v, 65535});
    return image;
}

TEST(Scale, FilterNamesAreExact)
{
    EXPECT_EQ(InterpolationToFilter("Nearest Neighbor"), FilterMethod::NearestNeighbor);
    EXPECT_EQ(InterpolationToFilter("Bilinear"), FilterMethod::Bilinear);
    EXPECT_EQ(InterpolationToFilter("Bicubic"), FilterMethod::Bicubic);
    EXPECT_EQ(InterpolationToFilter("bilinear"), FilterMethod::NearestNeighbor);
    EXPECT_EQ(InterpolationToFilter("Bicubic "), FilterMethod::NearestNeighbor);
    EXPECT_EQ(InterpolationToFilter(QString()), FilterMethod::NearestNeighbor);
}

TEST(Scale, FilterValuesAreThoseThatHostsStore)
{
    EXPECT_EQ(unsigned(FilterMethod::NearestNeighbor), 0u);
    EXPECT_EQ(unsigned(FilterMethod::Bilinear), 1u);
    EXPECT_EQ(unsigned(FilterMethod::Bicubic), 2u);
}

TEST(Scale, SameSizeCopiesPixelsAndAllMetadata)
{
    const Image source = withMetadata(10, 7);
    for (const FilterMethod filter : kFilters) {
        const Image result = Scale(source, 10, 7, filter);
        EXPECT_TRUE(samePixels(result, source));
        EXPECT_EQ(result.colorProfile, source.colorProfile);
        EXPECT_EQ(result.rawFilters, 5u);
        EXPECT_EQ(result.rawRotation, 2u);
        EXPECT_TRUE(result.rawHasInfo);
        EXPECT_EQ(result.rawToneCurve, source.rawToneCurve);
    }
}

TEST(Scale, ChangedSizeCarriesTheProfileHashAlone)
{
    const Image source = withMetadata(10, 7);
    for (const FilterMethod filter : kFilters) {
        const Image result = Scale(source, 5, 9, filter);
        EXPECT_EQ(result.width, 5u);
        EXPECT_EQ(result.height, 9u);
        EXPECT_EQ(result.colorProfile, source.colorProfile);
        EXPECT_FALSE(result.rawIsMosaic);
        EXPECT_EQ(result.rawFilters, 0u);
        EXPECT_FALSE(result.rawHasInfo);
        EXPECT_EQ(result.rawRotation, 0u);
        EXPECT_EQ(result.rawToneCurve, nullptr);
    }
}

TEST(Scale, EmptySourceGivesAnEmptyImageWhateverTheSize)
{
    for (const FilterMethod filter : kFilters) {
        for (const Image& source : {Image(), Image(0, 5), Image(5, 0)}) {
            const Image result = Scale(source, 20, 30, filter);
            EXPECT_EQ(result.width, source.width);
            EXPECT_EQ(result.height, source.height);
            EXPECT_EQ(result.data, nullptr);
        }
    }
}

TEST(Scale, SizeZeroGivesAnImageOfThatSize)
{
    const Image source = withMetadata(4, 4);
    for (const FilterMethod filter : kFilters) {
        const Image result = Scale(source, 0, 3, filter);
        EXPECT_EQ(result.width, 0u);
        EXPECT_EQ(result.height, 3u);
        EXPECT_EQ(result.data, nullptr);
    }
}

TEST(ScaleCpu, DestinationOfTheRightSizeIsWrittenInPlaceAndKeepsItsOtherMetadata)
{
    const Image source = randomImage(9, 9, 3);
    Image destination(4, 5);
    destination.rawFilters = 77;
    destination.rawRotation = 3;
    const std::uint16_t* const block = destination.data;
    Scale_CPU(source, destination, 4, 5, FilterMethod::Bilinear);
    EXPECT_EQ(destination.data, block);
    EXPECT_EQ(destination.rawFilters, 77u);
    EXPECT_TRUE(samePixels(destination, Scale(source, 4, 5, FilterMethod::Bilinear)));
}

TEST(ScaleCpu, DestinationOfAnotherSizeIsReplaced)
{
    const Image source = randomImage(9, 9, 3);
    Image destination(8, 8);
    destination.rawFilters = 77;
    Scale_CPU(source, destination, 4, 5, FilterMethod::Bicubic);
    EXPECT_EQ(destination.width, 4u);
    EXPECT_EQ(destination.height, 5u);
    EXPECT_EQ(destination.rawFilters, 0u);
}

TEST(ScaleCpu, EmptySourceEmptiesTheDestination)
{
    Image destination = randomImage(5, 4, 1);
    Scale_CPU(Image(), destination, 5, 4, FilterMethod::Bilinear);
    EXPECT_EQ(destination.data, nullptr);
}

TEST(Scale, ToNoRowsHasThatSizeAndNoPixels)
{
    for (const FilterMethod filter : {FilterMethod::NearestNeighbor, FilterMethod::Bilinear, FilterMethod::Bicubic}) {
        Image result;
        Scale_CPU(randomImage(5, 4, 1), result, 7, 0, filter);
        EXPECT_EQ(result.width, 7u);
        EXPECT_EQ(result.height, 0u);
        EXPECT_EQ(result.sizeBytes, 0u);
    }
}

TEST(Scale, ABlockSmallerThanItsSidesCountsAsNone)
{
    Image source(4, 4);
    source.width = source.height = 65536;
    for (const FilterMethod filter : {FilterMethod::NearestNeighbor, FilterMethod::Bilinear, FilterMethod::Bicubic}) {
        Image result;
        Scale_CPU(source, result, 8, 8, filter);
        for (unsigned int i = 0; i < result.sizeBytes / 2; ++i)
            ASSERT_EQ(result.data[i], 0);
    }
}

TEST(ScaleNearest, RoundsTheProductAndIgnoresPixelCentres)
{
    const Image result = Scale(greyRow({0, 1, 2, 3}), 8, 1, FilterMethod::NearestNeighbor);
    const unsigned short expected[8] = {0, 1, 1, 2, 2, 3, 3, 3};
    for (unsigned int x = 0; x < 8; ++x)
        EXPECT_EQ(pixelAt(result, x, 0)[0], expected[x]) << x;
}

TEST(ScaleNearest, CopiesTransparentPixelsWhole)
{
    const Image result = Scale(row({{100, 200, 300, 0}, {1, 2, 3, 5}}), 4, 2, FilterMethod::NearestNeighbor);
    EXPECT_EQ(pixelAt(result, 0, 0), (Pixel{100, 200, 300, 0}));
    EXPECT_EQ(pixelAt(result, 3, 1), (Pixel{1, 2, 3, 5}));
}

TEST(ScaleNearest, DoesNotRoundUpJustBelowOneHalf)
{
    // The quotient of these sizes is the float just below one half; adding 0.5f to it gives 1.
    const float quotient = float(8388607.0 / 16777215.0);
    ASSERT_LT(quotient, 0.5f);
    ASSERT_EQ(quotient + 0.5f, 1.0f);
    Image source(8388607, 1);
    setPixel(source, 0, 0, {11, 11, 11, 65535});
    setPixel(source, 1, 0, {22, 22, 22, 65535});
    const Image result = Scale(source, 16777215, 1, FilterMethod::NearestNeighbor);
    EXPECT_EQ(pixelAt(result, 1, 0)[0], 11);
    EXPECT_EQ(pixelAt(result, 2, 0)[0], 22);
}

TEST(ScaleBilinear, EnlargementByTwoMixesQuartersAndTruncates)
{
    const Image result = Scale(greyRow({0, 65535}), 4, 1, FilterMethod::Bilinear);
    EXPECT_EQ(pixelAt(result, 0, 0)[0], 0);
    EXPECT_EQ(pixelAt(result, 1, 0)[0], 16383); // 0.25 * 65535 = 16383.75
    EXPECT_EQ(pixelAt(result, 2, 0)[0], 49151); // 0.75 * 65535 = 49151.25
    EXPECT_EQ(pixelAt(result, 3, 0)[0], 65535);
    EXPECT_EQ(pixelAt(result, 1, 0)[3], 65535);
}

TEST(ScaleBilinear, HalfOfFullScaleIsTruncated)
{
    const Image result = Scale(greyRow({0, 65535}), 1, 1, FilterMethod::Bilinear);
    EXPECT_EQ(pixelAt(result, 0, 0)[0], 32767);
}

TEST(ScaleBilinear, ReductionByExactlyOneAndAHalfUsesThePlainSample)
{
    // 3 to 2: the box of pixel 0 is -0.5 to 1, its middle 0.25; four quadrant samples would stand at -0.125 and 0.625.
    const Image result = Scale(greyRow({0, 40000, 0}), 2, 1, FilterMethod::Bilinear);
    const auto plain = static_cast<unsigned short>(40000.0f / 65535.0f * 0.25f * 65535.0f);
    EXPECT_EQ(pixelAt(result, 0, 0)[0], plain);
}

TEST(ScaleBilinear, ReductionByTwoAveragesFourQuadrants)
{
    // Boxes 2 wide: samples at 0.25 and 0.75 of -0.5 to 1.5, that is 0 and 1: the mean of two pixels.
    const Image result = Scale(greyRow({1000, 3000, 50000, 60000}), 2, 1, FilterMethod::Bilinear);
    EXPECT_NEAR(pixelAt(result, 0, 0)[0], 2000, 1);
    EXPECT_NEAR(pixelAt(result, 1, 0)[0], 55000, 1);
}

TEST(ScaleBilinear, ReductionByMoreThanThreeGoesOneLevelDeeper)
{
    // Five to one: sixteen samples stand at 0.125, 1.375, 2.625 and 3.875; four would stand at 0.75 and 3.25.
    const Image result = Scale(greyRow({40000, 0, 0, 0, 0}), 1, 1, FilterMethod::Bilinear);
    EXPECT_NEAR(pixelAt(result, 0, 0)[0], 8750, 1); // of four it would be 5000
}

TEST(ScaleBilinear, TransparentNeighboursDoNotBleedTheirColour)
{
    for (const FilterMethod filter : {FilterMethod::Bilinear, FilterMethod::Bicubic}) {
        const Image source = row({{0, 65535, 0, 65535}, {65535, 0, 0, 0}, {0, 65535, 0, 65535}});
        for (const unsigned int width : {2u, 7u, 12u}) {
            const Image result = Scale(source, width, 1, filter);
            for (unsigned int x = 0; x < width; ++x)
                EXPECT_EQ(pixelAt(result, x, 0)[0], 0) << width << " " << x;
        }
    }
}

TEST(ScaleBilinear, PixelsWithoutAlphaComeOutBlack)
{
    const Image source = row({{1000, 2000, 3000, 0}, {4000, 5000, 6000, 0}});
    for (const FilterMethod filter : {FilterMethod::Bilinear, FilterMethod::Bicubic})
        for (const unsigned int width : {1u, 5u})
            EXPECT_EQ(pixelAt(Scale(source, width, 1, filter), 0, 0), (Pixel{0, 0, 0, 0}));
}

TEST(Scale, ConstantOpaqueImagesStayConstantWithinOneStep)
{
    Image source(13, 11);
    source.Fill(12345, 65535, 0, 65535);
    for (const FilterMethod filter : kFilters)
        for (const auto& [width, height] : {std::pair(40u, 3u), std::pair(2u, 2u), std::pair(5u, 30u)}) {
            const Image result = Scale(source, width, height, filter);
            for (unsigned int y = 0; y < height; ++y)
                for (unsigned int x = 0; x < width; ++x) {
                    const Pixel p = pixelAt(result, x, y);
                    EXPECT_NEAR(p[0], 12345, 1);
                    EXPECT_NEAR(p[1], 65535, 1);
                    EXPECT_EQ(p[2], 0);
                    EXPECT_NEAR(p[3], 65535, 1);
                }
        }
}

TEST(ScaleBicubic, OvershootIsClipped)
{
    // An edge from 0 to 1: the cubic swings below 0 and above 1 beside it.
    const Image result = Scale(greyRow({0, 0, 0, 65535, 65535, 65535}), 12, 1, FilterMethod::Bicubic);
    EXPECT_EQ(pixelAt(result, 4, 0)[0], 0);
    EXPECT_EQ(pixelAt(result, 7, 0)[0], 65535);
    EXPECT_EQ(pixelAt(result, 7, 0)[3], 65535);
}

TEST(ScaleBicubic, NegativeAlphaStillDividesTheColoursAndStoresNoAlpha)
{
    // Alpha 0, 0, 0, 65535: left of the edge alpha undershoots. Red has the same sign there, so its quotient is
    // positive.
    const Image source = row({{0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}, {40000, 0, 0, 65535}, {40000, 0, 0, 65535}});
    const Image result = Scale(source, 10, 1, FilterMethod::Bicubic);
    const Pixel under = pixelAt(result, 4, 0);
    EXPECT_EQ(under[3], 0);
    EXPECT_NEAR(under[0], 40000, 1);
    EXPECT_EQ(under[1], 0);
}

} // namespace

#include <ondrel/pixel/scale.h>

#include "tests/support/testimages.h"

#include <gtest/gtest.h>

namespace
{

using Ondrel::Image;
using OndrelTest::Pixel;
using OndrelTest::pixelAt;
using OndrelTest::randomImage;
using OndrelTest::samePixels;

TEST(Resize, SameSizeIsACopyWithMetadata)
{
    Image source = randomImage(6, 5, 1);
    source.colorProfile.fill(3);
    source.rawFilters = 8;
    const Image result = Resize(source, 6, 5, 1, 2, 3, 4);
    EXPECT_TRUE(samePixels(result, source));
    EXPECT_EQ(result.colorProfile, source.colorProfile);
    EXPECT_EQ(result.rawFilters, 8u);
}

TEST(Resize, KeepsTheTopLeftAndFillsTheRest)
{
    Image source = randomImage(4, 3, 1);
    source.colorProfile.fill(3);
    for (const auto& [w, h] : {std::pair(7u, 5u), std::pair(2u, 2u), std::pair(7u, 1u), std::pair(1u, 9u)}) {
        const Image result = Resize(source, w, h, 10, 20, 30, 40);
        ASSERT_EQ(result.width, w);
        ASSERT_EQ(result.height, h);
        EXPECT_EQ(result.colorProfile, (std::array<unsigned char, 32>{}));
        for (unsigned int y = 0; y < h; ++y)
            for (unsigned int x = 0; x < w; ++x)
                EXPECT_EQ(pixelAt(result, x, y), x < 4 && y < 3 ? pixelAt(source, x, y) : (Pixel{10, 20, 30, 40}));
    }
}

TEST(Resize, FromNothingGivesTheColourAlone)
{
    const Image result = Resize(Image(), 2, 1, 10, 20, 30, 40);
    EXPECT_EQ(pixelAt(result, 1, 0), (Pixel{10, 20, 30, 40}));
    EXPECT_EQ(Resize(result, 0, 0, 1, 2, 3, 4).data, nullptr);
}

TEST(Resize, ToNoColumnsOrNoRowsHasNoPixelsAndThatSize)
{
    const Image source = randomImage(4, 3, 1);
    for (const auto& [w, h] : {std::pair(0u, 5u), std::pair(5u, 0u)}) {
        const Image result = Resize(source, w, h, 1, 2, 3, 4);
        EXPECT_EQ(result.width, w);
        EXPECT_EQ(result.height, h);
        EXPECT_EQ(result.sizeBytes, 0u);
    }
}

TEST(ResizeInPlace, ShrinkingMovesRowsAndKeepsTheBlock)
{
    const Image source = randomImage(10, 8, 4);
    Image image = source;
    const std::uint16_t* const block = image.data;
    ResizeInPlace(image, 6, 5);
    EXPECT_EQ(image.width, 6u);
    EXPECT_EQ(image.height, 5u);
    EXPECT_EQ(image.data, block);
    EXPECT_EQ(image.sizeBytes, source.sizeBytes);
    for (unsigned int y = 0; y < 5; ++y)
        for (unsigned int x = 0; x < 6; ++x)
            EXPECT_EQ(pixelAt(image, x, y), pixelAt(source, x, y));
}

TEST(ResizeInPlace, SameSizeDoesNothing)
{
    const Image source = randomImage(10, 8, 4);
    Image image = source;
    ResizeInPlace(image, 10, 8);
    EXPECT_TRUE(samePixels(image, source));
}

TEST(ResizeInPlace, KeepsTheMetadata)
{
    Image image = randomImage(10, 8, 4);
    image.colorProfile.fill(7);
    image.rawFilters = 8;
    ResizeInPlace(image, 6, 5);
    EXPECT_EQ(image.colorProfile[31], 7);
    EXPECT_EQ(image.rawFilters, 8u);
}

TEST(ResizeInPlace, ToFewerRowsOnly)
{
    const Image source = randomImage(10, 8, 4);
    Image image = source;
    ResizeInPlace(image, 10, 3);
    EXPECT_EQ(image.height, 3u);
    EXPECT_EQ(pixelAt(image, 9, 2), pixelAt(source, 9, 2));
}

} // namespace

#include "tests/reference/image_reference.h"
#include "tests/support/testimages.h"

#include <gtest/gtest.h>

#include <QColor>
#include <QImage>

namespace
{

using Ondrel::Image;
using OndrelTest::Pixel;
using OndrelTest::pixelAt;

constexpr unsigned short kFirst[4] = {1000, 2000, 3000, 65535}, kSecond[4] = {9000, 8000, 7000, 65535};

Image drawn(unsigned int width, unsigned int height, unsigned int cellWidth, unsigned int cellHeight)
{
    Image image = OndrelTest::randomImage(width, height, 1);
    Checkerboard(image, cellWidth, cellHeight, kFirst[0], kFirst[1], kFirst[2], kFirst[3], kSecond[0], kSecond[1],
                 kSecond[2], kSecond[3]);
    return image;
}

TEST(Checkerboard, ACellCornerLiesOnTheCentre)
{
    const Image image = drawn(10, 10, 4, 4);
    const auto red = [&](unsigned int x, unsigned int y) { return pixelAt(image, x, y)[0]; };
    EXPECT_EQ(red(5, 5), red(4, 4));
    EXPECT_EQ(red(4, 5), red(5, 4));
    EXPECT_NE(red(4, 4), red(5, 4));
    EXPECT_EQ(red(5, 5), red(8, 8));
    EXPECT_NE(red(8, 8), red(9, 8));
}

TEST(Checkerboard, AgreesWithTheRuleForEachPixel)
{
    for (unsigned int w = 1; w <= 23; w += 2)
        for (unsigned int h = 1; h <= 17; h += 3)
            for (const auto& [cw, ch] :
                 {std::pair(1u, 1u), std::pair(4u, 4u), std::pair(3u, 5u), std::pair(16u, 2u), std::pair(100u, 100u)}) {
                Image expected(w, h);
                OndrelReference::checkerboard(expected, cw, ch, kFirst, kSecond);
                EXPECT_TRUE(OndrelTest::samePixels(drawn(w, h, cw, ch), expected))
                    << w << "x" << h << " " << cw << "x" << ch;
            }
}

TEST(Checkerboard, QImageGetsTheSamePattern)
{
    for (const auto& [w, h, cw, ch] : {std::tuple(10, 10, 4u, 4u), std::tuple(23, 17, 3u, 5u), std::tuple(1, 1, 1u, 1u),
                                       std::tuple(64, 31, 8u, 8u)}) {
        QImage picture(w, h, QImage::Format_ARGB32_Premultiplied);
        Checkerboard(picture, cw, ch, QColor(10, 20, 30), QColor(200, 210, 220));
        Image expected(static_cast<unsigned int>(w), static_cast<unsigned int>(h));
        OndrelReference::checkerboard(expected, cw, ch, kFirst, kSecond);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                const bool first = pixelAt(expected, unsigned(x), unsigned(y))[0] == kFirst[0];
                EXPECT_EQ(picture.pixel(x, y), first ? qRgb(10, 20, 30) : qRgb(200, 210, 220)) << x << " " << y;
            }
    }
}

TEST(Checkerboard, EmptyImagesStayEmpty)
{
    Image image;
    Checkerboard(image, 4, 4, 1, 2, 3, 4, 5, 6, 7, 8);
    EXPECT_EQ(image.data, nullptr);
    QImage picture;
    Checkerboard(picture, 4, 4, Qt::black, Qt::white);
    EXPECT_TRUE(picture.isNull());
}

TEST(Checkerboard, ACellSizeOfZeroLeavesTheFirstColour)
{
    for (const auto& [cellWidth, cellHeight] : {std::pair(0u, 4u), std::pair(4u, 0u)}) {
        const Image image = drawn(9, 9, cellWidth, cellHeight);
        for (unsigned int i = 0; i < 81; ++i)
            EXPECT_EQ(pixelAt(image, i % 9, i / 9), (Pixel{1000, 2000, 3000, 65535}));
        QImage picture(9, 9, QImage::Format_ARGB32_Premultiplied);
        Checkerboard(picture, cellWidth, cellHeight, Qt::red, Qt::white);
        EXPECT_EQ(picture.pixel(5, 5), qRgb(255, 0, 0));
    }
}

TEST(Checkerboard, EndlessCellsDoNotOverflow)
{
    const Image image = drawn(9, 9, 0xFFFFFFFFu, 0xFFFFFFFFu);
    EXPECT_EQ(pixelAt(image, 5, 5), pixelAt(image, 4, 4)); // the corner of four cells is at (5, 5)
    EXPECT_NE(pixelAt(image, 5, 5), pixelAt(image, 4, 5));
}

TEST(Checkerboard, TheSecondColourOfAQImageIsPaintedOverTheFirst)
{
    QImage picture(8, 8, QImage::Format_ARGB32_Premultiplied);
    Checkerboard(picture, 4, 4, QColor(0, 0, 0), QColor(255, 255, 255, 0));
    for (int i = 0; i < 64; ++i)
        EXPECT_EQ(picture.pixel(i % 8, i / 8), qRgb(0, 0, 0));
}

} // namespace

#include "tests/reference/painter_reference.h"
#include "tests/support/instructionlevels.h"
#include "tests/support/testimages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <ondrel/pixel/geometry.h>
#include <random>

namespace
{

using Ondrel::Image;
using Rect = Ondrel::RectT<int>;
using OndrelReference::Brush;
using OndrelTest::Pixel;
using OndrelTest::pixelAt;
using OndrelTest::randomImage;
using OndrelTest::samePixels;

void use(PixelPainter& painter, const Brush& brush)
{
    painter.setOpacity(brush.opacity);
    painter.setBrush(brush.red, brush.green, brush.blue, brush.alpha, brush.radius, brush.hardness, brush.cutoff,
                     brush.falloff);
}

Brush makeBrush(unsigned short radius, float hardness)
{
    Brush brush;
    brush.red = 60000;
    brush.green = 30000;
    brush.blue = 123;
    brush.radius = radius;
    brush.hardness = hardness;
    brush.buildMask();
    return brush;
}

// The largest difference of any sample. A colour counts only where some alpha stands.
int largestDifference(const Image& a, const Image& b)
{
    int largest = 0;
    for (unsigned int y = 0; y < a.height; ++y)
        for (unsigned int x = 0; x < a.width; ++x) {
            const Pixel p = pixelAt(a, x, y), q = pixelAt(b, x, y);
            largest = std::max(largest, std::abs(p[3] - q[3]));
            for (unsigned int c = 0; c < 3 && p[3] > 20; ++c)
                largest = std::max(largest, std::abs(p[c] - q[c]));
        }
    return largest;
}

TEST(Painter, WithoutAnImageDoesNothing)
{
    PixelPainter painter(nullptr);
    painter.drawPoint(QPoint(3, 3));
    painter.erasePoint(QPoint(3, 3));
    const Rect changed = painter.drawLine(QPoint(0, 0), QPoint(9, 9));
    EXPECT_EQ(changed.width(), 0);
    EXPECT_EQ(changed.height(), 0);
    EXPECT_EQ(painter.pointBoundingRect(QPoint(3, 3), true), Rect(0, 0, 0, 0));
    painter.drawImage(0, 0, randomImage(3, 3, 1));
    painter.copyImage(0u, 0u, randomImage(3, 3, 1), true);
    painter.copyImage(0, 0, 0, 0, 2, 2, randomImage(3, 3, 1));
    EXPECT_EQ(painter.image(), nullptr);
}

TEST(Painter, BoundingRectOfAPointSpansTwiceTheRadius)
{
    EXPECT_EQ(PixelPainter::pointBoundingRect(QPoint(20, 30), 5, false, 0, 0), Rect(15, 25, 10, 10));
    EXPECT_EQ(PixelPainter::pointBoundingRect(QPoint(2, 30), 5, true, 40, 32), Rect(0, 25, 7, 7));
    const Rect away = PixelPainter::pointBoundingRect(QPoint(-100, 3), 5, true, 40, 32);
    EXPECT_FALSE(away.isInvalid());
    EXPECT_EQ(away.width(), 0);
}

TEST(Painter, BoundingRectUsesTheBrushAndTheImage)
{
    Image image(40, 32);
    PixelPainter painter(&image);
    EXPECT_EQ(painter.pointBoundingRect(QPoint(20, 20), false), Rect(10, 10, 20, 20)); // radius 10 from the start
    painter.setBrush(0, 0, 0, 65535, 3, 0.5f, 4, 0.3);
    EXPECT_EQ(painter.pointBoundingRect(QPoint(39, 31), true), Rect(36, 28, 4, 4));
}

TEST(Painter, BeforeSetBrushOnlyTheFirstHundredWeightsDraw)
{
    Image image(60, 60);
    PixelPainter(&image).drawPoint(QPoint(30, 30));
    // Rows of 21 weights: four whole ones and 16 of the fifth; a stamp is 20 wide.
    for (unsigned int y = 0; y < 60; ++y)
        for (unsigned int x = 0; x < 60; ++x) {
            const bool inStamp = x >= 20 && x < 40 && y >= 20 && y < 40;
            const bool drawn = inStamp && (y - 20) * 21 + (x - 20) < 100;
            EXPECT_EQ(pixelAt(image, x, y)[3], drawn ? 65535 : 0) << x << " " << y;
        }
}

TEST(Painter, FullStrengthOnTransparentGivesTheBrushColour)
{
    Image image(40, 40);
    PixelPainter painter(&image);
    painter.setBrush(1234, 45678, 65535, 65535, 8, 0.5f, 4, 0.3);
    painter.drawPoint(QPoint(20, 20));
    EXPECT_EQ(pixelAt(image, 20, 20), (Pixel{1234, 45678, 65535, 65535}));
}

TEST(Painter, StampReachesFromRadiusBeforeToRadiusMinusOneBehind)
{
    Image image(40, 40);
    PixelPainter painter(&image);
    painter.setBrush(65535, 65535, 65535, 65535, 10, 1.0f, 4, 1000.0);
    painter.drawPoint(QPoint(20, 20));
    EXPECT_EQ(pixelAt(image, 30, 20)[3], 0);
    EXPECT_EQ(pixelAt(image, 20, 30)[3], 0);
    EXPECT_EQ(pixelAt(image, 9, 20)[3], 0);
    EXPECT_EQ(pixelAt(image, 20 + 8, 20)[3], 65535); // 8.x is truncated to 8, below the solid 9
    EXPECT_EQ(pixelAt(image, 20 - 8, 20)[3], 65535);
}

TEST(Painter, WholeDistancesBelowTheSolidRadiusAreSolid)
{
    // radius 10, hardness 0.5: solid is 5. A distance of sqrt(2) * 4 = 5.66 is not below it, one of 4.99 is; at
    // (4, 2), distance 4.47 truncates to 4 and is solid. At distance 5 exactly the falloff begins at full strength less
    // the value at the cutoff.
    Image image(40, 40);
    PixelPainter painter(&image);
    painter.setBrush(0, 0, 0, 65535, 10, 0.5f, 4, 0.3);
    painter.drawPoint(QPoint(20, 20));
    EXPECT_EQ(pixelAt(image, 24, 22)[3], 65535);
    EXPECT_LT(pixelAt(image, 24, 24)[3], 65535);
}

TEST(Painter, SettingTheSameBrushAgainChangesNothing)
{
    Image once(40, 40), twice(40, 40);
    PixelPainter a(&once), b(&twice);
    const Brush brush = makeBrush(9, 1.0f);
    use(a, brush);
    use(b, brush);
    use(b, brush);
    b.setBrush(brush.red, brush.green, brush.blue, brush.alpha, brush.radius, 1.0f, brush.cutoff, brush.falloff);
    a.drawPoint(QPoint(20, 20));
    b.drawPoint(QPoint(20, 20));
    EXPECT_TRUE(samePixels(once, twice));
}

TEST(Painter, HardnessIsAtMostPointNineNine)
{
    Image hard(260, 260), capped(260, 260);
    PixelPainter a(&hard), b(&capped);
    a.setBrush(0, 0, 0, 65535, 120, 1.0f, 4, 0.3);
    b.setBrush(0, 0, 0, 65535, 120, 0.99f, 4, 0.3);
    a.drawPoint(QPoint(130, 130));
    b.drawPoint(QPoint(130, 130));
    EXPECT_TRUE(samePixels(hard, capped));
}

TEST(Painter, ErasingTakesAlphaAndKeepsColours)
{
    Image image(40, 40);
    image.Fill(100, 200, 300, 65535);
    PixelPainter painter(&image);
    painter.setBrush(0, 0, 0, 65535, 8, 0.9f, 4, 0.3);
    painter.erasePoint(QPoint(20, 20));
    EXPECT_EQ(pixelAt(image, 20, 20), (Pixel{100, 200, 300, 0}));
    EXPECT_EQ(pixelAt(image, 35, 35), (Pixel{100, 200, 300, 65535}));
}

TEST(Painter, ErasingTakesATruncatedNumberAndStopsAtZero)
{
    Image image(40, 40);
    image.Fill(1, 2, 3, 20000);
    PixelPainter painter(&image);
    painter.setOpacity(0.25f);
    painter.setBrush(0, 0, 0, 65535, 8, 0.9f, 4, 0.3);
    painter.erasePoint(QPoint(20, 20));
    EXPECT_EQ(pixelAt(image, 20, 20)[3], 20000 - 16383); // 0.25 * 65535 = 16383.75
    painter.erasePoint(QPoint(20, 20));
    EXPECT_EQ(pixelAt(image, 20, 20)[3], 0);
}

TEST(Painter, NothingOnNothingLeavesThePixelAsItIs)
{
    Image image(40, 40);
    image.Fill(7, 8, 9, 0);
    PixelPainter painter(&image);
    painter.setBrush(60000, 60000, 60000, 0, 8, 0.5f, 4, 0.3);
    painter.drawPoint(QPoint(20, 20));
    EXPECT_EQ(pixelAt(image, 20, 20), (Pixel{7, 8, 9, 0}));
    painter.drawImage(0, 0, Image(40, 40));
    EXPECT_EQ(pixelAt(image, 20, 20), (Pixel{7, 8, 9, 0}));
}

TEST(Painter, StampsAgreeWithTheLiteralForm)
{
    OndrelTest::forEveryInstructionLevel([] {
        std::mt19937 random(5);
        for (int i = 0; i < 60; ++i) {
            Brush brush = makeBrush(static_cast<unsigned short>(1 + random() % 20), float(random() % 100) / 100.0f);
            brush.alpha = static_cast<unsigned short>(random());
            brush.opacity = float(random() % 101) / 100.0f;
            const auto w = unsigned(1 + random() % 50), h = unsigned(1 + random() % 50);
            Image result = randomImage(w, h, unsigned(i));
            Image expected = result;
            const QPoint point(int(random() % 70) - 10, int(random() % 70) - 10);
            const bool draw = i % 2 == 0;
            PixelPainter painter(&result);
            use(painter, brush);
            painter.drawOrErasePoint(point, draw);
            OndrelReference::stamp(expected, brush, point.x(), point.y(), draw);
            EXPECT_LE(largestDifference(result, expected), 1) << i;
        }
    });
}

TEST(Painter, LinesAgreeWithTheLiteralForm)
{
    OndrelTest::forEveryInstructionLevel([] {
        std::mt19937 random(6);
        for (int i = 0; i < 60; ++i) {
            Brush brush = makeBrush(static_cast<unsigned short>(2 + random() % 12), float(random() % 100) / 100.0f);
            brush.opacity = float(1 + random() % 100) / 100.0f;
            Image result = randomImage(unsigned(20 + random() % 50), unsigned(20 + random() % 50), unsigned(i));
            Image expected = result;
            const QPoint from(int(random() % 90) - 20, int(random() % 90) - 20);
            const QPoint to(int(random() % 90) - 20, int(random() % 90) - 20);
            if (from == to)
                continue;
            PixelPainter painter(&result);
            use(painter, brush);
            const Rect changed = painter.drawLine(from, to);
            EXPECT_FALSE(changed.isInvalid());
            OndrelReference::sweep(expected, brush, from, to, changed);
            EXPECT_LE(largestDifference(result, expected), 1) << i;
        }
    });
}

TEST(Painter, LineReturnsARectangleThatHoldsEveryChange)
{
    const Image before = randomImage(80, 60, 3);
    Image image = before;
    PixelPainter painter(&image);
    painter.setBrush(1, 2, 3, 65535, 6, 0.9f, 4, 0.3);
    const Rect changed = painter.drawLine(QPoint(20, 15), QPoint(55, 40));
    for (int y = 0; y < 60; ++y)
        for (int x = 0; x < 80; ++x)
            if (x < changed.left() || x >= changed.right() || y < changed.top() || y >= changed.bottom()) {
                EXPECT_EQ(pixelAt(image, unsigned(x), unsigned(y)), pixelAt(before, unsigned(x), unsigned(y)));
            }
    EXPECT_EQ(pixelAt(image, 38, 28), (Pixel{1, 2, 3, 65535}));
}

Rect lineRect(Image& image, unsigned short radius, QPoint from, QPoint to)
{
    PixelPainter painter(&image);
    painter.setBrush(1, 2, 3, 65535, radius, 0.9f, 4, 0.3);
    return painter.drawLine(from, to);
}

TEST(Painter, LineLooksAtTheBoxAroundTheWidenedSegment)
{
    Image image(100, 100), wide(80, 60);
    EXPECT_EQ(lineRect(image, 10, QPoint(30, 30), QPoint(60, 70)), Rect(16, 16, 58, 68));
    EXPECT_EQ(lineRect(image, 10, QPoint(10, 10), QPoint(40, 50)), Rect(0, 0, 54, 64));
    EXPECT_EQ(lineRect(wide, 6, QPoint(20, 15), QPoint(55, 15)), Rect(14, 9, 47, 12));
    EXPECT_EQ(lineRect(wide, 6, QPoint(40, 30), QPoint(40, 30)), Rect(34, 24, 12, 12));
}

TEST(Painter, LongLinesAgreeWithTheLiteralForm)
{
    const std::pair<QPoint, QPoint> lines[] = {{{5, 10}, {890, 30}},
                                               {{890, 30}, {5, 10}},
                                               {{-50, 20}, {950, 22}},
                                               {{400, -30}, {420, 80}},
                                               {{100, 35}, {800, 5}}};
    for (const auto& [from, to] : lines) {
        const Brush brush = makeBrush(12, 0.6f);
        Image result = randomImage(900, 40, 7), expected = result;
        PixelPainter painter(&result);
        use(painter, brush);
        painter.drawLine(from, to);
        OndrelReference::sweep(expected, brush, from, to, Rect(0, 0, 900, 40));
        EXPECT_LE(largestDifference(result, expected), 1) << from.x() << " " << to.x();
    }
}

TEST(Painter, LineIsCutToTheImage)
{
    Image image(30, 30);
    PixelPainter painter(&image);
    painter.setBrush(1, 2, 3, 65535, 6, 0.9f, 4, 0.3);
    const Rect changed = painter.drawLine(QPoint(-40, 15), QPoint(100, 15));
    EXPECT_EQ(changed.left(), 0);
    EXPECT_EQ(changed.right(), 30);
    EXPECT_EQ(painter.drawLine(QPoint(500, 500), QPoint(600, 600)).width(), 0);
}

TEST(Painter, ALineWithoutLengthActsAsOneStamp)
{
    Image line(60, 60), point(60, 60);
    PixelPainter a(&line), b(&point);
    const Brush brush = makeBrush(12, 0.5f);
    use(a, brush);
    use(b, brush);
    a.drawLine(QPoint(30, 30), QPoint(30, 30));
    b.drawPoint(QPoint(30, 30));
    for (int y = 19; y <= 41; ++y) // inside radius - 1; at the rim the two reach one pixel more on opposite sides
        for (int x = 19; x <= 41; ++x) {
            const Pixel p = pixelAt(line, unsigned(x), unsigned(y)), q = pixelAt(point, unsigned(x), unsigned(y));
            EXPECT_NEAR(p[3], q[3], 1) << x << " " << y;
        }
}

TEST(Painter, FarAwayAndHugeCoordinatesAreHarmless)
{
    Image image(20, 20);
    PixelPainter painter(&image);
    painter.setBrush(1, 2, 3, 65535, 4, 0.5f, 4, 0.3);
    const int far = 2147483647;
    painter.drawPoint(QPoint(far, -far));
    painter.drawImage(far, far, randomImage(3, 3, 1));
    painter.drawImage(-far, -far, randomImage(3, 3, 1));
    painter.drawImage(0, 0, far, far, far, far, randomImage(3, 3, 1));
    painter.copyImage(4294967295u, 0u, randomImage(3, 3, 1), true);
    painter.copyImage(-5, -5, -7, -7, far, far, randomImage(3, 3, 1));
    painter.drawPoint(QPoint(-100, 3)); // beside the rows of the image
    painter.erasePoint(QPoint(3, 500));
    EXPECT_TRUE(samePixels(image, Image(20, 20)));
    painter.drawLine(QPoint(-far, -far), QPoint(far, far));
}

TEST(Painter, OpacitiesOutsideOfZeroToOneAndBrushesWithoutASenseStayInBounds)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (const float opacity : {2.0f, -1.0f, nan}) {
        for (const float hardness : {0.5f, -3.0f, nan}) {
            for (const double falloff : {0.3, 0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
                for (const unsigned short radius : std::initializer_list<unsigned short>{0, 1, 5}) {
                    Image image = randomImage(21, 21, 3);
                    PixelPainter painter(&image);
                    painter.setOpacity(opacity);
                    painter.setBrush(1, 2, 3, 40000, radius, hardness, 4.0, falloff);
                    painter.drawPoint(QPoint(10, 10));
                    painter.erasePoint(QPoint(12, 3));
                    painter.drawLine(QPoint(2, 3), QPoint(18, 17));
                    painter.drawImage(3, 4, randomImage(5, 5, 1));
                }
            }
        }
    }
}

TEST(Painter, ARadiusOfZeroDrawsNothing)
{
    const Image before = randomImage(9, 9, 3);
    Image image = before;
    PixelPainter painter(&image);
    painter.setBrush(1, 2, 3, 65535, 0, 0.5f, 4, 0.3);
    painter.drawPoint(QPoint(4, 4));
    painter.erasePoint(QPoint(4, 4));
    EXPECT_TRUE(samePixels(image, before));
}

TEST(Painter, NegativeHardnessHasNoSolidMiddle)
{
    Image image(21, 21), reference(21, 21);
    PixelPainter painter(&image), same(&reference);
    painter.setBrush(1, 2, 3, 65535, 6, -2.0f, 4, 0.3);
    painter.drawPoint(QPoint(10, 10));
    Brush brush = makeBrush(6, -2.0f);
    brush.red = 1, brush.green = 2, brush.blue = 3;
    OndrelReference::stamp(reference, brush, 10, 10, true);
    EXPECT_LE(largestDifference(image, reference), 1);
    EXPECT_GT(pixelAt(image, 10, 10)[3], 0);
}

TEST(Painter, SetImageTurnsToAnotherImage)
{
    Image first(20, 20), second(30, 10);
    PixelPainter painter(&first);
    painter.setBrush(1, 2, 3, 65535, 3, 0.9f, 4, 0.3);
    painter.setImage(&second);
    EXPECT_EQ(painter.image(), &second);
    painter.drawPoint(QPoint(25, 5));
    EXPECT_TRUE(samePixels(first, Image(20, 20)));
    EXPECT_EQ(pixelAt(second, 25, 5), (Pixel{1, 2, 3, 65535}));
    EXPECT_EQ(painter.pointBoundingRect(QPoint(29, 9), true), Rect(26, 6, 4, 4));
    painter.setImage(nullptr);
    painter.drawPoint(QPoint(5, 5));
    EXPECT_EQ(pixelAt(second, 5, 5), (Pixel{0, 0, 0, 0}));
}

TEST(PainterImages, ComposingAgreesWithTheLiteralForm)
{
    OndrelTest::forEveryInstructionLevel([] {
        std::mt19937 random(8);
        for (int i = 0; i < 100; ++i) {
            const auto side = [&random] { return unsigned(1 + random() % 30); };
            Image result = randomImage(side(), side(), unsigned(i));
            const Image source = randomImage(side(), side(), unsigned(i + 1000));
            Image expected = result;
            const int x = int(random() % 50) - 25, y = int(random() % 50) - 25;
            const float opacity = float(random() % 101) / 100.0f;
            PixelPainter painter(&result);
            painter.setOpacity(opacity);
            painter.drawImage(x, y, source);
            OndrelReference::compose(expected, x, y, source, opacity);
            EXPECT_LE(largestDifference(result, expected), 1) << i;
        }
    });
}

TEST(PainterImages, NegativeCoordinatesDrawTheVisiblePart)
{
    Image image(4, 1);
    Image source(3, 1);
    for (unsigned int x = 0; x < 3; ++x)
        OndrelTest::setPixel(source, x, 0, {static_cast<unsigned short>(100 * (x + 1)), 0, 0, 65535});
    PixelPainter painter(&image);
    painter.drawImage(-1, 0, source);
    EXPECT_NEAR(pixelAt(image, 0, 0)[0], 200, 1);
    EXPECT_NEAR(pixelAt(image, 1, 0)[0], 300, 1);
    EXPECT_EQ(pixelAt(image, 2, 0)[3], 0);
}

TEST(PainterImages, APartOfTheSourceIsDrawnAtTheGivenPlace)
{
    Image image(6, 6);
    const Image source = [] {
        Image s = randomImage(5, 5, 4);
        for (unsigned int i = 0; i < 25; ++i)
            s.data[i * 4 + 3] = 65535;
        return s;
    }();
    PixelPainter painter(&image);
    painter.drawImage(1, 2, 3, 3, 2, 1, source);
    EXPECT_NEAR(pixelAt(image, 1, 2)[0], pixelAt(source, 3, 3)[0], 1);
    EXPECT_NEAR(pixelAt(image, 2, 2)[1], pixelAt(source, 4, 3)[1], 1);
    EXPECT_EQ(pixelAt(image, 3, 2)[3], 0);
    EXPECT_EQ(pixelAt(image, 1, 3)[3], 0);
}

// Composing a part is composing the part of the source alone.
TEST(PainterImages, RandomPartsAgreeWithTheLiteralForm)
{
    std::mt19937 random(9);
    for (int i = 0; i < 300; ++i) {
        const auto side = [&random] { return unsigned(1 + random() % 20); };
        Image result = randomImage(side(), side(), unsigned(i));
        const Image source = randomImage(side(), side(), unsigned(i + 1000));
        Image expected = result;
        const int x = int(random() % 30) - 8, y = int(random() % 30) - 8;
        const int fromX = int(random() % 24), fromY = int(random() % 24);
        const int width = int(random() % 30), height = int(random() % 30);
        PixelPainter painter(&result);
        painter.drawImage(x, y, fromX, fromY, width, height, source);
        const Image part = SubImage(source, unsigned(fromX), unsigned(fromY), unsigned(width), unsigned(height));
        if (part.data)
            OndrelReference::compose(expected, x, y, part, 1.0f);
        EXPECT_LE(largestDifference(result, expected), 1)
            << i << ": " << fromX << " " << fromY << " " << width << " " << height << " to " << x << " " << y;
    }
}

TEST(PainterImages, CopyingTakesAlphaOrKeepsTheTargets)
{
    const Image source = randomImage(3, 2, 1), before = randomImage(5, 4, 2);
    Image with = before, without = before;
    PixelPainter(&with).copyImage(3u, 1u, source, true);
    PixelPainter(&without).copyImage(3u, 1u, source, false);
    for (unsigned int y = 0; y < 4; ++y)
        for (unsigned int x = 0; x < 5; ++x) {
            const bool inside = x >= 3 && y >= 1 && y < 3;
            const Pixel old = pixelAt(before, x, y);
            const Pixel fresh = inside ? pixelAt(source, x - 3, y - 1) : old;
            EXPECT_EQ(pixelAt(with, x, y), fresh);
            EXPECT_EQ(pixelAt(without, x, y), (Pixel{fresh[0], fresh[1], fresh[2], old[3]}));
        }
}

TEST(PainterImages, CopyingOutsideTheImageDoesNothing)
{
    const Image source = randomImage(3, 2, 1), before = randomImage(5, 4, 2);
    Image image = before;
    PixelPainter painter(&image);
    painter.copyImage(5u, 0u, source, true);
    painter.copyImage(0u, 4u, source, true);
    EXPECT_TRUE(samePixels(image, before));
}

TEST(PainterImages, NoSizeAndNegativeOffsetsCopyOrDrawNothing)
{
    const Image source = randomImage(6, 6, 1), before = randomImage(6, 6, 2);
    Image image = before;
    PixelPainter painter(&image);
    painter.copyImage(0, 0, 0, 0, 0, 3, source);
    painter.copyImage(0, 0, 0, 0, 3, -1, source);
    painter.copyImage(-1, 0, 0, 0, 3, 3, source);
    painter.copyImage(0, 0, -1, 0, 3, 3, source);
    painter.drawImage(0, 0, 0, 0, 0, 3, source);
    painter.drawImage(0, 0, 0, 0, 3, -1, source);
    EXPECT_TRUE(samePixels(image, before));
}

TEST(PainterImages, ASmallBlockCountsAsNoImage)
{
    Image image(4, 4);
    image.width = image.height = 65536;
    PixelPainter painter(&image);
    painter.drawPoint(QPoint(2, 2));
    EXPECT_EQ(painter.drawLine(QPoint(0, 0), QPoint(3, 3)).width(), 0);
    painter.copyImage(0u, 0u, randomImage(3, 3, 1), true);
    painter.drawImage(0, 0, randomImage(3, 3, 1));
    EXPECT_EQ(image.data[3], 0);
    EXPECT_EQ(image.data[0], 0);
}

TEST(PainterImages, CopyingAPartCutsItFromTheSource)
{
    const Image source = randomImage(6, 6, 1);
    Image image(6, 6);
    PixelPainter(&image).copyImage(2, 3, 1, 2, 3, 2, source);
    EXPECT_EQ(pixelAt(image, 2, 3), pixelAt(source, 1, 2));
    EXPECT_EQ(pixelAt(image, 4, 4), pixelAt(source, 3, 3));
    EXPECT_EQ(pixelAt(image, 5, 3), (Pixel{0, 0, 0, 0}));
    EXPECT_EQ(pixelAt(image, 2, 5), (Pixel{0, 0, 0, 0}));
}

} // namespace

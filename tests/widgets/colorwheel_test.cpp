#include <gtest/gtest.h>

#include <ondrel/widgets/colorwheel_p.h>
#include <ondrel/widgets/hsl_p.h>
#include <ondrel/widgets/labconverter_p.h>

#include <QColor>

using namespace Ondrel;

TEST(ColorWheel, liesLeftOfTheBar)
{
    const ColorWheel wheel(QSize(204, 192));
    EXPECT_EQ(wheel.wheel(), QRect(6, 6, 180, 180));
    EXPECT_EQ(wheel.bar(), QRect(193, 6, 4, 180));
    EXPECT_EQ(wheel.barReach(), QRect(193, 6, 11, 180));

    const ColorWheel wide(QSize(400, 133)); // both halves are cut
    EXPECT_EQ(wide.wheel(), QRect(133, 6, 121, 121));
    EXPECT_EQ(wide.bar(), QRect(261, 6, 4, 121));
}

TEST(ColorWheel, growsHueClockwiseFromTheBottom)
{
    const ColorWheel wheel(QSize(204, 192));
    EXPECT_NEAR(wheel.hueAt(QPointF(94, 186)), 0, 2); // a little left of the bottom
    EXPECT_NEAR(wheel.hueAt(QPointF(97, 186)), 360, 2);
    EXPECT_GT(wheel.hueAt(QPointF(96, 186)), 0); // 360 itself is not turned into 0
    EXPECT_NEAR(wheel.hueAt(QPointF(6, 95)), 90, 2);
    EXPECT_NEAR(wheel.hueAt(QPointF(95, 6)), 180, 2);
    EXPECT_NEAR(wheel.hueAt(QPointF(186, 95)), 270, 2);
}

TEST(ColorWheel, measuresSaturationAndLightness)
{
    const ColorWheel wheel(QSize(204, 192));
    EXPECT_NEAR(wheel.saturationAt(QPointF(95, 95)), 0, 0.02);
    EXPECT_NEAR(wheel.saturationAt(QPointF(140, 95)), 0.5, 0.02);
    EXPECT_EQ(wheel.saturationAt(QPointF(204, 192)), 1);
    EXPECT_EQ(wheel.lightnessAt(-5), 1);
    EXPECT_EQ(wheel.lightnessAt(6), 1);
    EXPECT_DOUBLE_EQ(wheel.lightnessAt(96), 0.5);
    EXPECT_EQ(wheel.lightnessAt(400), 0);
}

TEST(ColorWheel, placesTheMarkerWhereThePointerWouldBe)
{
    const ColorWheel wheel(QSize(204, 192));
    const QPointF bottom = wheel.pointOf(0, 1);
    EXPECT_NEAR(bottom.x(), 95.5, 1);
    EXPECT_NEAR(bottom.y(), 185.5, 1);
    for (const double hue : {30.0, 100.0, 200.0, 300.0}) {
        const QPointF point = wheel.pointOf(hue, 0.75);
        EXPECT_NEAR(wheel.hueAt(point), hue, 1e-6);
        EXPECT_NEAR(wheel.saturationAt(point), 0.75, 1e-9);
    }
}

TEST(ColorWheel, paintsHuesAndLeavesTheCornersClear)
{
    const QImage image = ColorWheel(QSize(204, 192)).paintWheel(0.5);
    ASSERT_EQ(image.size(), QSize(180, 180));
    EXPECT_EQ(image.format(), QImage::Format_ARGB32_Premultiplied);
    EXPECT_EQ(qAlpha(image.pixel(0, 0)), 0);
    EXPECT_EQ(qAlpha(image.pixel(179, 179)), 0);
    const QColor red(image.pixel(90, 172)), cyan(image.pixel(90, 8)), middle(image.pixel(90, 90));
    EXPECT_GT(red.red(), 220);
    EXPECT_LT(red.green(), 40);
    EXPECT_LT(cyan.red(), 40);
    EXPECT_GT(cyan.green(), 220);
    EXPECT_GT(cyan.blue(), 220);
    EXPECT_NEAR(middle.red(), 128, 4);
    EXPECT_NEAR(middle.blue(), 128, 4);
}

TEST(ColorWheel, fadesTheBarFromWhiteToBlack)
{
    const QImage image = ColorWheel(QSize(204, 192)).paintBar();
    ASSERT_EQ(image.size(), QSize(4, 180));
    EXPECT_GE(qRed(image.pixel(1, 0)), 253);
    EXPECT_NEAR(qGreen(image.pixel(1, 90)), 127, 3);
    EXPECT_LE(qBlue(image.pixel(1, 179)), 2);
}

TEST(ColorWheel, survivesSizesWithoutRoom)
{
    for (const QSize& size : {QSize(0, 0), QSize(1, 1), QSize(25, 13), QSize(-3, 7)}) {
        const ColorWheel wheel(size);
        wheel.paintWheel(0.5);
        wheel.paintBar();
        EXPECT_LE(wheel.saturationAt(QPointF(3, 4)), 1);
        const double lightness = wheel.lightnessAt(5);
        EXPECT_TRUE(lightness >= 0 && lightness <= 1);
    }
}

TEST(Hsl, findsHueByTheLargestChannel)
{
    const auto expect = [](const Rgb& rgb, double hue, double saturation, double lightness) {
        const Hsl hsl = toHsl(rgb);
        EXPECT_DOUBLE_EQ(hsl.hue, hue);
        EXPECT_DOUBLE_EQ(hsl.saturation, saturation);
        EXPECT_DOUBLE_EQ(hsl.lightness, lightness);
    };
    expect({1, 0, 0}, 0, 1, 0.5);
    expect({1, 1, 0}, 60, 1, 0.5); // red wins a tie with green
    expect({0, 1, 0}, 120, 1, 0.5);
    expect({0, 1, 1}, 180, 1, 0.5);
    expect({0, 0, 1}, 240, 1, 0.5);
    expect({1, 0, 1}, 300, 1, 0.5); // below zero before 360 is added
    expect({0.25, 0.25, 0.25}, 0, 0, 0.25);
    expect({0, 0, 0}, 0, 0, 0);
    expect({1, 1, 1}, 0, 0, 1);
}

TEST(Hsl, givesBlackBeyondTheCircle)
{
    const Rgb red = toRgb({360, 1, 0.5});
    EXPECT_DOUBLE_EQ(red.red, 1);
    EXPECT_DOUBLE_EQ(red.green, 0);
    EXPECT_DOUBLE_EQ(red.blue, 0);
    const Rgb azure = toRgb({210, 1, 0.5});
    EXPECT_DOUBLE_EQ(azure.red, 0);
    EXPECT_DOUBLE_EQ(azure.green, 0.5);
    EXPECT_DOUBLE_EQ(azure.blue, 1);
}

TEST(LabConverter, buildsItsTransformsOnceForAThousandCalls)
{
    LabConverter converter;
    for (int i = 0; i < 1000; ++i)
        converter.prepare();
    EXPECT_EQ(converter.builds(), 1);

    const LabConverter::Pixel white = {65535, 65535, 65535};
    LabConverter::Pixel lab = {}, back = {};
    ASSERT_TRUE(converter.toLab(&white, &lab, 1));
    EXPECT_NEAR(lab[0], 65280, 300);
    EXPECT_NEAR(lab[1], 32896, 200);
    EXPECT_NEAR(lab[2], 32896, 200);
    ASSERT_TRUE(converter.toRgb(&lab, &back, 1));
    EXPECT_NEAR(back[0], 65535, 655); // one per cent, lost in the tables of the transform
}

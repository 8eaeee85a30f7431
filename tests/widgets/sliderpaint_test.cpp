// The drawing functions that sliders share, pixel by pixel where nothing is antialiased.

#include <ondrel/widgets/precisionslider.h>

#include <gtest/gtest.h>

#include <QPainter>

using namespace Ondrel;

namespace
{

constexpr QRgb kNothing = 0xFF123456;

// A bar of 40 x 8 at (4, 4), so that its corners, rounded by 2, stay away from the pixels that are asked for.
const QRectF kRect(4, 4, 40, 8);

template <typename Draw>
QImage drawn(Draw draw)
{
    QImage image(48, 16, QImage::Format_ARGB32_Premultiplied);
    image.fill(kNothing);
    QPainter painter(&image);
    draw(painter);
    return image;
}

QLinearGradient redToBlue()
{
    QLinearGradient gradient(500, 500, 600, 900); // its own ends do not matter
    gradient.setColorAt(0.0, Qt::red);
    gradient.setColorAt(1.0, Qt::blue);
    return gradient;
}

} // namespace

TEST(SliderPaint, grooveBrightensDownwards)
{
    const QImage image = drawn([](QPainter& p) { PrecisionSliderDrawRangeGroove(p, kRect); });
    int last = -1;
    for (int y = 4; y < 12; ++y) {
        const QColor color = image.pixelColor(24, y);
        // The middle of row y lies (y - 3.5) / 8 of the way from 50, 47, 47 to 156, 156, 156.
        EXPECT_NEAR(color.red(), 50 + (156 - 50) * (y - 3.5) / 8, 2) << y;
        EXPECT_NEAR(color.green(), 47 + (156 - 47) * (y - 3.5) / 8, 2) << y;
        EXPECT_GT(color.red(), last);
        last = color.red();
    }
    EXPECT_EQ(image.pixel(24, 3), kNothing);
    EXPECT_EQ(image.pixel(24, 12), kNothing);
    EXPECT_EQ(image.pixel(3, 8), kNothing);
    EXPECT_EQ(image.pixel(44, 8), kNothing);
}

TEST(SliderPaint, gradientGrooveRunsFromTheLeftToTheRightOfTheGroove)
{
    const QImage image = drawn([](QPainter& p) { PrecisionSliderDrawRangeGroove(p, kRect, redToBlue()); });
    for (int x = 6; x < 42; ++x) {
        const double share = (x + 0.5 - 4) / 40;
        EXPECT_NEAR(image.pixelColor(x, 8).blue(), 255 * share, 3) << x;
        EXPECT_NEAR(image.pixelColor(x, 8).red(), 255 * (1 - share), 3) << x;
    }
    EXPECT_EQ(image.pixel(24, 5), image.pixel(24, 10));
}

TEST(SliderPaint, barCoversItsShareInTheColorOfItsState)
{
    for (const bool hovered : {false, true}) {
        const QColor expected = hovered ? QColor(222, 219, 219) : QColor(201, 198, 198);
        // (40 - 1) * 0.5 = 19.5 wide, from 4 + 10 on
        const QImage image = drawn([&](QPainter& p) { PrecisionSliderDrawRangeBar(p, kRect, 10.0f, 0.5f, hovered); });
        for (int x = 17; x < 31; ++x) {
            EXPECT_EQ(image.pixelColor(x, 5), expected);
            EXPECT_EQ(image.pixelColor(x, 10), expected);
        }
        EXPECT_EQ(image.pixel(13, 8), kNothing);
        EXPECT_EQ(image.pixel(35, 8), kNothing);
    }
}

TEST(SliderPaint, barStaysInsideOfTheGroove)
{
    const QImage image = drawn([](QPainter& p) { PrecisionSliderDrawRangeBar(p, kRect, -20.0f, 3.0f, true); });
    EXPECT_EQ(image.pixelColor(24, 8), QColor(222, 219, 219));
    EXPECT_EQ(image.pixel(3, 8), kNothing);
    EXPECT_EQ(image.pixel(44, 8), kNothing);
}

TEST(SliderPaint, gradientBarSpansTheBarItself)
{
    const QImage image = drawn([](QPainter& p) { PrecisionSliderDrawRangeBar(p, kRect, 10.0f, 0.5f, redToBlue()); });
    for (int x = 16; x < 32; ++x)
        EXPECT_NEAR(image.pixelColor(x, 8).blue(), 255 * (x + 0.5 - 14) / 19.5, 4) << x;
    EXPECT_EQ(image.pixel(10, 8), kNothing);
}

TEST(SliderPaint, drawingLeavesTheClipAsItWas)
{
    const QImage image = drawn([](QPainter& p) {
        PrecisionSliderDrawRangeBar(p, kRect, 0.0f, 1.0f, false);
        p.fillRect(0, 0, 48, 16, Qt::green);
    });
    EXPECT_EQ(image.pixelColor(0, 0), QColor(Qt::green));
    EXPECT_EQ(image.pixelColor(47, 15), QColor(Qt::green));
}

TEST(SliderPaint, borderIsAThinLineAroundTheGroove)
{
    const QImage image = drawn([](QPainter& p) { PrecisionSliderDrawRangeBorder(p, kRect); });
    EXPECT_EQ(image.pixelColor(24, 4), QColor(50, 47, 47));
    EXPECT_EQ(image.pixelColor(24, 12), QColor(50, 47, 47)); // a line on whole numbers lies right and below
    EXPECT_EQ(image.pixelColor(4, 8), QColor(50, 47, 47));
    EXPECT_EQ(image.pixel(24, 8), kNothing);
}
